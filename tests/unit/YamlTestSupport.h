#pragma once

// Helpers of the YAML tests: libyaml events parsed from text, and failures caught whole.

#include <gtest/gtest.h>
#include <yaml.h>

#include <functional>
#include <string>
#include <vector>

#include "CYAMLObject.h"
#include "IException.h"

namespace kestrix_test {

/// All events of a YAML text, released with the object.
class ParsedEvents {
public:
    explicit ParsedEvents(const std::string& text)
    {
        yaml_parser_t parser;
        yaml_parser_initialize(&parser);
        yaml_parser_set_input_string(&parser, reinterpret_cast<const unsigned char*>(text.data()), text.size());
        for (;;) {
            yaml_event_t event;
            if (!yaml_parser_parse(&parser, &event)) {
                ADD_FAILURE() << "YAML test input does not parse: " << text;
                break;
            }
            m_events.push_back(event);
            if (event.type == YAML_STREAM_END_EVENT) {
                break;
            }
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

private:
    std::vector<yaml_event_t> m_events;
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

} // namespace kestrix_test
