#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CLimitedScalarValidator.h"
#include "CYAMLMapReceiver.h"
#include "CYAMLSequenceReceiver.h"
#include "CYAMLUtil.h"
#include "Exceptions.h"

using namespace kestrix;

namespace {

typedef std::vector<std::string> Lines;

/// A libyaml event built for a direct call, deleted at the end of the scope.
class Event {
public:
    static Event scalar(const char* value, const char* anchor = nullptr, const char* tag = nullptr,
                        yaml_scalar_style_t style = YAML_PLAIN_SCALAR_STYLE)
    {
        Event e;
        yaml_scalar_event_initialize(&e.m_event, yc(anchor), yc(tag), yc(value), -1, tag == nullptr,
                                     tag == nullptr, style);
        return e;
    }
    static Event mapping(const char* anchor, const char* tag, yaml_mapping_style_t style)
    {
        Event e;
        yaml_mapping_start_event_initialize(&e.m_event, yc(anchor), yc(tag), tag == nullptr, style);
        return e;
    }
    static Event sequence(const char* anchor, const char* tag, yaml_sequence_style_t style)
    {
        Event e;
        yaml_sequence_start_event_initialize(&e.m_event, yc(anchor), yc(tag), tag == nullptr, style);
        return e;
    }
    Event(Event&& other) noexcept : m_event(other.m_event) { other.m_event.type = YAML_NO_EVENT; }
    ~Event() { yaml_event_delete(&m_event); }
    operator const yaml_event_t&() const { return m_event; }

private:
    Event() = default;
    static yaml_char_t* yc(const char* text) { return reinterpret_cast<yaml_char_t*>(const_cast<char*>(text)); }
    yaml_event_t m_event{};
};

/// Records what the receivers ask it to validate.
class RecordingValidator : public CYAMLValidator {
public:
    Lines calls;
    void validate(const CYAMLSequence& s) override { calls.push_back("sequence " + std::to_string(s.size())); }
    void validate(const CYAMLMap& m) override { calls.push_back("map " + std::to_string(m.size())); }
    void validate(const CYAMLScalar& s, const std::string& d) override
    {
        calls.push_back("scalar " + s.getValue() + " '" + d + "'");
    }
};

/// A parent standing above a receiver.
class DummyParent : public CYAMLMapReceiver {
public:
    DummyParent() : CYAMLMapReceiver(nullptr, &m_map) {}

private:
    CYAMLMap m_map;
};

/// The message of the receiver error that a parse of `text` converts.
template <class R, class T>
std::string parseError(T& target, const std::string& text)
{
    R receiver(nullptr, &target);
    try {
        CYAMLUtil::parseYAML(receiver, text);
    } catch (const ParserException& e) {
        EXPECT_EQ("Illegal argument", e.getDesc());
        const std::string& data = e.getData();
        size_t start = data.find("Error: ");
        size_t end = data.find("  [/", start);
        return start == std::string::npos ? data : data.substr(start + 7, end - start - 7);
    }
    ADD_FAILURE() << "no ParserException for: " << text;
    return "";
}

template <class F>
std::string desc(F call)
{
    try {
        call();
    } catch (const IException& e) {
        return e.getDesc();
    }
    return "<nothing thrown>";
}

} // namespace

