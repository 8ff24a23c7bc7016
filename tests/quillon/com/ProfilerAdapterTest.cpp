// OrbelProfiler2 over the profiler service: the records of a recording, the rooms of the reads, and the result
// codes and texts of what is refused.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "ComFixture.h"
#include "OrbelFlags.h"
#include "OrbelProfiler2.h"
#include "OrbelProfilerFlags.h"

namespace quillon::com::test {
namespace {

using namespace kestrix;
using Flags = OrbelProfilerFlags;

class ProfilerAdapterTest : public ComFixture {
protected:
    ProfilerAdapterTest() : profiler(query<OrbelProfiler2>(object, IID_OrbelProfiler2)) {}
    ~ProfilerAdapterTest() override { profiler->Release(); }

    /// An attached instance with the profiler firmware downloaded.
    void SetUp() override
    {
        WORD port = 0;
        ASSERT_EQ(S_OK, launch(OrbelFlags::lfStartNew, workspaceFile("ws.yaml"), &port));
        ASSERT_EQ(S_OK, attach(port));
        instance = registry.instances().at(0);
        instance->debug().downloadFile(std::string(FIRMWARE_DIR) + "/profiler.elf");
    }

    /// Runs the function with one argument as a test of the instance's test service, to its end.
    void runTest(const std::string& function, const std::string& argument)
    {
        services::TestService& tests = instance->test();
        const std::uint32_t handle = tests.createTest(function);
        tests.createParameter(handle, 0, "p0");
        tests.init(handle);
        tests.modify("p0", argument);
        tests.run(handle);
        ASSERT_TRUE(tests.waitWhileRunning(handle, std::chrono::seconds(20)));
        ASSERT_EQ(tests.state(handle), services::TestState::Ended);
        tests.clean(handle);
        tests.destroyTest(handle);
    }

    HRESULT addArea(DWORD flags, const char* name, SProfilerArea* area = nullptr, DWORD memArea = 0, DWORD start = 0,
                    DWORD extent = 0)
    {
        return profiler->AddArea(flags, area, name, memArea, start, extent, 0, nullptr);
    }

    HRESULT configure(DWORD flags = Flags::cfTimeStampCycles)
    {
        SProfilerStartingPoint none;
        return profiler->StartConfiguration(flags, &none);
    }

    std::vector<SProfilerStatistic> statistics(DWORD kind, DWORD handle = 0, DWORD value = 0, DWORD room = 50)
    {
        std::vector<SProfilerStatistic> records(room);
        DWORD count = room;
        EXPECT_EQ(S_OK, profiler->GetStatistics(kind, handle, 0, value, &count, records.data()));
        records.resize(count);
        return records;
    }

    std::uint32_t address(std::uint32_t flags, const std::string& name)
    {
        return instance->debug().findSymbol(flags, name).value().address & ~1u;
    }

