#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "services/Loader.h"
#include "services/TestService.h"
#include "target/Target.h"

namespace quillon::services {

target::TargetConfig boardConfig();

/// A test service on the example board with one ELF downloaded.
class TestServiceFixture : public ::testing::Test {
protected:
    static std::string testFirmware() { return std::string(FIRMWARE_DIR) + "/testsvc.elf"; }
    static std::string exampleFirmware() { return std::string(KESTRIX_SOURCE_DIR) + "/examples/firmware/build/firmware.elf"; }

    void load(const std::string& elf, std::uint64_t maxInstructions = 2000000)
    {
        target = std::make_unique<target::Target>(boardConfig());
        programs = Loader(*target).download({elf});
        tests = std::make_unique<TestService>(*target, maxInstructions,
                                              [this] { return programs.front().debugInfo(); });
    }

    /// Runs the test on and waits for its next stop.
    TestState runOn(std::uint32_t test)
    {
        tests->run(test);
        EXPECT_TRUE(tests->waitWhileRunning(test, std::chrono::seconds(20)));
        return tests->state(test);
    }

    /// A test of `function` with its parameters named p0, p1, ... set to `values` and its return value named rv.
    std::uint32_t initialized(const std::string& function, const std::vector<std::string>& values,
                              const std::string& returnName = "rv")
    {
        const std::uint32_t test = tests->createTest(function);
        tests->createReturnValue(test, returnName);
        for (unsigned i = 0; i < values.size(); ++i) {
            tests->createParameter(test, i, "p" + std::to_string(i));
        }
        tests->init(test);
        for (unsigned i = 0; i < values.size(); ++i) {
            tests->modify("p" + std::to_string(i), values[i]);
        }
        return test;
    }

    /// The TestError of f; fails when f throws none.
    template <class F> TestError errorOf(F&& f)
    {
        try {
            f();
        } catch (const TestError& error) {
            return error;
        }
        ADD_FAILURE() << "no TestError";
        return TestError(TestError::Kind::Io, "");
    }

    /// The line of the test firmware's source that holds `text`.
    static unsigned sourceLine(const std::string& text)
    {
        std::ifstream in(std::string(KESTRIX_SOURCE_DIR) + "/tests/firmware/testsvc/testsvc.c");
        std::string line;
        for (unsigned number = 1; std::getline(in, line); ++number) {
            if (line.find(text) != std::string::npos) {
                return number;
            }
        }
        return 0;
    }

    std::unique_ptr<target::Target> target;
    std::vector<Program> programs;
    std::unique_ptr<TestService> tests;
};

} // namespace quillon::services
