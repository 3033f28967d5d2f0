#include <orv/utils/Assertion.h>

#include <cstdlib>
#include <iostream>
#include <stdexcept>

namespace {

orv_AssertionFailedFunction currentHook = &orv_abortOnAssertionFailed;

void printAssertionLine(const char* file, unsigned int line, const char* message)
{
    std::cerr << file << "(" << line << "): [assertion failed] " << message << std::endl;
}

} // namespace

extern "C" {

void orv_assertionFailed(const char* file, unsigned int line, const char* message)
{
    currentHook(file, line, message);
}

void orv_abortOnAssertionFailed(const char* file, unsigned int line, const char* message)
{
    printAssertionLine(file, line, message);
    std::abort();
}

orv_AssertionFailedFunction orv_getAssertionFailedFunction(void)
{
    return currentHook;
}

void orv_setAssertionFailedFunction(orv_AssertionFailedFunction function)
{
    currentHook = function;
}
}

namespace orv {
namespace utils {

void assertionFailed(const char* file, unsigned int line, const char* message)
{
    orv_assertionFailed(file, line, message);
}

void abortOnAssertionFailed(const char* file, unsigned int line, const char* message)
{
    orv_abortOnAssertionFailed(file, line, message);
}

void throwOnAssertionFailed(const char* file, unsigned int line, const char* message)
{
    printAssertionLine(file, line, message);
    throw std::runtime_error(message);
}

} // namespace utils
} // namespace orv
