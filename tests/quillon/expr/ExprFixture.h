#pragma once

#include "debuginfo/DebugInfo.h"
#include "expr/ExprError.h"
#include "expr/ExpressionEvaluator.h"
#include "expr/ScopeChain.h"
#include "target/Target.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>

namespace quillon::expr::test {

inline const debuginfo::DebugInfo& firmware()
{
    static const debuginfo::DebugInfo info = debuginfo::DebugInfo::open(std::string(FIRMWARE_DIR) + "/expr.elf");
    return info;
}

/// The line of the expression firmware's file that holds `marker`; 0 if none.
inline unsigned markerLine(const std::string& file, const std::string& marker)
{
    std::ifstream in(std::string(KESTRIX_SOURCE_DIR) + "/tests/firmware/expr/" + file);
    std::string text;
    for (unsigned line = 1; std::getline(in, text); ++line) {
        if (text.find(marker) != std::string::npos) {
            return line;
        }
    }
    return 0;
}

/// A target with the expression firmware downloaded, reset and stopped at main.
class ExprFixture : public ::testing::Test {
protected:
    void SetUp() override
    {
        target::TargetConfig config;
        config.memory.push_back({"flash", 0x00000000, 0x40000, 1 | 4});
        config.memory.push_back({"sram", 0x20000000, 0x10000, 1 | 2 | 4});
        target = std::make_unique<target::Target>(config);
        for (const auto& segment : firmware().elf().segments()) {
            if (!segment.bytes.empty()) {
                target->writeMemory(segment.physicalAddress, segment.bytes);
            }
        }
        target->reset();
        runTo("main");
    }

    /// Runs on to the first line of the function's body.
    void runTo(const std::string& function)
    {
        const debuginfo::Function* found = firmware().findFunction(function);
        ASSERT_NE(found, nullptr) << function;
        runToAddress(firmware().breakpointAddress(*found));
    }

    void runToAddress(std::uint32_t address)
    {
        target->setBreakpoint(address);
        const target::StopInfo stop = target->runToStop();
        target->removeBreakpoint(address);
        ASSERT_EQ(stop.reason, target::StopReason::Breakpoint) << stop.message;
        ASSERT_EQ(stop.pc, address);
    }

    EvaluationResult evaluate(const std::string& expression, unsigned frame = 0)
    {
        const ScopeChain scopes = ScopeChain::forStop(firmware(), *target, frame);
        ExpressionEvaluator evaluator(firmware(), *target, scopes, callOptions);
        return evaluator.evaluate(expression);
    }

    std::string text(const std::string& expression, unsigned frame = 0) { return evaluate(expression, frame).text; }

    EvaluationResult modify(const std::string& lvalue, const std::string& value)
    {
        const ScopeChain scopes = ScopeChain::forStop(firmware(), *target);
        ExpressionEvaluator evaluator(firmware(), *target, scopes, callOptions);
        return evaluator.modify(lvalue, value);
    }

    /// The message of the ExprError the expression raises; empty if it raises none.
    std::string error(const std::string& expression)
    {
        try {
            evaluate(expression);
        } catch (const ExprError& failure) {
            return failure.what();
        }
        return "";
    }

    std::uint32_t address(const std::string& global) const { return *firmware().findGlobal(global)->address; }

    FunctionCaller::Options callOptions{1000000, 0x9FFFFF00};
    std::unique_ptr<target::Target> target;
};

} // namespace quillon::expr::test
