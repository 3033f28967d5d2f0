#include "support/TestSupport.h"

#include <orv/utils/ErrorType.h>

namespace orv {
namespace test {
namespace {

Texts capturedTexts;
Texts capturedFiles;

void recordAssertion(const char* file, unsigned int, const char* message)
{
    capturedFiles.emplace_back(file != nullptr ? file : "");
    capturedTexts.emplace_back(message != nullptr ? message : "");
}

} // namespace

AssertionCapture::AssertionCapture() : previous_(orv_getAssertionFailedFunction())
{
    capturedTexts.clear();
    capturedFiles.clear();
    orv_setAssertionFailedFunction(&recordAssertion);
}

AssertionCapture::~AssertionCapture()
{
    orv_setAssertionFailedFunction(previous_);
}

const Texts& AssertionCapture::texts() const
{
    return capturedTexts;
}

const Texts& AssertionCapture::files() const
{
    return capturedFiles;
}

void AssertionCapture::clear()
{
    capturedTexts.clear();
    capturedFiles.clear();
}

Texts RecordingLogger::messages() const
{
    Texts result;
    for (const std::string& line : lines) {
        result.push_back(line.substr(line.find('|', line.find('|') + 1) + 1));
    }
    return result;
}

void RecordingLogger::doLogTrace(const char*, unsigned int, const char* message)
{
    lines.push_back(std::string("trace||") + message);
}

void RecordingLogger::doLogInfo(const char*, unsigned int, const char* message)
{
    lines.push_back(std::string("info||") + message);
}

void RecordingLogger::doLogWarning(const char*, unsigned int, const char* message)
{
    lines.push_back(std::string("warning||") + message);
}

void RecordingLogger::doLogError(const utils::ErrorType& error, const char*, unsigned int, const char* message)
{
    lines.push_back(std::string("error|") + error.getCaption() + "|" + message);
}

std::string testDataPath(const char* name)
{
    return std::string(ORV_TESTDATA_DIR) + "/" + name;
}

} // namespace test
} // namespace orv
