#include "support/RecordingBuilder.h"

#include <charconv>

namespace orv {
namespace test {

bool RecordingBuilder::isComplete() const
{
    return !broken_ && expected_.size() == 1 && expected_.back() == Expect::begin && !line_.empty();
}

void RecordingBuilder::clear()
{
    line_.clear();
    expected_.assign(1, Expect::begin);
    broken_ = false;
}

bool RecordingBuilder::record(const std::string& token, bool allowed)
{
    if (!line_.empty()) {
        line_ += ' ';
    }
    if (!allowed) {
        line_ += '!';
        broken_ = true;
    }
    line_ += token;
    if (!refused_.empty() && token == refused_) {
        refused_.clear();
        return false;
    }
    return true;
}

bool RecordingBuilder::value(const std::string& token, Expect opens)
{
    const Expect top = expected_.back();
    const bool allowed = top == Expect::rootValue || top == Expect::objectValue || top == Expect::arrayValue;
    if (allowed) {
        expected_.back() = top == Expect::rootValue ? Expect::end
            : top == Expect::objectValue            ? Expect::key
                                                    : Expect::element;
        if (opens != Expect::begin) {
            expected_.push_back(opens);
        }
    }
    return record(token, allowed);
}

bool RecordingBuilder::step(const std::string& token, Expect from, Expect to, bool closes)
{
    const bool allowed = expected_.back() == from;
    if (allowed && closes) {
        expected_.pop_back();
    } else if (allowed) {
        expected_.back() = to;
    }
    return record(token, allowed);
}

bool RecordingBuilder::real(double value)
{
    char text[64];
    const std::to_chars_result result = std::to_chars(text, text + sizeof text, value);
    return this->value("real(" + std::string(text, result.ptr) + ")");
}

} // namespace test
} // namespace orv