TEST(CYAMLMapReceiver, FillsTheMapAndReturnsToTheParent)
{
    DummyParent parent;
    CYAMLMap map;
    map.add(CYAMLScalar("old"), std::make_shared<CYAMLScalar>("x"));
    RecordingValidator validator;
    CYAMLMapReceiver receiver(&parent, &map, &validator);

    Event start = Event::mapping("m", "!cfg", YAML_FLOW_MAPPING_STYLE);
    EXPECT_EQ(&receiver, receiver.mappingStart(start));
    Event k1 = Event::scalar("b"), v1 = Event::scalar("1", nullptr, nullptr, YAML_DOUBLE_QUOTED_SCALAR_STYLE);
    Event k2 = Event::scalar("a"), v2 = Event::scalar("2");
    EXPECT_EQ(&receiver, receiver.mappingKey(k1));
    EXPECT_EQ(&receiver, receiver.mappingValue(v1));
    receiver.mappingKey(k2);
    receiver.mappingValue(v2);
    EXPECT_EQ(&parent, receiver.mappingEnd());

    EXPECT_EQ("m", map.getAnchor());
    EXPECT_EQ("!cfg", map.getTag());
    EXPECT_EQ(YAML_FLOW_MAPPING_STYLE, map.getYamlStyle());
    EXPECT_EQ((Lines{"b", "a"}), map.getKeyTexts()) << "entries of the target are replaced";
    StrVector values;
    map.getValues(values);
    EXPECT_EQ((Lines{"\"1\"", "2"}), values);
    EXPECT_EQ((Lines{"scalar b ''", "scalar a ''", "map 2"}), validator.calls);
}

TEST(CYAMLMapReceiver, RefusesNestedMapsAndSequences)
{
    CYAMLMap map;
    EXPECT_EQ("Nested maps are not allowed!", (parseError<CYAMLMapReceiver>(map, "a: {b: c}")));
    EXPECT_EQ("No sequences allowed inside mapping!", (parseError<CYAMLMapReceiver>(map, "a: [1]")));
    EXPECT_EQ("No sequences allowed inside mapping!", (parseError<CYAMLMapReceiver>(map, "- 1")));
    CYAMLMapReceiver receiver(nullptr, &map);
    Event item = Event::scalar("1");
    EXPECT_EQ("No sequences allowed inside mapping!", desc([&] { receiver.sequenceValue(item); }));
    EXPECT_EQ("No sequences allowed inside mapping!", desc([&] { receiver.sequenceEnd(); }));
}

TEST(CYAMLMapReceiver, RefusesDuplicateKeysNamingTheKey)
{
    CYAMLMap map;
    EXPECT_EQ("Duplicate keys are not allowed in map: a", (parseError<CYAMLMapReceiver>(map, "{a: 1, b: 2, a: 3}")));
    EXPECT_EQ((Lines{"a", "b"}), map.getKeyTexts()) << "the map keeps what came before the error";
    CYAMLMap quoted;
    CYAMLUtil::parseYAML(*std::make_unique<CYAMLMapReceiver>(nullptr, &quoted), "{a: 1, \"a\": 2}");
    EXPECT_EQ((Lines{"a", "\"a\""}), quoted.getKeyTexts()) << "a quoted key is another key";
}

TEST(CYAMLMapReceiver, RefusesScalarsOutsideItsBlock)
{
    CYAMLMap map;
    CYAMLMapReceiver receiver(nullptr, &map);
    Event key = Event::scalar("early"), value = Event::scalar("v");
    EXPECT_EQ("Key outside mapping section: early", desc([&] { receiver.mappingKey(key); }));
    EXPECT_EQ("Scalar value outside mapping section: early", desc([&] { receiver.mappingValue(value); }));
    Event start = Event::mapping(nullptr, nullptr, YAML_BLOCK_MAPPING_STYLE);
    receiver.mappingStart(start);
    receiver.mappingEnd();
    Event late = Event::scalar("late");
    EXPECT_EQ("Key outside mapping section: late", desc([&] { receiver.mappingKey(late); }));
    EXPECT_EQ("Nested maps are not allowed!", desc([&] { receiver.mappingStart(start); }));
    EXPECT_TRUE(map.isEmpty());
}

TEST(CYAMLMapReceiver, ValidatorErrorOnAKeyComesFromTheParse)
{
    CYAMLMap map;
    CLimitedScalarValidator validator;
    CYAMLMapReceiver receiver(nullptr, &map, &validator);
    try {
        CYAMLUtil::parseYAML(receiver, "ok: 1\n'bad key': 2\n");
        FAIL() << "no exception";
    } catch (const ParserException& e) {
        EXPECT_EQ("Illegal argument", e.getDesc());
        EXPECT_NE(std::string::npos, e.getData().find("forbiddenChar: ' '")) << e.getData();
    }
}

