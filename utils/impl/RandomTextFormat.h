#ifndef ORV_UTILS_IMPL_RANDOMTEXTFORMAT_H
#define ORV_UTILS_IMPL_RANDOMTEXTFORMAT_H

// What the stored forms of random streams and of their manager share: the format's version, and
// the trip from a message to a text buffer and back.

#include <string>

namespace google {
namespace protobuf {
class Message;
}
} // namespace google

namespace orv {
namespace utils {
namespace impl {

constexpr unsigned int randomFormatMajor = 0;
constexpr unsigned int randomFormatMinor = 4;
constexpr unsigned int randomFormatPatch = 0;

/// Prints `message` in the text format. False when printing fails.
bool printRandomText(const google::protobuf::Message& message, std::string& text);

/// Parses `size` bytes of text into `message`. Parse errors are not printed anywhere: the caller
/// reports the failure to its logger.
bool parseRandomText(const char* data, unsigned int size, google::protobuf::Message& message);

/// Copies `text` into a buffer of the array allocation form and sets `size`. Null, with `size`
/// untouched, when memory runs out.
char* copyRandomText(const std::string& text, unsigned int& size);

} // namespace impl
} // namespace utils
} // namespace orv

#endif
