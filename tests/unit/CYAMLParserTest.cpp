#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "CYAMLParser.h"
#include "CYAMLTestContentHandler.h"
#include "CYAMLUtil.h"
#include "Exceptions.h"
#include "RecordingReceiver.h"
#include "YamlStringReader.h"

using namespace kestrix;
using kestrix::testing::RecordingReceiver;

namespace {

typedef std::vector<std::string> Lines;

/// Parses `text` into `receiver` and returns the ParserException it must raise.
ParserException parseFailure(ITestParserEventReceiver& receiver, const std::string& text)
{
    try {
        CYAMLUtil::parseYAML(receiver, text);
    } catch (const ParserException& e) {
        return e;
    }
    ADD_FAILURE() << "no ParserException for: " << text;
    return ParserException(KX_POS, "none");
}

/// The "testSpecification" data item of a converted error.
std::string context(const IException& e)
{
    const std::string prefix = "  data:\n    testSpecification: ";
    EXPECT_EQ(0u, e.getData().rfind(prefix, 0)) << e.getData();
    return e.getData().substr(prefix.size());
}

/// A receiver whose `index`-th event throws `error`.
template <class E>
void throwAt(RecordingReceiver& receiver, size_t index, const E& error)
{
    receiver.beforeEvent = [index, error](size_t count) {
        if (count == index) {
            throw error;
        }
    };
}

/// A root receiver that gives up control at the end of its mapping.
class EndingReceiver : public RecordingReceiver {
public:
    ITestParserEventReceiver* mappingEnd() override
    {
        RecordingReceiver::mappingEnd();
        return nullptr;
    }
};

/// An input whose read fails.
class FailingInput : public IKestrixYAMLInput {
public:
    size_t read(unsigned char*, size_t) override { throw IOException(KX_POS, "disk gone"); }
    std::string getErrorContext(size_t, size_t, const std::string&, int) override { return ""; }
};

} // namespace

TEST(CYAMLParser, EmptyTextCallsNoReceiverOperation)
{
    RecordingReceiver receiver;
    CYAMLUtil::parseYAML(receiver, "");
    CYAMLUtil::parseYAML(receiver, "# only a comment\n");
    EXPECT_TRUE(receiver.events.empty());
}

TEST(CYAMLParser, KeysValuesAndItemsAlternateThroughNestedBlocks)
{
    RecordingReceiver receiver;
    CYAMLUtil::parseYAML(receiver, "id: t1\n"
                                   "params: [1, '2']\n"
                                   "stubs:\n"
                                   "  - func: f\n"
                                   "    ret: \"x\"\n"
                                   "after: &n 5\n");
    EXPECT_EQ((Lines{"+MAP", "key =VAL :id", "value =VAL :t1", "key =VAL :params", "+SEQ []",
                     "item =VAL :1", "item =VAL '2", "-SEQ", "key =VAL :stubs", "+SEQ", "+MAP",
                     "key =VAL :func", "value =VAL :f", "key =VAL :ret", "value =VAL \"x", "-MAP",
                     "-SEQ", "key =VAL :after", "value =VAL &n :5", "-MAP"}),
              receiver.events);
}

TEST(CYAMLParser, MappingAsKeyMovesToTheValuePosition)
{
    RecordingReceiver receiver;
    CYAMLUtil::parseYAML(receiver, "? {a: b}\n: c\nd: e\n");
    EXPECT_EQ((Lines{"+MAP", "+MAP {}", "key =VAL :a", "value =VAL :b", "-MAP", "value =VAL :c",
                     "key =VAL :d", "value =VAL :e", "-MAP"}),
              receiver.events);
}

TEST(CYAMLParser, AliasOfAScalarDeliversItsValueAsAPlainScalar)
{
    RecordingReceiver receiver;
    CYAMLUtil::parseYAML(receiver, "- &x 'first'\n- *x\n- &x second\n- *x\n");
    EXPECT_EQ((Lines{"+SEQ", "item =VAL &x 'first", "item =VAL :first", "item =VAL &x :second",
                     "item =VAL :second", "-SEQ"}),
              receiver.events);
}

