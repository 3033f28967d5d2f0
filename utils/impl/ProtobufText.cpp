#include <orv/utils/impl/ProtobufText.h>

#include <google/protobuf/io/tokenizer.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <google/protobuf/message.h>
#include <google/protobuf/text_format.h>

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

bool printProtobufText(const google::protobuf::Message& message, std::string& text)
{
    google::protobuf::io::StringOutputStream stream(&text);
    return google::protobuf::TextFormat::Print(message, &stream);
}

bool parseProtobufText(const char* data, unsigned int size, google::protobuf::Message& message)
{
    google::protobuf::io::ArrayInputStream stream(data, static_cast<int>(size));
    SilentErrorCollector errors;
    google::protobuf::TextFormat::Parser parser;
    parser.RecordErrorsTo(&errors);
    return parser.Parse(&stream, &message);
}

} // namespace impl
} // namespace utils
} // namespace orv
