#ifndef ORV_UTILS_ABSTRACTPROPERTYPARSER_H
#define ORV_UTILS_ABSTRACTPROPERTYPARSER_H

#include <orv/utils/Export.h>

namespace orv {
namespace utils {

class AbstractLogger;

/// Receives the steps of a property path such as `a.b[3].c`, in order. A false result stops the
/// parse, which then returns false with no message.
class ORV_UTILS_API AbstractPropertyParser {
public:
    virtual ~AbstractPropertyParser();

    /// A name step; the text is not terminated.
    virtual bool key(const char* key, unsigned int length) = 0;
    /// A name step as a terminated text. The path parser never calls it.
    virtual bool key(const char* key) = 0;
    /// An array index step.
    virtual bool index(unsigned int index) = 0;
};

/// True when the key is not empty and holds no `.`, `[` or `]`.
ORV_UTILS_API bool checkPropertyKey(const char* key, unsigned int length);
ORV_UTILS_API bool checkPropertyKey(const char* key);

/// Parses a path of name steps separated by `.` and index steps `[n]` of one to six digits,
/// calling `parser` for each step. A malformed path is reported to `logger` (which may be null)
/// with the position of the first offending byte, and gives false. The empty path is valid.
ORV_UTILS_API bool parseProperty(const char* path, unsigned int length, AbstractPropertyParser& parser,
                                 AbstractLogger* logger);
ORV_UTILS_API bool parseProperty(const char* path, AbstractPropertyParser& parser, AbstractLogger* logger);

/// The same walk with nothing called back.
ORV_UTILS_API bool checkPropertyPath(const char* path, unsigned int length, AbstractLogger* logger);
ORV_UTILS_API bool checkPropertyPath(const char* path, AbstractLogger* logger);

/// Writes "[index]" and a terminator into `buffer` (at least 13 bytes) and returns the length of
/// the text without the terminator.
ORV_UTILS_API unsigned int formatArrayKey(unsigned int index, char* buffer);

} // namespace utils
} // namespace orv

#endif
