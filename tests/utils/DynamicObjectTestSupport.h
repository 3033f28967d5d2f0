#ifndef ORV_TESTS_UTILS_DYNAMICOBJECTTESTSUPPORT_H
#define ORV_TESTS_UTILS_DYNAMICOBJECTTESTSUPPORT_H

#include <orv/utils/AbstractDynamicObjectListener.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/DynamicObjectIterator.h>

#include <sstream>
#include <string>
#include <vector>

namespace orv {
namespace test {

/// A compact text of a property and everything below it, through the public walk only:
/// {"a":[1,2.5,"x",true,null]}. Object keys come in the iterator's order.
inline std::string dump(const utils::DynamicObject& object, unsigned int property)
{
    std::ostringstream out;
    switch (object.getType(property)) {
    case utils::type::null:
        out << "null";
        break;
    case utils::type::integer:
        out << object.getInt(property, 0);
        break;
    case utils::type::real:
        out << object.getReal(property, 0.0);
        break;
    case utils::type::string:
        out << '"' << object.getString(property, "?") << '"';
        break;
    case utils::type::boolean:
        out << (object.getBool(property, false) ? "true" : "false");
        break;
    case utils::type::array: {
        out << '[';
        for (unsigned int i = 0; i < object.countChildren(property); ++i) {
            out << (i != 0 ? "," : "") << dump(object, object.getChild(property, i));
        }
        out << ']';
        break;
    }
    case utils::type::object: {
        out << '{';
        bool first = true;
        utils::DynamicObjectIterator children(object, property, 0);
        for (children.next(); !children.end(); children.next()) {
            out << (first ? "" : ",") << '"' << children.getKey() << "\":" << dump(object, children.getProperty());
            first = false;
        }
        out << '}';
        break;
    }
    default:
        out << "type" << static_cast<int>(object.getType(property));
        break;
    }
    return out.str();
}

inline std::string dump(const utils::DynamicObject& object)
{
    return dump(object, object.getRoot());
}

/// Writes every call it receives as one line, arguments included.
class RecordingListener : public utils::AbstractDynamicObjectListener {
public:
    std::vector<std::string> events;

    void beforeAddProperty() override { events.push_back("beforeAddProperty"); }
    void afterAddProperty(const char* key, unsigned int length, unsigned int property) override
    {
        events.push_back("afterAddProperty(" + std::string(key, length) + "," + std::to_string(property) + ")");
    }
    void beforeSetInt() override { events.push_back("beforeSetInt"); }
    void afterSetInt(unsigned int property, long long value) override
    {
        events.push_back("afterSetInt(" + std::to_string(property) + "," + std::to_string(value) + ")");
    }
    void beforeSetReal() override { events.push_back("beforeSetReal"); }
    void afterSetReal(unsigned int property, double value) override
    {
        std::ostringstream text;
        text << "afterSetReal(" << property << "," << value << ")";
        events.push_back(text.str());
    }
    void beforeSetString() override { events.push_back("beforeSetString"); }
    void afterSetString(unsigned int property, const utils::String& value) override
    {
        events.push_back("afterSetString(" + std::to_string(property) + "," + std::string(value.c_str(), value.size()) +
                         ")");
    }
    void beforeSetBool() override { events.push_back("beforeSetBool"); }
    void afterSetBool(unsigned int property, bool value) override
    {
        events.push_back("afterSetBool(" + std::to_string(property) + "," + (value ? "true" : "false") + ")");
    }
    void beforeGetProperty() override { events.push_back("beforeGetProperty"); }
    void afterGetProperty(const char* key, unsigned int length) override
    {
        events.push_back("afterGetProperty(" + std::string(key, length) + ")");
    }
    void beforePut() override { events.push_back("beforePut"); }
    void afterPut(unsigned int property) override { events.push_back("afterPut(" + std::to_string(property) + ")"); }
    void beforeResetProperty() override { events.push_back("beforeResetProperty"); }
    void afterResetProperty(unsigned int property) override
    {
        events.push_back("afterResetProperty(" + std::to_string(property) + ")");
    }
    void beforeCopy() override { events.push_back("beforeCopy"); }
    void afterCopy() override { events.push_back("afterCopy"); }
};

} // namespace test
} // namespace orv

#endif
