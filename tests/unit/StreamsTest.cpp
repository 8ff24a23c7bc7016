#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "CFileStream.h"
#include "CStringStream.h"
#include "IOException.h"
#include "StrStrMapIterator.h"
#include "IndexOutOfBoundsException.h"

using namespace kestrix;

namespace {

std::string contentsOf(const std::string& path)
{
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

class FileStreamTest : public ::testing::Test {
protected:
    void TearDown() override { std::remove(path.c_str()); }
    std::string path = ::testing::TempDir() + "kestrix_stream_test.txt";
};

} // namespace

TEST_F(FileStreamTest, TruncatesOrAppends)
{
    {
        CFileStream first(path);
        first.write("one\n");
        first.getStream() << "two\n";
        first.close();
    }
    {
        CFileStream appended(path, true);
        appended.write("three\n");
    }
    EXPECT_EQ("one\ntwo\nthree\n", contentsOf(path));
    {
        CFileStream truncated(path);
        truncated.write("");
        EXPECT_TRUE(truncated.getStream().good());
    }
    EXPECT_EQ("", contentsOf(path));
}

TEST_F(FileStreamTest, OpenFailureNamesFileAndMode)
{
    try {
        CFileStream stream("/nonexistent-dir/report.yaml", true);
        FAIL() << "opened a file in a missing directory";
    } catch (const IOException& e) {
        EXPECT_EQ("Can not open file for writing!", e.getDesc());
        EXPECT_EQ("  data:\n    fileNAme: /nonexistent-dir/report.yaml\n    isAppendMode: 1\n", e.getData());
    }
}

TEST_F(FileStreamTest, WriteAfterCloseFails)
{
    CFileStream stream(path);
    stream.close();
    try {
        stream.write("late");
        FAIL() << "wrote to a closed file";
    } catch (const IOException& e) {
        EXPECT_EQ("Can not write to file!", e.getDesc());
    }
}

TEST(CStringStream, KeepsItsTextAcrossReadsAndClose)
{
    CStringStream stream;
    stream.write("a: 1\n");
    stream.getStream() << "b: 2\n";
    EXPECT_EQ("a: 1\nb: 2\n", stream.getString());
    stream.close();
    stream.write("");
    EXPECT_EQ("a: 1\nb: 2\n", stream.getString());
}

TEST(StrStrMapIterator, WalksInKeyOrderAndRefusesPastTheEnd)
{
    StrStrMap map{{"b", "2"}, {"a", "1"}};
    StrStrMapIterator it(map);
    std::string seen;
    for (; it.isValid(); it.inc()) {
        seen += it.key() + "=" + it.value() + ";";
    }
    EXPECT_EQ("a=1;b=2;", seen);
    EXPECT_THROW(it.key(), IndexOutOfBoundsException);
    EXPECT_THROW(it.inc(), IndexOutOfBoundsException);

    StrStrMap empty;
    EXPECT_FALSE(StrStrMapIterator(empty).isValid());
}
