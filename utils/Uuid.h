#ifndef ORV_UTILS_UUID_H
#define ORV_UTILS_UUID_H

#include <orv/utils/c/Types.h>

#include <iosfwd>

namespace orv {
namespace utils {

class AbstractLogger;

/// A 128-bit identifier parsed from its 36-character text. The library never makes new ones.
class ORV_UTILS_API Uuid {
public:
    Uuid();
    explicit Uuid(const orv_Uuid& data);

    /// Parses `text`; malformed text is a broken contract here (see `set` for the logged form).
    static Uuid create(const char* text);
    static unsigned int getStringLength();

    /// On failure the value becomes null and the result is false.
    bool set(const char* text, AbstractLogger* logger);
    void clear();
    bool isValid() const;

    /// Writes the lower-case text form and a terminating zero into at least 37 characters.
    void computeString(char* buffer) const;

    const orv_Uuid& getData() const { return data_; }

    bool operator==(const Uuid& other) const;
    bool operator!=(const Uuid& other) const;
    /// Byte order in memory, which is not the order of the texts.
    bool operator<(const Uuid& other) const;

private:
    orv_Uuid data_;
};

static_assert(sizeof(orv_Uuid) == 16, "a Uuid is 16 bytes");

ORV_UTILS_API std::ostream& operator<<(std::ostream& stream, const Uuid& uuid);

/// The library's own identifier.
ORV_UTILS_API extern const Uuid uniqueId;

} // namespace utils
} // namespace orv

#endif
