#ifndef ORV_UTILS_ABSTRACTOBJECTBUILDER_H
#define ORV_UTILS_ABSTRACTOBJECTBUILDER_H

#include <orv/utils/c/ObjectBuilder.h>

namespace orv {
namespace utils {

class AbstractLogger;

/// The consumer side of every structured form. A producer sends a document as events: `begin`,
/// one value, `end`. A value is a scalar, an object (`beginObject`, pairs of `objectChild` and
/// value, `endObject`) or an array (`beginArray`, pairs of `arrayChild` and value, `endArray`).
/// A false answer stops the producer at once: no closing event and no `end` follow.
///
/// Every event refuses by default with a logged "not supported" text, so a consumer overrides
/// only what its form holds. Texts are valid only during the call; the two-argument forms are not
/// zero-terminated and may hold any bytes.
class ORV_UTILS_API AbstractObjectBuilder {
public:
    AbstractObjectBuilder();
    /// A copy takes the logger and the C table as they stand: the copy's table still addresses the
    /// builder it was copied from.
    AbstractObjectBuilder(const AbstractObjectBuilder& other);
    AbstractObjectBuilder& operator=(const AbstractObjectBuilder& other);
    virtual ~AbstractObjectBuilder() = 0;

    /// Where the events report; not owned, may be null.
    virtual void setLogger(AbstractLogger* logger);
    virtual AbstractLogger* getLogger();

    virtual bool begin();
    virtual bool end();
    virtual bool null();
    virtual bool boolean(bool value);
    virtual bool integer(long long value);
    virtual bool real(double value);
    /// Measures the zero-terminated text and sends the two-argument form.
    virtual bool string(const char* value);
    virtual bool string(const char* value, unsigned int size);
    virtual bool beginObject();
    /// Measures the zero-terminated key and sends the two-argument form.
    virtual bool objectChild(const char* key);
    virtual bool objectChild(const char* key, unsigned int size);
    virtual bool endObject();
    virtual bool beginArray();
    virtual bool arrayChild();
    virtual bool endArray();

    /// The C table of this builder.
    orv_ObjectBuilder& getWrapper() { return wrapper_; }

protected:
    AbstractLogger* logger_;
    orv_ObjectBuilder wrapper_;
};

} // namespace utils
} // namespace orv

#endif