    OrbelProfiler2* profiler;
    std::shared_ptr<Instance> instance;
};

TEST_F(ProfilerAdapterTest, ARecordingOfCodeAreasComesBackInItsRecords)
{
    SProfilerCapabilities capabilities;
    capabilities.m_dwVersion = 1;
    ASSERT_EQ(S_OK, profiler->GetCapabilities(sizeof capabilities, &capabilities));
    EXPECT_EQ(capabilities.m_dwVersion, 1u);
    const DWORD wanted = Flags::capAvailable | Flags::capStartingPoint | Flags::capProfileExec | Flags::capProfileData;
    EXPECT_EQ(capabilities.m_dwCapabilities & wanted, wanted) << "what the test run needs";
    EXPECT_GT(capabilities.m_dwNumExecAreas, 0u);
    EXPECT_GT(capabilities.m_dwNumDataAreas, 0u);

    ASSERT_EQ(S_OK, configure(Flags::cfTimeStampTime));
    SProfilerArea caller;
    ASSERT_EQ(S_OK, addArea(Flags::areaFunction, "caller", &caller));
    EXPECT_STREQ(caller.m_szName, "caller");
    EXPECT_EQ(caller.m_dwHandle, 1u);
    EXPECT_EQ(caller.m_aAddress, address(0x4000, "caller"));
    SProfilerArea leaf;
    ASSERT_EQ(S_OK, addArea(Flags::areaFunction | Flags::areaBit8, "leaf", &leaf));
    EXPECT_EQ(leaf.m_dwHandle, 2u);
    ASSERT_EQ(S_OK, profiler->Control(Flags::ctrlStart));
    runTest("caller", "4");

    SProfilerStatus status;
    ASSERT_EQ(S_OK, profiler->GetStatus(Flags::gsfNumRecorded, &status));
    EXPECT_EQ(status.m_byState, Flags::stateActive);
    EXPECT_EQ(status.m_byFlags & Flags::sbLoading, 0) << "the test ended: the results can be read";
    EXPECT_EQ(status.m_dwNumSamples, 10u) << "caller and four calls of leaf, in and out";
    ASSERT_EQ(S_OK, profiler->GetStatus(Flags::gsfNumAnalyzed, &status));
    EXPECT_EQ(status.m_dwNumSamples, 5u) << "five returns";

    const std::vector<SProfilerStatistic> all = statistics(Flags::selAll);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].m_dwHandle, 1u);
    EXPECT_EQ(all[0].m_dwNumHits, 1u);
    EXPECT_EQ(all[1].m_dwHandle, 2u);
    EXPECT_EQ(all[1].m_dwNumHits, 4u);
    EXPECT_EQ(all[1].m_dwValue, 0u);
    EXPECT_EQ(all[1].m_llMinTime, all[1].m_llMaxTime);
    EXPECT_EQ(all[1].m_llTotalTime, 4 * all[1].m_llMinTime);
    EXPECT_GT(all[0].m_llTotalTime, all[1].m_llTotalTime);
    const std::vector<SProfilerStatistic> one = statistics(Flags::selAll, 0, 0, 1);
    ASSERT_EQ(one.size(), 1u) << "room for one";
    EXPECT_EQ(one[0].m_dwHandle, 1u);
    EXPECT_EQ(statistics(Flags::selHandle, 2).size(), 1u);
    EXPECT_EQ(statistics(Flags::selHandleAndValue, 2, 1).size(), 0u) << "a code area has value 0 only";

    DWORD areas = 0;
    ASSERT_EQ(S_OK, profiler->GetAreaInfo(Flags::aiNumAreas, sizeof areas, &areas));
    EXPECT_EQ(areas, 2u);

    // The history: caller in, leaf in and out four times, caller out; read from index 3 on, two at a time.
    SProfilerHistory history[2];
    DWORD count = 2;
    ASSERT_EQ(S_OK, profiler->GetHistory(Flags::selAll, 0, 0, 0, 3, &count, history));
    ASSERT_EQ(count, 2u);
    EXPECT_EQ(history[0].m_dwHandle, 2u);
    EXPECT_EQ(history[0].m_dwValue, 0x80000000u) << "leaf's second entry";
    EXPECT_EQ(history[1].m_dwValue, 0u);
    EXPECT_LT(history[0].m_qwTime, history[1].m_qwTime);
    count = 2;
    ASSERT_EQ(S_OK, profiler->GetHistory(Flags::selAll, 0, 0, 0, 9, &count, history));
    EXPECT_EQ(count, 1u) << "one entry left from index 9";
    EXPECT_EQ(history[0].m_dwHandle, 1u);

    EXPECT_EQ(S_OK, profiler->Control(Flags::ctrlStop));
    EXPECT_EQ(S_FALSE, profiler->Control(Flags::ctrlStop)) << "no recording any more";
    ASSERT_EQ(S_OK, profiler->GetStatus(0, &status));
    EXPECT_EQ(status.m_byState, Flags::stateIdle);
}

