#pragma once

// Helpers of the YAML tests: libyaml events parsed from text and written in the notation of the
// YAML test suite, a receiver that records them, and failures caught whole.

#include <gtest/gtest.h>
#include <yaml.h>

#include <functional>
#include <string>
#include <vector>

#include "CYAMLObject.h"
#include "IException.h"
#include "ITestParserEventReceiver.h"

namespace kestrix_test {

/// All events of a YAML text, released with the object. Unless `mayFail`, the text must parse.
class ParsedEvents {
public:
    explicit ParsedEvents(const std::string& text, bool mayFail = false)
    {
        yaml_parser_t parser;
        yaml_parser_initialize(&parser);
        yaml_parser_set_input_string(&parser, reinterpret_cast<const unsigned char*>(text.data()), text.size());
        for (yaml_event_t event; !m_failed && (m_events.empty() || m_events.back().type != YAML_STREAM_END_EVENT);) {
            m_failed = !yaml_parser_parse(&parser, &event);
            if (!m_failed) {
                m_events.push_back(event);
            }
        }
        if (m_failed && !mayFail) {
            ADD_FAILURE() << "YAML test input does not parse: " << text;
        }
        yaml_parser_delete(&parser);
    }
    ~ParsedEvents()
    {
        for (auto& event : m_events) {
            yaml_event_delete(&event);
        }
    }
    ParsedEvents(const ParsedEvents&) = delete;
    ParsedEvents& operator=(const ParsedEvents&) = delete;

    /// The `index`-th event of `type`, counted from 0.
    const yaml_event_t& get(yaml_event_type_t type, size_t index = 0) const
    {
        for (const auto& event : m_events) {
            if (event.type == type && index-- == 0) {
                return event;
            }
        }
        throw std::out_of_range("no such event in the test input");
    }

    const std::vector<yaml_event_t>& all() const { return m_events; }
    /// Whether libyaml stopped before the end of the stream.
    bool failed() const { return m_failed; }

private:
    std::vector<yaml_event_t> m_events;
    bool m_failed = false;
};

/// A value of a kind the emitters do not know.
class UnknownObject : public kestrix::CYAMLObject {
public:
    UnknownObject() : CYAMLObject(7) {}
    std::shared_ptr<CYAMLObject> clone() const override { return std::make_shared<UnknownObject>(); }
    int getType() const override { return 7; }
    bool isEmpty() const override { return false; }
    void initStartEvent(yaml_event_t*) const override {}
};

/// Runs `action`, which must throw `Ex`; returns its description and data lines.
template <typename Ex>
std::string failureOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const Ex& e) {
        return e.getDesc() + "\n" + e.getData();
    } catch (const std::exception& e) {
        return std::string("wrong exception: ") + e.what();
    }
    return "no exception";
}

/// A scalar value in the suite's escaped form.
inline std::string escapeValue(const yaml_char_t* text, size_t length)
{
    std::string out;
    for (size_t i = 0; i < length; ++i) {
        switch (text[i]) {
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\t': out += "\\t"; break;
        case '\r': out += "\\r"; break;
        case '\b': out += "\\b"; break;
        default: out += static_cast<char>(text[i]);
        }
    }
    return out;
}

/// A node event in the suite's notation ("+MAP {} &a <tag>", "=VAL :x", "=ALI *a", "-SEQ"), else "".
inline std::string eventLine(const yaml_event_t& event)
{
    auto properties = [](const yaml_char_t* anchor, const yaml_char_t* tag) {
        return (anchor ? std::string(" &") + reinterpret_cast<const char*>(anchor) : std::string()) +
               (tag ? std::string(" <") + reinterpret_cast<const char*>(tag) + ">" : std::string());
    };
    switch (event.type) {
    case YAML_MAPPING_START_EVENT: {
        const auto& m = event.data.mapping_start;
        return std::string("+MAP") + (m.style == YAML_FLOW_MAPPING_STYLE ? " {}" : "") + properties(m.anchor, m.tag);
    }
    case YAML_SEQUENCE_START_EVENT: {
        const auto& s = event.data.sequence_start;
        return std::string("+SEQ") + (s.style == YAML_FLOW_SEQUENCE_STYLE ? " []" : "") + properties(s.anchor, s.tag);
    }
    case YAML_SCALAR_EVENT: {
        const auto& s = event.data.scalar;
        static const char styles[] = {':', ':', '\'', '"', '|', '>'};
        const char style = s.style >= 0 && s.style <= 5 ? styles[s.style] : '?';
        return "=VAL" + properties(s.anchor, s.tag) + " " + style + escapeValue(s.value, s.length);
    }
    case YAML_ALIAS_EVENT: return std::string("=ALI *") + reinterpret_cast<const char*>(event.data.alias.anchor);
    case YAML_MAPPING_END_EVENT: return "-MAP";
    case YAML_SEQUENCE_END_EVENT: return "-SEQ";
    default: return "";
    }
}

/// Records every event it is given in the suite's notation, each scalar prefixed by the role that
/// the handler gave it ("key", "value" or "item").
class RecordingReceiver : public kestrix::ITestParserEventReceiver {
public:
    std::vector<std::string> events;
    /// Called before each event is recorded, with the count recorded so far; may throw.
    std::function<void(size_t)> beforeEvent;

    ITestParserEventReceiver* mappingStart(const yaml_event_t& e) override { return record(eventLine(e)); }
    ITestParserEventReceiver* mappingKey(const yaml_event_t& e) override { return record("key " + eventLine(e)); }
    ITestParserEventReceiver* mappingValue(const yaml_event_t& e) override { return record("value " + eventLine(e)); }
    ITestParserEventReceiver* mappingEnd() override { return record("-MAP"); }
    ITestParserEventReceiver* sequenceStart(const yaml_event_t& e) override { return record(eventLine(e)); }
    ITestParserEventReceiver* sequenceValue(const yaml_event_t& e) override { return record("item " + eventLine(e)); }
    ITestParserEventReceiver* sequenceEnd() override { return record("-SEQ"); }
    void serialize(std::shared_ptr<kestrix::IEmitter>) override {}

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

} // namespace kestrix_test
