#include <orv/utils/JsonSerializer.h>

#include <orv/utils/impl/YajlAllocation.h>

#include <orv/utils/DynamicObject.h>

#include <orv/allocator/Allocator.h>
#include <orv/utils/AbstractDataInputOutput.h>
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/details/Logging.h>

#include <yajl/yajl_gen.h>

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <typeinfo>

namespace orv {
namespace utils {
namespace impl {

/// What the generator's print callback receives.
struct JsonSerializerContext {
    AbstractDataInputOutput* output;
    yajl_gen generator;
    AbstractLogger* logger;
};

} // namespace impl

namespace {

__attribute__((noinline, cold)) void reportNullContext()
{
    ORV_FAIL("ctx");
}

void printToOutput(void* ctx, const char* text, std::size_t length)
{
    if (ctx == nullptr) {
        reportNullContext();
        // The hook returned: the text has nowhere to go.
        return;
    }
    impl::JsonSerializerContext* context = static_cast<impl::JsonSerializerContext*>(ctx);
    // A failed write doesn't stop the build: the stream has reported it.
    context->output->write(text, static_cast<unsigned int>(length), context->logger);
}

/// The same for an output known to be exactly a DynamicBufferInputOutput: the generator prints
/// a handful of bytes at a time, and the buffer's own write takes them without a virtual call.
void printToBuffer(void* ctx, const char* text, std::size_t length)
{
    if (ctx == nullptr) {
        reportNullContext();
        return;
    }
    impl::JsonSerializerContext* context = static_cast<impl::JsonSerializerContext*>(ctx);
    static_cast<DynamicBufferInputOutput*>(context->output)
        ->DynamicBufferInputOutput::write(text, static_cast<unsigned int>(length), context->logger);
}

/// Reports a status other than success; true only for success.
__attribute__((noinline, cold)) bool reportStatus(AbstractLogger* logger, yajl_gen_status status)
{
    switch (status) {
    case yajl_gen_status_ok:
        return true;
    case yajl_gen_keys_must_be_strings:
        ORV_LOG_ERROR(logger, error::invalidOperation, "No current property");
        break;
    case yajl_max_depth_exceeded:
        ORV_LOG_ERROR(logger, error::invalidOperation, "Maximum generation depth exceeded");
        break;
    case yajl_gen_in_error_state:
        ORV_LOG_ERROR(logger, error::invalidOperation, "Tried to continue the build while in error");
        break;
    case yajl_gen_generation_complete:
        ORV_LOG_ERROR(logger, error::invalidOperation, "Unexpected YAJL returned status: yajl_gen_generation_complete");
        break;
    case yajl_gen_invalid_number:
        ORV_LOG_ERROR(logger, error::invalidOperation, "Unexpected YAJL returned status: yajl_gen_invalid_number");
        break;
    case yajl_gen_no_buf:
        ORV_LOG_ERROR(logger, error::invalidOperation, "Unexpected YAJL returned status: yajl_gen_no_buf");
        break;
    case yajl_gen_invalid_string:
        ORV_LOG_ERROR(logger, error::invalidOperation, "Unexpected YAJL returned status: yajl_gen_invalid_string");
        break;
    default:
        ORV_LOG_ERROR(logger, error::invalidOperation, "Unknown YAJL returned status.");
        break;
    }
    return false;
}

// The reports of the events stay out of line, so that the events themselves are a few
// instructions around the generator call.

__attribute__((noinline, cold)) void reportNotBegun(AbstractLogger* logger)
{
    ORV_LOG_ERROR(logger, error::invalidOperation, "The Json building was already ended or has never begun.");
}

__attribute__((noinline, cold)) void reportRootNotStarted(AbstractLogger* logger)
{
    ORV_LOG_ERROR(logger, error::invalidOperation, "Expected object or array");
}

/// The status of `real`: a value JSON can't hold is named as such.
__attribute__((noinline, cold)) bool reportRealStatus(AbstractLogger* logger, yajl_gen_status status, double value)
{
    if (status == yajl_gen_invalid_number) {
        ORV_LOG_ERROR(logger, error::invalidArgument, "Invalid real value passed: " << value);
        return false;
    }
    return reportStatus(logger, status);
}

/// The status of `string`.
__attribute__((noinline, cold)) bool reportStringStatus(
    AbstractLogger* logger, yajl_gen_status status, const char* value, unsigned int size)
{
    if (status == yajl_gen_invalid_string) {
        ORV_LOG_ERROR(logger, error::invalidOperation, "Invalid string value passed: " << std::string(value, size));
        return false;
    }
    return reportStatus(logger, status);
}

/// The status of `objectChild`.
__attribute__((noinline, cold)) bool reportKeyStatus(
    AbstractLogger* logger, yajl_gen_status status, const char* key, unsigned int size)
{
    if (status == yajl_gen_keys_must_be_strings) {
        ORV_LOG_ERROR(
            logger, error::invalidOperation, "Unexpected YAJL returned status: yajl_gen_keys_must_be_strings");
        return false;
    }
    if (status == yajl_gen_invalid_string) {
        ORV_LOG_ERROR(logger, error::invalidOperation, "Invalid object child key passed: " << std::string(key, size));
        return false;
    }
    return reportStatus(logger, status);
}

/// True for success; anything else is reported.
inline bool checkStatus(AbstractLogger* logger, yajl_gen_status status)
{
    return status == yajl_gen_status_ok || reportStatus(logger, status);
}

/// The text of a finite real: "%.20g" in the "C" locale, with ".0" when it has neither a point
/// nor an exponent, so that a reader sees a real again. std::to_chars depends on no locale.
std::size_t formatReal(double value, char (&text)[40])
{
    const std::to_chars_result result
        = std::to_chars(text, text + sizeof text - 2, value, std::chars_format::general, 20);
    std::size_t length = static_cast<std::size_t>(result.ptr - text);
    if (std::strspn(text, "0123456789-") >= length) {
        text[length++] = '.';
        text[length++] = '0';
    }
    return length;
}

} // namespace

JsonSerializer::JsonSerializer(AbstractDataInputOutput& output, bool beautify)
    : context_(ORV_NEW(impl::JsonSerializerContext) { &output, nullptr, nullptr })
    , rootStarted_(false)
    , beautify_(beautify)
{
}

JsonSerializer::~JsonSerializer()
{
    if (context_.get() != nullptr && context_->generator != nullptr) {
        yajl_gen_free(context_->generator);
    }
}

void JsonSerializer::setLogger(AbstractLogger* logger)
{
    AbstractObjectBuilder::setLogger(logger);
    if (context_.get() != nullptr) {
        context_->logger = logger;
    }
}

bool JsonSerializer::begin()
{
    if (context_.get() != nullptr && context_->generator != nullptr) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, "The Json building has already begun");
        return false;
    }
    yajl_alloc_funcs allocation = impl::getYajlAllocationFunctions();
    yajl_gen generator = context_.get() != nullptr ? yajl_gen_alloc(&allocation) : nullptr;
    if (generator == nullptr) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, "Unable to instanciate YAJL Json generator.");
        return false;
    }
    impl::JsonSerializerContext* context = context_.get();
    // Only the exact class: a class derived from it may write differently.
    const bool plainBuffer = typeid(*context->output) == typeid(DynamicBufferInputOutput);
    yajl_gen_config(generator, yajl_gen_print_callback, plainBuffer ? &printToBuffer : &printToOutput, context);
    yajl_gen_config(generator, yajl_gen_beautify, beautify_ ? 1 : 0);
    context_->generator = generator;
    return true;
}

