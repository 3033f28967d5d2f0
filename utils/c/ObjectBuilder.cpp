#include <orv/utils/c/ObjectBuilder.h>

#include <orv/utils/AbstractObjectBuilder.h>
#include <orv/utils/Assertion.h>
#include <orv/utils/details/Logging.h>
#include <orv/utils/details/ObjectBuilderTable.h>

using orv::utils::AbstractObjectBuilder;

namespace {

AbstractObjectBuilder* builderOf(void* ctx)
{
    ORV_CHECK(ctx != nullptr, "ctx");
    // The hook returned: the event answers false, as a refusal would.
    return static_cast<AbstractObjectBuilder*>(ctx);
}

/// A C caller's text: null is accepted only when empty, so that consumers may copy by size.
const char* textOf(AbstractObjectBuilder& builder, const char* text, unsigned int size)
{
    if (text != nullptr) {
        return text;
    }
    if (size == 0) {
        return "";
    }
    ORV_LOG_ERROR(
        builder.getLogger(), error::invalidArgument, "Null text of " << size << " bytes passed to the object builder.");
    return nullptr;
}

} // namespace

// The entries have C linkage, as the table's function types do.
extern "C" {

static orv_bool orvObjectBuilderBegin(void* ctx)
{
    AbstractObjectBuilder* builder = builderOf(ctx);
    return builder != nullptr && builder->begin();
}

static orv_bool orvObjectBuilderEnd(void* ctx)
{
    AbstractObjectBuilder* builder = builderOf(ctx);
    return builder != nullptr && builder->end();
}

static orv_bool orvObjectBuilderNull(void* ctx)
{
    AbstractObjectBuilder* builder = builderOf(ctx);
    return builder != nullptr && builder->null();
}

static orv_bool orvObjectBuilderBoolean(void* ctx, orv_bool value)
{
    AbstractObjectBuilder* builder = builderOf(ctx);
    return builder != nullptr && builder->boolean(value != 0);
}

static orv_bool orvObjectBuilderInteger(void* ctx, long long value)
{
    AbstractObjectBuilder* builder = builderOf(ctx);
    return builder != nullptr && builder->integer(value);
}

static orv_bool orvObjectBuilderReal(void* ctx, double value)
{
    AbstractObjectBuilder* builder = builderOf(ctx);
    return builder != nullptr && builder->real(value);
}

static orv_bool orvObjectBuilderString(void* ctx, const char* value, unsigned int size)
{
    AbstractObjectBuilder* builder = builderOf(ctx);
    if (builder == nullptr) {
        return 0;
    }
    const char* text = textOf(*builder, value, size);
    return text != nullptr && builder->string(text, size);
}

static orv_bool orvObjectBuilderBeginObject(void* ctx)
{
    AbstractObjectBuilder* builder = builderOf(ctx);
    return builder != nullptr && builder->beginObject();
}

static orv_bool orvObjectBuilderObjectChild(void* ctx, const char* key, unsigned int size)
{
    AbstractObjectBuilder* builder = builderOf(ctx);
    if (builder == nullptr) {
        return 0;
    }
    const char* text = textOf(*builder, key, size);
    return text != nullptr && builder->objectChild(text, size);
}

static orv_bool orvObjectBuilderEndObject(void* ctx)
{
    AbstractObjectBuilder* builder = builderOf(ctx);
    return builder != nullptr && builder->endObject();
}

static orv_bool orvObjectBuilderBeginArray(void* ctx)
{
    AbstractObjectBuilder* builder = builderOf(ctx);
    return builder != nullptr && builder->beginArray();
}

static orv_bool orvObjectBuilderArrayChild(void* ctx)
{
    AbstractObjectBuilder* builder = builderOf(ctx);
    return builder != nullptr && builder->arrayChild();
}

static orv_bool orvObjectBuilderEndArray(void* ctx)
{
    AbstractObjectBuilder* builder = builderOf(ctx);
    return builder != nullptr && builder->endArray();
}

} // extern "C"

namespace orv {
namespace utils {
namespace details {

void fillObjectBuilderTable(orv_ObjectBuilder& table, AbstractObjectBuilder* builder)
{
    table.ctx = builder;
    table.begin = &orvObjectBuilderBegin;
    table.end = &orvObjectBuilderEnd;
    table.null = &orvObjectBuilderNull;
    table.boolean = &orvObjectBuilderBoolean;
    table.integer = &orvObjectBuilderInteger;
    table.real = &orvObjectBuilderReal;
    table.string = &orvObjectBuilderString;
    table.beginObject = &orvObjectBuilderBeginObject;
    table.objectChild = &orvObjectBuilderObjectChild;
    table.endObject = &orvObjectBuilderEndObject;
    table.beginArray = &orvObjectBuilderBeginArray;
    table.arrayChild = &orvObjectBuilderArrayChild;
    table.endArray = &orvObjectBuilderEndArray;
}

} // namespace details
} // namespace utils
} // namespace orv
