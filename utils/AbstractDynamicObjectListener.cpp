#include <orv/utils/AbstractDynamicObjectListener.h>

namespace orv {
namespace utils {

void AbstractDynamicObjectListener::beforeAddProperty() {}
void AbstractDynamicObjectListener::afterAddProperty(const char*, unsigned int, unsigned int) {}
void AbstractDynamicObjectListener::beforeSetInt() {}
void AbstractDynamicObjectListener::afterSetInt(unsigned int, long long) {}
void AbstractDynamicObjectListener::beforeSetReal() {}
void AbstractDynamicObjectListener::afterSetReal(unsigned int, double) {}
void AbstractDynamicObjectListener::beforeSetString() {}
void AbstractDynamicObjectListener::afterSetString(unsigned int, const String&) {}
void AbstractDynamicObjectListener::beforeSetBool() {}
void AbstractDynamicObjectListener::afterSetBool(unsigned int, bool) {}
void AbstractDynamicObjectListener::beforeGetProperty() {}
void AbstractDynamicObjectListener::afterGetProperty(const char*, unsigned int) {}
void AbstractDynamicObjectListener::beforeRetrieve() {}
void AbstractDynamicObjectListener::afterRetrieve(unsigned int) {}
void AbstractDynamicObjectListener::reserved14() {}
void AbstractDynamicObjectListener::reserved15() {}
void AbstractDynamicObjectListener::reserved16() {}
void AbstractDynamicObjectListener::reserved17() {}
void AbstractDynamicObjectListener::beforePut() {}
void AbstractDynamicObjectListener::afterPut(unsigned int) {}
void AbstractDynamicObjectListener::reserved20() {}
void AbstractDynamicObjectListener::reserved21() {}
void AbstractDynamicObjectListener::reserved22() {}
void AbstractDynamicObjectListener::reserved23() {}
void AbstractDynamicObjectListener::beforeResetProperty() {}
void AbstractDynamicObjectListener::afterResetProperty(unsigned int) {}
void AbstractDynamicObjectListener::beforeCopy() {}
void AbstractDynamicObjectListener::afterCopy() {}

AbstractDynamicObjectListener::~AbstractDynamicObjectListener() = default;

} // namespace utils
} // namespace orv
