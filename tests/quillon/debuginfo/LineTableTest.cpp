#include "DebugInfoFixture.h"

#include "debuginfo/SourcePath.h"

#include <gtest/gtest.h>

#include <tuple>

namespace quillon::debuginfo::test {
namespace {

const LineTable& lines()
{
    return firmware().lines();
}

TEST(LineTable, LineToAddressesAndBack)
{
    const unsigned line = markerLine("functions.c", "@accumulate");
    const std::vector<std::uint32_t> addresses = lines().addresses("functions.c", line);
    ASSERT_EQ(addresses.size(), 1u);
    const Function* sum = firmware().findFunction("sum_points");
    EXPECT_TRUE(sum->contains(addresses.front()));
    auto back = lines().find(addresses.front());
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(back->file, sourcePath("functions.c"));
    EXPECT_EQ(back->line, line);
    EXPECT_EQ(back->address, addresses.front());
    EXPECT_TRUE(lines().isStatementStart(addresses.front()));
}

TEST(LineTable, AForLoopLineHasCodeInSeveralPlaces)
{
    // Initialisation before the body, condition and increment after it.
    const std::vector<std::uint32_t> addresses = lines().addresses("functions.c", markerLine("functions.c", "@loop"));
    ASSERT_GE(addresses.size(), 2u);
    EXPECT_TRUE(std::is_sorted(addresses.begin(), addresses.end()));
    EXPECT_EQ(std::adjacent_find(addresses.begin(), addresses.end()), addresses.end());
    const std::uint32_t body = lines().addresses("functions.c", markerLine("functions.c", "@accumulate")).front();
    EXPECT_LT(addresses.front(), body);
    EXPECT_GT(addresses.back(), body);
    for (std::uint32_t address : addresses) {
        EXPECT_EQ(firmware().functionAt(address), firmware().findFunction("sum_points"));
    }
}

TEST(LineTable, FilesMatchByFullPathOrTrailingComponents)
{
    const unsigned line = markerLine("functions.c", "@accumulate");
    const std::vector<std::uint32_t> expected = lines().addresses(sourcePath("functions.c"), line);
    ASSERT_FALSE(expected.empty());
    for (const char* file : {"functions.c", "debuginfo/functions.c", "firmware/debuginfo/functions.c"}) {
        EXPECT_EQ(lines().addresses(file, line), expected) << file;
    }
    for (const char* file : {"unctions.c", "/functions.c", "FUNCTIONS.C", "functions", ""}) {
        EXPECT_TRUE(lines().addresses(file, line).empty()) << file;
    }
    for (const std::string& file : lines().files()) {
        EXPECT_EQ(file.front(), '/') << file;
        EXPECT_EQ(file.find("/../"), std::string::npos) << file;
    }
}

TEST(LineTable, LinesWithoutCodeAndAddressesOutsideIt)
{
    const unsigned comment = markerLine("functions.c", "/* Functions with parameters");
    ASSERT_GT(comment, 0u);
    for (unsigned line : {comment, 0u, 100000u}) {
        EXPECT_TRUE(lines().addresses("functions.c", line).empty()) << line;
    }
    EXPECT_FALSE(lines().find(0x20000000).has_value());
    EXPECT_FALSE(lines().find(0x00030000).has_value());
    EXPECT_FALSE(lines().lineRange(0x20000000).has_value());
    EXPECT_FALSE(lines().isStatementStart(0x20000000));
}

// Each instruction of a function belongs to a line of the function's own file (nothing is inlined
// across files here). This also holds where the DWARF of code the linker dropped overlaps real
// code: unused_function's lines sit at 0 .. 0x20, over the vector table and Reset_Handler.
TEST(LineTable, EveryInstructionMapsToItsFunctionsFile)
{
    for (const Function& f : firmware().functions()) {
        if (f.declFile.empty()) {
            continue; // assembler without declarations
        }
        for (std::uint32_t address = f.extent().low; address < f.extent().high; address += 2) {
            auto line = lines().find(address);
            ASSERT_TRUE(line.has_value()) << f.name << " at " << address;
            EXPECT_EQ(line->file, f.declFile) << f.name << " at " << address;
            EXPECT_GE(line->line, f.declLine) << f.name << " at " << address;
        }
    }
}

TEST(LineTable, StepRangesCoverAFunctionLineByLine)
{
    const Function* sum = firmware().findFunction("sum_points");
    std::uint32_t pc = sum->entry;
    std::vector<unsigned> seen;
    while (sum->contains(pc)) {
        auto range = lines().lineRange(pc);
        ASSERT_TRUE(range.has_value());
        ASSERT_TRUE(range->contains(pc));
        const unsigned line = lines().find(pc)->line;
        // The whole range is that one line; where it ends, another line's statement begins.
        for (std::uint32_t inside = pc; inside < range->high; inside += 2) {
            EXPECT_EQ(lines().find(inside)->line, line);
        }
        if (sum->contains(range->high)) {
            EXPECT_TRUE(lines().isStatementStart(range->high));
            EXPECT_NE(lines().find(range->high)->line, line);
        }
        seen.push_back(line);
        pc = range->high;
    }
    // The opening brace (on the line below the declaration), the body's lines, the closing brace.
    EXPECT_GE(seen.size(), 6u);
    EXPECT_EQ(seen.front(), sum->declLine + 1);
    EXPECT_NE(std::find(seen.begin(), seen.end(), markerLine("functions.c", "@accumulate")), seen.end());
}

TEST(LineTable, BreakpointsOnFunctionsStopAfterThePrologue)
{
    for (const char* name : {"sum_points", "main", "point_add", "fill"}) {
        const Function* f = firmware().findFunction(name);
        const std::uint32_t address = firmware().breakpointAddress(*f);
        EXPECT_GT(address, f->entry) << name;
        EXPECT_TRUE(f->contains(address)) << name;
        EXPECT_TRUE(lines().isStatementStart(address)) << name;
        EXPECT_GT(lines().find(address)->line, f->declLine) << name; // a line of the body
    }
    // Optimized code: the locations hold from the first instruction.
    const Function* checksum = firmware().findFunction("checksum");
    EXPECT_EQ(firmware().breakpointAddress(*checksum), checksum->entry);
}

TEST(SourcePath, JoinsAndResolvesByText)
{
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"/build/gcc", "../../libgcc/x.S", "/libgcc/x.S"},
        {"/work", "src/./main.c", "/work/src/main.c"},
        {"/work", "/abs/main.c", "/abs/main.c"},
        {"", "rel/../main.c", "main.c"},
        {"/a", "../../../x.c", "/x.c"},
        {"", "../x.c", "../x.c"},
    };
    for (const auto& [dir, path, full] : cases) {
        EXPECT_EQ(SourcePath::full(dir, path), full) << dir << " + " << path;
    }
}

} // namespace
} // namespace quillon::debuginfo::test
