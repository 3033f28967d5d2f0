#ifndef ORV_UTILS_DETAILS_OBJECTBUILDERTABLE_H
#define ORV_UTILS_DETAILS_OBJECTBUILDERTABLE_H

#include <orv/utils/c/ObjectBuilder.h>

namespace orv {
namespace utils {

class AbstractObjectBuilder;

namespace details {

/// Points `table` at `builder` and fills it with the entries that forward to its events.
void fillObjectBuilderTable(orv_ObjectBuilder& table, AbstractObjectBuilder* builder);

} // namespace details
} // namespace utils
} // namespace orv

#endif
