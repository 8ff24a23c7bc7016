#include "ServiceFixture.h"

namespace quillon::services {
namespace {

/// Conditions of the form "<global> == <number>" over the target's memory; records what it was asked.
class GlobalEqualsEngine : public ExpressionEngine {
public:
    GlobalEqualsEngine(const target::Target& target, std::uint32_t address) : m_target(target), m_address(address) {}

    ExpressionValue evaluate(const std::string&, std::uint32_t) override { throw std::runtime_error("unused"); }
    std::string modify(const std::string&, const ExpressionValue&, std::uint32_t) override { return {}; }
    std::string modify(const std::string&, const std::string&, std::uint32_t) override { return {}; }
    std::function<bool()> compileCondition(const std::string& condition) override
    {
        conditions.push_back(condition);
        auto equals = condition.find("== ");
        if (equals == std::string::npos) {
            throw std::runtime_error("syntax error in '" + condition + "'");
        }
        std::uint32_t wanted = static_cast<std::uint32_t>(std::stoul(condition.substr(equals + 3)));
        return [this, wanted] { return m_target.readWord(m_address) == wanted; };
    }

    std::vector<std::string> conditions;

private:
    const target::Target& m_target;
    std::uint32_t m_address;
};

class BreakpointTest : public ServiceFixture {
protected:
    std::uint32_t counter() const { return word(elfSymbol("g_counter")); }
    CpuStatus runToStop()
    {
        service->run();
        return stopped();
    }
    std::uint64_t hits(const BreakpointLocation& location) const
    {
        auto entry = service->breakpoint(location);
        EXPECT_TRUE(entry.has_value());
        return entry ? entry->hits : 0;
    }
};

TEST_F(BreakpointTest, FunctionBreakpointStopsAfterThePrologueAtEveryHit)
{
    auto tick = BreakpointLocation::function("tick");
    EXPECT_TRUE(service->setBreakpoint(tick));
    for (std::uint32_t pass = 0; pass < 3; ++pass) {
        CpuStatus status = runToStop();
        EXPECT_EQ(status.cause, StopCause::Breakpoint);
        EXPECT_EQ(status.pc, addressOfLine("g_counter++;"));
        EXPECT_EQ(counter(), pass); // tick's body has not run yet in this pass
    }
    EXPECT_EQ(hits(tick), 3u);
}

TEST_F(BreakpointTest, HitCountStopsAtEveryNthHit)
{
    auto tick = BreakpointLocation::function("tick");
    service->setBreakpoint(tick, 3);
    runToStop();
    EXPECT_EQ(counter(), 2u);
    EXPECT_EQ(hits(tick), 3u);
    runToStop();
    EXPECT_EQ(counter(), 5u);
    EXPECT_EQ(hits(tick), 6u);
}

TEST_F(BreakpointTest, LineAndAddressBreakpoints)
{
    service->setBreakpoint(BreakpointLocation::sourceLine("services_test.c", lineOf("g_total = twice(g_counter);")));
    CpuStatus status = runToStop();
    EXPECT_EQ(status.pc, addressOfLine("g_total = twice(g_counter);"));
    EXPECT_EQ(counter(), 1u);

    service->setBreakpoint(BreakpointLocation::at(elfSymbol("add")));
    status = runToStop();
    EXPECT_EQ(status.cause, StopCause::Breakpoint);
    EXPECT_EQ(status.pc, elfSymbol("add"));
    EXPECT_EQ(reg("r0"), 1u); // add(1, 1)
    EXPECT_EQ(reg("r1"), 1u);
}

TEST_F(BreakpointTest, DisabledBreakpointsDoNotStopAndCountNoHits)
{
    auto tick = BreakpointLocation::function("tick");
    auto add = BreakpointLocation::function("add");
    service->setBreakpoint(tick);
    service->setBreakpoint(add);
    service->enableBreakpoint(tick, false);
    runToStop();
    EXPECT_EQ(function(), "add");
    EXPECT_EQ(hits(tick), 0u);
    EXPECT_FALSE(service->breakpoint(tick)->settings.enabled);
    service->enableBreakpoint(tick, true);
    runToStop();
    EXPECT_EQ(function(), "tick");
}

TEST_F(BreakpointTest, OneBreakpointAnAddressWhicheverWayItIsNamed)
{
    auto line = BreakpointLocation::sourceLine("services_test.c", lineOf("g_counter++;"));
    EXPECT_TRUE(service->setBreakpoint(line));
    // tick's breakpoint address is its first body line: the same breakpoint
    EXPECT_FALSE(service->setBreakpoint(BreakpointLocation::function("tick"), 2));
    std::vector<BreakpointTable::Entry> list = service->breakpoints();
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].settings.kind, BreakpointTable::Kind::Function);
    EXPECT_EQ(list[0].settings.hitCount, 2u);
    EXPECT_EQ(BreakpointTable::describe(list[0].settings).rfind("function 'tick' at 0x", 0), 0u);
    service->deleteBreakpoint(line);
    EXPECT_TRUE(service->breakpoints().empty());

