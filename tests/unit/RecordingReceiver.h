#pragma once

// A receiver for tests: records every event it is given, in the notation of the YAML test
// suite prefixed by the role that the handler gave a scalar ("key", "value" or "item").

#include <functional>
#include <string>
#include <vector>

#include "ITestParserEventReceiver.h"

namespace kestrix {
namespace testing {

/// A scalar value in the suite's escaped form.
inline std::string escapeValue(const char* text, size_t length)
{
    std::string out;
    for (size_t i = 0; i < length; ++i) {
        switch (text[i]) {
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\t': out += "\\t"; break;
        case '\r': out += "\\r"; break;
        case '\b': out += "\\b"; break;
        default: out += text[i];
        }
    }
    return out;
}

inline std::string nodeProperties(const yaml_char_t* anchor, const yaml_char_t* tag)
{
    std::string out;
    if (anchor != nullptr) {
        out += std::string(" &") + reinterpret_cast<const char*>(anchor);
    }
    if (tag != nullptr) {
        out += std::string(" <") + reinterpret_cast<const char*>(tag) + ">";
    }
    return out;
}

/// "=VAL", anchor, tag and the value behind its style's indicator.
inline std::string scalarLine(const yaml_event_t& event)
{
    const auto& s = event.data.scalar;
    static const char styles[] = {':', ':', '\'', '"', '|', '>'};
    char style = s.style >= 0 && s.style <= 5 ? styles[s.style] : '?';
    return "=VAL" + nodeProperties(s.anchor, s.tag) + " " + style +
           escapeValue(reinterpret_cast<const char*>(s.value), s.length);
}

inline std::string mappingStartLine(const yaml_event_t& event)
{
    const auto& m = event.data.mapping_start;
    return std::string("+MAP") + (m.style == YAML_FLOW_MAPPING_STYLE ? " {}" : "") + nodeProperties(m.anchor, m.tag);
}

inline std::string sequenceStartLine(const yaml_event_t& event)
{
    const auto& s = event.data.sequence_start;
    return std::string("+SEQ") + (s.style == YAML_FLOW_SEQUENCE_STYLE ? " []" : "") + nodeProperties(s.anchor, s.tag);
}

class RecordingReceiver : public ITestParserEventReceiver {
public:
    std::vector<std::string> events;
    /// Called before each event is recorded, with the count recorded so far; may throw.
    std::function<void(size_t)> beforeEvent;

    ITestParserEventReceiver* mappingStart(const yaml_event_t& e) override { return record(mappingStartLine(e)); }
    ITestParserEventReceiver* mappingKey(const yaml_event_t& e) override { return record("key " + scalarLine(e)); }
    ITestParserEventReceiver* mappingValue(const yaml_event_t& e) override { return record("value " + scalarLine(e)); }
    ITestParserEventReceiver* mappingEnd() override { return record("-MAP"); }
    ITestParserEventReceiver* sequenceStart(const yaml_event_t& e) override { return record(sequenceStartLine(e)); }
    ITestParserEventReceiver* sequenceValue(const yaml_event_t& e) override { return record("item " + scalarLine(e)); }
    ITestParserEventReceiver* sequenceEnd() override { return record("-SEQ"); }
    void serialize(std::shared_ptr<IEmitter>) override {}

private:
    ITestParserEventReceiver* record(const std::string& line)
    {
        if (beforeEvent) {
            beforeEvent(events.size());
        }
        events.push_back(line);
        return this;
    }
};

} // namespace testing
} // namespace kestrix
