#include <orv/utils/impl/RandomTextFormat.h>

#include <orv/utils/details/ArrayAllocation.h>
#include <orv/utils/details/Logging.h>
#include <orv/utils/impl/ProtobufText.h>

#include "Random.pb.h"

#include <google/protobuf/message.h>

#include <cstring>

namespace orv {
namespace utils {
namespace impl {
char* copyRandomText(const std::string& text, unsigned int& size)
{
    const unsigned int length = static_cast<unsigned int>(text.size());
    char* buffer = static_cast<char*>(details::allocateArray(length, __FILE__, __LINE__));
    if (buffer == nullptr) {
        return nullptr;
    }
    std::memcpy(buffer, text.data(), length);
    size = length;
    return buffer;
}

void setRandomFormatVersion(proto::RandomVersion& version)
{
    version.set_major(randomFormatMajor);
    version.set_minor(randomFormatMinor);
    version.set_patch(randomFormatPatch);
}

bool checkRandomFormatVersion(const proto::RandomVersion& version, const char* subject, AbstractLogger* logger)
{
    if (version.major() == randomFormatMajor && version.minor() == randomFormatMinor &&
        version.patch() == randomFormatPatch) {
        return true;
    }
    ORV_LOG_ERROR(logger, error::invalidData,
                  "Error while deserializing " << subject << ": The file originates from a version, v" << version.major()
                                               << "." << version.minor() << "." << version.patch()
                                               << ", that is not compatible with the current version, v"
                                               << randomFormatMajor << "." << randomFormatMinor << "."
                                               << randomFormatPatch << ".");
    return false;
}

char* serializeRandomMessage(const google::protobuf::Message& message, unsigned int& size, const char* what,
                             AbstractLogger* logger)
{
    std::string text;
    if (!printProtobufText(message, text)) {
        // Both forms name the manager here: the text is part of the interface.
        ORV_LOG_ERROR(logger, error::ioProblem, "Unable to serialize the given random manager: " << message.DebugString());
        return nullptr;
    }
    char* buffer = copyRandomText(text, size);
    if (buffer == nullptr) {
        ORV_LOG_ERROR(logger, error::badAllocation,
                      "Unable to allocate " << text.size() << " bytes for the serialized " << what << ".");
    }
    return buffer;
}

} // namespace impl
} // namespace utils
} // namespace orv
