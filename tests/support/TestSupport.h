#ifndef ORV_TESTS_SUPPORT_TESTSUPPORT_H
#define ORV_TESTS_SUPPORT_TESTSUPPORT_H

#include <orv/utils/AbstractLogger.h>
#include <orv/utils/ErrorType.h>
#include <orv/utils/c/Assertion.h>

#include <string>
#include <vector>

#if defined(__SANITIZE_THREAD__)
#define ORV_TEST_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ORV_TEST_THREAD_SANITIZER 1
#endif
#endif

namespace orv {
namespace test {

/// True in builds checked by the thread sanitizer, which reports deliberate lock misuse itself.
#if defined(ORV_TEST_THREAD_SANITIZER)
constexpr bool underThreadSanitizer = true;
#else
constexpr bool underThreadSanitizer = false;
#endif

using Texts = std::vector<std::string>;

/// Installs a hook that records failed assertions and returns, and restores the old hook.
class AssertionCapture {
public:
    AssertionCapture();
    ~AssertionCapture();

    const Texts& texts() const;
    /// The file texts of the recorded assertions, in order.
    const Texts& files() const;
    void clear();

    AssertionCapture(const AssertionCapture&) = delete;
    AssertionCapture& operator=(const AssertionCapture&) = delete;

private:
    orv_AssertionFailedFunction previous_;
};

/// Records every line it is given as "kind|caption|message", all levels on by default.
class RecordingLogger : public utils::AbstractLogger {
public:
    explicit RecordingLogger(bool warning = true, bool info = true, bool trace = true)
        : AbstractLogger(warning, info, trace)
    {
    }

    Texts lines;
    /// Only the messages, in order.
    Texts messages() const;

protected:
    void doLogTrace(const char* file, unsigned int line, const char* message) override;
    void doLogInfo(const char* file, unsigned int line, const char* message) override;
    void doLogWarning(const char* file, unsigned int line, const char* message) override;
    void doLogError(const utils::ErrorType& error, const char* file, unsigned int line, const char* message) override;
};

/// The path of a reference file in the shared test data folder.
std::string testDataPath(const char* name);

} // namespace test
} // namespace orv

#endif
