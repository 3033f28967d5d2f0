#ifndef ORV_UTILS_JSONDESERIALIZER_H
#define ORV_UTILS_JSONDESERIALIZER_H

#include <orv/utils/Export.h>

namespace orv {
namespace utils {

class AbstractDataInputOutput;
class AbstractLogger;
class AbstractObjectBuilder;
class DynamicObject;

/// Reads one JSON document from `input` in chunks of 256 bytes and sends it to `builder` as
/// events, never holding the whole text. Reports go to the builder's logger.
///
/// With `stopAfterValue` false the input must hold exactly one value and white space around it.
/// With it true the input is looked at through `peekRead`, anything may follow the value, and
/// only the bytes of the value are consumed: the stream then stands on the first byte behind it.
///
/// An integer is a number with neither fraction nor exponent and must fit a long long; any other
/// number is a real. Both are read the same whatever the process's numeric locale. An empty input
/// gives `begin` and `end` with no value. On failure `end` isn't called and what the builder
/// built so far stays built.
ORV_UTILS_API bool deserializeJson(AbstractObjectBuilder& builder, AbstractDataInputOutput& input,
                                   bool stopAfterValue);

/// Reads one JSON document into the root of `object`, as `deserializeJson` does with nothing
/// allowed after the value. What was read before a failure stays in `object`.
ORV_UTILS_API bool deserializeDynamicObjectFromJson(DynamicObject& object, AbstractDataInputOutput& input,
                                                    AbstractLogger* logger);

} // namespace utils
} // namespace orv

#endif
