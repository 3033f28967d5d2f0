#include <orv/utils/DynamicObjectSerialization.h>

#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/DynamicObjectBuilder.h>
#include <orv/utils/details/ArrayAllocation.h>
#include <orv/utils/impl/ProtobufDynamicObjectBuilder.h>
#include <orv/utils/impl/ProtobufDynamicObjectReader.h>

#include <cstring>

namespace orv {
namespace utils {

bool serializeDynamicObjectToProtobuf(const DynamicObject& object, AbstractDataInputOutput& output,
                                      AbstractLogger* logger)
{
    impl::ProtobufDynamicObjectBuilder builder(output);
    builder.setLogger(logger);
    return object.visit(builder);
}

char* serializeDynamicObject(unsigned int& size, const DynamicObject& object, AbstractLogger* logger)
{
    DynamicBufferInputOutput buffer("memory buffer io");
    if (!serializeDynamicObjectToProtobuf(object, buffer, logger)) {
        return nullptr;
    }
    const unsigned int length = buffer.size();
    char* text = static_cast<char*>(details::allocateArray(length, __FILE__, __LINE__));
    if (text == nullptr) {
        return nullptr;
    }
    std::memcpy(text, buffer.data(), length);
    size = length;
    return text;
}

bool deserializeDynamicObject(const char* data, unsigned int size, DynamicObject& object, AbstractLogger* logger)
{
    DynamicObjectBuilder builder(object, 0);
    builder.setLogger(logger);
    return impl::readProtobufDynamicObject(data, size, builder);
}

} // namespace utils
} // namespace orv
