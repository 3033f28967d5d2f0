#ifndef ORV_TOOLS_CONVERT_H
#define ORV_TOOLS_CONVERT_H

namespace orv {
namespace tools {

extern const char* const convertUsage;

/// `orv convert ...`: arguments after the subcommand. Returns the process's exit status.
int runConvert(int argc, char** argv);

} // namespace tools
} // namespace orv

#endif
