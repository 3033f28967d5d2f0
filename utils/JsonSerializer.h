#ifndef ORV_UTILS_JSONSERIALIZER_H
#define ORV_UTILS_JSONSERIALIZER_H

#include <orv/utils/AbstractObjectBuilder.h>
#include <orv/utils/ScopedPtr.h>

namespace orv {
namespace utils {

class AbstractDataInputOutput;
class DynamicObject;

namespace impl {
struct JsonSerializerContext;
}

/// Writes the events as JSON text straight to a stream, holding no document in memory. The root
/// of a document is always an object or an array. Integers are written as "%lld" gives them,
/// reals as "%.20g" does with ".0" added when the text would read back as an integer, in the
/// "C" numeric locale whatever the process's locale; NaN and the infinities are refused.
/// After `end` the serializer takes another document.
class ORV_UTILS_API JsonSerializer : public AbstractObjectBuilder {
public:
    /// `output` is not owned and must outlive the serializer. `beautify` indents by four blanks.
    JsonSerializer(AbstractDataInputOutput& output, bool beautify);
    ~JsonSerializer() override;

    /// Also the logger of the stream writes.
    void setLogger(AbstractLogger* logger) override;
    bool begin() override;
    /// Checks nothing about completeness: what is left open stays unterminated in the output.
    bool end() override;
    bool null() override;
    bool boolean(bool value) override;
    bool integer(long long value) override;
    bool real(double value) override;
    using AbstractObjectBuilder::string;
    bool string(const char* value, unsigned int size) override;
    bool beginObject() override;
    using AbstractObjectBuilder::objectChild;
    bool objectChild(const char* key, unsigned int size) override;
    bool endObject() override;
    bool beginArray() override;
    /// The separators are the generator's work: nothing to do.
    bool arrayChild() override;
    bool endArray() override;

    JsonSerializer(const JsonSerializer&) = delete;
    JsonSerializer& operator=(const JsonSerializer&) = delete;

private:
    /// False, with the "Expected object or array" report, while no object or array has opened.
    bool checkRootStarted();
    /// The open generator, or null after reporting that no document is open.
    void* openGenerator();

    ScopedPtr<impl::JsonSerializerContext> context_;
    bool rootStarted_;
    bool beautify_;
};

/// Writes `object` as compact JSON to `output` through a JsonSerializer; false when the walk or a
/// write fails (what was written stays written).
ORV_UTILS_API bool serializeDynamicObjectToJson(const DynamicObject& object, AbstractDataInputOutput& output,
                                                AbstractLogger* logger);

} // namespace utils
} // namespace orv

#endif
