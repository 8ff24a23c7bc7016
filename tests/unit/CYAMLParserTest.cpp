#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "CYAMLParser.h"
#include "CYAMLTestContentHandler.h"
#include "CYAMLUtil.h"
#include "Exceptions.h"
#include "YamlTestSupport.h"
#include "YamlStringReader.h"

using namespace kestrix;
using kestrix_test::failureOf;
using kestrix_test::RecordingReceiver;

namespace {

typedef std::vector<std::string> Lines;

/// The ParserException of parsing `text` into `receiver`: its description and its context (the
/// "testSpecification" data item); both empty when the text parses.
std::pair<std::string, std::string> parseError(ITestParserEventReceiver& receiver, const std::string& text)
{
    const std::string failure = failureOf<ParserException>([&] { CYAMLUtil::parseYAML(receiver, text); });
    const std::string key = "\n  data:\n    testSpecification: ";
    const size_t at = failure.find(key);
    if (failure == "no exception" || at == std::string::npos) {
        return {failure == "no exception" ? "" : failure, ""};
    }
    return {failure.substr(0, at), failure.substr(at + key.size())};
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

TEST(CYAMLParser, ReceiverGetsEachNodeInItsRoleUpToARefusalNamingItsCauseAndPosition)
{
    struct Case {
        const char* input;
        Lines events;      // what the receiver gets (before the error)
        const char* desc;  // of the error, "" when the input parses
        Lines fragments;   // of the error's context
        bool endingRoot = false;
    };
    const char* const behindRoot =
        "Error: Unexpected YAML content after the end of the root block. Only one YAML document is allowed!";
    const std::vector<Case> cases = {
        {"", {}, "", {}},
        {"# only a comment\n", {}, "", {}},
        {"id: t1\nparams: [1, '2']\nstubs:\n  - func: f\n    ret: \"x\"\nafter: &n 5\n",
         {"+MAP", "key =VAL :id", "value =VAL :t1", "key =VAL :params", "+SEQ []", "item =VAL :1", "item =VAL '2",
          "-SEQ", "key =VAL :stubs", "+SEQ", "+MAP", "key =VAL :func", "value =VAL :f", "key =VAL :ret",
          "value =VAL \"x", "-MAP", "-SEQ", "key =VAL :after", "value =VAL &n :5", "-MAP"},
         "", {}},
        // A mapping as key moves the next scalar to the value position.
        {"? {a: b}\n: c\nd: e\n",
         {"+MAP", "+MAP {}", "key =VAL :a", "value =VAL :b", "-MAP", "value =VAL :c", "key =VAL :d", "value =VAL :e",
          "-MAP"},
         "", {}},
        // An alias of a scalar delivers the anchored value as a plain scalar.
        {"- &x 'first'\n- *x\n- &x second\n- *x\n",
         {"+SEQ", "item =VAL &x 'first", "item =VAL :first", "item =VAL &x :second", "item =VAL :second", "-SEQ"}, "",
         {}},
        // A second document goes to the receiver that the first left.
        {"a: 1\n---\n- b\n", {"+MAP", "key =VAL :a", "value =VAL :1", "-MAP", "+SEQ", "item =VAL :b", "-SEQ"}, "", {}},
        {"a: 1\nb: *nowhere\n", {"+MAP", "key =VAL :a", "value =VAL :1", "key =VAL :b"}, "Illegal argument",
         {"Error: Undefined anchor: nowhere  [/CYAMLTestContentHandler.cpp, ", "[Line: 2  Col: 11]"}},
        {"base: &b {x: 1}\nderived: *b\n",
         {"+MAP", "key =VAL :base", "+MAP {} &b", "key =VAL :x", "value =VAL :1", "-MAP", "key =VAL :derived"},
         "Illegal argument",
         {"Error: Undefined anchor: b  [", "reason: aliases of mappings and sequences are not supported",
          "[Line: 2  Col: 11]"}},
        // A scalar anchor redefined on a collection is no longer a scalar.
        {"- &a 1\n- &a [2]\n- *a\n", {"+SEQ", "item =VAL &a :1", "+SEQ [] &a", "item =VAL :2", "-SEQ"},
         "Illegal argument", {"Error: Undefined anchor: a  ["}},
        {"just text\n", {}, "Illegal argument",
         {"Error: Standalone scalar not allowed. It should be member of mapping or sequence: just text  ["}},
        {"a:\n\tb: 1\n", {"+MAP", "key =VAL :a"}, "YAML syntax error",
         {"      \tb: 1\n      ^\n      Error: Cannot scan the input stream. found character that cannot start "
          "any token\n",
          "[Line: 2  Col: 0]"}},
        // Content behind a root block whose receiver gave up control.
        {"a: 1\n---\nb: 2\n", {"+MAP", "key =VAL :a", "value =VAL :1", "-MAP"}, "Illegal argument",
         {behindRoot, "[Line: 3  Col: 2]"}, true},
        {"a: 1\n--- text\n", {"+MAP", "key =VAL :a", "value =VAL :1", "-MAP"}, "Illegal argument", {behindRoot}, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.input);
        RecordingReceiver plain;
        EndingReceiver ending;
        RecordingReceiver& receiver = c.endingRoot ? ending : plain;
        const auto [desc, text] = parseError(receiver, c.input);
        EXPECT_EQ(c.desc, desc);
        for (const std::string& fragment : c.fragments) {
            EXPECT_NE(std::string::npos, text.find(fragment)) << fragment << "\nin: " << text;
        }
        EXPECT_EQ(c.events, receiver.events);
    }
}

TEST(CYAMLParser, SyntaxErrorShowsTheWholeExcerpt)
{
    RecordingReceiver receiver;
    const auto [desc, text] = parseError(receiver, "a: 1\nb: [2\nc: 3\n");
    EXPECT_EQ("YAML syntax error", desc);
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
              text);
}

TEST(CYAMLParser, SyntaxErrorInAFileGivesPositionAndMessageOnly)
{
    std::string path = ::testing::TempDir() + "parser_syntax_error.yaml";
    std::ofstream(path) << "ignored: [\nbad\n# seek lands here\na:\n\tb: 1\n";
    RecordingReceiver receiver;
    EXPECT_EQ("YAML syntax error\n  data:\n    testSpecification: [Line: 3  Col: 0]\n"
              "Error: Cannot scan the input stream. found character that cannot start any token\n",
              failureOf<ParserException>([&] { CYAMLUtil::parseYAML(receiver, path, 15); }));
    std::remove(path.c_str());
}

TEST(CYAMLParser, ReceiverExceptionsAreConvertedByKind)
{
    const std::vector<std::tuple<std::function<void()>, const char*, const char*>> cases = {
        {[] { throw IOException(KX_POS, "io"); }, "IO error", "io"},
        {[] { throw IllegalStateException(KX_POS, "st"); }, "Illegal state", "st"},
        {[] { throw IllegalArgumentException(KX_POS, "ar"); }, "Illegal argument", "ar"},
        {[] { throw NoSuchMethodException(KX_POS, "ns"); }, "Illegal argument", "ns"},
    };
    for (const auto& [raise, desc, cause] : cases) {
        RecordingReceiver receiver;
        const std::function<void()>& thrower = raise;
        receiver.beforeEvent = [&thrower](size_t count) { count == 2 ? thrower() : void(); };
        const auto [kind, text] = parseError(receiver, "k1: v1\nk2: v2\n");
        EXPECT_EQ(desc, kind);
        EXPECT_NE(std::string::npos, text.find(std::string("Error: ") + cause + "  [/CYAMLParserTest.cpp, ")) << text;
        EXPECT_NE(std::string::npos, text.find("[Line: 2  Col: 0]")) << text;
    }
}

TEST(CYAMLParser, RefusesUseWithoutHandlerOrTwiceAndLeavesReaderErrorsUnconverted)
{
    CYAMLParser parser;
    YamlStringReader input("a: b");
    EXPECT_THROW(parser.parse(input), IllegalStateException);
    RecordingReceiver receiver;
    CYAMLTestContentHandler handler(&receiver);
    parser.setContentHandler(&handler);
    parser.parse(input);
    EXPECT_THROW(parser.parse(input), IllegalStateException);

    // Driven by hand, the handler refuses an end without a start.
    EXPECT_EQ("End of a mapping or sequence that was not started!\n",
              failureOf<ParserException>([&] { handler.sequenceEnd(); }));

    CYAMLParser failing;
    failing.setContentHandler(&handler);
    FailingInput broken;
    EXPECT_THROW(failing.parse(broken), IOException);
}
