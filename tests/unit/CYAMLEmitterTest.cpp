#include <gtest/gtest.h>

#include <sstream>

#include "CStringStream.h"
#include "CYAMLEmitter.h"
#include "EmitterFactory.h"
#include "IOException.h"
#include "IllegalArgumentException.h"
#include "IllegalStateException.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using kestrix_test::failureOf;
using kestrix_test::ParsedEvents;

namespace {

/// Builds the value that starts at event `pos` (sequences hold scalars only, as in the model).
std::shared_ptr<CYAMLObject> buildValue(const std::vector<yaml_event_t>& events, size_t& pos)
{
    const yaml_event_t& event = events[pos++];
    if (event.type == YAML_SCALAR_EVENT) {
        return std::make_shared<CYAMLScalar>(event);
    }
    if (event.type == YAML_SEQUENCE_START_EVENT) {
        auto sequence = std::make_shared<CYAMLSequence>(event);
        while (events[pos].type != YAML_SEQUENCE_END_EVENT) {
            sequence->add(CYAMLScalar(events[pos++]));
        }
        return ++pos, sequence;
    }
    auto map = std::make_shared<CYAMLMap>(event);
    while (events[pos].type != YAML_MAPPING_END_EVENT) {
        const CYAMLScalar key(events[pos++]);
        map->add(key, buildValue(events, pos));
    }
    return ++pos, map;
}

/// The value of a one-document text.
std::shared_ptr<CYAMLObject> valueOf(const std::string& yaml)
{
    ParsedEvents parsed(yaml);
    size_t pos = 2; // behind stream start and document start
    return buildValue(parsed.all(), pos);
}

/// Text, expression text and quoted text of each scalar of `value`, in order.
std::string textsOf(const CYAMLObject& value)
{
    if (value.getType() == CYAMLObject::SCALAR) {
        const CYAMLScalar& s = value.asScalar();
        return "[" + s.getValue() + "|" + toExpressionText(s) + "|" + toQuotedText(s) + "]";
    }
    std::string texts;
    if (value.getType() == CYAMLObject::SEQUENCE) {
        for (const auto& item : value.asSequence().getItems()) {
            texts += textsOf(item);
        }
        return texts;
    }
    for (const auto& key : value.asMap().getKeyTexts()) {
        const auto& entry = value.asMap().entryOf(key);
        texts += textsOf(entry.first) + textsOf(*entry.second);
    }
    return texts;
}

/// Runs `body` inside an implicit document of a stream and gives the text written.
std::string emitted(const std::function<void(CYAMLEmitter&)>& body)
{
    std::ostringstream out;
    CYAMLEmitter emitter(&out);
    emitter.startStream(), emitter.startDocument(true);
    body(emitter);
    emitter.endDocument(true), emitter.endStream();
    return out.str();
}

} // namespace

TEST(CYAMLEmitterTest, ParsedDocumentIsWrittenBackAsItWasRead)
{
    const std::string yaml = "id: \"t1\"\n"
                             "desc: 'it''s here'\n"
                             "anchored: &a1 val\n"
                             "tagged: !!str 5\n"
                             "list: [a, 'b', \"c\"]\n"
                             "block:\n"
                             "- x\n"
                             "- 'y'\n"
                             "nested:\n"
                             "  z: v\n"
                             "  flow: {p: 1, q: 2}\n"
                             "  b: |\n"
                             "    line1\n"
                             "    line2\n"
                             "a: last\n";
    ParsedEvents parsed(yaml);
    size_t pos = 2; // behind stream start and document start
    const auto root = buildValue(parsed.all(), pos);
    EXPECT_EQ(yaml, emitted([&](CYAMLEmitter& e) { e.write(*root); }));
}