TEST(CYAMLParser, UndefinedAnchorNamesTheAliasAndItsLine)
{
    RecordingReceiver receiver;
    ParserException e = parseFailure(receiver, "a: 1\nb: *nowhere\n");
    EXPECT_EQ("Illegal argument", e.getDesc());
    std::string text = context(e);
    EXPECT_NE(std::string::npos, text.find("Error: Undefined anchor: nowhere  [/CYAMLTestContentHandler.cpp, "))
        << text;
    EXPECT_NE(std::string::npos, text.find("[Line: 2  Col: 11]")) << text;
    EXPECT_EQ((Lines{"+MAP", "key =VAL :a", "value =VAL :1", "key =VAL :b"}), receiver.events)
        << "the receiver keeps what came before the error";
}

TEST(CYAMLParser, AliasOfACollectionIsRefusedWithAReason)
{
    RecordingReceiver receiver;
    ParserException e = parseFailure(receiver, "base: &b {x: 1}\nderived: *b\n");
    std::string text = context(e);
    EXPECT_NE(std::string::npos, text.find("Error: Undefined anchor: b  [")) << text;
    EXPECT_NE(std::string::npos, text.find("reason: aliases of mappings and sequences are not supported"))
        << text;
    EXPECT_NE(std::string::npos, text.find("[Line: 2  Col: 11]")) << text;
}

TEST(CYAMLParser, ScalarAnchorRedefinedOnACollectionIsNoLongerAScalar)
{
    RecordingReceiver receiver;
    ParserException e = parseFailure(receiver, "- &a 1\n- &a [2]\n- *a\n");
    EXPECT_NE(std::string::npos, context(e).find("Undefined anchor: a")) << context(e);
}

TEST(CYAMLParser, RootScalarIsAStandaloneScalar)
{
    RecordingReceiver receiver;
    ParserException e = parseFailure(receiver, "just text\n");
    EXPECT_EQ("Illegal argument", e.getDesc());
    EXPECT_NE(std::string::npos,
              context(e).find("Error: Standalone scalar not allowed. It should be member of mapping or "
                              "sequence: just text  ["))
        << context(e);
}

TEST(CYAMLParser, SyntaxErrorShowsTheWholeExcerpt)
{
    RecordingReceiver receiver;
    ParserException e = parseFailure(receiver, "a: 1\nb: [2\nc: 3\n");
    EXPECT_EQ("YAML syntax error", e.getDesc());
    EXPECT_EQ("\n"
              "      ---\n"
              "      a: 1\n"
              "      b: [2\n"
              "      c: 3\n"
              "       ^\n"
              "      Error: Cannot parse the input stream. did not find expected ',' or ']'\n"
              "----------------------^----------------------\n"
              "---------------------/ \\---------------------\n"
              "--------------------/   \\--------------------\n"
              "\n"
              "      \n"
              "      ---\n"
              "      [Line: 3  Col: 2]\n"
              "\n",
              context(e));
}

TEST(CYAMLParser, TabIndentIsASyntaxErrorWithCaretUnderItsLine)
{
    RecordingReceiver receiver;
    ParserException e = parseFailure(receiver, "a:\n\tb: 1\n");
    EXPECT_EQ("YAML syntax error", e.getDesc());
    std::string text = context(e);
    EXPECT_NE(std::string::npos,
              text.find("      \tb: 1\n      ^\n      Error: Cannot scan the input stream. found character "
                        "that cannot start any token\n"))
        << text;
    EXPECT_NE(std::string::npos, text.find("[Line: 2  Col: 0]")) << text;
}

