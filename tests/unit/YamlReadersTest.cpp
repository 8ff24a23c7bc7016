#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "Exceptions.h"
#include "YamlFileReader.h"
#include "YamlStringReader.h"

using namespace kestrix;

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
    YamlStringReader reader("a: 1\nb: 2\nc: 3");
    EXPECT_EQ("\n"
              "  ---\n"
              "  a: 1\n"
              "  b: 2\n"
              "    ^\n"
              "  Error: Oops\n" +
                  BANNER +
                  "\n"
                  "  c: 3\n"
                  "  ---\n"
                  "  [Line: 2  Col: 3]\n",
              reader.getErrorContext(1, 3, "Oops", 2));
}

TEST(YamlStringReader, ErrorContextOnTheFirstLineWithColumnZero)
{
    YamlStringReader reader("x\ny\n");
    EXPECT_EQ("\n"
              " ---\n"
              " x\n"
              " ^\n"
              " Error: E\n" +
                  BANNER +
                  "\n"
                  " y\n"
                  " \n"
                  " ---\n"
                  " [Line: 1  Col: 0]\n",
              reader.getErrorContext(0, 0, "E", 1));
}

TEST(YamlStringReader, ErrorContextOnALastLineWithoutLineEndGoesBehindTheText)
{
    YamlStringReader reader("a: 1\nb");
    EXPECT_EQ("\n"
              "      ---\n"
              "      a: 1\n"
              "      b\n"
              "      ^\n"
              "      Error: M\n" +
                  BANNER +
                  "\n"
                  "\n"
                  "      ---\n"
                  "      [Line: 2  Col: 0]\n",
              reader.getErrorContext(1, 0, "M", 6));
}

TEST(YamlStringReader, ErrorContextBehindAFinalLineEndIsNotLost)
{
    YamlStringReader reader("k: [v\n");
    EXPECT_EQ("\n"
              "  ---\n"
              "  k: [v\n"
              "  \n"
              "  ^\n"
              "  Error: end\n" +
                  BANNER +
                  "\n"
                  "\n"
                  "  ---\n"
                  "  [Line: 2  Col: 0]\n",
              reader.getErrorContext(1, 0, "end", 2));
}

TEST(YamlFileReader, ReadsFromTheSeekPosition)
{
    TempFile file("#### header\nkey: value\n");
    YamlFileReader reader(file.path(), 12);
    EXPECT_EQ("key: value\n", readAll(reader, 5));
}

TEST(YamlFileReader, ErrorContextIsThePositionAndTheMessage)
{
    TempFile file("a: b\n");
    YamlFileReader reader(file.path(), 0);
    EXPECT_EQ("[Line: 3  Col: 4]\nError: bad thing", reader.getErrorContext(2, 4, "bad thing", 6));
}

TEST(YamlFileReader, MissingFileIsAnIOExceptionNamingTheFile)
{
    try {
        YamlFileReader reader("/nonexistent-dir/tests.yaml", 0);
        FAIL() << "no exception";
    } catch (const IOException& e) {
        EXPECT_EQ("Can not open file with test specification!", e.getDesc());
        EXPECT_EQ("  data:\n    file: /nonexistent-dir/tests.yaml\n", e.getData());
    }
}

TEST(YamlFileReader, FailedSeekIsAnIOExceptionWithPositionAndErrno)
{
    TempFile file("a: b\n");
    try {
        YamlFileReader reader(file.path(), -3);
        FAIL() << "no exception";
    } catch (const IOException& e) {
        EXPECT_EQ("Can not seek file with test specification!", e.getDesc());
        EXPECT_EQ("  data:\n    file: " + file.path() + "\n    seekPos: -3\n    errno: 22\n", e.getData());
    }
}
