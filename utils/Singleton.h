#ifndef ORV_UTILS_SINGLETON_H
#define ORV_UTILS_SINGLETON_H

#include <orv/utils/Assertion.h>

namespace orv {
namespace utils {

/// One static pointer to T, null until set.
template <typename T>
class Singleton {
public:
    static bool isSet() { return instance_ != nullptr; }

    /// With no instance the hook is called. A returning hook gets a zero-filled stand-in instead of
    /// a null reference, so that the failure shows at the caller's first use of a member.
    static T& instance()
    {
        ORV_CHECK(instance_ != nullptr, "accessing uninitialized singleton");
        if (instance_ == nullptr) {
            alignas(T) static unsigned char standIn[sizeof(T)] = {};
            return *reinterpret_cast<T*>(standIn);
        }
        return *instance_;
    }

protected:
    /// Overwriting is a broken contract; with a returning hook the old instance is replaced and leaks.
    static void setInstance(T* instance)
    {
        ORV_CHECK(instance_ == nullptr, "trying to overwrite singleton instance");
        instance_ = instance;
    }

    static T* getInstancePointer() { return instance_; }
    static void clearInstance() { instance_ = nullptr; }

private:
    static T* instance_;
};

template <typename T>
T* Singleton<T>::instance_ = nullptr;

} // namespace utils
} // namespace orv

#endif