    ServiceError again = errorOf([&] { service->deleteBreakpoint(line); });
    EXPECT_EQ(again.kind(), ServiceError::Kind::NoBreakpoint);
    char expected[64];
    std::snprintf(expected, sizeof expected, "no breakpoint at 0x%08x",
                  static_cast<unsigned>(addressOfLine("g_counter++;")));
    EXPECT_STREQ(again.what(), expected);
}

TEST_F(BreakpointTest, LocationsThatDoNotResolve)
{
    struct Case {
        BreakpointLocation location;
        const char* message;
    };
    const Case cases[] = {
        {BreakpointLocation::function("nope"), "no function 'nope'"},
        {BreakpointLocation::sourceLine("services_test.c", 3), "no code at line 3 of 'services_test.c'"},
        {BreakpointLocation::sourceLine("other.c", 11), "no code at line 11 of 'other.c'"},
        {BreakpointLocation::at(0x30000000), "address 0x30000000 is outside the target's memory"},
        {BreakpointLocation::at(0x100, 1), "no memory area 1"},
    };
    for (const Case& c : cases) {
        ServiceError error = errorOf([&] { service->setBreakpoint(c.location); });
        EXPECT_EQ(error.kind(), ServiceError::Kind::NotFound) << c.message;
        EXPECT_STREQ(error.what(), c.message);
    }
    EXPECT_TRUE(service->breakpoints().empty());
}

TEST_F(BreakpointTest, ConditionsNeedTheExpressionEngine)
{
    ServiceError error = errorOf([&] { service->setBreakpoint(BreakpointLocation::function("tick"), 0, "g_counter == 3"); });
    EXPECT_EQ(error.kind(), ServiceError::Kind::NotAvailable);
    EXPECT_STREQ(error.what(), "breakpoint condition 'g_counter == 3': expressions are not available");
    EXPECT_TRUE(service->breakpoints().empty());
}

TEST_F(BreakpointTest, ConditionsStopOnlyWhereTheyHoldAndCountOnlyThosePasses)
{
    GlobalEqualsEngine engine(*target, elfSymbol("g_counter"));
    service->setExpressionEngine(&engine);
    auto tick = BreakpointLocation::function("tick");
    service->setBreakpoint(tick, 0, "g_counter == 3");
    EXPECT_EQ(engine.conditions, std::vector<std::string>{"g_counter == 3"});
    EXPECT_EQ(service->breakpoint(tick)->settings.condition, "g_counter == 3");
    CpuStatus status = runToStop();
    EXPECT_EQ(status.cause, StopCause::Breakpoint);
    EXPECT_EQ(counter(), 3u);
    EXPECT_EQ(hits(tick), 1u);

    ServiceError bad = errorOf([&] { service->setBreakpoint(BreakpointLocation::function("add"), 0, "g_counter <> 3"); });
    EXPECT_EQ(bad.kind(), ServiceError::Kind::Expression);
    EXPECT_STREQ(bad.what(), "breakpoint condition 'g_counter <> 3': syntax error in 'g_counter <> 3'");
}

TEST_F(BreakpointTest, HardwareBreakpointsAreLimitedAndSwitchedApart)
{
    const char* functions[] = {"add", "twice", "depth", "write_flash", "tick", "main"};
    for (const char* name : functions) {
        service->setBreakpoint(BreakpointLocation::function(name), 0, "", true);
    }
    ServiceError full = errorOf([&] { service->setBreakpoint(BreakpointLocation::at(elfSymbol("add") + 2), 0, "", true); });
    EXPECT_EQ(full.kind(), ServiceError::Kind::Failed);
    EXPECT_NE(std::string(full.what()).find("no free hardware breakpoint"), std::string::npos) << full.what();
    // replacing one of them needs no new comparator, nor does a software one
    service->setBreakpoint(BreakpointLocation::function("add"), 2, "", true);
    service->setBreakpoint(BreakpointLocation::at(elfSymbol("add") + 2));

    service->enableAllBreakpoints(true, false);
    for (const auto& entry : service->breakpoints()) {
        EXPECT_EQ(entry.settings.enabled, !entry.settings.hardware) << BreakpointTable::describe(entry.settings);
    }
    CpuStatus status = runToStop();
    EXPECT_EQ(status.pc, elfSymbol("add") + 2); // the only enabled one
    service->deleteAllBreakpoints();
    EXPECT_TRUE(service->breakpoints().empty());
    service->setBreakpoint(BreakpointLocation::function("tick"), 0, "", true); // comparators free again
}

TEST_F(BreakpointTest, ABreakpointAtTheStopDoesNotHoldTheNextRun)
{
    service->setBreakpoint(BreakpointLocation::function("tick"));
    runToStop();
    std::uint32_t pc = service->status().pc;
    runToStop();
    EXPECT_EQ(service->status().pc, pc);
    EXPECT_EQ(counter(), 1u); // one whole pass of the loop in between
}

} // namespace
} // namespace quillon::services