TEST(CYAMLSequenceReceiver, FillsTheSequenceAndReturnsToTheParent)
{
    DummyParent parent;
    CYAMLSequence sequence;
    sequence.add(CYAMLScalar("old"));
    RecordingValidator validator;
    CYAMLSequenceReceiver receiver(&parent, &sequence, &validator);

    Event start = Event::sequence("s", "!list", YAML_FLOW_SEQUENCE_STYLE);
    EXPECT_EQ(&receiver, receiver.sequenceStart(start));
    Event a = Event::scalar("a", nullptr, nullptr, YAML_SINGLE_QUOTED_SCALAR_STYLE), b = Event::scalar("b");
    EXPECT_EQ(&receiver, receiver.sequenceValue(a));
    receiver.sequenceValue(b);
    EXPECT_EQ(&parent, receiver.sequenceEnd());

    EXPECT_EQ("s", sequence.getAnchor());
    EXPECT_EQ("!list", sequence.getTag());
    EXPECT_EQ(YAML_FLOW_SEQUENCE_STYLE, sequence.getYamlStyle());
    StrVector items;
    sequence.getQuotedVector(items);
    EXPECT_EQ((Lines{"'a'", "b"}), items);
    EXPECT_EQ((Lines{"scalar a ''", "scalar b ''", "sequence 2"}), validator.calls);
}

TEST(CYAMLSequenceReceiver, RefusesNestedBlocks)
{
    CYAMLSequence sequence;
    EXPECT_EQ("Nested sequences are not allowed!", (parseError<CYAMLSequenceReceiver>(sequence, "[a, [b]]")));
    EXPECT_EQ("Sequence of scalars expected, found mapping start!",
              (parseError<CYAMLSequenceReceiver>(sequence, "[a, {b: c}]")));
    EXPECT_EQ("Sequence of scalars expected, found mapping start!",
              (parseError<CYAMLSequenceReceiver>(sequence, "a: b")));
    CYAMLSequenceReceiver receiver(nullptr, &sequence);
    Event scalar = Event::scalar("k");
    EXPECT_EQ("Sequence of scalars expected, found scalar mapping key!", desc([&] { receiver.mappingKey(scalar); }));
    EXPECT_EQ("Sequence of scalars expected, found scalar mapping value!",
              desc([&] { receiver.mappingValue(scalar); }));
    EXPECT_EQ("Sequence of scalars expected, found mapping end!", desc([&] { receiver.mappingEnd(); }));
}

TEST(CYAMLSequenceReceiver, RefusesValuesOutsideItsBlock)
{
    CYAMLSequence sequence;
    CYAMLSequenceReceiver receiver(nullptr, &sequence);
    Event early = Event::scalar("early");
    EXPECT_EQ("Value outside sequence section: early", desc([&] { receiver.sequenceValue(early); }));
    Event start = Event::sequence(nullptr, nullptr, YAML_BLOCK_SEQUENCE_STYLE);
    receiver.sequenceStart(start);
    receiver.sequenceEnd();
    Event late = Event::scalar("late");
    EXPECT_EQ("Value outside sequence section: late", desc([&] { receiver.sequenceValue(late); }));
    EXPECT_TRUE(sequence.isEmpty());
}

TEST(CYAMLReceivers, SerializeHasNoUsefulImplementation)
{
    CYAMLMap map;
    CYAMLSequence sequence;
    CYAMLMapReceiver mapReceiver(nullptr, &map);
    CYAMLSequenceReceiver sequenceReceiver(nullptr, &sequence);
    EXPECT_THROW(mapReceiver.serialize(nullptr), NoSuchMethodException);
    EXPECT_EQ("Method has no useful implementation!", desc([&] { sequenceReceiver.serialize(nullptr); }));
}
