#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "ServiceFixture.h"
#include "services/ExpressionEvaluatorEngine.h"

namespace quillon::services {
namespace {

/// The service with the expression engine over its programs.
class ExpressionEvaluatorEngineTest : public ServiceFixture {
protected:
    void SetUp() override
    {
        ServiceFixture::SetUp();
        engine = std::make_unique<ExpressionEvaluatorEngine>(*target, service->symbols());
        service->setExpressionEngine(engine.get());
    }
    void TearDown() override
    {
        service->stop();
        service->waitUntilStopped(std::chrono::seconds(5));
        service->setExpressionEngine(nullptr);
    }

    long long value(const std::string& expression)
    {
        return static_cast<long long>(service->evaluate(expression).bits);
    }

    std::unique_ptr<ExpressionEvaluatorEngine> engine;
};

TEST_F(ExpressionEvaluatorEngineTest, NamesResolveInTheStoppedFunctionFirst)
{
    service->setBreakpoint(BreakpointLocation::sourceLine("services_test.c", lineOf("int sum = a + b;")));
    service->run();
    stopped();
    ASSERT_EQ("add", function());
    const long long counter = value("g_counter");
    EXPECT_EQ(counter, value("a")) << "twice passes its x twice";
    EXPECT_EQ(2 * counter, value("a + b"));
    EXPECT_EQ(static_cast<long long>(service->status().pc), value("pc")) << "registers by plain name";
    EXPECT_EQ(4, value("g_table[3]"));
    const ExpressionValue table = service->evaluate("g_table");
    EXPECT_EQ(ScalarType::Compound, table.type.code);
    EXPECT_EQ(128u, table.type.bits) << "four words";
    const ExpressionValue a = service->evaluate("a,x");
    EXPECT_EQ((ScalarType{ScalarType::Signed, 32}), a.type);
    EXPECT_EQ(0u, a.text.rfind("0x", 0)) << a.text;
}

TEST_F(ExpressionEvaluatorEngineTest, ModifyTakesTypedValuesAndTexts)
{
    runToMain();
    EXPECT_EQ("9", service->modify("g_total", ExpressionValue{{ScalarType::Signed, 32}, 9, ""}));
    EXPECT_EQ(9u, word(elfSymbol("g_total")));
    EXPECT_EQ("12", service->modify("g_total", "g_total + 3"));
    EXPECT_EQ(12u, word(elfSymbol("g_total")));
    EXPECT_EQ(ServiceError::Kind::Expression, errorOf([&] { service->modify("g_table + 1", "2"); }).kind());
}

// Conditions run on the run thread at each pass, with the parameters of the function the breakpoint is in.
TEST_F(ExpressionEvaluatorEngineTest, ConditionsChooseThePassThatStops)
{
    struct Case {
        const char* function;
        const char* condition;
        const char* check;
        long long expected;
    };
    const Case cases[] = {
        {"tick", "g_counter == 4", "g_counter", 4},
        {"add", "a == 3", "b", 3},
        {"depth", "n == 1", "g_depth", 2},
        {"twice", "x > 2 && x % 2 == 0", "x", 4},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.condition);
        service->reset();
        service->setBreakpoint(BreakpointLocation::function(c.function), 0, c.condition);
        service->run();
        const CpuStatus status = stopped();
        EXPECT_EQ(StopCause::Breakpoint, status.cause) << status.message;
        EXPECT_EQ(c.function, function());
        EXPECT_EQ(c.expected, value(c.check));
        service->deleteAllBreakpoints();
    }
}

TEST_F(ExpressionEvaluatorEngineTest, AConditionIsCheckedWhenItIsSet)
{
    const ServiceError error =
        errorOf([&] { service->setBreakpoint(BreakpointLocation::function("tick"), 0, "g_counter =="); });
    EXPECT_EQ(ServiceError::Kind::Expression, error.kind());
    EXPECT_FALSE(service->breakpoint(BreakpointLocation::function("tick")).has_value());
}

TEST_F(ExpressionEvaluatorEngineTest, ARunningTargetIsNotEvaluated)
{
    runToMain();
    service->modify("g_counter", "2000"); // past the count where main faults: it loops for long
    service->run();
    const ServiceError error = errorOf([&] { service->evaluate("g_counter"); });
    EXPECT_EQ(ServiceError::Kind::Running, error.kind()) << error.what();
}

// A download in between replaces the programs that a condition set before was checked against.
TEST_F(ExpressionEvaluatorEngineTest, ConditionsOutliveADownload)
{
    service->setBreakpoint(BreakpointLocation::function("tick"), 0, "g_counter == 2");
    service->download();
    service->run();
    stopped();
    EXPECT_EQ("tick", function());
    EXPECT_EQ(2, value("g_counter"));
}

} // namespace
} // namespace quillon::services
