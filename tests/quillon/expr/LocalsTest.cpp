// Parameters and locals of an -Og function at breakpoints, and its caller's frame.
#include "ExprFixture.h"

namespace quillon::expr::test {
namespace {

class LocalsTest : public ExprFixture {
protected:
    /// Runs on to the first address of the line that holds the marker in optimized.c.
    void runToMarker(const std::string& marker)
    {
        const unsigned line = markerLine("optimized.c", marker);
        ASSERT_NE(line, 0u) << marker;
        const std::vector<std::uint32_t> addresses = firmware().lines().addresses("optimized.c", line);
        ASSERT_FALSE(addresses.empty()) << marker;
        runToAddress(addresses.front());
    }
};

TEST_F(LocalsTest, ParametersAndLocalsInsideTheLoop)
{
    runToMarker("@loop");
    // locals_demo(4, 3, &local) with local = {1, 2}; first pass: i = 0, total = 0.
    EXPECT_EQ(text("count"), "4");
    EXPECT_EQ(text("step"), "3");
    EXPECT_EQ(text("i"), "0");
    EXPECT_EQ(text("total"), "0");
    EXPECT_EQ(text("*where"), "{x = 1, y = 2}");
    EXPECT_EQ(text("where->y + count * step"), "14");
    EXPECT_EQ(evaluate("step").typeName, "int16_t");

    runToMarker("@loop"); // i = 1: total += 3 * 1
    EXPECT_EQ(text("i"), "1");
    EXPECT_EQ(text("total"), "3");
    runToMarker("@loop"); // i = 2: total += 3 * 2
    EXPECT_EQ(text("total == 9 && i == 2"), "1");
}

TEST_F(LocalsTest, LocalsInRegistersCanBeAssigned)
{
    runToMarker("@loop");
    EXPECT_EQ(text("total = 100"), "100");
    EXPECT_EQ(text("total"), "100");
    EXPECT_EQ(error("&total"), "cannot take the address of a register (column 1)");
    // The loop goes on from the new total: 100 + 3 * 1 on the next pass.
    runToMarker("@loop");
    EXPECT_EQ(text("total"), "103");
}

TEST_F(LocalsTest, AfterTheLoop)
{
    runToMarker("@after");
    // total = 3 * (0 + 1 + 2 + 3); where->x was just set to it.
    EXPECT_EQ(text("where->x"), "18");
    EXPECT_EQ(text("g_sink"), "18");
    const std::string wide = [&]() {
        try {
            return text("wide");
        } catch (const ExprError& error) {
            return std::string(error.what());
        }
    }();
    // 4 << 33, unless the compiler kept no location for it here.
    EXPECT_TRUE(wide == "34359738368" || wide == "'wide' is optimized out (column 1)") << wide;
}

TEST_F(LocalsTest, TheCallersFrame)
{
    runToMarker("@loop");
    EXPECT_EQ(text("local", 1), "{x = 1, y = 2}");
    EXPECT_EQ(text("&local", 1), text("where", 0));
    EXPECT_EQ(error("count + 0").empty(), true);
    EXPECT_THROW(text("count", 1), ExprError);
    EXPECT_THROW(text("1", 5), ExprError);
}

TEST_F(LocalsTest, UnitStaticsAndOuterNamesWithoutFrameInformation)
{
    runTo("hidden_value");
    EXPECT_EQ(text("s_hidden"), "77");
    EXPECT_EQ(error("count"), "no symbol 'count' in the current scope (column 1)");
}

} // namespace
} // namespace quillon::expr::test
