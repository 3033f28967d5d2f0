#include <orv/utils/impl/RandomTextFormat.h>

#include <orv/utils/details/ArrayAllocation.h>

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

} // namespace impl
} // namespace utils
} // namespace orv
