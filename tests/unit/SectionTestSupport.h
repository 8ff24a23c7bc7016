#pragma once

// Helpers of the section tests, shared by the function/stub/HIL tests and the analyzer
// section tests: a root mapping that hands keys to sections, YAML text of what it holds, and
// parse failures split into message and position (or kept whole).
//
// A default SectionHost acts as a small test specification with the keys "func", "script",
// "hil" and "stubs"; a SectionHost made with a key hands each occurrence of that key to the
// section given by `setSection` and refuses everything else.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sstream>
#include <string>

#include "CStringStream.h"
#include "CTestFunction.h"
#include "CTestHIL.h"
#include "CTestStub.h"
#include "CYAMLEmitter.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "ITestParserEventReceiver.h"
#include "ParserException.h"

namespace kestrix_test {
// Inline namespace: other test helpers use the same names in kestrix_test, and one binary
// holds all tests, so these get names of their own at link time.
inline namespace section_tests {

using namespace kestrix;

class SectionHost : public ITestParserEventReceiver {
public:
    CTestFunction func{this};
    CTestFunction script{this};
    CTestHIL hil{this};
    StubsVector stubs;

    SectionHost() = default;
    explicit SectionHost(const std::string& key) : m_hostKey(key) {}

    void setSection(ITestParserEventReceiver* section) { m_section = section; }

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override
    {
        if (!m_hostKey.empty()) {
            if (m_isOpen) {
                throw ParserException(KX_POS, "host: nested mapping");
            }
            m_isOpen = true;
            return this;
        }
        if (!m_inStubs) {
            return this;
        }
        stubs.push_back(std::make_shared<CTestStub>(this));
        return stubs.back()->mappingStart(event);
    }
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override
    {
        m_key = CYAMLScalar(event).getValue();
        if (!m_hostKey.empty()) {
            if (m_key != m_hostKey) {
                throw ParserException(KX_POS, "host: unknown key " + m_key);
            }
            return m_section;
        }
        if (m_key == "func") {
            return &func;
        }
        if (m_key == "script") {
            return &script;
        }
        if (m_key == "hil") {
            return &hil;
        }
        if (m_key == "stubs") {
            return this;
        }
        throw ParserException(KX_POS, "test host: unknown key ", m_key);
    }
    ITestParserEventReceiver* mappingValue(const yaml_event_t&) override
    {
        throw ParserException(KX_POS, "test host: scalar value");
    }
    ITestParserEventReceiver* mappingEnd() override { return nullptr; }
    ITestParserEventReceiver* sequenceStart(const yaml_event_t&) override
    {
        if (!m_hostKey.empty() || m_key != "stubs" || m_inStubs) {
            throw ParserException(KX_POS, "test host: sequence");
        }
        m_inStubs = true;
        return this;
    }
    ITestParserEventReceiver* sequenceValue(const yaml_event_t&) override
    {
        throw ParserException(KX_POS, "test host: sequence value");
    }
    ITestParserEventReceiver* sequenceEnd() override
    {
        if (!m_hostKey.empty()) {
            throw ParserException(KX_POS, "host: unexpected");
        }
        m_inStubs = false;
        return this;
    }
    void serialize(std::shared_ptr<IEmitter> emitter) override
    {
        emitter->mapStart();
        if (!func.isEmpty()) {
            emitter->write("func");
            func.serialize(emitter);
        }
        if (!script.isEmpty()) {
            emitter->write("script");
            script.serialize(emitter);
        }
        if (!stubs.empty()) {
            emitter->write("stubs");
            emitter->sequenceStart();
            for (const auto& stub : stubs) {
                stub->serialize(emitter);
            }
            emitter->sequenceEnd();
        }
        if (!hil.isEmpty()) {
            emitter->write("hil");
            hil.serialize(emitter);
        }
        emitter->mapEnd();
    }

private:
    std::string m_hostKey;
    ITestParserEventReceiver* m_section = nullptr;
    bool m_isOpen = false;
    std::string m_key;
    bool m_inStubs = false;
};

/// The YAML text of one object as the root of a document.
inline std::string toYaml(ITestParserEventReceiver& root)
{
    auto stream = std::make_shared<CStringStream>();
    auto emitter = std::make_shared<CYAMLEmitter>(stream);
    emitter->startStream();
    emitter->startDocument(true);
    root.serialize(emitter);
    emitter->endDocument(true);
    emitter->endStream();
    return stream->getString();
}

/// The YAML document of a root mapping with `key` and what `section` writes as its value.
inline std::string written(const std::string& key, ITestParserEventReceiver& section)
{
    std::ostringstream out;
    {
        auto emitter = std::make_shared<CYAMLEmitter>(&out);
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

/// Reads `text` into a new host.
inline std::unique_ptr<SectionHost> parsed(const std::string& text)
{
    auto host = std::make_unique<SectionHost>();
    CYAMLUtil::parseYAML(*host, text);
    return host;
}

/// What a refused parse reports: the section's message and the position text, and the
/// exception's description and data lines whole.
struct ParseFailure {
    std::string message;
    std::string position;
    std::string desc;
    std::string context;
    bool has(const std::string& part) const { return context.find(part) != std::string::npos; }
};

/// Runs `action`, which must throw a ParserException.
inline ParseFailure failureOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const ParserException& e) {
        // A parse error carries the section's message behind "Error: " and the place.
        const std::string& data = e.getData();
        size_t start = data.find("Error: ");
        if (start == std::string::npos) {
            return {e.getDesc(), "", e.getDesc(), data};
        }
        size_t pos = data.find("[Line: ");
        return {data.substr(start + 7, data.find("  [/", start) - start - 7),
                pos == std::string::npos ? "" : data.substr(pos, data.find(']', pos) + 1 - pos), e.getDesc(),
                data};
    } catch (const std::exception& e) {
        return {std::string("wrong exception: ") + e.what(), "", "", ""};
    }
    return {"no exception", "", "", ""};
}

inline ParseFailure parseFailure(ITestParserEventReceiver& receiver, const std::string& text)
{
    return failureOf([&] { CYAMLUtil::parseYAML(receiver, text); });
}

inline ParseFailure parseFailure(const std::string& text)
{
    SectionHost host;
    return parseFailure(host, text);
}

/// The message of a refused setter.
inline std::string refusal(const std::function<void()>& action)
{
    return failureOf(action).message;
}

} // namespace section_tests
} // namespace kestrix_test
