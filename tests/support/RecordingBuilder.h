#ifndef ORV_TESTS_SUPPORT_RECORDINGBUILDER_H
#define ORV_TESTS_SUPPORT_RECORDINGBUILDER_H

#include <orv/utils/AbstractObjectBuilder.h>

#include <string>
#include <vector>

namespace orv {
namespace test {

/// Turns any producer into one line of events, for example
/// "begin beginObject child(a) beginArray child int(1) endArray endObject end".
///
/// Tokens: begin, end, null, bool(true), int(-3), real(0.5) (shortest text that reads back the
/// same double), string(text), beginObject, child(key), endObject, beginArray, child, endArray.
/// Texts are written with their bytes as they came.
///
/// The recorder also checks the order of the events: an event that the grammar doesn't allow
/// where it comes is written with a leading "!" ("begin !endObject"), so a producer that breaks
/// the grammar can't pass a comparison of lines. A document may follow a completed one.
class RecordingBuilder : public utils::AbstractObjectBuilder {
public:
    RecordingBuilder() = default;

    /// The events so far, separated by single blanks.
    const std::string& line() const { return line_; }
    /// True when every event so far kept the grammar and the last document was ended.
    bool isComplete() const;
    void clear();

    /// Answers false to the first event whose token is `token` (it is still recorded), and true to
    /// everything else; an empty token turns this off.
    void refuseAt(const std::string& token) { refused_ = token; }

    bool begin() override { return step("begin", Expect::begin, Expect::rootValue); }
    bool end() override { return step("end", Expect::end, Expect::begin); }
    bool null() override { return value("null"); }
    bool boolean(bool value) override { return this->value(value ? "bool(true)" : "bool(false)"); }
    bool integer(long long value) override { return this->value("int(" + std::to_string(value) + ")"); }
    bool real(double value) override;
    using AbstractObjectBuilder::string;
    bool string(const char* value, unsigned int size) override
    {
        return this->value("string(" + std::string(value, size) + ")");
    }
    bool beginObject() override { return value("beginObject", Expect::key); }
    using AbstractObjectBuilder::objectChild;
    bool objectChild(const char* key, unsigned int size) override
    {
        return step("child(" + std::string(key, size) + ")", Expect::key, Expect::objectValue);
    }
    bool endObject() override { return step("endObject", Expect::key, Expect::key, true); }
    bool beginArray() override { return value("beginArray", Expect::element); }
    bool arrayChild() override { return step("child", Expect::element, Expect::arrayValue); }
    bool endArray() override { return step("endArray", Expect::element, Expect::element, true); }

private:
    enum class Expect { begin, rootValue, end, key, objectValue, element, arrayValue };

    bool record(const std::string& token, bool allowed);
    /// A value where one is expected; an object or array also opens its level (`opens`).
    bool value(const std::string& token, Expect opens = Expect::begin);
    /// An event allowed where the top level expects `from`; it moves on to `to`, or closes the level.
    bool step(const std::string& token, Expect from, Expect to, bool closes = false);

    std::string line_;
    std::string refused_;
    std::vector<Expect> expected_ { Expect::begin };
    bool broken_ = false;
};

} // namespace test
} // namespace orv

#endif
