// Property paths from anywhere. A path is either refused, with handle 0, or names one property.
// Look-ups match the stored form of a path as text, so the check rebuilds that form from the
// path's steps ("a.[01]." is stored as "a[1]") and finds the same property, holding what was
// written through the path.

#include "FuzzSupport.h"

#include <orv/utils/AbstractPropertyParser.h>
#include <orv/utils/DynamicObject.h>

#include <string>

namespace {

class StoredForm : public orv::utils::AbstractPropertyParser {
public:
    bool key(const char* key, unsigned int length) override
    {
        if (!text.empty()) {
            text += '.';
        }
        text.append(key, length);
        return true;
    }
    bool key(const char* key) override { return this->key(key, static_cast<unsigned int>(std::string(key).size())); }
    bool index(unsigned int index) override
    {
        text += '[' + std::to_string(index) + ']';
        return true;
    }

    std::string text;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    orv::fuzz::BlockBalance balance;
    orv::fuzz::QuietLogger logger;
    const char* path = reinterpret_cast<const char*>(data);
    const auto length = static_cast<unsigned int>(size);
    orv::utils::DynamicObject object;
    object.setInt("a.b[1].c", 7);
    const unsigned int property = object.addProperty(path, length);
    if (property == 0) {
        return 0;
    }
    StoredForm stored;
    ORV_FUZZ_REQUIRE(orv::utils::parseProperty(path, length, stored, &logger));
    const auto storedLength = static_cast<unsigned int>(stored.text.size());
    ORV_FUZZ_REQUIRE(object.getProperty(stored.text.data(), storedLength) == property);
    object.setInt(path, length, 42);
    ORV_FUZZ_REQUIRE(object.getInt(stored.text.data(), storedLength, 0) == 42);
    ORV_FUZZ_REQUIRE(object.getProperty(stored.text.data(), storedLength) == property);
    return 0;
}
