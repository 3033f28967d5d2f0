#include <orv/utils/impl/RandomTextFormat.h>

#include <orv/utils/details/ArrayAllocation.h>
#include <orv/utils/details/Logging.h>

#include "Random.pb.h"

#include <google/protobuf/io/tokenizer.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <google/protobuf/message.h>
#include <google/protobuf/text_format.h>

#include <cstring>

namespace orv {
namespace utils {
namespace impl {
namespace {

// The parser's own collector writes to the process's error stream; the library reports through
// the caller's logger instead.
class SilentErrorCollector : public google::protobuf::io::ErrorCollector {
public:
    void AddError(int, google::protobuf::io::ColumnNumber, const std::string&) override {}
    void AddWarning(int, google::protobuf::io::ColumnNumber, const std::string&) override {}
};

} // namespace

bool printRandomText(const google::protobuf::Message& message, std::string& text)
{
    google::protobuf::io::StringOutputStream stream(&text);
    return google::protobuf::TextFormat::Print(message, &stream);
}

bool parseRandomText(const char* data, unsigned int size, google::protobuf::Message& message)
{
    google::protobuf::io::ArrayInputStream stream(data, static_cast<int>(size));
    SilentErrorCollector errors;
    google::protobuf::TextFormat::Parser parser;
    parser.RecordErrorsTo(&errors);
    return parser.Parse(&stream, &message);
}

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
    if (!printRandomText(message, text)) {
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