TEST_F(ProfilerAdapterTest, DataAreasGiveOneRecordPerValue)
{
    ASSERT_EQ(S_OK, configure());
    ASSERT_EQ(S_OK, addArea(Flags::areaVariable, "g_state"));
    SProfilerArea region;
    ASSERT_EQ(S_OK, addArea(Flags::areaRegion, "low byte", &region, 0, address(0x1000, "g_state"), 1));
    EXPECT_EQ(region.m_aAddress, address(0x1000, "g_state"));
    ASSERT_EQ(S_OK, profiler->Control(Flags::ctrlStart));
    runTest("walk", "5"); // 0 1 2 0 1

    const std::vector<SProfilerStatistic> state = statistics(Flags::selHandle, 1);
    ASSERT_EQ(state.size(), 3u);
    for (DWORD value = 0; value < 3; ++value) {
        EXPECT_EQ(state[value].m_dwValue, value);
        EXPECT_EQ(state[value].m_dwNumHits, value == 2 ? 1u : 2u) << value;
    }
    const std::vector<SProfilerStatistic> ones = statistics(Flags::selHandleAndValue, 2, 1);
    ASSERT_EQ(ones.size(), 1u);
    EXPECT_EQ(ones[0].m_dwNumHits, 2u);

    SProfilerHistory writes[8];
    DWORD count = 8;
    ASSERT_EQ(S_OK, profiler->GetHistory(Flags::selHandleAndValue, 1, 0, 0, 0, &count, writes));
    EXPECT_EQ(count, 2u) << "two writes of 0";
}

TEST_F(ProfilerAdapterTest, AreasAreFoundByHandleNameAndAddress)
{
    ASSERT_EQ(S_OK, configure());
    ASSERT_EQ(S_OK, addArea(Flags::areaFunction, "leaf"));
    ASSERT_EQ(S_OK, addArea(Flags::areaVariable, "g_state"));

    SProfilerArea area;
    area.m_dwHandle = 2;
    ASSERT_EQ(S_OK, profiler->GetArea(Flags::keyHandle, sizeof area, &area));
    EXPECT_STREQ(area.m_szName, "g_state");
    EXPECT_EQ(area.m_aAddress, address(0x1000, "g_state"));

    area = SProfilerArea();
    std::strcpy(area.m_szName, "leaf");
    ASSERT_EQ(S_OK, profiler->GetArea(Flags::keyName, sizeof area, &area));
    EXPECT_EQ(area.m_dwHandle, 1u);

    area = SProfilerArea();
    area.m_aAddress = address(0x4000, "leaf");
    ASSERT_EQ(S_OK, profiler->GetArea(Flags::keyAddress, sizeof area, &area));
    EXPECT_STREQ(area.m_szName, "leaf");
}

