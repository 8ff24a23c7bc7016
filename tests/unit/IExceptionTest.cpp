#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "Exceptions.h"

using namespace kestrix;

namespace {

const char* const PATH = "/src/lib/CDataController.cpp";

std::string positionOf(int line)
{
    return "  [/CDataController.cpp, " + std::to_string(line) + "]";
}

} // namespace

TEST(IException, ConstructorFormsBuildDescriptionAndPosition)
{
    EXPECT_EQ(std::string("text") + positionOf(385), IOException(PATH, 385, "text").what());
    EXPECT_EQ("Value: -12", IOException(PATH, 1, "Value: ", -12).getDesc());
    EXPECT_EQ("Integer expected: 12a", IOException(PATH, 1, "Integer expected: ", std::string("12a")).getDesc());
    EXPECT_EQ("Size 3/-4", IOException(PATH, 1, "Size ", 3, -4).getDesc());
    EXPECT_EQ(std::string("no separator  [plain.cpp, 7]"), IOException("plain.cpp", 7, "no separator").what());
}

TEST(IException, DataLinesFollowThePosition)
{
    IOException e(PATH, 10, "F. WriteMemory() failed. ");
    e.add("address", "0x100").add("bufferSize", 16).add("empty", "");
    EXPECT_EQ("F. WriteMemory() failed. " + positionOf(10) +
                  "\n"
                  "  data:\n"
                  "    address: 0x100\n"
                  "    bufferSize: 16\n"
                  "    empty: \n",
              e.what());
    EXPECT_EQ("  data:\n    address: 0x100\n    bufferSize: 16\n    empty: \n", e.getData());
}

TEST(IException, ToStringWithoutDataHasNoDataBlock)
{
    IllegalStateException e(PATH, 42, "Time measurement already started.");
    EXPECT_EQ("",  e.getData());
    EXPECT_EQ("error:\n"
              "  desc: Time measurement already started.\n"
              "  file: /CDataController.cpp\n"
              "  line: 42\n"
              "==========\n",
              e.toString());
}

TEST(IException, CauseIsPrintedWholeBehindTheSeparator)
{
    IllegalArgumentException inner(PATH, 1, "inner");
    inner.add("number", 5);
    ParserException outer("/a/b/CYAMLParser.cpp", 2, "outer", inner);
    EXPECT_EQ("outer  [/CYAMLParser.cpp, 2]", std::string(outer.what()));
    EXPECT_EQ("error:\n"
              "  desc: outer\n"
              "  file: /CYAMLParser.cpp\n"
              "  line: 2\n"
              "==========\n"
              "error:\n"
              "  desc: inner\n"
              "  data:\n"
              "    number: 5\n"
              "  file: /CDataController.cpp\n"
              "  line: 1\n"
              "==========\n",
              outer.toString());
    EXPECT_EQ(inner.toString(), outer.getCause());
}

TEST(IException, CopyKeepsEveryFieldAndTheThrownType)
{
    try {
        throw FileNotFoundException(PATH, 3, "missing").add("fileName", "a.yaml");
    } catch (const FileNotFoundException& e) {
        FileNotFoundException copy(e);
        EXPECT_STREQ(e.what(), copy.what());
        EXPECT_EQ(e.toString(), copy.toString());
        IOException other(PATH, 9, "other");
        other.assign(e);
        EXPECT_STREQ(e.what(), other.what());
        EXPECT_EQ(e.toString(), other.toString());
        return;
    }
    FAIL() << "add() must keep the thrown type";
}

// Only four members have a clause of their own at the exported boundary; the others must not
// be caught by one of those clauses.
template <typename E>
constexpr bool hasBoundaryClause = std::is_base_of_v<IllegalStateException, E> || std::is_base_of_v<IOException, E> ||
                                   std::is_base_of_v<IllegalArgumentException, E> ||
                                   std::is_base_of_v<SystemException, E>;
template <typename... E>
constexpr bool noBoundaryClause = ((std::is_base_of_v<IException, E> && !hasBoundaryClause<E>) && ...);
static_assert(noBoundaryClause<ParserException, FileNotFoundException, FeatureNotImplementedException,
                               IllegalSizeException, IndexOutOfBoundsException, VersionConflictException,
                               NoSuchMethodException>);
