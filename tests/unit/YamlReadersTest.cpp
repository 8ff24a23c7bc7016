#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "Exceptions.h"
#include "YamlFileReader.h"
#include "YamlStringReader.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using kestrix_test::failureOf;

namespace {

const std::string BANNER = "----------------------^----------------------\n"
                           "---------------------/ \\---------------------\n"
                           "--------------------/   \\--------------------\n";

std::string readAll(IKestrixYAMLInput& input, size_t chunk)
{
    std::string text;
    unsigned char buffer[16];
    size_t count;
    while ((count = input.read(buffer, chunk)) > 0) {
        text.append(reinterpret_cast<char*>(buffer), count);
    }
    return text;
}

class TempFile {
public:
    explicit TempFile(const std::string& content)
        : m_path(::testing::TempDir() + "yaml_reader_" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".yaml")
    {
        std::ofstream(m_path, std::ios::binary) << content;
    }
    ~TempFile() { std::remove(m_path.c_str()); }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

} // namespace

TEST(YamlStringReader, ReadsInChunksUpToTheEnd)
{
    YamlStringReader reader("0123456789abcdefXYZ");
    EXPECT_EQ("0123456789abcdefXYZ", readAll(reader, 7));
    unsigned char buffer[4];
    EXPECT_EQ(0u, reader.read(buffer, sizeof(buffer)));
}

TEST(YamlStringReader, ErrorContextPlacesCaretAndBannerBehindTheLineAtFault)
{
    struct Case {
        const char* text;
        size_t line, column;
        const char* message;
        int indent;
        std::string expected;
    };
    const std::vector<Case> cases = {
        {"a: 1\nb: 2\nc: 3", 1, 3, "Oops", 2,
         "\n  ---\n  a: 1\n  b: 2\n    ^\n  Error: Oops\n" + BANNER + "\n  c: 3\n  ---\n  [Line: 2  Col: 3]\n"},
        {"x\ny\n", 0, 0, "E", 1, "\n ---\n x\n ^\n Error: E\n" + BANNER + "\n y\n \n ---\n [Line: 1  Col: 0]\n"},
        // On a last line without a line end, what follows the banner is empty.
        {"a: 1\nb", 1, 0, "M", 6,
         "\n      ---\n      a: 1\n      b\n      ^\n      Error: M\n" + BANNER +
             "\n\n      ---\n      [Line: 2  Col: 0]\n"},
        // Behind a final line end the empty last line is not lost.
        {"k: [v\n", 1, 0, "end", 2,
         "\n  ---\n  k: [v\n  \n  ^\n  Error: end\n" + BANNER + "\n\n  ---\n  [Line: 2  Col: 0]\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        YamlStringReader reader(c.text);
        EXPECT_EQ(c.expected, reader.getErrorContext(c.line, c.column, c.message, c.indent));
    }
}

TEST(YamlFileReader, ReadsFromTheSeekPositionAndGivesOnlyPositionAndMessageAsContext)
{
    TempFile file("#### header\nkey: value\n");
    YamlFileReader reader(file.path(), 12);
    EXPECT_EQ("key: value\n", readAll(reader, 5));
    EXPECT_EQ("[Line: 3  Col: 4]\nError: bad thing", reader.getErrorContext(2, 4, "bad thing", 6));
}

TEST(YamlFileReader, OpenAndSeekFailuresAreIOExceptionsNamingTheFile)
{
    EXPECT_EQ("Can not open file with test specification!\n  data:\n    file: /nonexistent-dir/tests.yaml\n",
              failureOf<IOException>([] { YamlFileReader("/nonexistent-dir/tests.yaml", 0); }));
    TempFile file("a: b\n");
    EXPECT_EQ("Can not seek file with test specification!\n  data:\n    file: " + file.path() +
                  "\n    seekPos: -3\n    errno: 22\n",
              failureOf<IOException>([&] { YamlFileReader(file.path(), -3); }));
}
