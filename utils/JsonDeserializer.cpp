#include <orv/utils/JsonDeserializer.h>

#include <orv/utils/AbstractDataInputOutput.h>
#include <orv/utils/AbstractObjectBuilder.h>
#include <orv/utils/Assertion.h>
#include <orv/utils/Common.h>
#include <orv/utils/DynamicObjectBuilder.h>
#include <orv/utils/details/Logging.h>
#include <orv/utils/impl/YajlAllocation.h>

#include <yajl/yajl_parse.h>

#include <charconv>
#include <cstddef>
#include <string>
#include <system_error>

namespace orv {
namespace utils {
namespace {

/// What every parser callback works on.
struct JsonParseContext {
    explicit JsonParseContext(AbstractObjectBuilder& target) : builder(&target) {}

    AbstractObjectBuilder* builder;
    /// One entry per open level, 1 for an array; the bottom entry is the document level. Bytes,
    /// not bits: every value reads the top.
    Vector<unsigned char> arrayStack;
    /// The parser's text for a number that doesn't fit its type, and the length of that number.
    /// The conversion is ours, so the parser only sees a cancelled parse and the report is
    /// composed here, as the parser would have written it.
    const char* numberFault = nullptr;
    std::size_t numberFaultLength = 0;
};

JsonParseContext& contextOf(void* ctx)
{
    return *static_cast<JsonParseContext*>(ctx);
}

/// Every value inside an array is announced first.
bool enterValue(JsonParseContext& context)
{
    return !context.arrayStack.back() || context.builder->arrayChild();
}

int onNull(void* ctx)
{
    JsonParseContext& context = contextOf(ctx);
    return enterValue(context) && context.builder->null();
}

int onBoolean(void* ctx, int value)
{
    JsonParseContext& context = contextOf(ctx);
    return enterValue(context) && context.builder->boolean(value != 0);
}

/// Where a real token out of the double range lies: true above it, false below, where it reads
/// as a zero. The decimal order of the value decides, and the range boundaries (about 1e308 and
/// 1e-324) are far from order 0.
bool isAboveRealRange(const char* text, const char* end)
{
    long long integerDigits = 0;
    long long firstSignificant = -1;
    long long digits = 0;
    bool inFraction = false;
    const char* cursor = text;
    for (; cursor != end && *cursor != 'e' && *cursor != 'E'; ++cursor) {
        if (*cursor == '.') {
            inFraction = true;
        } else if (*cursor >= '0' && *cursor <= '9') {
            if (firstSignificant < 0 && *cursor != '0') {
                firstSignificant = digits;
            }
            ++digits;
            integerDigits += inFraction ? 0 : 1;
        }
    }
    long long exponent = 0;
    bool negativeExponent = false;
    if (cursor != end) {
        ++cursor;
        if (cursor != end && (*cursor == '-' || *cursor == '+')) {
            negativeExponent = *cursor++ == '-';
        }
        // Saturates far beyond any order a double can tell apart.
        for (; cursor != end && exponent < 1000000000LL; ++cursor) {
            exponent = exponent * 10 + (*cursor - '0');
        }
    }
    return integerDigits - firstSignificant - 1 + (negativeExponent ? -exponent : exponent) > 0;
}

// The number arrives as its token, so that no conversion depends on the process's locale:
// std::from_chars reads as the "C" locale does and switches nothing.
int onNumber(void* ctx, const char* text, std::size_t length)
{
    JsonParseContext& context = contextOf(ctx);
    const char* end = text + length;
    // Most integers have fewer digits than a long long holds, so that no digit can overflow it:
    // they are read in the same pass that looks for a fraction or an exponent.
    const bool negative = length != 0 && text[0] == '-';
    const char* cursor = text + (negative ? 1 : 0);
    unsigned long long magnitude = 0;
    for (; cursor != end && static_cast<unsigned char>(*cursor - '0') < 10; ++cursor) {
        magnitude = magnitude * 10 + static_cast<unsigned char>(*cursor - '0');
    }
    if (cursor == end) {
        constexpr std::ptrdiff_t safeDigits = 18;
        long long value = static_cast<long long>(magnitude);
        if (cursor - text - (negative ? 1 : 0) <= safeDigits) {
            return enterValue(context) && context.builder->integer(negative ? -value : value);
        }
        if (std::from_chars(text, end, value).ec != std::errc()) {
            // The lexer gave a valid integer token, so only its size can fail.
            context.numberFault = "integer overflow";
            context.numberFaultLength = length;
            return 0;
        }
        return enterValue(context) && context.builder->integer(value);
    }
    double value = 0.0;
    const std::from_chars_result result = std::from_chars(text, end, value);
    if (result.ec == std::errc::result_out_of_range) {
        if (isAboveRealRange(text, end)) {
            context.numberFault = "numeric (floating point) overflow";
            context.numberFaultLength = length;
            return 0;
        }
        // Below the smallest denormal a real reads as a zero of its sign.
        value = text[0] == '-' ? -0.0 : 0.0;
    } else {
        ORV_CHECK(result.ec == std::errc() && result.ptr == end,
                  "Unexpected real number '" << std::string(text, length) << "' from the JSON parser.");
        // The hook returned: the value is what the conversion made of the token, 0 if nothing.
    }
    return enterValue(context) && context.builder->real(value);
}

int onString(void* ctx, const unsigned char* value, std::size_t length)
{
    JsonParseContext& context = contextOf(ctx);
    return enterValue(context)
        && context.builder->string(reinterpret_cast<const char*>(value), static_cast<unsigned int>(length));
}

int onStartMap(void* ctx)
{
    JsonParseContext& context = contextOf(ctx);
    if (!enterValue(context) || !context.builder->beginObject()) {
        return 0;
    }
    context.arrayStack.push_back(0);
    return 1;
}

int onMapKey(void* ctx, const unsigned char* key, std::size_t length)
{
    return contextOf(ctx).builder->objectChild(reinterpret_cast<const char*>(key), static_cast<unsigned int>(length));
}

int onEndMap(void* ctx)
{
    JsonParseContext& context = contextOf(ctx);
    const bool accepted = context.builder->endObject();
    context.arrayStack.pop_back();
    return accepted;
}

int onStartArray(void* ctx)
{
    JsonParseContext& context = contextOf(ctx);
    if (!enterValue(context) || !context.builder->beginArray()) {
        return 0;
    }
    context.arrayStack.push_back(1);
    return 1;
}

int onEndArray(void* ctx)
{
    JsonParseContext& context = contextOf(ctx);
    const bool accepted = context.builder->endArray();
    context.arrayStack.pop_back();
    return accepted;
}

const yajl_callbacks callbacks = {
    &onNull, &onBoolean, nullptr, nullptr, &onNumber, &onString,
    &onStartMap, &onMapKey, &onEndMap, &onStartArray, &onEndArray,
};

/// The parser's verbose text of a parse error at `offset` of `text`: the error line, then up to
/// thirty bytes on either side of the place with line breaks blanked, and the mark under it.
std::string composeParseError(const char* error, const unsigned char* text, std::size_t length, std::size_t offset)
{
    std::string message = "parse error: ";
    message += error;
    message += '\n';
    const std::size_t spacesNeeded = offset < 30 ? 40 - offset : 10;
    std::size_t start = offset >= 30 ? offset - 30 : 0;
    const std::size_t end = offset + 30 > length ? length : offset + 30;
    message.append(spacesNeeded, ' ');
    for (; start < end; ++start) {
        message += text[start] != '\n' && text[start] != '\r' ? static_cast<char>(text[start]) : ' ';
    }
    message += "\n                     (right here) ------^\n";
    return message;
}

/// The parser's message with its leading "parse error: " cut off. A lexical error has a longer
/// prefix, so its text keeps ": " of it; readers have always seen it that way.
std::string cutParserPrefix(const std::string& message)
{
    constexpr std::size_t prefixLength = 13;
    return message.size() > prefixLength ? message.substr(prefixLength) : std::string();
}

void reportParseFailure(AbstractLogger* logger, yajl_handle parser, yajl_status status,
                        const JsonParseContext& context, const unsigned char* chunk, unsigned int chunkSize)
{
    if (status == yajl_status_client_canceled && context.numberFault != nullptr) {
        // The parser puts the place of its own number faults back in front of the number.
        const std::size_t consumed = yajl_get_bytes_consumed(parser);
        const std::size_t offset = consumed >= context.numberFaultLength ? consumed - context.numberFaultLength : 0;
        ORV_LOG_ERROR(logger, error::invalidData,
                      "JSON issue: " << cutParserPrefix(composeParseError(context.numberFault, chunk, chunkSize, offset)));
        return;
    }
    unsigned char* text = yajl_get_error(parser, 1, chunk, chunkSize);
    const std::string message = text != nullptr ? cutParserPrefix(reinterpret_cast<const char*>(text)) : std::string();
    switch (status) {
    case yajl_status_client_canceled:
        ORV_LOG_ERROR(logger, error::previous, "Build issue: " << message);
        break;
    case yajl_status_error:
        ORV_LOG_ERROR(logger, error::invalidData, "JSON issue: " << message);
        break;
    default:
        ORV_FAIL("Unknown YAJL error.");
        // The hook returned: the document fails without a report.
        break;
    }
    if (text != nullptr) {
        yajl_free_error(parser, text);
    }
}

} // namespace

bool deserializeJson(AbstractObjectBuilder& builder, AbstractDataInputOutput& input, bool stopAfterValue)
{
    if (!builder.begin()) {
        return false;
    }
    AbstractLogger* logger = builder.getLogger();
    JsonParseContext context(builder);
    yajl_alloc_funcs allocation = impl::getYajlAllocationFunctions();
    yajl_handle parser = yajl_alloc(&callbacks, &allocation, &context);
    ORV_CHECK(parser != nullptr, "Unable to allocate the JSON parser.");
    if (parser == nullptr) {
        // The hook returned: nothing can be read.
        return false;
    }
    context.arrayStack.push_back(0);
    if (stopAfterValue) {
        yajl_config(parser, yajl_allow_trailing_garbage, 1);
    }

    unsigned char chunk[256];
    char* buffer = reinterpret_cast<char*>(chunk);
    unsigned int chunkSize = sizeof chunk;
    std::size_t totalConsumed = 0;
    yajl_status status = yajl_status_ok;
    while (chunkSize != 0) {
        chunkSize = sizeof chunk;
        const bool readSuccess
            = stopAfterValue ? input.peekRead(buffer, chunkSize, logger) : input.read(buffer, chunkSize, logger);
        if (!readSuccess) {
            ORV_LOG_ERROR(logger, error::invalidData, "Error while reading the input data.");
            // A failed read leaves no text that the report could show.
            chunkSize = 0;
            status = yajl_status_error;
            break;
        }
        if (chunkSize == 0) {
            // An input that never gave a byte is an empty document, not a truncated one.
            if (totalConsumed != 0) {
                status = yajl_complete_parse(parser);
            }
        } else {
            status = yajl_parse(parser, chunk, chunkSize);
        }
        if (status != yajl_status_ok) {
            break;
        }
        const std::size_t consumed = yajl_get_bytes_consumed(parser);
        if (stopAfterValue) {
            // Only the bytes of the value leave the stream; a parse that took none ends the loop.
            unsigned int readSize = static_cast<unsigned int>(consumed);
            const bool consumeSuccess = input.read(buffer, readSize, nullptr);
            ORV_CHECK(consumeSuccess && readSize == consumed, "consumeSuccess && readSize == yajlConsumedBytes");
            // The hook returned: the stream stands where that read left it.
            chunkSize = static_cast<unsigned int>(consumed);
        }
        totalConsumed += consumed;
    }

    if (status != yajl_status_ok) {
        reportParseFailure(logger, parser, status, context, chunk, chunkSize);
    }
    yajl_free(parser);
    return status == yajl_status_ok && builder.end();
}

bool deserializeDynamicObjectFromJson(DynamicObject& object, AbstractDataInputOutput& input, AbstractLogger* logger)
{
    DynamicObjectBuilder builder(object, 0);
    builder.setLogger(logger);
    return deserializeJson(builder, input, false);
}

} // namespace utils
} // namespace orv