TEST(CYAMLParser, SyntaxErrorInAFileGivesPositionAndMessageOnly)
{
    std::string path = ::testing::TempDir() + "parser_syntax_error.yaml";
    std::ofstream(path) << "ignored: [\nbad\n# seek lands here\na:\n\tb: 1\n";
    RecordingReceiver receiver;
    try {
        CYAMLUtil::parseYAML(receiver, path, 15);
        ADD_FAILURE() << "no exception";
    } catch (const ParserException& e) {
        EXPECT_EQ("YAML syntax error", e.getDesc());
        EXPECT_EQ("[Line: 3  Col: 0]\nError: Cannot scan the input stream. found character that cannot "
                  "start any token\n",
                  context(e));
    }
    std::remove(path.c_str());
}

TEST(CYAMLParser, ReceiverExceptionsAreConvertedByKind)
{
    struct Case {
        std::function<void(RecordingReceiver&)> arm;
        const char* desc;
        const char* cause;
    };
    const std::vector<Case> cases = {
        {[](RecordingReceiver& r) { throwAt(r, 2, IOException(KX_POS, "io")); }, "IO error", "io"},
        {[](RecordingReceiver& r) { throwAt(r, 2, IllegalStateException(KX_POS, "st")); }, "Illegal state", "st"},
        {[](RecordingReceiver& r) { throwAt(r, 2, IllegalArgumentException(KX_POS, "ar")); }, "Illegal argument",
         "ar"},
        {[](RecordingReceiver& r) { throwAt(r, 2, NoSuchMethodException(KX_POS, "ns")); }, "Illegal argument",
         "ns"},
    };
    for (const Case& c : cases) {
        RecordingReceiver receiver;
        c.arm(receiver);
        ParserException e = parseFailure(receiver, "k1: v1\nk2: v2\n");
        EXPECT_EQ(c.desc, e.getDesc());
        std::string text = context(e);
        EXPECT_NE(std::string::npos, text.find(std::string("Error: ") + c.cause + "  [/CYAMLParserTest.cpp, "))
            << text;
        EXPECT_NE(std::string::npos, text.find("[Line: 2  Col: 0]")) << text;
    }
}

TEST(CYAMLParser, ReaderExceptionLeavesUnconverted)
{
    RecordingReceiver receiver;
    CYAMLTestContentHandler handler(&receiver);
    CYAMLParser parser;
    parser.setContentHandler(&handler);
    FailingInput input;
    EXPECT_THROW(parser.parse(input), IOException);
}

TEST(CYAMLParser, ParserWithoutHandlerOrUsedTwiceRefuses)
{
    CYAMLParser parser;
    YamlStringReader input("a: b");
    EXPECT_THROW(parser.parse(input), IllegalStateException);
    RecordingReceiver receiver;
    CYAMLTestContentHandler handler(&receiver);
    parser.setContentHandler(&handler);
    parser.parse(input);
    EXPECT_THROW(parser.parse(input), IllegalStateException);
}

TEST(CYAMLParser, SecondDocumentGoesToTheReceiverThatTheFirstLeft)
{
    RecordingReceiver receiver;
    CYAMLUtil::parseYAML(receiver, "a: 1\n---\n- b\n");
    EXPECT_EQ((Lines{"+MAP", "key =VAL :a", "value =VAL :1", "-MAP", "+SEQ", "item =VAL :b", "-SEQ"}),
              receiver.events);
}

TEST(CYAMLParser, ContentBehindARootBlockThatLeftNoReceiverIsRefused)
{
    EndingReceiver receiver;
    ParserException e = parseFailure(receiver, "a: 1\n---\nb: 2\n");
    EXPECT_EQ("Illegal argument", e.getDesc());
    std::string text = context(e);
    EXPECT_NE(std::string::npos,
              text.find("Error: Unexpected YAML content after the end of the root block. Only one YAML "
                        "document is allowed!"))
        << text;
    EXPECT_NE(std::string::npos, text.find("[Line: 3  Col: 2]")) << text;
    EXPECT_EQ((Lines{"+MAP", "key =VAL :a", "value =VAL :1", "-MAP"}), receiver.events);

    EndingReceiver second;
    ParserException scalarDocument = parseFailure(second, "a: 1\n--- text\n");
    EXPECT_NE(std::string::npos, context(scalarDocument).find("Error: Unexpected YAML content after the end"))
        << context(scalarDocument);
}
