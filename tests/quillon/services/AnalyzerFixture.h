#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "services/AnalyzerError.h"
#include "services/CoverageService.h"
#include "services/DebugService.h"
#include "services/DocumentService.h"
#include "services/HilService.h"
#include "services/TestService.h"
#include "target/Target.h"

namespace quillon::services {

/// The analyzer firmware's board: flash and SRAM as its linker script has them, and the peripheral registers of
/// its UART (data register 0x40011004) and of its HIL channels (0x40020000...).
inline target::TargetConfig analyzerBoard()
{
    using target::MemoryArea;
    target::TargetConfig config;
    config.memory = {{"flash", 0x00000000, 0x40000, MemoryArea::Read | MemoryArea::Execute},
                     {"sram", 0x20000000, 0x10000, MemoryArea::Read | MemoryArea::Write | MemoryArea::Execute},
                     {"periph", 0x40000000, 0x30000, MemoryArea::Read | MemoryArea::Write}};
    return config;
}

inline constexpr std::uint32_t kUartData = 0x40011004;

/// Runs f and returns the AnalyzerError it throws; fails the test when it throws none.
template <class F> AnalyzerError analyzerError(F&& f)
{
    try {
        f();
    } catch (const AnalyzerError& e) {
        return e;
    }
    ADD_FAILURE() << "no AnalyzerError thrown";
    return AnalyzerError(AnalyzerError::Kind::Failed, "");
}

/// The analyzer firmware downloaded through a debug service, a test service to call its functions, and the
/// documents of an instance whose folder is a temporary one.
class AnalyzerFixture : public ::testing::Test {
protected:
    void SetUp() override
    {
        folder = std::filesystem::temp_directory_path()
                 / ("quillon-analyzers-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-"
                    + ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        target = std::make_unique<target::Target>(analyzerBoard());
        debug = std::make_unique<DebugService>(*target, std::vector<std::string>{elf()});
        debug->download();
        tests = std::make_unique<TestService>(*target, 2000000, [this] {
            return debug->symbols().programs().front().debugInfo();
        });
        makeDocuments({});
    }

    void TearDown() override
    {
        if (target->isRunning()) {
            debug->stop();
            debug->waitUntilStopped(std::chrono::seconds(10));
        }
        coverage.reset();
        documents.reset();
        tests.reset();
        std::filesystem::remove_all(folder);
    }

    static std::string elf() { return std::string(FIRMWARE_DIR) + "/analyzers.elf"; }

    void makeDocuments(std::vector<TraceTrigger> triggers, std::optional<std::uint32_t> uart = kUartData)
    {
        coverage.reset();
        documents = std::make_unique<DocumentService>(
            *target, debug->symbols(), DocumentService::Settings{folder, uart, std::move(triggers)});
        coverage = std::make_unique<CoverageService>(*documents);
    }

    /// Runs from the reset through the startup code to main's first line: .data holds its values then.
    void runToMain()
    {
        debug->runUntilFunction("main");
        ASSERT_TRUE(debug->waitUntilStopped(std::chrono::seconds(10)));
    }

    /// Runs on until the firmware's bkpt at the end of main.
    void runToEnd()
    {
        debug->run();
        ASSERT_TRUE(debug->waitUntilStopped(std::chrono::seconds(10)));
        ASSERT_EQ(debug->functionAt(target->pc()).value_or("?"), "main");
    }

    /// Calls `function` with the arguments (expressions) as a test; its return value as text ("" for void).
    std::string call(const std::string& function, const std::vector<std::string>& arguments = {},
                     bool returnsValue = true)
    {
        const std::uint32_t test = tests->createTest(function);
        if (returnsValue) {
            tests->createReturnValue(test, "rv");
        }
        for (unsigned i = 0; i < arguments.size(); ++i) {
            tests->createParameter(test, i, "p" + std::to_string(i));
        }
        tests->init(test);
        for (unsigned i = 0; i < arguments.size(); ++i) {
            tests->modify("p" + std::to_string(i), arguments[i]);
        }
        tests->run(test);
        EXPECT_TRUE(tests->waitWhileRunning(test, std::chrono::seconds(20)));
        EXPECT_EQ(tests->state(test), TestState::Ended) << tests->problem(test);
        const std::string result = returnsValue ? tests->evaluate("rv") : std::string();
        tests->destroyTest(test);
        return result;
    }

    /// Entry and size (in bytes, as the debug information has them) of a function.
    SymbolInfo function(const std::string& name) const
    {
        const auto info = debug->symbols().function(name);
        EXPECT_TRUE(info.has_value()) << name;
        return info.value_or(SymbolInfo{});
    }

    /// The file of the temporary folder as text.
    std::string fileText(const std::string& name) const
    {
        std::ifstream in(folder / name, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }

    std::filesystem::path folder;
    std::unique_ptr<target::Target> target;
    std::unique_ptr<DebugService> debug;
    std::unique_ptr<TestService> tests;
    std::unique_ptr<DocumentService> documents;
    std::unique_ptr<CoverageService> coverage;
};

} // namespace quillon::services