bool JsonSerializer::end()
{
    if (context_.get() == nullptr || context_->generator == nullptr) {
        reportNotBegun(logger_);
        return false;
    }
    yajl_gen_free(context_->generator);
    context_->generator = nullptr;
    rootStarted_ = false;
    return true;
}

inline void* JsonSerializer::openGenerator()
{
    impl::JsonSerializerContext* context = context_.get();
    if (__builtin_expect(context != nullptr && context->generator != nullptr, 1)) {
        return context->generator;
    }
    reportNotBegun(logger_);
    return nullptr;
}

inline bool JsonSerializer::checkRootStarted()
{
    if (__builtin_expect(rootStarted_, 1)) {
        return true;
    }
    reportRootNotStarted(logger_);
    return false;
}

bool JsonSerializer::null()
{
    if (!checkRootStarted()) {
        return false;
    }
    yajl_gen generator = static_cast<yajl_gen>(openGenerator());
    return generator != nullptr && checkStatus(logger_, yajl_gen_null(generator));
}

bool JsonSerializer::boolean(bool value)
{
    if (!checkRootStarted()) {
        return false;
    }
    yajl_gen generator = static_cast<yajl_gen>(openGenerator());
    return generator != nullptr && checkStatus(logger_, yajl_gen_bool(generator, value ? 1 : 0));
}

