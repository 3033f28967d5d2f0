#ifndef ORV_UTILS_IMPL_RANDOMTEXTFORMAT_H
#define ORV_UTILS_IMPL_RANDOMTEXTFORMAT_H

// What the stored forms of random streams and of their manager share: the format's version, and
// the trip from a message to a text buffer.

#include <string>

namespace google {
namespace protobuf {
class Message;
}
} // namespace google

namespace orv {
namespace utils {

class AbstractLogger;

namespace proto {
class RandomVersion;
}

namespace impl {

constexpr unsigned int randomFormatMajor = 0;
constexpr unsigned int randomFormatMinor = 4;
constexpr unsigned int randomFormatPatch = 0;

/// Copies `text` into a buffer of the array allocation form and sets `size`. Null, with `size`
/// untouched, when memory runs out.
char* copyRandomText(const std::string& text, unsigned int& size);

/// Stamps the format's current version into `version`.
void setRandomFormatVersion(proto::RandomVersion& version);

/// True when `version` is the current one; otherwise logs the refusal for `subject` ("random" or
/// "random manager").
bool checkRandomFormatVersion(const proto::RandomVersion& version, const char* subject, AbstractLogger* logger);

/// Prints `message` into a new buffer of the array allocation form. On failure logs and gives null;
/// `what` names the serialized thing in the allocation failure ("random stream", "random manager").
char* serializeRandomMessage(const google::protobuf::Message& message, unsigned int& size, const char* what,
                             AbstractLogger* logger);

} // namespace impl
} // namespace utils
} // namespace orv

#endif
