#ifndef ORV_UTILS_IMPL_FACILITIESIMPL_H
#define ORV_UTILS_IMPL_FACILITIESIMPL_H

#include <orv/utils/OstreamLogger.h>
#include <orv/utils/RandomManager.h>
#include <orv/utils/StringTable.h>
#include <orv/utils/TypeManager.h>

namespace orv {
namespace utils {
namespace impl {

// Members are built in declaration order and destroyed in reverse: the default logger is the
// last to go.
struct FacilitiesImpl {
    FacilitiesImpl();

    unsigned int marker;
    AbstractLogger* logger;
    OstreamLogger defaultLogger;
    TypeManager typeManager;
    StringTable stringTable;
    RandomManager randomManager;
};

} // namespace impl
} // namespace utils
} // namespace orv

#endif
