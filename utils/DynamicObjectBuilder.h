#ifndef ORV_UTILS_DYNAMICOBJECTBUILDER_H
#define ORV_UTILS_DYNAMICOBJECTBUILDER_H

#include <orv/utils/AbstractObjectBuilder.h>
#include <orv/utils/Common.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/Type.h>

namespace orv {
namespace utils {

/// The consumer that fills a DynamicObject from builder events, starting at one property.
///
/// The builder keeps one entry per property under construction: its handle and the type that
/// the events have given it so far (null until the first event says). A builder on a property
/// that already holds something continues it: an object takes more children, an array grows at
/// its end, and a scalar refuses every other type. After the starting property's value is
/// complete every event answers "No current property.". Nothing is rolled back on a refusal:
/// the object keeps what was built.
class ORV_UTILS_API DynamicObjectBuilder : public AbstractObjectBuilder {
public:
    /// Fills `property` of `object` (0 for its root); the object must outlive the builder.
    DynamicObjectBuilder(DynamicObject& object, unsigned int property);

    // Scalars answer true whatever happened: a refusal shows only in the log and, for a type
    // conflict, in the failed assertion "Invalid call sequence".
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
    /// Appends a null element, which the next value fills.
    bool arrayChild() override;
    bool endArray() override;

private:
    bool beginProperty(type::Type type);
    bool endProperty(type::Type type);
    /// Starts a container on the current property; a value left there by an earlier duplicate key
    /// gives way to it.
    bool beginContainer(type::Type type);
    /// The current property for a scalar store, or 0 when there is none.
    unsigned int currentForScalar(type::Type type);
    /// Where the last child of the container at the top of the stacks was added.
    DynamicObject::InsertionTrail& currentTrail()
    {
        const std::size_t depth = properties_.size();
        if (trails_.size() < depth) {
            growTrails(depth);
        }
        return trails_[depth - 1];
    }
    void growTrails(std::size_t depth);
    /// Takes a child just added to the container at the top as the pending one, and remembers its
    /// value node if the insertion made it.
    void setPendingChild(unsigned int child, const DynamicObject::InsertionTrail& trail);
    /// Pushes the pending child, if any, on the stacks: every event but a scalar that takes its
    /// fresh value works on the stacks alone.
    void pushPendingChild()
    {
        if (pendingChild_ != 0) {
            properties_.push_back(pendingChild_);
            types_.push_back(type::null);
            pendingChild_ = 0;
            freshValue_ = nullptr;
        }
    }
    /// The value node of the pending child when this builder has just made it and it is still
    /// null, nothing listens to the object and no node was released since: a scalar is then stored
    /// there directly, which is all that pushing the child, the store and the pop would come to.
    /// Null otherwise, with the pending child pushed, and the event takes the ordinary way.
    DynamicObject::Node* takeFreshValue()
    {
        DynamicObject::Node* value = freshValue_;
        if (value == nullptr || pendingChild_ == 0 || !object_.listeners_.empty()
            || object_.shapeStamp_ != freshStamp_) {
            pushPendingChild();
            return nullptr;
        }
        pendingChild_ = 0;
        freshValue_ = nullptr;
        return value;
    }

    Vector<unsigned int> properties_;
    Vector<type::Type> types_;
    DynamicObject& object_;
    /// One per depth of the stacks: children come in document order, and the next key of a
    /// container mostly continues from where the last one was put.
    Vector<DynamicObject::InsertionTrail> trails_;
    /// A child announced and not yet on the stacks: most children get one scalar, which needs no
    /// push and pop. 0 when there is none.
    unsigned int pendingChild_;
    DynamicObject::Node* freshValue_;
    unsigned long long freshStamp_;
};

/// Sends `object` to `builder` as one document from its root; true only if every event was accepted.
ORV_UTILS_API bool serializeDynamicObject(const DynamicObject& object, AbstractObjectBuilder& builder);

} // namespace utils
} // namespace orv

#endif