// Where libyaml cannot keep a scalar's style, it falls back to a quoted one; what reads back
// must still be the same text with the same expression and quoted text. A plain text gets
// libyaml's "!" in front of the quotes; so does a single-quoted or block text whose quotes
// do not count, and a tagged plain text, which then loses its tag.
TEST(CYAMLEmitterTest, ScalarsThatLibyamlRestylesReadBackWithTheirTexts)
{
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"k: [!,]\n", "k: [! '']\n"},
        {"k: [a\tb == 1]\n", "k: [! \"a\\tb == 1\"]\n"},
        {"k: {-: 2, ? : 3}\n", "k: {! '-': 2, ! '': 3}\n"},
        {"? \n: v\n", "! '': v\n"},
        {"k: Gr\xc3\xbc\xc3\x9f" "e\n", "k: ! \"Gr\\xFC\\xDFe\"\n"},
        {"k: |\n  a\tb\n", "k: ! \"a\\tb\\n\"\n"},
        {"k: >-\n  trailing \n", "k: ! \"trailing \"\n"},
        {"? |-\n  key\n: v\n", "! \"key\": v\n"},
        {"k: [!local ,]\n", "k: [! '']\n"},
        {"k: !local a\tb\n", "k: ! \"a\\tb\"\n"},
        // What libyaml keeps stays as it was.
        {"k: [!local a, 'abc', 'a', '', \"a\tb\"]\n", "k: [!local a, 'abc', 'a', '', \"a\\tb\"]\n"},
        {"k: |\n  line\n? |\n  two\n  lines\n: v\n", "k: |\n  line\n? |\n  two\n  lines\n: v\n"},
        {"k: !local\n", "k: !local\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.first);
        const auto value = valueOf(row.first);
        const std::string written = emitted([&](CYAMLEmitter& e) { e.write(*value); });
        EXPECT_EQ(row.second, written);
        EXPECT_EQ(textsOf(*value), textsOf(*valueOf(written)));
        EXPECT_EQ(written, emitted([&](CYAMLEmitter& e) { e.write(*valueOf(written)); }));
    }
}

// A block text that a caller writes into a flow collection cannot stay a block.
TEST(CYAMLEmitterTest, BlockTextInAFlowCollectionIsWrittenAsPlainText)
{
    const CYAMLScalar literal = valueOf("k: |\n  a\n")->asMap().getValue("k")->asScalar();
    const std::string written = emitted([&](CYAMLEmitter& e) {
        e.sequenceStart(IEmitter::STYLE_FLOW), e.write(literal), e.sequenceEnd();
    });
    EXPECT_EQ("[! \"a\\n\"]\n", written);
    EXPECT_EQ(textsOf(literal), textsOf(*valueOf(written)));
}

// YAML's single quotes hold no escapes, and libyaml writes no tab between them. A character
// literal of a tab therefore has no form that keeps it: libyaml writes it double-quoted, and
// it reads back as a string literal. A longer single-quoted text that needs escapes (a tab,
// any non-ASCII character) keeps its expression text and loses only the quotes of its quoted text.
TEST(CYAMLEmitterTest, SingleQuotedTabsCannotBeKept)
{
    const auto literal = valueOf("k: '\t'\n");
    const std::string written = emitted([&](CYAMLEmitter& e) { e.write(*literal); });
    EXPECT_EQ("k: \"\\t\"\n", written);
    EXPECT_EQ("[k|k|k][\t|'\t'|'\t']", textsOf(*literal));
    EXPECT_EQ("[k|k|k][\t|\"\t\"|\"\t\"]", textsOf(*valueOf(written)));

    for (const std::string value : {"a\tb", "Gr\xc3\xbc\xc3\x9f" "e"}) {
        const auto text = valueOf("k: '" + value + "'\n");
        EXPECT_EQ("[k|k|k][" + value + "|" + value + "|'" + value + "']", textsOf(*text));
        EXPECT_EQ("[k|k|k][" + value + "|" + value + "|" + value + "]",
                  textsOf(*valueOf(emitted([&](CYAMLEmitter& e) { e.write(*text); }))));
    }
}

