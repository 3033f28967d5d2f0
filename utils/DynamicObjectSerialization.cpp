#include <orv/utils/DynamicObjectSerialization.h>

#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/details/ArrayAllocation.h>
#include <orv/utils/impl/ProtobufDynamicObjectBuilder.h>

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

} // namespace utils
} // namespace orv
