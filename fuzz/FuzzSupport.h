// What every fuzz target shares: the library started once, a logger that keeps nothing, and a
// check that stops the run when a property of the library does not hold.

#ifndef ORV_FUZZ_FUZZSUPPORT_H
#define ORV_FUZZ_FUZZSUPPORT_H

#include <orv/allocator/Allocator.h>
#include <orv/utils/AbstractLogger.h>
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/DynamicObjectIterator.h>
#include <orv/utils/DynamicValue.h>
#include <orv/utils/SerializedBuffer.h>
#include <orv/utils/System.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

/// A property of the library that must hold for every input.
#define ORV_FUZZ_REQUIRE(condition)                                                                                 \
    do {                                                                                                           \
        if (!(condition)) {                                                                                        \
            std::fprintf(stderr, "%s:%d: %s does not hold\n", __FILE__, __LINE__, #condition);                       \
            std::abort();                                                                                          \
        }                                                                                                          \
    } while (false)

namespace orv {
namespace fuzz {

/// Takes every level and drops it: inputs fail often, and the messages themselves are the unit
/// tests' business.
class QuietLogger : public utils::AbstractLogger {
public:
    QuietLogger()
        : AbstractLogger(true, true, true)
    {
    }

protected:
    void doLogTrace(const char*, unsigned int, const char*) override {}
    void doLogInfo(const char*, unsigned int, const char*) override {}
    void doLogWarning(const char*, unsigned int, const char*) override {}
    void doLogError(const utils::ErrorType&, const char*, unsigned int, const char*) override {}
};

/// Counts the library allocator's blocks around one input: whatever the input, nothing stays.
class BlockBalance {
public:
    BlockBalance()
        : before_(allocator::Allocator::instance().getLiveBlockCount())
    {
    }
    ~BlockBalance()
    {
        if (allocator::Allocator::instance().getLiveBlockCount() != before_) {
            std::fprintf(stderr, "library blocks leaked by this input\n");
            std::abort();
        }
    }

private:
    std::size_t before_;
};

/// Whether two objects hold the same properties under the same paths with the same values. The
/// order of children is left out: keys with bytes above 0x7F that extend another key come out in
/// an order that depends on the order in which they went in.
/// The bytes written to a growing buffer.
inline std::string contents(const utils::DynamicBufferInputOutput& buffer)
{
    return std::string(buffer.data(), buffer.size());
}

/// The text of a serialized buffer, which is released; a buffer must have been made.
inline std::string takeSerializedText(char* text, unsigned int size)
{
    ORV_FUZZ_REQUIRE(text != nullptr);
    std::string result(text, size);
    utils::freeSerializedBuffer(text);
    return result;
}

/// Whether every path that the walk of `object` reports leads back to the property the walk
/// reported. It does not when a key extends a sibling's text by a byte below '.', beside that
/// sibling's children (`a-x` beside `a.c`): the children walk of `a` then enters `-x` and stops
/// there, and what the walk leaves out is not written either. That walk is the library's stated
/// behaviour, so round trips are only compared where the walk is sound.
inline bool isWalkSound(const utils::DynamicObject& object)
{
    utils::DynamicObjectIterator walk(object);
    for (walk.next(); !walk.end(); walk.next()) {
        if (object.getProperty(walk.getKey(), walk.getKeyLength()) != walk.getProperty()) {
            return false;
        }
    }
    return true;
}

inline bool haveSameValue(const utils::DynamicObject& first, unsigned int firstProperty,
                          const utils::DynamicObject& second, unsigned int secondProperty)
{
    const utils::type::Type type = first.getType(firstProperty);
    if (type != second.getType(secondProperty)) {
        return false;
    }
    if (type == utils::type::object || type == utils::type::array) {
        return first.countChildren(firstProperty) == second.countChildren(secondProperty);
    }
    utils::DynamicValue firstValue;
    utils::DynamicValue secondValue;
    first.retrieveValue(firstProperty, firstValue);
    second.retrieveValue(secondProperty, secondValue);
    return firstValue == secondValue;
}

inline bool haveSameContents(const utils::DynamicObject& first, const utils::DynamicObject& second)
{
    if (!haveSameValue(first, first.getRoot(), second, second.getRoot())) {
        return false;
    }
    unsigned int firstCount = 0;
    utils::DynamicObjectIterator walk(first);
    for (walk.next(); !walk.end(); walk.next()) {
        ++firstCount;
        const unsigned int property = second.getProperty(walk.getKey(), walk.getKeyLength());
        if (property == 0 || !haveSameValue(first, walk.getProperty(), second, property)) {
            return false;
        }
    }
    unsigned int secondCount = 0;
    utils::DynamicObjectIterator other(second);
    for (other.next(); !other.end(); other.next()) {
        ++secondCount;
    }
    return firstCount == secondCount;
}

} // namespace fuzz
} // namespace orv

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // The objects under test reach the facilities' string and type tables.
    if (!orv::utils::initialize(nullptr)) {
        std::abort();
    }
    return 0;
}

#endif
