#include <orv/utils/impl/DynamicObjectPropertyChildrenIterator.h>

namespace orv {
namespace utils {
namespace impl {

DynamicObjectPropertyChildrenIterator::DynamicObjectPropertyChildrenIterator(const DynamicObject& object,
                                                                             unsigned int property)
    : object_(object)
    , start_{property != 0 ? property : object.getRoot(), 0, 0, 0}
    , current_(start_.property)
{
    start_.value = findValueIndex(object_, start_.property);
}

void DynamicObjectPropertyChildrenIterator::restart()
{
    storage_.stacks.depth = 0;
    storage_.stacks.keyLength = 0;
    current_ = start_.property;
}

void DynamicObjectPropertyChildrenIterator::next()
{
    step(Nodes(object_), start_, current_, storage_.stacks, storage_);
}

unsigned int DynamicObjectPropertyChildrenIterator::findValueIndex(const DynamicObject& object, unsigned int property)
{
    unsigned int valueIndex = 0;
    object.findValueNode(object.getNode(property), valueIndex);
    return valueIndex;
}

__attribute__((noinline, cold)) void DynamicObjectPropertyChildrenIterator::reportWalkFailure(const char* text)
{
    ORV_FAIL(text);
}

} // namespace impl
} // namespace utils
} // namespace orv
