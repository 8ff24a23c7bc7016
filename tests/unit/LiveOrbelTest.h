#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "ScopedEnvironment.h"

/// A test against the simulated Quillon of liborbel.so in the build folder, found through
/// ORBEL_PATH as a fresh checkout finds it; skipped while liborbel.so is not built. A derived
/// `SetUp` calls this one first and returns when `IsSkipped()`.
class LiveOrbelTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(buildDir() + "/liborbel.so")) {
            GTEST_SKIP() << "liborbel.so is not built in " << buildDir() << ": no simulated Quillon to connect to";
        }
        env.set("ORBEL_PATH", buildDir() + "/");
        env.unset("ORBEL_SHAREDMEM_PID");
        env.unset("ORBEL_TCP_PORT");
    }

    static std::string buildDir() { return ORBEL_BUILD_DIR; }

    /// An empty folder named after the running test.
    static std::string testFolder(const std::string& prefix)
    {
        const std::string folder = ::testing::TempDir() + prefix
                                   + ::testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        return folder;
    }

    ScopedEnvironment env;
};