TEST_F(ProfilerAdapterTest, RefusalsAnswerTheirCodeAndSayWhatIsWrong)
{
    ASSERT_EQ(ORBEL_E_ERROR, addArea(Flags::areaFunction, "leaf"));
    EXPECT_NE(lastError().second.find("no profiler configuration"), std::string::npos) << lastError().second;
    ASSERT_EQ(S_OK, configure());
    ASSERT_EQ(S_OK, addArea(Flags::areaFunction, "leaf"));

    SProfilerCapabilities capabilities;
    capabilities.m_dwVersion = 2;
    SProfilerStartingPoint startingPoint;
    SProfilerStatus status;
    SProfilerArea area;
    DWORD count = 4;
    SProfilerStatistic records[4];
    const DWORD routineExits[] = {0x10};
    struct Case {
        const char* what;
        std::function<HRESULT()> call;
        HRESULT code;
        const char* says;
    };
    const std::vector<Case> cases = {
        {"capabilities version", [&] { return profiler->GetCapabilities(sizeof capabilities, &capabilities); },
         E_INVALIDARG, "version 2"},
        {"short capabilities", [&] { return profiler->GetCapabilities(8, &capabilities); }, E_INVALIDARG, "24 bytes"},
        {"other time stamps", [&] { return profiler->StartConfiguration(Flags::cfTimeStampM3, nullptr); },
         ORBEL_E_NOT_AVAILABLE, "M3"},
        {"unknown flags", [&] { return profiler->StartConfiguration(7, nullptr); }, E_INVALIDARG, "0x00000007"},
        {"unknown event",
         [&] {
             startingPoint.m_byEvent = 5;
             return profiler->StartConfiguration(0, &startingPoint);
         },
         E_INVALIDARG, "event 5"},
        {"unknown function", [&] { return addArea(Flags::areaFunction, "nope"); }, ORBEL_E_BAD_ID, "'nope'"},
        {"same name", [&] { return addArea(Flags::areaFunction, "leaf"); }, ORBEL_E_BAD_ID, "exists already"},
        {"unknown kind", [&] { return addArea(0x50, "x"); }, ORBEL_E_BAD_ID, "kind 0x00000050"},
        {"no name", [&] { return addArea(Flags::areaFunction, nullptr); }, ORBEL_E_BAD_ID, "no area name"},
        {"other memory area", [&] { return addArea(Flags::areaRegion, "r", nullptr, 1, 0x20000000, 4); },
         ORBEL_E_BAD_ID, "memory area 1"},
        {"exits not given", [&] { return profiler->AddArea(Flags::areaRoutine, nullptr, "r", 0, 0x100, 8, 1, nullptr); },
         ORBEL_E_BAD_ID, "no list"},
        {"exit outside",
         [&] { return profiler->AddArea(Flags::areaRoutine, nullptr, "r", 0, 0x100, 8, 1, routineExits); },
         ORBEL_E_BAD_ID, "not in its code"},
        {"unknown command", [&] { return profiler->Control(3); }, E_INVALIDARG, "unknown command 3"},
        {"status flags", [&] { return profiler->GetStatus(5, &status); }, E_INVALIDARG, "status flags 5"},
        {"unknown selector", [&] { return profiler->GetStatistics(0x33, 0, 0, 0, &count, records); }, E_INVALIDARG,
         "selector 0x00000033"},
        {"other task", [&] { return profiler->GetStatistics(Flags::selTaskOnly, 0, 1, 0, &count, records); },
         ORBEL_E_NOT_AVAILABLE, "task 1"},
        {"unknown handle", [&] { return profiler->GetStatistics(Flags::selHandle, 99, 0, 0, &count, records); },
         ORBEL_E_BAD_ID, "handle 99"},
        {"no room", [&] { return profiler->GetHistory(Flags::selAll, 0, 0, 0, 0, &count, nullptr); }, E_INVALIDARG,
         "no room"},
        {"unknown area name",
         [&] {
             std::strcpy(area.m_szName, "nope");
             return profiler->GetArea(Flags::keyName, sizeof area, &area);
         },
         ORBEL_E_BAD_ID, "'nope'"},
        {"short area record", [&] { return profiler->GetArea(Flags::keyHandle, 100, &area); }, E_INVALIDARG, "264"},
        {"area information", [&] { return profiler->GetAreaInfo(1, 4, &count); }, E_INVALIDARG, "information 1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.code, c.call());
        const auto [held, text] = lastError();
        EXPECT_EQ(held, ORBEL_S_MSG_FAIL);
        EXPECT_EQ(text.rfind("OrbelProfiler2::", 0), 0u) << text;
        EXPECT_NE(text.find(c.says), std::string::npos) << text;
    }

    ASSERT_EQ(S_OK, configure());
    EXPECT_EQ(ORBEL_E_ERROR, profiler->Control(Flags::ctrlStart));
    EXPECT_NE(lastError().second.find("no area"), std::string::npos) << lastError().second;
}

TEST_F(ProfilerAdapterTest, WithoutAnInstanceEveryOperationSaysSo)
{
    ASSERT_EQ(S_OK, orbel->Detach(0));
    DWORD count = 0;
    EXPECT_EQ(ORBEL_E_NOT_CONNECTED, profiler->GetAreaInfo(0, 4, &count));
    EXPECT_EQ(ORBEL_E_NOT_CONNECTED, profiler->Control(Flags::ctrlStart));
    EXPECT_NE(lastError().second.find("not attached"), std::string::npos);
}

} // namespace
} // namespace quillon::com::test
