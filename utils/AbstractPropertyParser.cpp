#include <orv/utils/AbstractPropertyParser.h>

#include <orv/utils/Assertion.h>
#include <orv/utils/details/Logging.h>

#include <cstring>

namespace orv {
namespace utils {

namespace {

// The longest index text of a path; six digits still pass the length test below, the seventh fails.
constexpr unsigned int maximumIndexLength = 5;

bool reportUnexpected(AbstractLogger* logger, char character, unsigned int position)
{
    ORV_LOG_ERROR(logger, error::invalidData,
                  "Unexpected '" << character << "' character at position " << position << ".");
    return false;
}

// `parser` is null when the path is only checked.
bool parse(const char* path, unsigned int length, AbstractPropertyParser* parser, AbstractLogger* logger)
{
    bool insideIndex = false;
    unsigned int start = 0;
    unsigned int value = 0;
    for (unsigned int i = 0; i < length; ++i) {
        const char c = path[i];
        if (!insideIndex) {
            if (c == '.') {
                if (i > start) {
                    if (parser != nullptr && !parser->key(path + start, i - start)) {
                        return false;
                    }
                } else if (i == 0 || path[i - 1] != ']') {
                    return reportUnexpected(logger, c, i);
                }
                start = i + 1;
            } else if (c == '[') {
                insideIndex = true;
                value = 0;
                if (i > start) {
                    if (parser != nullptr && !parser->key(path + start, i - start)) {
                        return false;
                    }
                } else if (i != 0 && path[i - 1] == '.') {
                    return reportUnexpected(logger, c, i);
                }
                start = i + 1;
            } else if (c == ']') {
                return reportUnexpected(logger, c, i);
            } else if (start != 0 && path[start - 1] != '.') {
                // A name right after a closing bracket, as in `a[0]b`.
                return reportUnexpected(logger, c, i);
            }
        } else {
            // Bytes are signed: those at 0x80 and above fall below '0' as well.
            if (static_cast<signed char>(c) < '0') {
                return reportUnexpected(logger, c, i);
            }
            if (c <= '9') {
                if (i - start > maximumIndexLength) {
                    ORV_LOG_ERROR(logger, error::invalidData,
                                  "Property array out of bound: maximum array index length is "
                                      << maximumIndexLength << ".");
                    return false;
                }
                value = value * 10 + static_cast<unsigned int>(c - '0');
            } else if (c == ']' && i > start) {
                if (parser != nullptr && !parser->index(value)) {
                    return false;
                }
                insideIndex = false;
                start = i + 1;
            } else {
                return reportUnexpected(logger, c, i);
            }
        }
    }
    if (insideIndex) {
        ORV_LOG_ERROR(logger, error::invalidData, "Expected ']' character at position " << length << ".");
        return false;
    }
    if (start < length && parser != nullptr) {
        return parser->key(path + start, length - start);
    }
    return true;
}

bool checkText(const char* text)
{
    ORV_CHECK(text != nullptr, "Null string given as a key");
    // The hook returned: there is no path to read, and the call fails.
    return text != nullptr;
}

} // namespace

AbstractPropertyParser::~AbstractPropertyParser() = default;

bool checkPropertyKey(const char* key, unsigned int length)
{
    if (length == 0 || key == nullptr) {
        return false;
    }
    for (unsigned int i = 0; i < length; ++i) {
        const char c = key[i];
        if (c == '.' || c == '[' || c == ']') {
            return false;
        }
    }
    return true;
}

bool checkPropertyKey(const char* key)
{
    return checkText(key) && checkPropertyKey(key, static_cast<unsigned int>(std::strlen(key)));
}

bool parseProperty(const char* path, unsigned int length, AbstractPropertyParser& parser, AbstractLogger* logger)
{
    return checkText(path) && parse(path, length, &parser, logger);
}

bool parseProperty(const char* path, AbstractPropertyParser& parser, AbstractLogger* logger)
{
    return checkText(path) && parse(path, static_cast<unsigned int>(std::strlen(path)), &parser, logger);
}

bool checkPropertyPath(const char* path, unsigned int length, AbstractLogger* logger)
{
    return checkText(path) && parse(path, length, nullptr, logger);
}

bool checkPropertyPath(const char* path, AbstractLogger* logger)
{
    return checkText(path) && parse(path, static_cast<unsigned int>(std::strlen(path)), nullptr, logger);
}

unsigned int formatArrayKey(unsigned int index, char* buffer)
{
    // The same text as "[%u]", without a format interpreter: array lookups build one per step.
    char digits[10];
    unsigned int count = 0;
    do {
        digits[count++] = static_cast<char>('0' + index % 10);
        index /= 10;
    } while (index != 0);
    unsigned int length = 0;
    buffer[length++] = '[';
    while (count != 0) {
        buffer[length++] = digits[--count];
    }
    buffer[length++] = ']';
    buffer[length] = '\0';
    return length;
}

} // namespace utils
} // namespace orv
