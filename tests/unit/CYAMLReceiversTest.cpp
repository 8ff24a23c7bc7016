#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CLimitedScalarValidator.h"
#include "CYAMLMapReceiver.h"
#include "CYAMLSequenceReceiver.h"
#include "CYAMLUtil.h"
#include "Exceptions.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using kestrix_test::failureOf;
using kestrix_test::ParsedEvents;

namespace {

typedef std::vector<std::string> Lines;

const std::string NO_IMPLEMENTATION = "Method has no useful implementation!\n";

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

/// The message of the receiver error that a parse of `text` converts.
template <class R, class T>
std::string parseError(T& target, const std::string& text, CYAMLValidator* validator = nullptr)
{
    R receiver(nullptr, &target, validator);
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

/// Each call must raise a ParserException with exactly its text.
void expectRefusals(const std::vector<std::pair<std::string, std::function<void()>>>& calls)
{
    for (const auto& call : calls) {
        EXPECT_EQ(call.first + "\n", failureOf<ParserException>(call.second));
    }
}

} // namespace

TEST(CYAMLMapReceiver, FillsTheMapAndReturnsToTheParent)
{
    kestrix_test::RecordingReceiver parent;
    CYAMLMap map;
    map.add(CYAMLScalar("old"), std::make_shared<CYAMLScalar>("x"));
    RecordingValidator validator;
    CYAMLMapReceiver receiver(&parent, &map, &validator);

    ParsedEvents events("&m !cfg {b: \"1\", a: 2}");
    EXPECT_EQ(&receiver, receiver.mappingStart(events.get(YAML_MAPPING_START_EVENT)));
    EXPECT_EQ(&receiver, receiver.mappingKey(events.get(YAML_SCALAR_EVENT, 0)));
    EXPECT_EQ(&receiver, receiver.mappingValue(events.get(YAML_SCALAR_EVENT, 1)));
    receiver.mappingKey(events.get(YAML_SCALAR_EVENT, 2));
    receiver.mappingValue(events.get(YAML_SCALAR_EVENT, 3));
    EXPECT_EQ(&parent, receiver.mappingEnd());

    EXPECT_EQ("m", map.getAnchor());
    EXPECT_EQ("!cfg", map.getTag());
    EXPECT_EQ(YAML_FLOW_MAPPING_STYLE, map.getYamlStyle());
    EXPECT_EQ(NO_IMPLEMENTATION, failureOf<NoSuchMethodException>([&] { receiver.serialize(nullptr); }));
    EXPECT_EQ((Lines{"b", "a"}), map.getKeyTexts()) << "entries of the target are replaced";
    StrVector values;
    map.getValues(values);
    EXPECT_EQ((Lines{"\"1\"", "2"}), values);
    EXPECT_EQ((Lines{"scalar b ''", "scalar a ''", "map 2"}), validator.calls);
}

TEST(CYAMLMapReceiver, RefusesNestingDuplicatesInvalidKeysAndEventsOutsideItsBlock)
{
    CYAMLMap map;
    EXPECT_EQ("Nested maps are not allowed!", (parseError<CYAMLMapReceiver>(map, "a: {b: c}")));
    EXPECT_EQ("No sequences allowed inside mapping!", (parseError<CYAMLMapReceiver>(map, "a: [1]")));
    EXPECT_EQ("No sequences allowed inside mapping!", (parseError<CYAMLMapReceiver>(map, "- 1")));
    EXPECT_EQ("Duplicate keys are not allowed in map: a", (parseError<CYAMLMapReceiver>(map, "{a: 1, b: 2, a: 3}")));
    EXPECT_EQ((Lines{"a", "b"}), map.getKeyTexts()) << "the map keeps what came before the error";
    CLimitedScalarValidator validator;
    EXPECT_EQ("Only subset of all characters is allowed: letters, numbers, and symbols: _-./:",
              (parseError<CYAMLMapReceiver>(map, "ok: 1\n'bad key': 2\n", &validator)));

    CYAMLMap quoted;
    CYAMLUtil::parseYAML(*std::make_unique<CYAMLMapReceiver>(nullptr, &quoted), "{a: 1, \"a\": 2}");
    EXPECT_EQ((Lines{"a", "\"a\""}), quoted.getKeyTexts()) << "a quoted key is another key";

    CYAMLMap untouched;
    CYAMLMapReceiver r(nullptr, &untouched);
    ParsedEvents events("{early: late}");
    const yaml_event_t &start = events.get(YAML_MAPPING_START_EVENT), &early = events.get(YAML_SCALAR_EVENT, 0),
                       &late = events.get(YAML_SCALAR_EVENT, 1);
    expectRefusals({
        {"Key outside mapping section: early", [&] { r.mappingKey(early); }},
        // A value out of place is named by the key before it.
        {"Scalar value outside mapping section: early", [&] { r.mappingValue(late); }},
        {"No sequences allowed inside mapping!", [&] { r.sequenceValue(early); }},
        {"No sequences allowed inside mapping!", [&] { r.sequenceEnd(); }},
        {"Key outside mapping section: late", [&] { r.mappingStart(start), r.mappingEnd(), r.mappingKey(late); }},
        {"Nested maps are not allowed!", [&] { r.mappingStart(start); }},
    });
    EXPECT_TRUE(untouched.isEmpty());
}

TEST(CYAMLSequenceReceiver, FillsTheSequenceAndReturnsToTheParent)
{
    kestrix_test::RecordingReceiver parent;
    CYAMLSequence sequence;
    sequence.add(CYAMLScalar("old"));
    RecordingValidator validator;
    CYAMLSequenceReceiver receiver(&parent, &sequence, &validator);

    ParsedEvents events("&s !list ['a', 'bc', \"d\", e]");
    EXPECT_EQ(&receiver, receiver.sequenceStart(events.get(YAML_SEQUENCE_START_EVENT)));
    EXPECT_EQ(&receiver, receiver.sequenceValue(events.get(YAML_SCALAR_EVENT, 0)));
    for (size_t i = 1; i < 4; ++i) {
        receiver.sequenceValue(events.get(YAML_SCALAR_EVENT, i));
    }
    EXPECT_EQ(&parent, receiver.sequenceEnd());

    EXPECT_EQ("s", sequence.getAnchor());
    EXPECT_EQ("!list", sequence.getTag());
    EXPECT_EQ(YAML_FLOW_SEQUENCE_STYLE, sequence.getYamlStyle());
    EXPECT_EQ(NO_IMPLEMENTATION, failureOf<NoSuchMethodException>([&] { receiver.serialize(nullptr); }));
    StrVector texts, quoted{"first"}; // single quotes stay only around one character; quoted texts are added
    sequence.getVector(texts);
    EXPECT_EQ((Lines{"'a'", "bc", "\"d\"", "e"}), texts);
    sequence.getQuotedVector(quoted);
    EXPECT_EQ((Lines{"first", "'a'", "'bc'", "\"d\"", "e"}), quoted);
    EXPECT_EQ((Lines{"scalar a ''", "scalar bc ''", "scalar d ''", "scalar e ''", "sequence 4"}), validator.calls);
}

TEST(CYAMLSequenceReceiver, RefusesNestedBlocksAndEventsOutsideItsBlock)
{
    CYAMLSequence sequence;
    EXPECT_EQ("Nested sequences are not allowed!", (parseError<CYAMLSequenceReceiver>(sequence, "[a, [b]]")));
    EXPECT_EQ("Sequence of scalars expected, found mapping start!",
              (parseError<CYAMLSequenceReceiver>(sequence, "[a, {b: c}]")));
    EXPECT_EQ("Sequence of scalars expected, found mapping start!",
              (parseError<CYAMLSequenceReceiver>(sequence, "a: b")));

    CYAMLSequence untouched;
    CYAMLSequenceReceiver r(nullptr, &untouched);
    ParsedEvents events("[early, late]");
    const yaml_event_t &start = events.get(YAML_SEQUENCE_START_EVENT), &early = events.get(YAML_SCALAR_EVENT, 0),
                       &late = events.get(YAML_SCALAR_EVENT, 1);
    expectRefusals({
        {"Sequence of scalars expected, found scalar mapping key!", [&] { r.mappingKey(early); }},
        {"Sequence of scalars expected, found scalar mapping value!", [&] { r.mappingValue(early); }},
        {"Sequence of scalars expected, found mapping end!", [&] { r.mappingEnd(); }},
        {"Value outside sequence section: early", [&] { r.sequenceValue(early); }},
        {"Value outside sequence section: late",
         [&] { r.sequenceStart(start), r.sequenceEnd(), r.sequenceValue(late); }},
    });
    EXPECT_TRUE(untouched.isEmpty());
}
