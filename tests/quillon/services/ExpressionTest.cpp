#include "ServiceFixture.h"

namespace quillon::services {
namespace {

/// Answers "g_total" from the target's memory and takes assignments to it; anything else is unknown.
class GlobalEngine : public ExpressionEngine {
public:
    GlobalEngine(target::Target& target, std::uint32_t address) : m_target(target), m_address(address) {}

    ExpressionValue evaluate(const std::string& expression, std::uint32_t flags) override
    {
        lastFlags = flags;
        check(expression);
        std::uint32_t value = m_target.readWord(m_address);
        return ExpressionValue{ScalarType{ScalarType::Signed, 32}, value, std::to_string(value)};
    }
    std::string modify(const std::string& expression, const ExpressionValue& value, std::uint32_t) override
    {
        check(expression);
        auto bits = static_cast<std::uint32_t>(value.bits);
        m_target.writeMemory(m_address, &bits, 4);
        return std::to_string(bits);
    }
    std::string modify(const std::string& expression, const std::string& value, std::uint32_t flags) override
    {
        return modify(expression, ExpressionValue{ScalarType{ScalarType::Signed, 32}, std::stoull(value), value}, flags);
    }
    std::function<bool()> compileCondition(const std::string&) override { return [] { return true; }; }

    std::uint32_t lastFlags = 0;

private:
    static void check(const std::string& expression)
    {
        if (expression != "g_total") {
            throw std::runtime_error("no symbol '" + expression + "' in the current scope");
        }
    }

    target::Target& m_target;
    std::uint32_t m_address;
};

using ExpressionTest = ServiceFixture;

TEST_F(ExpressionTest, WithoutAnEngineExpressionsAreNotAvailable)
{
    ServiceError error = errorOf([&] { service->evaluate("g_total"); });
    EXPECT_EQ(error.kind(), ServiceError::Kind::NotAvailable);
    EXPECT_STREQ(error.what(), "evaluate 'g_total': expressions are not available");
    EXPECT_EQ(errorOf([&] { service->modify("g_total", "1"); }).kind(), ServiceError::Kind::NotAvailable);
}

TEST_F(ExpressionTest, EvaluateAndModifyGoToTheEngineAndItsFailuresNameTheProblem)
{
    GlobalEngine engine(*target, elfSymbol("g_total"));
    service->setExpressionEngine(&engine);
    runToMain();
    ExpressionValue value = service->evaluate("g_total", 0x01000100);
    EXPECT_EQ(value.text, "5");
    EXPECT_EQ(value.bits, 5u);
    EXPECT_EQ(engine.lastFlags, 0x01000100u);

    EXPECT_EQ(service->modify("g_total", "42"), "42");
    EXPECT_EQ(word(elfSymbol("g_total")), 42u);
    EXPECT_EQ(service->modify("g_total", ExpressionValue{ScalarType{ScalarType::Signed, 32}, 7, ""}), "7");
    EXPECT_EQ(service->evaluate("g_total").bits, 7u);

    ServiceError error = errorOf([&] { service->evaluate("x"); });
    EXPECT_EQ(error.kind(), ServiceError::Kind::Expression);
    EXPECT_STREQ(error.what(), "no symbol 'x' in the current scope");
}

} // namespace
} // namespace quillon::services