TEST(CYAMLEmitterTest, BlockAndFlowStylesFromCallers)
{
    EXPECT_EQ("a: b\nl:\n- x\n- y\nf: [x, y]\nm: {k: v, n: 1}\nd:\n  k: v\n", emitted([](CYAMLEmitter& e) {
                  e.mapStart();
                  e.write("a"), e.write("b");
                  e.write("l"), e.sequenceStart(IEmitter::STYLE_BLOCK);
                  e.write("x"), e.write("y"), e.sequenceEnd();
                  e.write("f"), e.sequenceStart(IEmitter::STYLE_FLOW);
                  e.write("x"), e.write("y"), e.sequenceEnd();
                  e.write("m"), e.mapStart(IEmitter::STYLE_FLOW);
                  e.writeMappingPair("k", "v"), e.writeMappingPair("n", 1u), e.mapEnd();
                  e.write("d"), e.mapStart(5); // an unknown style is the emitter's choice
                  e.writeMappingPair("k", "v"), e.mapEnd();
                  e.mapEnd();
              }));
}

TEST(CYAMLEmitterTest, MappingPairsOfEveryType)
{
    EXPECT_EQ("b: true\n"
              "f: false\n"
              "d: 1.5\n"
              "small: 1e-07\n"
              "u: 4000000000\n"
              "ll: -9000000000\n"
              "s: text\n"
              "empty:\n" // libyaml 0.2 ends the line right behind the colon of an empty value
              "seq: [1]\n"
              // Text that cannot stand plain gets the non-specific tag.
              "k: ! 'a: b'\n"
              "lead: ! '    a = 5'\n"
              "hash: ! '#x'\n"
              "list: [! '', ! 'a, b']\n"
              "ne: ! \"caf\\xE9 \\u20AC\"\n"
              "scalars: {b: 1, a: 2}\n",
              emitted([](CYAMLEmitter& e) {
                  e.mapStart();
                  e.writeMappingPair("b", true);
                  e.writeMappingPair("f", false);
                  e.writeMappingPair("d", 1.5);
                  e.writeMappingPair("small", 1e-7);
                  e.writeMappingPair("u", 4000000000u);
                  e.writeMappingPair("ll", -9000000000LL);
                  e.writeMappingPair("s", std::string("text"));
                  e.writeMappingPair("empty", std::string());
                  e.writeMappingPair("none", CYAMLSequence());
                  e.writeMappingPair("none", CYAMLMap());
                  e.writeMappingPair("none", CYAMLScalar());
                  CYAMLSequence seq(YAML_FLOW_SEQUENCE_STYLE);
                  seq.add(CYAMLScalar(1));
                  e.writeMappingPair("seq", seq);
                  e.writeMappingPair("k", "a: b");
                  e.writeMappingPair("lead", "    a = 5");
                  e.writeMappingPair("hash", "#x");
                  e.write("list"), e.sequenceStart(IEmitter::STYLE_FLOW);
                  e.write(""), e.write("a, b"), e.sequenceEnd();
                  e.writeMappingPair("ne", "caf\xc3\xa9 \xe2\x82\xac");
                  CYAMLMap scalars(YAML_FLOW_MAPPING_STYLE); // kept in insertion order
                  scalars.add(CYAMLScalar("b"), std::make_shared<CYAMLScalar>("1"));
                  scalars.add(CYAMLScalar("a"), std::make_shared<CYAMLScalar>("2"));
                  e.write("scalars"), e.writeMapOfScalars(scalars);
                  e.mapEnd();
              }));
}

TEST(CYAMLEmitterTest, HeaderAndExplicitDocumentsThroughTheFactory)
{
    auto stream = std::make_shared<CStringStream>();
    auto made = EmitterFactory::createYamlEmitter(stream);
    auto& emitter = dynamic_cast<CYAMLEmitter&>(*made);
    emitter.startStream("# header\n");
    emitter.startDocument(false), emitter.mapStart(), emitter.writeMappingPair("id", "t1");
    emitter.mapEnd(), emitter.endDocument(false);
    emitter.startDocument(false), emitter.writeMapStart(CYAMLMap());
    emitter.writeMappingPair("statistics", "none"), emitter.writeMapEnd();
    emitter.endDocumentAndStream();
    EXPECT_EQ("# header\n---\nid: t1\n...\n---\nstatistics: none\n...\n", stream->getString());
}

