#pragma once

// Helpers of the section tests: a root mapping that hands the blocks of one key to a section,
// the text a section writes under that key, and parse failures caught whole.

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "CYAMLEmitter.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "ITestParserEventReceiver.h"
#include "ParserException.h"

namespace kestrix_test {

/// The root mapping of a test text: each occurrence of `key` hands its value to the section;
/// any other key, and anything but a flat root mapping, is refused.
class SectionHost : public kestrix::ITestParserEventReceiver {
public:
    explicit SectionHost(const std::string& key) : m_key(key) {}

    void setSection(kestrix::ITestParserEventReceiver* section) { m_section = section; }

    kestrix::ITestParserEventReceiver* mappingStart(const yaml_event_t&) override
    {
        if (m_isOpen) {
            throw kestrix::ParserException(KX_POS, "host: nested mapping");
        }
        m_isOpen = true;
        return this;
    }
    kestrix::ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override
    {
        const std::string key(reinterpret_cast<const char*>(event.data.scalar.value), event.data.scalar.length);
        if (key != m_key) {
            throw kestrix::ParserException(KX_POS, "host: unknown key " + key);
        }
        return m_section;
    }
    kestrix::ITestParserEventReceiver* mappingValue(const yaml_event_t&) override { return refuse(); }
    kestrix::ITestParserEventReceiver* mappingEnd() override { return nullptr; }
    kestrix::ITestParserEventReceiver* sequenceStart(const yaml_event_t&) override { return refuse(); }
    kestrix::ITestParserEventReceiver* sequenceValue(const yaml_event_t&) override { return refuse(); }
    kestrix::ITestParserEventReceiver* sequenceEnd() override { return refuse(); }
    void serialize(std::shared_ptr<kestrix::IEmitter>) override {}

private:
    static kestrix::ITestParserEventReceiver* refuse() { throw kestrix::ParserException(KX_POS, "host: unexpected"); }

    std::string m_key;
    kestrix::ITestParserEventReceiver* m_section = nullptr;
    bool m_isOpen = false;
};

/// The YAML document of a root mapping with `key` and what `section` writes as its value.
inline std::string written(const std::string& key, kestrix::ITestParserEventReceiver& section)
{
    std::ostringstream out;
    {
        auto emitter = std::make_shared<kestrix::CYAMLEmitter>(&out);
        emitter->startStream();
        emitter->startDocument(true);
        emitter->mapStart();
        emitter->write(key);
        section.serialize(emitter);
        emitter->mapEnd();
        emitter->endDocument(true);
        emitter->endStream();
    }
    return out.str();
}

/// A parse failure: its description and the excerpt the parser made of the text.
struct ParseFailure {
    std::string desc;
    std::string context;
    bool has(const std::string& part) const { return context.find(part) != std::string::npos; }
};

/// Parses `text` into `host`, which must fail with a ParserException.
inline ParseFailure parseFailure(SectionHost& host, const std::string& text)
{
    try {
        kestrix::CYAMLUtil::parseYAML(host, text);
    } catch (const kestrix::ParserException& e) {
        return ParseFailure{e.getDesc(), e.getData()};
    }
    ADD_FAILURE() << "no ParserException for: " << text;
    return ParseFailure{};
}

} // namespace kestrix_test
