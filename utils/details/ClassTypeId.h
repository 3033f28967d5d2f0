#ifndef ORV_UTILS_DETAILS_CLASSTYPEID_H
#define ORV_UTILS_DETAILS_CLASSTYPEID_H

#include <orv/utils/Common.h>

namespace orv {
namespace utils {

class DynamicObject;
class Uuid;
template <typename T> class Vector2;
template <typename T> class Vector3;
template <typename T> class Quaternion;

namespace details {

/// The registered id of a plain C++ type. Only the base types have one, each from its own
/// literal: an instantiation of a template is not a base type unless it is listed below.
/// Reflected classes carry their own static getClassTypeId instead.
template <typename T> const Uuid& getClassTypeId() = delete;

template <> ORV_UTILS_API const Uuid& getClassTypeId<int>();
template <> ORV_UTILS_API const Uuid& getClassTypeId<long long>();
template <> ORV_UTILS_API const Uuid& getClassTypeId<double>();
template <> ORV_UTILS_API const Uuid& getClassTypeId<float>();
template <> ORV_UTILS_API const Uuid& getClassTypeId<bool>();
template <> ORV_UTILS_API const Uuid& getClassTypeId<String>();
template <> ORV_UTILS_API const Uuid& getClassTypeId<std::string>();
template <> ORV_UTILS_API const Uuid& getClassTypeId<const char*>();
template <> ORV_UTILS_API const Uuid& getClassTypeId<Vector3<double>>();
template <> ORV_UTILS_API const Uuid& getClassTypeId<Vector2<double>>();
template <> ORV_UTILS_API const Uuid& getClassTypeId<Quaternion<double>>();
template <> ORV_UTILS_API const Uuid& getClassTypeId<DynamicObject>();

/// The id of a value's static type, the same as getClassTypeId.
template <typename T> const Uuid& getObjectTypeId(const T&)
{
    return getClassTypeId<T>();
}

} // namespace details
} // namespace utils
} // namespace orv

#endif
