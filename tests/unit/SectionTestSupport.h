#pragma once

// Helpers of the section tests: root mappings that hand keys to sections, the YAML text of
// what they hold, and parse failures split into message and position (or kept whole).

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "CStringStream.h"
#include "CTestFunction.h"
#include "CTestHIL.h"
#include "CTestStub.h"
#include "CYAMLEmitter.h"
#include "CYAMLMap.h"
#include "CYAMLUtil.h"
#include "Exceptions.h"
#include "ITestParserEventReceiver.h"

namespace kestrix_test {
// Inline namespace: other test helpers use the same names in kestrix_test, and one binary
// holds all tests, so these get names of their own at link time.
inline namespace section_tests {

using namespace kestrix;

/// A root mapping with the keys "func", "script", "hil" and "stubs", as a test has them.
class SectionHost : public ITestParserEventReceiver {
public:
    CTestFunction func{this};
    CTestFunction script{this};
    CTestHIL hil{this};
    StubsVector stubs;

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override
    {
        if (!m_inStubs) {
            return this;
        }
        stubs.push_back(std::make_shared<CTestStub>(this));
        return stubs.back()->mappingStart(event);
    }
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override
    {
        m_key = CYAMLScalar(event).getValue();
        return m_key == "func"     ? &func
               : m_key == "script" ? &script
               : m_key == "hil"    ? &hil
               : m_key == "stubs"  ? this
                                   : refuse();
    }
    ITestParserEventReceiver* mappingValue(const yaml_event_t&) override { return refuse(); }
    ITestParserEventReceiver* mappingEnd() override { return nullptr; }
    ITestParserEventReceiver* sequenceStart(const yaml_event_t&) override
    {
        if (m_key != "stubs" || m_inStubs) {
            return refuse();
        }
        m_inStubs = true;
        return this;
    }
    ITestParserEventReceiver* sequenceValue(const yaml_event_t&) override { return refuse(); }
    ITestParserEventReceiver* sequenceEnd() override { return m_inStubs = false, this; }
    void serialize(std::shared_ptr<IEmitter> emitter) override
    {
        emitter->mapStart();
        writeIfSet(emitter, "func", func);
        writeIfSet(emitter, "script", script);
        if (!stubs.empty()) {
            emitter->write("stubs");
            emitter->sequenceStart();
            for (const auto& stub : stubs) {
                stub->serialize(emitter);
            }
            emitter->sequenceEnd();
        }
        writeIfSet(emitter, "hil", hil);
        emitter->mapEnd();
    }

private:
    ITestParserEventReceiver* refuse() { throw ParserException(KX_POS, "test host: unexpected at key ", m_key); }

    template <class S>
    static void writeIfSet(const std::shared_ptr<IEmitter>& emitter, const char* key, S& section)
    {
        if (!section.isEmpty()) {
            emitter->write(key);
            section.serialize(emitter);
        }
    }

    std::string m_key;
    bool m_inStubs = false;
};

/// A root mapping with the single key `key`, whose block belongs to `section`; the root keeps
/// its style when written.
template <class S>
class KeyHost : public ITestParserEventReceiver {
public:
    /// `isKeyWritten`: the host writes the key itself, since the section does not.
    explicit KeyHost(const std::string& key, bool isKeyWritten = true)
        : section(this), m_key(key), m_isKeyWritten(isKeyWritten) {}

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override { return m_map = CYAMLMap(event), this; }
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override
    {
        const std::string key = CYAMLScalar(event).getValue();
        return key == m_key ? &section : throw ParserException(KX_POS, "host: unexpected key " + key);
    }
    ITestParserEventReceiver* mappingValue(const yaml_event_t&) override { return refuse(); }
    ITestParserEventReceiver* mappingEnd() override { return nullptr; }
    ITestParserEventReceiver* sequenceStart(const yaml_event_t&) override { return refuse(); }
    ITestParserEventReceiver* sequenceValue(const yaml_event_t&) override { return refuse(); }
    ITestParserEventReceiver* sequenceEnd() override { return refuse(); }
    void serialize(std::shared_ptr<IEmitter> emitter) override
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
    static ITestParserEventReceiver* refuse() { throw ParserException(KX_POS, "host: unexpected event"); }

    std::string m_key;
    bool m_isKeyWritten;
    CYAMLMap m_map;
};

/// The YAML document of a root mapping with `key` (unless empty) and what `section` writes.
inline std::string written(const std::string& key, ITestParserEventReceiver& section)
{
    auto stream = std::make_shared<CStringStream>();
    auto emitter = std::make_shared<CYAMLEmitter>(stream);
    emitter->startStream(), emitter->startDocument(true);
    if (!key.empty()) {
        emitter->mapStart(), emitter->write(key);
    }
    section.serialize(emitter);
    if (!key.empty()) {
        emitter->mapEnd();
    }
    emitter->endDocument(true), emitter->endStream();
    return stream->getString();
}

inline std::string toYaml(ITestParserEventReceiver& root) { return written("", root); }

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
        const size_t end = data.find("  [/", start);
        const size_t pos = data.rfind("[Line: ");
        return {data.substr(start + 7, end == std::string::npos ? end : end - start - 7),
                pos == std::string::npos ? "" : data.substr(pos, data.find(']', pos) + 1 - pos), e.getDesc(), data};
    } catch (const std::exception& e) {
        return {std::string("wrong exception: ") + e.what(), "", "", ""};
    }
    return {"no exception", "", "", ""};
}

inline ParseFailure parseFailure(ITestParserEventReceiver& receiver, const std::string& text)
{
    return failureOf([&] { CYAMLUtil::parseYAML(receiver, text); });
}

/// The message of a refused setter.
inline std::string refusal(const std::function<void()>& action) { return failureOf(action).message; }

/// One refused text: the message and the position text "[Line: n  Col: m]".
struct Refusal {
    std::string text;
    std::string message;
    std::string position;
};

/// Checks the message and the position of each refused text, as `parse` reports it.
inline void expectRefusalsOf(const std::vector<Refusal>& refusals,
                             const std::function<ParseFailure(const std::string&)>& parse)
{
    for (const Refusal& r : refusals) {
        SCOPED_TRACE(r.text);
        const ParseFailure failure = parse(r.text);
        EXPECT_EQ("Illegal argument", failure.desc);
        EXPECT_EQ(r.message, failure.message) << failure.context;
        EXPECT_EQ(r.position, failure.position);
    }
}

/// Checks the message and the position of each refused text, read by a fresh `Host`.
template <class Host = SectionHost, class... Args>
void expectRefusals(const std::vector<Refusal>& refusals, const Args&... hostArgs)
{
    expectRefusalsOf(refusals, [&](const std::string& text) {
        Host host(hostArgs...);
        return parseFailure(host, text);
    });
}

} // namespace section_tests
} // namespace kestrix_test
