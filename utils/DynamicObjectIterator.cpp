#include <orv/utils/DynamicObjectIterator.h>

#include <orv/utils/AbstractPropertyParser.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/impl/DynamicObjectPropertyChildrenIterator.h>

#include <algorithm>
#include <cstring>

namespace orv {
namespace utils {

namespace {

/// The iterator's failed assertions, out of the way of `next`.
__attribute__((noinline, cold)) void reportFailure(const char* text)
{
    ORV_FAIL(text);
}

} // namespace

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
    : object_(object)
    , maximumDepth_(maximumDepth)
    , currentProperty_(0)
    , currentDepth_(0)
    , walkDepth_(0)
    , walkKeyLength_(0)
    , walkStart_(0)
    , walkStartValue_(0)
{
    initialize(property);
}

void DynamicObjectIterator::initialize(unsigned int property)
{
    if (maximumDepth_ == 0 && object_.getType(property) == type::object) {
        // The walk goes to the first child now, so that `end` tells at once whether there is one;
        // the first `next` only makes it current.
        walkStart_ = property;
        walkStartValue_ = impl::DynamicObjectPropertyChildrenIterator::findValueIndex(object_, property);
        unsigned int child = property;
        step(child);
    } else {
        pushChildren(property);
    }
    path_.clear();
    path_.push_back('\0');
    currentProperty_ = property;
}

namespace {

using Walk = impl::DynamicObjectPropertyChildrenIterator;

} // namespace

inline void DynamicObjectIterator::step(unsigned int& child)
{
    Walk::Stacks stacks{walk_.data(), walkLinks_.data(), keys_.data(), walkDepth_,
                        static_cast<unsigned int>(walk_.size()), walkKeyLength_, static_cast<unsigned int>(keys_.size())};
    // The Vectors' own sizes are only the room: the counts in use are kept beside them.
    Walk::VectorGrowth storage{walk_, walkLinks_, keys_};
    Walk::step(Walk::Nodes(object_), Walk::Start{walkStart_, walkStartValue_, 0, 0}, child, stacks, storage);
    walkDepth_ = stacks.depth;
    walkKeyLength_ = stacks.keyLength;
}

void DynamicObjectIterator::pushChildren(unsigned int property)
{
    switch (object_.getType(property)) {
    case type::array: {
        const unsigned int count = object_.countChildren(property);
        if (!object_.checkNesting(currentDepth_, count)) {
            break;
        }
        // Position 0's begin event ends on top.
        for (unsigned int index = count; index > 0; --index) {
            const unsigned int child = object_.getChild(property, index - 1);
            stack_.push_back(Event{arrayChildEnd, child, 0, 0, index - 1});
            stack_.push_back(Event{arrayChildBegin, child, 0, 0, index - 1});
        }
        break;
    }
    case type::object: {
        if (!object_.checkNesting(currentDepth_, 0)) {
            break;
        }
        const std::size_t first = stack_.size();
        impl::DynamicObjectPropertyChildrenIterator children(object_, property);
        std::size_t count = 0;
        for (children.next(); !children.end() && object_.checkNesting(count++, 0); children.next()) {
            const unsigned int offset = static_cast<unsigned int>(keys_.size());
            const unsigned int length = children.getKeyLength();
            // With the terminator that follows the key in the walk: the store then holds each
            // key as a text of its own.
            keys_.resize(offset + length + 1);
            std::memcpy(keys_.data() + offset, children.getKey(), length + 1);
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

const char* DynamicObjectIterator::getKey() const
{
    return isWalkingChildren() ? Walk::keyOf(keys_.data(), walkKeyLength_) : path_.data();
}

unsigned int DynamicObjectIterator::getKeyLength() const
{
    return isWalkingChildren() ? Walk::keyLengthOf(keys_.data(), walkKeyLength_)
                               : static_cast<unsigned int>(path_.size()) - 1;
}

void DynamicObjectIterator::cutPath(char separator)
{
    std::size_t size = path_.size() - 1;
    while (size > 0 && path_[size - 1] != separator) {
        --size;
    }
    // Without the separator itself, which the terminator replaces; nothing when there was none.
    path_.resize(size != 0 ? size : 1);
    path_.back() = '\0';
}

DynamicObjectIterator& DynamicObjectIterator::next()
{
    if (walkDepth_ != 0) {
        // A walk of direct children: its begin and end events are the steps of the walk.
        if (currentDepth_ == 0) {
            currentDepth_ = 1;
        } else {
            unsigned int child = currentProperty_;
            step(child);
            if (walkDepth_ == 0) {
                currentDepth_ = 0;
                return *this;
            }
        }
        // The child is the end-of-key node just below its value node; only broken nodes give a
        // value node with none below it, and then no child (the next step ends the walk).
        currentProperty_ = Walk::childOf(walk_.data(), walkDepth_, 0);
        return *this;
    }
    // End events only tidy up: the loop goes on to the next begin event.
    while (!stack_.empty()) {
        const Event event = stack_.back();
        stack_.pop_back();
        switch (event.kind) {
        case objectChildBegin:
            if (currentDepth_ < maximumDepth_) {
                pushChildren(event.property);
            }
            {
                std::size_t size = path_.size() - 1;
                if (size != 0) {
                    path_[size++] = '.';
                }
                path_.resize(size + event.keyLength + 1);
                std::memcpy(path_.data() + size, keys_.data() + event.keyOffset, event.keyLength + 1);
            }
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
            if (event.arrayChildIndex >= DynamicObject::maximumArraySize) {
                reportFailure("DynamicObject::maximumArraySize > event.arrayChildIndex");
            }
            if (currentDepth_ < maximumDepth_) {
                pushChildren(event.property);
            }
            char key[16];
            const unsigned int length = formatArrayKey(event.arrayChildIndex, key);
            const std::size_t size = path_.size() - 1;
            path_.resize(size + length + 1);
            std::memcpy(path_.data() + size, key, length + 1);
            ++currentDepth_;
            currentProperty_ = event.property;
            return *this;
        }
        case arrayChildEnd:
            cutPath('[');
            --currentDepth_;
            break;
        default:
            reportFailure("Unknown event in the stack");
            cutPath('[');
            break;
        }
    }
    return *this;
}

} // namespace utils
} // namespace orv