TEST(CYAMLEmitterTest, EmitFailuresNameTheCallAndLibyamlProblem)
{
    typedef std::function<void(CYAMLEmitter&)> Steps;
    // libyaml looks one event ahead behind a document start: the next call reports the fault.
    const std::vector<std::pair<const char*, Steps>> cases = {
        {"Emitter end stream error: expected STREAM-START\n", [](CYAMLEmitter& e) { e.endStream(); }},
        {"Emitter start stream error: expected DOCUMENT-START or STREAM-END\n",
         [](CYAMLEmitter& e) { e.startStream(), e.startStream(); }},
        {"YAML emitter error!\n  data:\n    error: expected DOCUMENT-START or STREAM-END\n    scalar: x\n",
         [](CYAMLEmitter& e) { e.startStream(), e.write("x"); }},
        {"Emitter end document error: expected nothing after STREAM-END\n",
         [](CYAMLEmitter& e) { e.startStream(), e.endStream(), e.startDocument(true), e.endDocument(true); }},
        {"YAML emitter error: expected SCALAR, SEQUENCE-START, MAPPING-START, or ALIAS\n",
         [](CYAMLEmitter& e) { e.startStream(), e.startDocument(true), e.mapEnd(); }},
        {"Emitter end document error: expected SCALAR, SEQUENCE-START, MAPPING-START, or ALIAS\n",
         [](CYAMLEmitter& e) {
             e.startStream(), e.startDocument(true), e.mapStart(), e.write("k"), e.write("v"), e.endDocument(true);
         }},
        // Collection starts have their own prefixes.
        {"YAML emitter error in sequence: expected nothing after STREAM-END\n",
         [](CYAMLEmitter& e) {
             e.startStream(), e.endStream(), e.mapStart(), e.write("a"), e.write("b"), e.write(CYAMLSequence());
         }},
        {"YAML m_emitter error: expected nothing after STREAM-END\n",
         [](CYAMLEmitter& e) { e.startStream(), e.endStream(), e.sequenceStart(), e.write("a"), e.write(CYAMLMap()); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.first);
        std::ostringstream out;
        CYAMLEmitter emitter(&out);
        EXPECT_EQ(c.first, failureOf<IOException>([&] { c.second(emitter); }));
        EXPECT_EQ("YAML emitter can not be used after an earlier error!\n",
                  failureOf<IllegalStateException>([&] { emitter.startStream(); }));
    }
}

TEST(CYAMLEmitterTest, RefusesUnknownObjectsAndBadText)
{
    EXPECT_EQ("Unknown YAML object type: 7\n", failureOf<IllegalStateException>([] {
                  emitted([](CYAMLEmitter& e) { e.write(kestrix_test::UnknownObject()); });
              }));
    CYAMLMap withList;
    withList.add(CYAMLScalar("list"), std::make_shared<CYAMLSequence>());
    EXPECT_EQ("This object is not a scalar. Type = 1\n", failureOf<IllegalStateException>([&] {
                  emitted([&](CYAMLEmitter& e) { e.writeMapOfScalars(withList); });
              }));
    std::ostringstream out;
    CYAMLEmitter emitter(&out);
    emitter.startStream(), emitter.startDocument(true), emitter.sequenceStart();
    EXPECT_EQ("CYAMLScalar::initStartEvent failed!\n  data:\n    anchor: \n    tag: \n    value: \xff\n"
              "    length: 1\n    plainImpicit: 1\n    quoedImplicit: 0\n    stryle: 0\n",
              failureOf<IOException>([&] { emitter.write("\xff"); }));
    // The emitter is still usable: the bad scalar never reached libyaml.
    emitter.write("ok"), emitter.sequenceEnd(), emitter.endDocument(true), emitter.endStream();
    EXPECT_EQ("- ok\n", out.str());
}

TEST(EmitterFactoryTest, MakesXmlEmittersAndRefusesNullStreams)
{
    auto xmlStream = std::make_shared<CStringStream>();
    auto xml = EmitterFactory::createXmlEmitter(xmlStream);
    xml->startStream(), xml->endStream();
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<main>\n</main>\n", xmlStream->getString());
    EXPECT_EQ("Output stream of the emitter is null!\n",
              failureOf<IllegalArgumentException>([] { EmitterFactory::createYamlEmitter(nullptr); }));
    EXPECT_EQ("Output stream of the emitter is null!\n",
              failureOf<IllegalArgumentException>([] { EmitterFactory::createXmlEmitter(nullptr); }));
}
