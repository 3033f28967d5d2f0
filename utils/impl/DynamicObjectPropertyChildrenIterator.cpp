#include <orv/utils/impl/DynamicObjectPropertyChildrenIterator.h>

#include <orv/utils/DynamicObject.h>

namespace orv {
namespace utils {
namespace impl {

namespace {

bool isSeparator(signed char character)
{
    return character == '.' || character == '[';
}

/// The walk's failed assertions, out of its loops.
__attribute__((noinline, cold)) void reportWalkFailure(const char* text)
{
    ORV_FAIL(text);
}

} // namespace

DynamicObjectPropertyChildrenIterator::DynamicObjectPropertyChildrenIterator(const DynamicObject& object,
                                                                             unsigned int property)
    : object_(object), start_(property != 0 ? property : object.getRoot()), startValue_(0), current_(start_)
{
    object_.findValueNode(object_.getNode(start_), startValue_);
}

void DynamicObjectPropertyChildrenIterator::restart()
{
    stack_.clear();
    key_.clear();
    current_ = start_;
}

void DynamicObjectPropertyChildrenIterator::next()
{
    unsigned int index = stack_.empty() ? start_ : stack_.back();
    if (current_ == 0 || index == 0) {
        reportWalkFailure("unable to increment from invalid current node");
        current_ = 0;
        return;
    }
    if (index != start_) {
        index = stepUp();
    }
    while (index != 0) {
        stack_.push_back(index);
        const DynamicObject::Node* node = object_.getNode(index);
        if (node == nullptr) {
            reportWalkFailure("unable to convert current to real trie node pointer");
            index = 0;
            break;
        }
        if (node->isValueNode()) {
            // current_ holds the end-of-key node whose equal link led here.
            return;
        }
        if (node->trie.less != 0) {
            index = node->trie.less;
        } else if (node->trie.equal == 0 || node->trie.equal == startValue_ ||
                   (!key_.empty() && isSeparator(node->trie.splitChar))) {
            // Not below: the start's own value, or the separator of a child's own children.
            index = node->trie.greater;
            if (index == 0) {
                index = stepUp();
            }
        } else {
            current_ = index;
            key_.push_back(static_cast<char>(node->trie.splitChar));
            index = node->trie.equal;
        }
    }
    current_ = 0;
    stack_.clear();
    key_.clear();
}

unsigned int DynamicObjectPropertyChildrenIterator::stepUp()
{
    for (;;) {
        if (stack_.empty()) {
            reportWalkFailure("unable to retrieve next child from empty stack");
            return 0;
        }
        const unsigned int child = stack_.back();
        stack_.pop_back();
        if (stack_.empty()) {
            return 0;
        }
        const unsigned int parentIndex = stack_.back();
        const DynamicObject::Node* parent = object_.getNode(parentIndex);
        if (parent == nullptr) {
            reportWalkFailure("unable to convert current to real trie node pointer");
            return 0;
        }
        if (parent->trie.less == child) {
            if (parent->trie.equal != 0 && parent->trie.equal != startValue_) {
                // Back at the separator the walk began from, through its smaller side: other keys
                // that merely extend the start's text lie beyond, and are not children.
                if (isSeparator(parent->trie.splitChar)) {
                    return 0;
                }
                current_ = parentIndex;
                key_.push_back(static_cast<char>(parent->trie.splitChar));
                return parent->trie.equal;
            }
        } else if (parent->trie.equal == child) {
            if (key_.empty()) {
                reportWalkFailure("unable to remove one character from key although we are in an equal match case");
            }
            if (isSeparator(parent->trie.splitChar)) {
                return 0;
            }
            if (!key_.empty()) {
                key_.pop_back();
            }
        } else if (parent->trie.greater == child) {
            continue;
        } else {
            reportWalkFailure(
                "unexpected state in iteration stack - one of the children of current should be the top element");
            return 0;
        }
        if (parent->trie.greater != 0) {
            return parent->trie.greater;
        }
    }
}

} // namespace impl
} // namespace utils
} // namespace orv
