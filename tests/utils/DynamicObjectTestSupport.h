#ifndef ORV_TESTS_UTILS_DYNAMICOBJECTTESTSUPPORT_H
#define ORV_TESTS_UTILS_DYNAMICOBJECTTESTSUPPORT_H

#include <orv/utils/AbstractDataInputOutput.h>
#include <orv/utils/AbstractDynamicObjectListener.h>
#include <orv/utils/AbstractObjectBuilder.h>
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/DynamicObjectIterator.h>

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace orv {
namespace test {

/// The blob of `object`, as saved.
inline std::string saveBlob(const utils::DynamicObject& object)
{
    utils::DynamicBufferInputOutput buffer("blob");
    EXPECT_TRUE(object.saveBlob(buffer, nullptr));
    return std::string(buffer.data(), buffer.size());
}

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

/// Writes every call it receives as one line, arguments included: afterSetInt(5,7).
class RecordingListener : public utils::AbstractDynamicObjectListener {
public:
    std::vector<std::string> events;

    void beforeAddProperty() override { add("beforeAddProperty"); }
    void afterAddProperty(const char* key, unsigned int length, unsigned int property) override
    {
        add("afterAddProperty", std::string(key, length), property);
    }
    void beforeSetInt() override { add("beforeSetInt"); }
    void afterSetInt(unsigned int property, long long value) override { add("afterSetInt", property, value); }
    void beforeSetReal() override { add("beforeSetReal"); }
    void afterSetReal(unsigned int property, double value) override { add("afterSetReal", property, value); }
    void beforeSetString() override { add("beforeSetString"); }
    void afterSetString(unsigned int property, const utils::String& value) override
    {
        add("afterSetString", property, std::string(value.c_str(), value.size()));
    }
    void beforeSetBool() override { add("beforeSetBool"); }
    void afterSetBool(unsigned int property, bool value) override { add("afterSetBool", property, value ? "true" : "false"); }
    void beforeGetProperty() override { add("beforeGetProperty"); }
    void afterGetProperty(const char* key, unsigned int length) override { add("afterGetProperty", std::string(key, length)); }
    void beforeRetrieve() override { add("beforeRetrieve"); }
    void afterRetrieve(unsigned int property) override { add("afterRetrieve", property); }
    void beforePut() override { add("beforePut"); }
    void afterPut(unsigned int property) override { add("afterPut", property); }
    void beforeResetProperty() override { add("beforeResetProperty"); }
    void afterResetProperty(unsigned int property) override { add("afterResetProperty", property); }
    void beforeCopy() override { add("beforeCopy"); }
    void afterCopy() override { add("afterCopy"); }

private:
    void add(const char* name) { events.push_back(name); }
    template <typename First, typename... Rest>
    void add(const char* name, const First& first, const Rest&... rest)
    {
        std::ostringstream text;
        text << name << '(' << first;
        ((text << ',' << rest), ...);
        events.push_back(text.str() + ")");
    }
};

/// A stream that is readable or writable as told, and whose writes succeed the given number of times.
class LimitedStream : public utils::AbstractDataInputOutput {
public:
    LimitedStream(bool readable, bool writable, int writes) : readable_(readable), writable_(writable), writes_(writes) {}
    bool isWritable() const override { return writable_; }
    bool write(const char*, unsigned int, utils::AbstractLogger*) override { return writes_-- > 0; }
    bool isReadable() const override { return readable_; }
    bool read(char*, unsigned int& size, utils::AbstractLogger*) override
    {
        size = 0;
        return readable_;
    }

private:
    bool readable_;
    bool writable_;
    int writes_;
};

/// Sends a line of events in the recorder's tokens ("begin beginObject child(a) int(1) ...") and
/// returns the tokens that were answered false, separated by blanks.
inline std::string play(utils::AbstractObjectBuilder& builder, const std::string& events)
{
    using Builder = utils::AbstractObjectBuilder;
    static const std::map<std::string, bool (Builder::*)()> bare = { { "begin", &Builder::begin },
        { "end", &Builder::end }, { "null", &Builder::null }, { "beginObject", &Builder::beginObject },
        { "endObject", &Builder::endObject }, { "beginArray", &Builder::beginArray }, { "child", &Builder::arrayChild },
        { "endArray", &Builder::endArray } };
    std::istringstream tokens(events);
    std::string token;
    std::string refused;
    while (tokens >> token) {
        const std::size_t open = token.find('(');
        const std::string name = token.substr(0, open);
        const std::string argument = open == std::string::npos ? "" : token.substr(open + 1, token.size() - open - 2);
        const unsigned int size = static_cast<unsigned int>(argument.size());
        bool answer = false;
        if (open == std::string::npos) {
            answer = (builder.*bare.at(name))();
        } else if (name == "bool") {
            answer = builder.boolean(argument == "true");
        } else if (name == "int") {
            answer = builder.integer(std::stoll(argument));
        } else if (name == "real") {
            answer = builder.real(std::stod(argument));
        } else {
            answer
                = name == "string" ? builder.string(argument.data(), size) : builder.objectChild(argument.data(), size);
        }
        if (!answer) {
            refused += (refused.empty() ? "" : " ") + token;
        }
    }
    return refused;
}

inline std::string textOf(const utils::DynamicBufferInputOutput& output)
{
    return output.empty() ? std::string() : std::string(output.data(), output.size());
}

} // namespace test
} // namespace orv

#endif
