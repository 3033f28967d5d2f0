#ifndef ORV_UTILS_IMPL_PROTOBUFDYNAMICOBJECTBUILDER_H
#define ORV_UTILS_IMPL_PROTOBUFDYNAMICOBJECTBUILDER_H

#include <orv/utils/AbstractObjectBuilder.h>
#include <orv/utils/Common.h>

namespace orv {
namespace utils {

class AbstractDataInputOutput;

namespace proto {
class DynamicObject;
class Property;
} // namespace proto

namespace impl {

/// Collects a document as a stored dynamic object message and writes it in the text format at
/// `end`; nothing reaches the output before. A null is stored as an empty object, the stored
/// form having no null. After `end`, succeeded or failed in writing, the builder takes another
/// document. Exported for the test suite, which drives it event by event.
class ORV_UTILS_API ProtobufDynamicObjectBuilder : public AbstractObjectBuilder {
public:
    /// `output` is not owned and must outlive the builder.
    explicit ProtobufDynamicObjectBuilder(AbstractDataInputOutput& output);
    /// Destroys an unfinished message.
    ~ProtobufDynamicObjectBuilder() override;

    bool begin() override;
    /// Writes the message with the format's version, that of this writer.
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
    bool arrayChild() override;
    bool endArray() override;

    ProtobufDynamicObjectBuilder(const ProtobufDynamicObjectBuilder&) = delete;
    ProtobufDynamicObjectBuilder& operator=(const ProtobufDynamicObjectBuilder&) = delete;

private:
    /// The property that a value event fills: the top of the stack, or the message's root for
    /// the first value of a document. Null, reported, while no build is open.
    proto::Property* currentProperty();
    /// The top of the stack for a child event, or null while there is none.
    proto::Property* topProperty();

    AbstractDataInputOutput& output_;
    proto::DynamicObject* message_;
    /// The properties being filled, innermost last; they belong to the message.
    Vector<proto::Property*> stack_;
};

} // namespace impl
} // namespace utils
} // namespace orv

#endif
