// CProfilerController against the recording double: the calls of each operation, the records
// in and out, and the failures with their texts.

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <dlfcn.h>
#include <functional>
#include <string>
#include <vector>

#include "CProfilerController.h"
#include "ControllerTestSupport.h"
#include "FakeProfiler.h"
#include "IOException.h"
#include "OrbelResults.h"

using namespace kestrix;

namespace {

typedef fakeorbel::ProfilerAnswers* (*ProfilerAnswersFunction)();
typedef std::vector<std::string> Calls;

class CProfilerControllerTest : public ControllerTest {
protected:
    void SetUp() override
    {
        ControllerTest::SetUp();
        m_library = dlopen(library("whole").c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(nullptr, m_library) << dlerror();
        auto answersOf = reinterpret_cast<ProfilerAnswersFunction>(dlsym(m_library, "fakeorbel_profiler_answers"));
        ASSERT_NE(nullptr, answersOf);
        m_answers = answersOf();
        *m_answers = fakeorbel::ProfilerAnswers();
    }

    void TearDown() override
    {
        m_profiler.reset();
        useConnection(nullptr);
        if (m_answers != nullptr) {
            *m_answers = fakeorbel::ProfilerAnswers();
        }
        if (m_library != nullptr) {
            dlclose(m_library);
        }
        ControllerTest::TearDown();
    }

    fakeorbel::ProfilerAnswers& profilerAnswers() { return *m_answers; }
    CProfilerController& profiler()
    {
        if (!m_profiler) {
            m_profiler = std::make_unique<CProfilerController>(mgr());
        }
        return *m_profiler;
    }
    Calls profilerCalls() const { return calls("Profiler."); }

    /// Desc of an IOException: `text` followed by the text of `hr`.
    static std::string failure(const std::string& text, HRESULT hr) { return text + WrapperBase::resultCodeText(hr); }

private:
    void* m_library = nullptr;
    fakeorbel::ProfilerAnswers* m_answers = nullptr;
    std::unique_ptr<CProfilerController> m_profiler;
};

TEST_F(CProfilerControllerTest, CapabilitiesComeFromTheSixWords)
{
    profilerAnswers().getCapabilities = [](DWORD, SProfilerCapabilities* caps) {
        caps->m_dwCapabilities = 0x95; // bits 0, 2, 4, 7
        caps->m_dwNumExecAreas = 12;
        caps->m_dwNumDataAreas = 34;
        caps->m_dwSingleDataWidth = 0x1220;
        return S_OK;
    };
    const CProfilerCapabilities caps = profiler().getCapabilities();
    EXPECT_EQ(Calls{"Profiler.GetCapabilities(24, version 1)"}, profilerCalls());
    // Each flag is its own bit; the width is the low 8 bits of its word.
    EXPECT_EQ("CProfilerCapabilities:\n  numExecAreas: 12\n  numDataAreas: 34\n  singleDataWidth: 32\n"
              "  isAvailable: 1\n  canUseStartingPoint: 0\n  canProfileExec: 1\n  canProfileFuncLines: 0\n"
              "  canProfileData: 1\n  isSingleData: 0\n  isSingleDataAddress: 0\n  isSingleDataSize: 1",
              caps.toString());

    profilerAnswers().getCapabilities = [](DWORD, SProfilerCapabilities* caps) {
        caps->m_dwVersion = 2;
        return S_OK;
    };
    EXPECT_EQ("Unknown capabilities returned: 2",
              thrownBy<IOException>([&] { profiler().getCapabilities(); }).getDesc());
    profilerAnswers().getCapabilities = [](DWORD, SProfilerCapabilities*) { return E_FAIL; };
    EXPECT_EQ(failure("CProfilerController::getCapabilities() failed!", E_FAIL),
              thrownBy<IOException>([&] { profiler().getCapabilities(); }).getDesc());
}

TEST_F(CProfilerControllerTest, EveryFormOfStartConfigurationEndsInOneStartingPoint)
{
    profilerAnswers().startConfiguration = [](DWORD, SProfilerStartingPoint*) { return S_OK; };
    answers().getAddress = [](DWORD, const char*, BYTE* area, ADDRESS* address, DWORD*, SType*) {
        *area = 0;
        *address = 0x4A0;
        return S_OK;
    };
    profiler().startConfiguration(1);
    profiler().startConfiguration(0, 3, 0x1234);
    profiler().startConfiguration(0x12, "main");
    SProfilerStartingPoint custom;
    custom.m_byEvent = 1;
    custom.m_byMemArea = 2;
    custom.m_aAddress = 0x88;
    profiler().startConfiguration(1, custom);
    EXPECT_EQ((Calls{"Profiler.StartConfiguration(1, event 0, area 0, 0x0)",
                     "Profiler.StartConfiguration(0, event 1, area 3, 0x1234)",
                     "Profiler.StartConfiguration(18, event 1, area 0, 0x4A0)",
                     "Profiler.StartConfiguration(1, event 1, area 2, 0x88)"}),
              profilerCalls());
    EXPECT_EQ(1u, calls("OrbelDebug.GetAddress(0x4000, main").size()) << "the function by gafFunctions";

    answers().getAddress = [](DWORD, const char*, BYTE*, ADDRESS*, DWORD*, SType*) { return S_FALSE; };
    EXPECT_EQ(failure("Can not get function address: nowhere", S_FALSE),
              thrownBy<IOException>([&] { profiler().startConfiguration(1, "nowhere"); }).getDesc());
    EXPECT_EQ(4u, profilerCalls().size()) << "no configuration without the address";
    profilerAnswers().startConfiguration = [](DWORD, SProfilerStartingPoint*) { return ORBEL_E_NOT_CONNECTED; };
    EXPECT_EQ(failure("CProfilerController::startConfiguration() failed!", ORBEL_E_NOT_CONNECTED),
              thrownBy<IOException>([&] { profiler().startConfiguration(1); }).getDesc());
}

TEST_F(CProfilerControllerTest, AreasGoWithTheirKindAndBits)
{
    profilerAnswers().addArea = [](DWORD, SProfilerArea* area, const char*, DWORD, DWORD, DWORD, DWORD, const DWORD*) {
        return area != nullptr ? S_OK : E_FAIL;
    };
    startLogger();
    profiler().addFunction("f");
    profiler().addFunction("g", true);
    profiler().addVariable("v");
    profiler().addVariable("w", true, true);
    profiler().addRegion("r", true, true, 0, 0x1000, 0x20);
    profiler().addRegion("s", false, true, 1, 0x2000, 4);
    profiler().addRoutine("rt", 0, 0x100, 0x40, VectorDWORD{0x120, 0x13E});
    profiler().addRoutine("bare", 0, 0x200, 8, VectorDWORD());
    EXPECT_EQ((Calls{"Profiler.AddArea(0x10, data, f, 0, 0x0, 0x0, 0)", "Profiler.AddArea(0x110, data, g, 0, 0x0, 0x0, 0)",
                     "Profiler.AddArea(0x30, data, v, 0, 0x0, 0x0, 0)", "Profiler.AddArea(0x330, data, w, 0, 0x0, 0x0, 0)",
                     "Profiler.AddArea(0x340, data, r, 0, 0x1000, 0x20, 0)",
                     "Profiler.AddArea(0x240, data, s, 1, 0x2000, 0x4, 0)",
                     "Profiler.AddArea(0x20, data, rt, 0, 0x100, 0x40, 2, 0x120, 0x13E)",
                     "Profiler.AddArea(0x20, data, bare, 0, 0x200, 0x8, 0)"}),
              profilerCalls());
    // The routine's exits as a script list, a line per item.
    const std::string script = loggedScript();
    EXPECT_NE(std::string::npos, script.find("exits = kestrix.orbel.VectorDWORD([\n288\n, \n318\n, \n])\n"
                                             "profilerCtrl.addRoutine(\"rt\", 0, 256, 64, exits);\n"))
        << script;

    for (const auto& c : {std::make_pair(ORBEL_E_BAD_ID, std::string("The area could not be added. Either an area with "
                                                                      "that name already exists, or parameters are not "
                                                                      "valid.")),
                          std::make_pair(ORBEL_E_ERROR, std::string("CProfilerController::_addArea() failed!"))}) {
        profilerAnswers().addArea = [&](DWORD, SProfilerArea*, const char*, DWORD, DWORD, DWORD, DWORD,
                                        const DWORD*) { return c.first; };
        EXPECT_EQ(failure(c.second, c.first), thrownBy<IOException>([&] { profiler().addVariable("x"); }).getDesc());
    }
}

TEST_F(CProfilerControllerTest, AreaQueries)
{
    profilerAnswers().getAreaInfo = [](DWORD, DWORD, DWORD* value) {
        *value = 7;
        return S_OK;
    };
    EXPECT_EQ(7u, profiler().getNumAreas());
    profilerAnswers().getArea = [](DWORD, DWORD, SProfilerArea* area) {
        std::strcpy(area->m_szName, "answered");
        area->m_dwHandle = 9;
        area->m_aAddress = 0x800;
        return S_OK;
    };
    EXPECT_EQ("CAreaProperties:\n  areaName: answered\n  handle: 9\n  address: 2048",
              profiler().getAreaProperties("compute").toString());
    profiler().getAreaProperties(DWORD{5});
    profiler().getAreaProperties(0, 0x400);
    profiler().getAreaProperties(4, 0x400);
    profiler().getAreaProperties(std::string(255, 'a'));
    EXPECT_EQ((Calls{"Profiler.GetAreaInfo(0, 4)", "Profiler.GetArea(1, 264, 'compute', 0, 0x0)",
                     "Profiler.GetArea(0, 264, '', 5, 0x0)", "Profiler.GetArea(2, 264, '', 0, 0x400)",
                     "Profiler.GetArea(6, 264, '', 0, 0x0)", "Profiler.GetArea(1, 264, '" + std::string(255, 'a') +
                                                                  "', 0, 0x0)"}),
              profilerCalls());

    const std::string longName(256, 'b');
    IOException e = thrownBy<IOException>([&] { profiler().getAreaProperties(longName); });
    EXPECT_EQ("Area name to long!", e.getDesc());
    EXPECT_EQ("  data:\n    area: " + longName + "\n    areaNameLen: 256\n    maxAreaNameLen: 256\n", e.getData());
    EXPECT_EQ(6u, profilerCalls().size()) << "Quillon is not asked";

    profilerAnswers().getAreaInfo = [](DWORD, DWORD, DWORD*) { return E_FAIL; };
    EXPECT_EQ(failure("kestrix::CProfilerController::getNumAreasfailed: ", E_FAIL),
              thrownBy<IOException>([&] { profiler().getNumAreas(); }).getDesc());
    profilerAnswers().getArea = [](DWORD, DWORD, SProfilerArea*) { return ORBEL_E_BAD_ID; };
    e = thrownBy<IOException>([&] { profiler().getAreaProperties(DWORD{12}); });
    EXPECT_EQ("kestrix::CProfilerController::getResultAreafailed!", e.getDesc());
    EXPECT_EQ("  data:\n    stdError: " + WrapperBase::resultCodeText(ORBEL_E_BAD_ID) +
                  "\n    areaName: \n    areaHandle: 12\n    areaAddress: 0\n",
              e.getData());
}

TEST_F(CProfilerControllerTest, StartAndStopAnswers)
{
    struct Case {
        DWORD what;
        HRESULT hr;
        const char* text; // null: no exception
        bool stopped;
    };
    const std::vector<Case> cases = {
        {1, S_OK, nullptr, false},
        {1, ORBEL_E_ERROR,
         "Profiler can not be started. Either the configuration is invalid or the profileris not available.", false},
        {1, E_FAIL, "CProfilerController::start() failed! ", false},
        {2, S_OK, nullptr, true},
        {2, S_FALSE, nullptr, false},
        {2, ORBEL_E_ERROR, "Profiler can not be stopped.", false},
        {2, E_NOTIMPL, "CProfilerController::stop() failed! ", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.what) + " answered " + std::to_string(c.hr));
        profilerAnswers().control = [&](DWORD) { return c.hr; };
        const std::function<void()> call = [&] {
            if (c.what == 1) {
                profiler().start();
            } else {
                EXPECT_EQ(c.stopped, profiler().stop());
            }
        };
        if (c.text == nullptr) {
            EXPECT_NO_THROW(call());
        } else {
            EXPECT_EQ(failure(c.text, c.hr), thrownBy<IOException>(call).getDesc());
        }
        EXPECT_EQ("Profiler.Control(" + std::to_string(c.what) + ")", profilerCalls().back());
    }
}

TEST_F(CProfilerControllerTest, StatusReadsTheEightByteRecord)
{
    struct Case {
        BYTE state;
        BYTE flags;
        std::vector<bool> states; // must-init, idle, waiting, active
        bool loading;
        bool error;
    };
    const std::vector<Case> cases = {
        {0, 0x00, {true, false, false, false}, false, false}, {1, 0x04, {false, true, false, false}, true, false},
        {2, 0x01, {false, false, true, false}, false, true},  {3, 0x02, {false, false, false, true}, false, true},
        {3, 0x08, {false, false, false, true}, false, true},  {3, 0x0F, {false, false, false, true}, true, true},
    };
    for (const Case& c : cases) {
        profilerAnswers().getStatus = [&](DWORD, SProfilerStatus* status) {
            status->m_byState = c.state;
            status->m_byFlags = c.flags;
            status->m_byAnalysisError = 3;
            status->m_dwNumSamples = 77;
            return S_OK;
        };
        const CProfilerStatus status = profiler().getStatus(1);
        SCOPED_TRACE(status.toString());
        EXPECT_EQ(c.states, (std::vector<bool>{status.isMustInit(), status.isIdle(), status.isWaiting(),
                                                status.isActive()}));
        EXPECT_EQ(c.loading, status.isLoading());
        EXPECT_EQ(c.error, status.isError());
        EXPECT_EQ((c.flags & 1) != 0, status.isErrorInBuffer());
        EXPECT_EQ((c.flags & 2) != 0, status.isBufferOverrun());
        EXPECT_EQ((c.flags & 8) != 0, status.isRecordingError());
        EXPECT_EQ(3, status.getAnalysisError());
        EXPECT_EQ(77u, status.getNoOfSamples());
    }
    EXPECT_EQ("Profiler.GetStatus(1)", profilerCalls().back());
    profilerAnswers().getStatus = [](DWORD, SProfilerStatus*) { return E_FAIL; };
    EXPECT_EQ(failure("CProfilerController::getStatus() failed! ", E_FAIL),
              thrownBy<IOException>([&] { profiler().getStatus(); }).getDesc());
}

TEST_F(CProfilerControllerTest, StatisticReadsAppendAndNameTheirSelector)
{
    profilerAnswers().getStatistics = [](DWORD, DWORD, DWORD, DWORD, DWORD* count, SProfilerStatistic* records) {
        const DWORD filled = std::min<DWORD>(3, *count);
        for (DWORD i = 0; i < filled; ++i) {
            records[i].m_dwHandle = i + 1;
            records[i].m_dwNumHits = 10 * (i + 1);
            records[i].m_llTotalTime = 1000 + i;
            records[i].m_llMaxTime = -5;
        }
        *count = filled;
        return S_OK;
    };
    ProfilerStatisticVector list;
    profiler().getStatisticsAll(10, list);
    profiler().getStatisticsAll(10, list);
    ASSERT_EQ(6u, list.size()) << "a second read adds to the first";
    EXPECT_EQ(3u, list[2].getHandle());
    EXPECT_EQ(30u, list[2].getNumHits());
    EXPECT_EQ(1002, list[2].getTotalTime());
    EXPECT_EQ(-5, list[2].getMaxTime());
    list.clear();
    profiler().getStatisticsAll(2, list);
    EXPECT_EQ(2u, list.size()) << "no more than the room";
    profiler().getStatisticsForHandle(4, 10, list);
    profiler().getStatisticsForTask(5, 10, list);
    profiler().getStatisticsForTask(4, 5, 10, list);
    profiler().getStatisticsForValue(4, 6, 10, list);
    EXPECT_EQ((Calls{"Profiler.GetStatistics(0x2, 0, 0, 0, room 10)", "Profiler.GetStatistics(0x2, 0, 0, 0, room 10)",
                     "Profiler.GetStatistics(0x2, 0, 0, 0, room 2)", "Profiler.GetStatistics(0x1, 4, 0, 0, room 10)",
                     "Profiler.GetStatistics(0x12, 0, 5, 0, room 10)", "Profiler.GetStatistics(0x11, 4, 5, 0, room 10)",
                     "Profiler.GetStatistics(0x21, 4, 0, 6, room 10)"}),
              profilerCalls());

    profilerAnswers().getStatistics = [](DWORD, DWORD, DWORD, DWORD, DWORD*, SProfilerStatistic*) { return E_FAIL; };
    const std::size_t before = list.size();
    EXPECT_EQ(failure("General error: ", E_FAIL),
              thrownBy<IOException>([&] { profiler().getStatisticsAll(10, list); }).getDesc());
    EXPECT_EQ(before, list.size()) << "a failed read leaves the list";
}

TEST_F(CProfilerControllerTest, HistoryReadsReplaceTheListFromTheirStartIndex)
{
    profilerAnswers().getHistory = [](DWORD, DWORD, DWORD, DWORD, DWORD startIndex, DWORD* count,
                                      SProfilerHistory* records) {
        const DWORD filled = std::min<DWORD>(2, *count);
        for (DWORD i = 0; i < filled; ++i) {
            records[i] = SProfilerHistory{i + 1, 0x80000000u, 100u * (startIndex + i)};
        }
        *count = filled;
        return S_OK;
    };
    ProfilerHistoryVector list;
    profiler().getHistoryAll(0, 10, list);
    profiler().getHistoryAll(7, 10, list);
    ASSERT_EQ(2u, list.size()) << "only the second read";
    EXPECT_EQ(700u, list[0].getHitTime());
    EXPECT_TRUE(list[0].isActive());
    profiler().getHistoryForHandle(3, 4, 10, list);
    profiler().getHistoryForTask(5, 4, 10, list);
    profiler().getHistoryForTask(3, 5, 4, 10, list);
    profiler().getHistoryForValue(3, 6, 4, 10, list);
    EXPECT_EQ((Calls{"Profiler.GetHistory(0x2, 0, 0, 0, from 0, room 10)", "Profiler.GetHistory(0x2, 0, 0, 0, from 7, room 10)",
                     "Profiler.GetHistory(0x1, 3, 0, 0, from 4, room 10)", "Profiler.GetHistory(0x10, 0, 5, 0, from 4, room 10)",
                     "Profiler.GetHistory(0x11, 3, 5, 0, from 4, room 10)",
                     "Profiler.GetHistory(0x21, 3, 0, 6, from 4, room 10)"}),
              profilerCalls());

    profilerAnswers().getHistory = [](DWORD, DWORD, DWORD, DWORD, DWORD, DWORD*, SProfilerHistory*) { return E_FAIL; };
    EXPECT_EQ(failure("CProfilerController::getHistory() failed! ", E_FAIL),
              thrownBy<IOException>([&] { profiler().getHistoryAll(0, 10, list); }).getDesc());
    EXPECT_TRUE(list.empty()) << "the history step clears the list first";
}

TEST_F(CProfilerControllerTest, WaitUntilLoadedPollsTheLoadingBit)
{
    int loadingPolls = 0;
    profilerAnswers().getStatus = [&](DWORD, SProfilerStatus* status) {
        status->m_byFlags = loadingPolls-- > 0 ? 0x04 : 0;
        return S_OK;
    };
    EXPECT_TRUE(profiler().waitUntilLoaded());
    EXPECT_EQ(1u, profilerCalls().size()) << "loaded at once: one status call";

    loadingPolls = 2;
    EXPECT_TRUE(profiler().waitUntilLoaded(0, 1));
    EXPECT_EQ(4u, profilerCalls().size()) << "two polls loading, the third not";

    loadingPolls = 1000000;
    const auto waited = std::chrono::steady_clock::now();
    EXPECT_FALSE(profiler().waitUntilLoaded(300, 100));
    EXPECT_GE(std::chrono::steady_clock::now() - waited, std::chrono::milliseconds(300));
}

TEST_F(CProfilerControllerTest, MissingInterfaceRaisesAfterTheLogLine)
{
    script().missing = {"OrbelProfiler2"};
    auto fresh = std::make_shared<ConnectionMgr>();
    fresh->connect("", 1234);
    useConnection(fresh);
    startLogger();
    EXPECT_EQ("Profiler interface is not available. Make sure that application is connected to quillon (see "
              "ConnectionMgr.connect...())!",
              thrownBy<IOException>([&] { profiler().start(); }).getDesc());
    EXPECT_EQ(1u, loggedLines("profilerCtrl.start();").size()) << loggedScript();
}

} // namespace
