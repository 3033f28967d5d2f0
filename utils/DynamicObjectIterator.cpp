#include <orv/utils/DynamicObjectIterator.h>

#include <orv/utils/AbstractPropertyParser.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/impl/DynamicObjectPropertyChildrenIterator.h>

#include <algorithm>

namespace orv {
namespace utils {

DynamicObjectIterator::DynamicObjectIterator(const DynamicObject& object)
    : DynamicObjectIterator(object, object.getRoot(), invalidIndex)
{
}

DynamicObjectIterator::DynamicObjectIterator(const DynamicObject& object, unsigned int property)
    : DynamicObjectIterator(object, property, invalidIndex)
{
}

DynamicObjectIterator::DynamicObjectIterator(const DynamicObject& object, unsigned int property,
                                             unsigned int maximumDepth)
    : object_(object), maximumDepth_(maximumDepth), currentProperty_(0), currentDepth_(0)
{
    initialize(property);
}

void DynamicObjectIterator::initialize(unsigned int property)
{
    pushChildren(property);
    path_.clear();
    path_.push_back('\0');
    currentProperty_ = property;
}

void DynamicObjectIterator::pushChildren(unsigned int property)
{
    switch (object_.getType(property)) {
    case type::array: {
        // Position 0's begin event ends on top.
        for (unsigned int index = object_.countChildren(property); index > 0; --index) {
            const unsigned int child = object_.getChild(property, index - 1);
            stack_.push_back(Event{arrayChildEnd, child, 0, 0, index - 1});
            stack_.push_back(Event{arrayChildBegin, child, 0, 0, index - 1});
        }
        break;
    }
    case type::object: {
        const std::size_t first = stack_.size();
        impl::DynamicObjectPropertyChildrenIterator children(object_, property);
        for (children.next(); !children.end(); children.next()) {
            const unsigned int offset = static_cast<unsigned int>(keys_.size());
            const unsigned int length = children.getKeyLength();
            keys_.insert(keys_.end(), children.getKey(), children.getKey() + length);
            stack_.push_back(Event{objectChildBegin, children.getProperty(), offset, length, 0});
            stack_.push_back(Event{objectChildEnd, children.getProperty(), offset, length, 0});
        }
        // The first child's begin event ends on top.
        std::reverse(stack_.begin() + static_cast<std::ptrdiff_t>(first), stack_.end());
        break;
    }
    default:
        break;
    }
}

void DynamicObjectIterator::cutPath(char separator)
{
    const Vector<char>::reverse_iterator found = std::find(path_.rbegin(), path_.rend(), separator);
    path_.erase(found == path_.rend() ? path_.begin() : found.base() - 1, path_.end());
    path_.push_back('\0');
}

DynamicObjectIterator& DynamicObjectIterator::next()
{
    // End events only tidy up: the loop goes on to the next begin event.
    while (!stack_.empty()) {
        const Event event = stack_.back();
        stack_.pop_back();
        switch (event.kind) {
        case objectChildBegin:
            if (currentDepth_ < maximumDepth_) {
                pushChildren(event.property);
            }
            path_.pop_back();
            if (!path_.empty()) {
                path_.push_back('.');
            }
            path_.insert(path_.end(), keys_.begin() + event.keyOffset,
                         keys_.begin() + event.keyOffset + event.keyLength);
            path_.push_back('\0');
            ++currentDepth_;
            currentProperty_ = event.property;
            return *this;
        case objectChildEnd:
            cutPath('.');
            std::fill(keys_.begin() + event.keyOffset, keys_.begin() + event.keyOffset + event.keyLength, '\0');
            while (!keys_.empty() && keys_.back() == '\0') {
                keys_.pop_back();
            }
            --currentDepth_;
            break;
        case arrayChildBegin: {
            ORV_CHECK(DynamicObject::maximumArraySize > event.arrayChildIndex,
                      "DynamicObject::maximumArraySize > event.arrayChildIndex");
            if (currentDepth_ < maximumDepth_) {
                pushChildren(event.property);
            }
            path_.pop_back();
            char key[16];
            const unsigned int length = formatArrayKey(event.arrayChildIndex, key);
            path_.insert(path_.end(), key, key + length);
            path_.push_back('\0');
            ++currentDepth_;
            currentProperty_ = event.property;
            return *this;
        }
        case arrayChildEnd:
            cutPath('[');
            --currentDepth_;
            break;
        default:
            ORV_FAIL("Unknown event in the stack");
            cutPath('[');
            break;
        }
    }
    return *this;
}

} // namespace utils
} // namespace orv
