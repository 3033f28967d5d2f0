#ifndef ORV_UTILS_IMPL_DYNAMICOBJECTHELPERS_H
#define ORV_UTILS_IMPL_DYNAMICOBJECTHELPERS_H

#include <orv/utils/AbstractDynamicObjectListener.h>
#include <orv/utils/DynamicObject.h>

#include <cstring>
#include <ostream>

namespace orv {
namespace utils {

template <typename Call>
void DynamicObject::notify(Call call) const
{
    // Most objects have no listener: the test stays inline in every operation, and the walk over
    // the listeners with its checks does not.
    if (!listeners_.empty()) {
        notifyListeners(call);
    }
}

template <typename Call>
void DynamicObject::notifyListeners(Call call) const
{
    for (std::size_t i = 0; i < listeners_.size(); ++i) {
        ORV_CHECK(listeners_[i] != nullptr, "listeners_[i]");
        // The hook returned: there is no object to call, so this entry is passed over.
        if (listeners_[i] != nullptr) {
            call(*listeners_[i]);
        }
    }
}

namespace impl {

/// False, after the failed assertion, for a null key: a missing key names nothing, so the caller
/// returns its default or does nothing when the hook returns.
[[gnu::noinline, gnu::cold]] inline void reportNullKey()
{
    ORV_FAIL("Null string given as a key");
}

inline bool checkKey(const char* key)
{
    // The report is out of line, so that the test stays small in every operation that takes a key.
    if (__builtin_expect(key == nullptr, 0)) {
        reportNullKey();
        return false;
    }
    return true;
}

inline unsigned int measure(const char* text)
{
    return static_cast<unsigned int>(std::strlen(text));
}

/// A counted key in an assertion text.
struct KeyText {
    const char* text;
    unsigned int length;
};

/// Wraps a counted key for stream output (usable inside the check macros, unlike a braced list).
inline KeyText keyText(const char* text, unsigned int length)
{
    return KeyText{text, length};
}

inline std::ostream& operator<<(std::ostream& stream, const KeyText& key)
{
    return stream.write(key.text, key.length);
}

/// A key with a `.` put in front, on the stack for the usual short keys.
class DottedKey {
public:
    DottedKey(const char* key, unsigned int length) : length_(length + 1), heap_()
    {
        char* text = stack_;
        if (length_ > sizeof(stack_)) {
            heap_.resize(length_);
            text = &heap_[0];
        }
        text[0] = '.';
        std::memcpy(text + 1, key, length);
        text_ = text;
    }

    const char* text() const { return text_; }
    unsigned int length() const { return length_; }

    DottedKey(const DottedKey&) = delete;
    DottedKey& operator=(const DottedKey&) = delete;

private:
    unsigned int length_;
    char stack_[128];
    String heap_;
    const char* text_;
};

} // namespace impl
} // namespace utils
} // namespace orv

#endif
