#ifndef ORV_UTILS_ASSERTION_H
#define ORV_UTILS_ASSERTION_H

#include <orv/utils/c/Assertion.h>

#include <sstream>

namespace orv {
namespace utils {

/// Calls the current failed assertion hook.
ORV_UTILS_API void assertionFailed(const char* file, unsigned int line, const char* message);
/// Prints the assertion line and aborts.
ORV_UTILS_API void abortOnAssertionFailed(const char* file, unsigned int line, const char* message);
/// Prints the assertion line and throws std::runtime_error carrying the message alone.
ORV_UTILS_API void throwOnAssertionFailed(const char* file, unsigned int line, const char* message);

} // namespace utils
} // namespace orv

/// A contract check that stands in every build. The text is composed as stream output, and only
/// when the check fails. When the hook returns, execution goes on after the check. The failing
/// branch is a function of its own, out of the way: the stream would otherwise widen the frame of
/// every hot operation that checks something.
#define ORV_CHECK(condition, text)                                                                                     \
    do {                                                                                                               \
        if (__builtin_expect(!(condition), 0)) {                                                                       \
            [&]() __attribute__((noinline, cold)) {                                                                    \
                std::ostringstream orvCheckStream_;                                                                    \
                orvCheckStream_ << text;                                                                               \
                ::orv::utils::assertionFailed(__FILE__, __LINE__, orvCheckStream_.str().c_str());                      \
            }();                                                                                                       \
        }                                                                                                              \
    } while (0)

/// An unconditional failed assertion with a composed text.
#define ORV_FAIL(text) ORV_CHECK(false, text)

#endif
