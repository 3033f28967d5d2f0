#ifndef ORV_UTILS_IMPL_PROTOBUFTEXT_H
#define ORV_UTILS_IMPL_PROTOBUFTEXT_H

// The trip between a message and the Protocol Buffers text form, shared by every stored text form
// of the library.

#include <string>

namespace google {
namespace protobuf {
class Message;
}
} // namespace google

namespace orv {
namespace utils {
namespace impl {

/// Prints `message` in the text format. False when printing fails.
bool printProtobufText(const google::protobuf::Message& message, std::string& text);

/// Parses `size` bytes of text into `message`. Parse errors are not printed anywhere: the caller
/// reports the failure to its logger.
bool parseProtobufText(const char* data, unsigned int size, google::protobuf::Message& message);

} // namespace impl
} // namespace utils
} // namespace orv

#endif