bool JsonSerializer::integer(long long value)
{
    if (!checkRootStarted()) {
        return false;
    }
    yajl_gen generator = static_cast<yajl_gen>(openGenerator());
    if (generator == nullptr) {
        return false;
    }
    // The text "%lld" gives, made without the formatted-output machinery; the generator places
    // it with the same checks as its own integer call.
    char text[24];
    const std::to_chars_result result = std::to_chars(text, text + sizeof text, value);
    return checkStatus(logger_, yajl_gen_number(generator, text, static_cast<std::size_t>(result.ptr - text)));
}

bool JsonSerializer::real(double value)
{
    if (!checkRootStarted()) {
        return false;
    }
    yajl_gen generator = static_cast<yajl_gen>(openGenerator());
    if (generator == nullptr) {
        return false;
    }
    yajl_gen_status status;
    if (std::isfinite(value)) {
        // The generator still checks where a number may stand; only the text is made here.
        char text[40];
        const std::size_t length = formatReal(value, text);
        status = yajl_gen_number(generator, text, length);
    } else {
        // The generator refuses these before it writes anything, after the same place checks.
        status = yajl_gen_double(generator, value);
    }
    return status == yajl_gen_status_ok || reportRealStatus(logger_, status, value);
}

bool JsonSerializer::string(const char* value, unsigned int size)
{
    if (!checkRootStarted()) {
        return false;
    }
    yajl_gen generator = static_cast<yajl_gen>(openGenerator());
    if (generator == nullptr) {
        return false;
    }
    const yajl_gen_status status
        = yajl_gen_string(generator, reinterpret_cast<const unsigned char*>(value), static_cast<std::size_t>(size));
    return status == yajl_gen_status_ok || reportStringStatus(logger_, status, value, size);
}

bool JsonSerializer::beginObject()
{
    yajl_gen generator = static_cast<yajl_gen>(openGenerator());
    if (generator == nullptr) {
        return false;
    }
    rootStarted_ = true;
    return checkStatus(logger_, yajl_gen_map_open(generator));
}

bool JsonSerializer::objectChild(const char* key, unsigned int size)
{
    yajl_gen generator = static_cast<yajl_gen>(openGenerator());
    if (generator == nullptr) {
        return false;
    }
    // The generator takes a text as a key by where it stands.
    const yajl_gen_status status
        = yajl_gen_string(generator, reinterpret_cast<const unsigned char*>(key), static_cast<std::size_t>(size));
    return status == yajl_gen_status_ok || reportKeyStatus(logger_, status, key, size);
}

bool JsonSerializer::endObject()
{
    yajl_gen generator = static_cast<yajl_gen>(openGenerator());
    return generator != nullptr && checkStatus(logger_, yajl_gen_map_close(generator));
}

bool JsonSerializer::beginArray()
{
    yajl_gen generator = static_cast<yajl_gen>(openGenerator());
    if (generator == nullptr) {
        return false;
    }
    rootStarted_ = true;
    return checkStatus(logger_, yajl_gen_array_open(generator));
}

bool JsonSerializer::arrayChild()
{
    return true;
}

bool JsonSerializer::endArray()
{
    yajl_gen generator = static_cast<yajl_gen>(openGenerator());
    return generator != nullptr && checkStatus(logger_, yajl_gen_array_close(generator));
}

bool serializeDynamicObjectToJson(const DynamicObject& object, AbstractDataInputOutput& output, AbstractLogger* logger)
{
    JsonSerializer serializer(output, false);
    serializer.setLogger(logger);
    return object.visit(serializer);
}

} // namespace utils
} // namespace orv
