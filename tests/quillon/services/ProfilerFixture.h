#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "services/DebugService.h"
#include "services/ProfilerService.h"
#include "services/ServiceError.h"
#include "services/TestService.h"
#include "target/Target.h"

namespace quillon::services {

/// A profiler over the debugger and the test service of the board with the profiler firmware downloaded. The
/// firmware's functions run as tests, so that each run starts at a function's entry and ends at its return.
class ProfilerFixture : public ::testing::Test {
protected:
    /// A clock that does not divide a second evenly, so that times in nanoseconds are rounded.
    static constexpr std::uint64_t kClockHz = 12000000;

    void SetUp() override;

    /// Runs `function` with `arguments` as a test to its end, serving the stubs of `stubbed` (which return 0);
    /// the cycles the core ran for it.
    std::uint64_t runTest(const std::string& function, const std::vector<std::string>& arguments,
                          const std::vector<std::string>& stubbed = {});

    std::uint32_t symbolAddress(std::uint32_t flags, const std::string& name) const;
    std::uint32_t functionAddress(const std::string& name) const { return symbolAddress(DebugService::Functions, name); }
    std::uint32_t variableAddress(const std::string& name) const { return symbolAddress(DebugService::Variables, name); }

    /// Configures cycles as time base, adds the functions and starts.
    void recordFunctions(const std::vector<std::string>& functions);
    /// The statistics of an area (all its values).
    std::vector<ProfilerService::Statistic> statisticsOf(const std::string& area) const;
    /// The one statistic of a code area; hits 0 if it has none.
    ProfilerService::Statistic codeStatistic(const std::string& area) const;
    /// The statistic of one value of a data area; hits 0 if it has none.
    ProfilerService::Statistic valueStatistic(const std::string& area, std::uint32_t value) const;
    std::vector<ProfilerService::Event> historyOf(const std::string& area) const;

    std::unique_ptr<target::Target> target;
    std::unique_ptr<DebugService> debug;
    std::unique_ptr<TestService> tests;
    std::unique_ptr<ProfilerService> profiler;
};

/// The ServiceError that f throws; fails when it throws none.
template <class F> ServiceError profilerErrorOf(F&& f)
{
    try {
        f();
    } catch (const ServiceError& e) {
        return e;
    }
    ADD_FAILURE() << "no ServiceError thrown";
    return ServiceError(ServiceError::Kind::Failed, "");
}

} // namespace quillon::services
