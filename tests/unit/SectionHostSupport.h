#pragma once

// Helpers of the section tests: a root mapping that hands one key to a section, as the
// owners of sections do, and the texts of what a parse writes or refuses.

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "CYAMLEmitter.h"
#include "CYAMLMap.h"
#include "CYAMLUtil.h"
#include "Exceptions.h"
#include "ITestParserEventReceiver.h"

namespace kestrix_test {

/// A root mapping with the single key `key`, whose block belongs to `section`.
template <class S>
class SectionHost : public kestrix::ITestParserEventReceiver {
public:
    /// `isKeyWritten`: the host writes the key itself, since the section does not.
    SectionHost(const std::string& key, bool isKeyWritten) : section(this), m_key(key), m_isKeyWritten(isKeyWritten) {}

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override
    {
        m_map = kestrix::CYAMLMap(event);
        return this;
    }
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override
    {
        std::string key(reinterpret_cast<const char*>(event.data.scalar.value), event.data.scalar.length);
        if (key != m_key) {
            throw kestrix::ParserException(KX_POS, "host: unexpected key " + key);
        }
        return &section;
    }
    ITestParserEventReceiver* mappingValue(const yaml_event_t&) override { return refuse(); }
    ITestParserEventReceiver* mappingEnd() override { return nullptr; }
    ITestParserEventReceiver* sequenceStart(const yaml_event_t&) override { return refuse(); }
    ITestParserEventReceiver* sequenceValue(const yaml_event_t&) override { return refuse(); }
    ITestParserEventReceiver* sequenceEnd() override { return refuse(); }
    void serialize(std::shared_ptr<kestrix::IEmitter> emitter) override
    {
        emitter->writeMapStart(m_map);
        if (m_isKeyWritten) {
            emitter->write(m_key);
        }
        section.serialize(emitter);
        emitter->writeMapEnd();
    }

    S section;

private:
    static ITestParserEventReceiver* refuse() { throw kestrix::ParserException(KX_POS, "host: unexpected event"); }

    std::string m_key;
    bool m_isKeyWritten;
    kestrix::CYAMLMap m_map;
};

/// The YAML document that `receiver.serialize` writes.
inline std::string yamlOf(kestrix::ITestParserEventReceiver& receiver)
{
    std::ostringstream text;
    {
        auto emitter = std::make_shared<kestrix::CYAMLEmitter>(&text);
        emitter->startStream();
        emitter->startDocument(true);
        receiver.serialize(emitter);
        emitter->endDocument(true);
        emitter->endStream();
    }
    return text.str();
}

/// A refusal of a parse: the message of the receiver and the position in the text.
struct ParseFailure {
    std::string desc;
    std::string message;
    std::string position;
};

inline ParseFailure parseFailure(kestrix::ITestParserEventReceiver& receiver, const std::string& text)
{
    try {
        kestrix::CYAMLUtil::parseYAML(receiver, text);
    } catch (const kestrix::ParserException& e) {
        const std::string& data = e.getData();
        ParseFailure failure{e.getDesc(), data, ""};
        size_t start = data.find("Error: ");
        if (start != std::string::npos) {
            size_t end = data.find("  [/", start);
            failure.message = data.substr(start + 7, end == std::string::npos ? end : end - start - 7);
        }
        size_t line = data.rfind("[Line: ");
        if (line != std::string::npos) {
            failure.position = data.substr(line, data.find(']', line) - line + 1);
        }
        return failure;
    }
    ADD_FAILURE() << "no ParserException for: " << text;
    return ParseFailure{};
}

} // namespace kestrix_test
