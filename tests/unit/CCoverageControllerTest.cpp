#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <cstdio>
#include <string>
#include <vector>

#include "CCoverageController.h"
#include "ControllerTestSupport.h"
#include "Exceptions.h"

using namespace kestrix;

namespace {

class CCoverageControllerTest : public ControllerTest {
protected:
    void SetUp() override
    {
        ControllerTest::SetUp();
        script().ide.document = [](DWORD, const char*, const char*, DWORD) { return S_OK; };
        coverage().setConfiguration = [](DWORD, const char*, DWORD) { return S_OK; };
    }

    fakeorbel::CoverageAnswers& coverage() { return script().coverage; }
    std::unique_ptr<CCoverageController> open() { return std::make_unique<CCoverageController>(mgr(), "cov.trd", "r"); }
    std::vector<std::string> coverageCalls() const { return calls("Coverage."); }
    std::vector<std::string> configurationCalls() const { return calls("Coverage.SetConfiguration("); }

    /// GetLastError of the document answers `hr` with the class and text given.
    void lastError(HRESULT hr, DWORD errorClass, const std::string& text)
    {
        coverage().getLastError = [=](DWORD* cls, char* buffer, DWORD size) {
            *cls = errorClass;
            std::snprintf(buffer, size, "%s", text.c_str());
            return hr;
        };
    }

    /// GetRanges fills the ranges (a, a + 0xF) for a = 0x100, 0x200, ... up to `found` of them
    /// and answers that count, whatever room it was given.
    void rangesFound(DWORD found)
    {
        coverage().getRanges = [found](DWORD, DWORD* count, SCoverageRange* ranges, const char*, DWORD) {
            for (DWORD i = 0; i < found && i < *count; ++i) {
                ranges[i].m_aAddress = 0x100 * (i + 1);
                ranges[i].m_aEnd = 0x100 * (i + 1) + 0xF;
            }
            *count = found;
            return S_OK;
        };
    }

    static std::string configuration(DWORD item, const std::string& text, DWORD value)
    {
        return "Coverage.SetConfiguration(cov.trd, " + std::to_string(item) + ", '" + text + "', " +
               std::to_string(value) + ")";
    }
};

struct ScopeCase {
    CCoverageController::ECoverageScope scope;
    const char* text;
    std::vector<std::pair<DWORD, DWORD>> scopeItems;
};

struct CheckCase {
    HRESULT lastErrorResult;
    DWORD errorClass;
    const char* kind;
    std::string desc;
    std::string data;
};

} // namespace

TEST_F(CCoverageControllerTest, OpensACoverageDocumentAndLogsBothDestructors)
{
    startLogger();
    CCoverageController(mgr(), "C:\\c\\cov.trd", "w");
    EXPECT_EQ(std::vector<std::string>{"OrbelIDE.Document(0xA200000D, C:\\c\\cov.trd, NULL, 0)"},
              calls("OrbelIDE.Document("));
    EXPECT_EQ((std::vector<std::string>{
                  "analyzer_cov_trd = obFactory.getCoverageCtrl(\"C:\\c\\cov.trd\", \"w\")",
                  "# Dtor: ~CCoverageController",
                  "# Dtor: ~CAnalyzerDocController",
              }),
              scriptLines());
}

TEST_F(CCoverageControllerTest, AvailabilityReadsBitsAndKind)
{
    const auto ctrl = open();
    const struct {
        DWORD bits;
        DWORD kind;
        bool coverage, branches, hardware, offline;
    } cases[] = {
        {0, 0, false, false, false, false}, {1, 1, true, false, true, false}, {2, 2, false, true, false, true},
        {3, 3, true, true, false, false},   {0xFC, 0, false, false, false, false},
    };
    for (const auto& c : cases) {
        coverage().getInfo = [&](DWORD what, DWORD* value) {
            *value = what == 1 ? c.bits : c.kind;
            return S_OK;
        };
        EXPECT_EQ(c.coverage, ctrl->isCoverageAvailable()) << c.bits;
        EXPECT_EQ(c.branches, ctrl->isBranchCoverageAvailable()) << c.bits;
        EXPECT_EQ(c.hardware, ctrl->isHWCoverageAvailable()) << c.kind;
        EXPECT_EQ(c.offline, ctrl->isOfflineCoverageAvailable()) << c.kind;
    }
    EXPECT_EQ(4u * 5, calls("Coverage.GetInfo(cov.trd, ").size());
    EXPECT_EQ(2u * 5, calls("Coverage.GetInfo(cov.trd, 2)").size());

    serverError("no coverage unit");
    coverage().getInfo = [](DWORD, DWORD*) { return E_FAIL; };
    EXPECT_EQ("Can not get coverage info! Info value: E_FAIL: kestrix.orbel call failed. / no coverage unit",
              thrownBy<IOException>([&] { ctrl->isHWCoverageAvailable(); }).getDesc());
}

TEST_F(CCoverageControllerTest, EachScopeIsSentInOneOrTwoStepsBeforeTheOptions)
{
    const ScopeCase cases[] = {
        {CCoverageController::csEntireMemory, "csEntireMemory", {{1, 2}}},
        {CCoverageController::csAllDownloadedCode, "csAllDownloadedCode", {{1, 1}}},
        {CCoverageController::csEntireMemoryMinusExcludes, "csEntireMemoryMinusExcludes", {{1, 3}, {5, 2}}},
        {CCoverageController::csAllDownloadedCodeMinusExcludes, "csAllDownloadedCodeMinusExcludes", {{1, 3}, {5, 1}}},
        {CCoverageController::csIncludesOnly, "csIncludesOnly", {{1, 3}, {5, 3}}},
    };
    const auto ctrl = open();
    for (const ScopeCase& c : cases) {
        resetFake();
        coverage().setConfiguration = [](DWORD, const char*, DWORD) { return S_OK; };
        ctrl->setConfiguration(c.scope, 1, 0xFFFFFFFF);
        std::vector<std::string> expected;
        for (const auto& item : c.scopeItems) {
            expected.push_back(configuration(item.first, "", item.second));
        }
        expected.push_back(configuration(2, "", 1));
        expected.push_back(configuration(3, "", 0xFFFFFFFF));
        EXPECT_EQ(expected, configurationCalls()) << c.text;
    }
}

TEST_F(CCoverageControllerTest, AnUnknownScopeIsLoggedByNumberAndSendsNothing)
{
    startLogger();
    const auto ctrl = open();
    const int scopes[] = {5, -1};
    for (int scope : scopes) {
        const auto e = thrownBy<IllegalArgumentException>(
            [&] { ctrl->setConfiguration(static_cast<CCoverageController::ECoverageScope>(scope), 0, 0); });
        EXPECT_EQ("Invalid scope value: " + std::to_string(scope), e.getDesc());
        EXPECT_EQ(1u, loggedLines("analyzer_cov_trd.setConfiguration(" + std::to_string(scope) + ", 0, 0);").size())
            << loggedScript();
    }
    EXPECT_TRUE(configurationCalls().empty());
}

TEST_F(CCoverageControllerTest, RangesetItemsAreNumberedByKind)
{
    const auto ctrl = open();
    const CCoverageController::ERangeItem items[] = {CCoverageController::rsFolder, CCoverageController::rsModule,
                                                     CCoverageController::rsFunction, CCoverageController::rsItem};
    for (auto item : items) {
        ctrl->addRangesetExclude(item, "x");
        ctrl->addRangesetInclude(item, "y");
    }
    EXPECT_EQ((std::vector<std::string>{
                  configuration(6, "x", 0), configuration(10, "y", 0), configuration(7, "x", 0),
                  configuration(11, "y", 0), configuration(8, "x", 0), configuration(12, "y", 0),
                  configuration(9, "x", 0), configuration(13, "y", 0),
              }),
              configurationCalls());

    resetFake();
    const int bad[] = {4, -1};
    for (int item : bad) {
        EXPECT_EQ("Invalid range item type: " + std::to_string(item),
                  thrownBy<IllegalArgumentException>([&] {
                      ctrl->addRangesetInclude(static_cast<CCoverageController::ERangeItem>(item), "y");
                  }).getDesc());
    }
    EXPECT_TRUE(configurationCalls().empty());
}

TEST_F(CCoverageControllerTest, RangesetsAreMadeChosenAndCleared)
{
    const auto ctrl = open();
    coverage().setConfiguration = [](DWORD item, const char*, DWORD) { return item == 4 ? S_FALSE : S_OK; };
    EXPECT_TRUE(ctrl->createRangeset("kestrix.test"));
    coverage().setConfiguration = [](DWORD, const char*, DWORD) { return S_OK; };
    EXPECT_FALSE(ctrl->createRangeset("other"));
    ctrl->setActiveRangeset("kestrix.test");
    ctrl->setActiveRangeset(DWORD(3));
    ctrl->clearConfiguration();
    EXPECT_EQ((std::vector<std::string>{
                  configuration(4, "kestrix.test", 0),
                  configuration(4, "other", 0),
                  configuration(14, "kestrix.test", 0),
                  configuration(14, "", 3),
                  configuration(16, "", 0),
              }),
              configurationCalls());
    EXPECT_TRUE(calls("Coverage.GetLastError(").empty()) << "S_FALSE of a new rangeset is no failure";

    lastError(S_OK, 7, "bad name");
    coverage().setConfiguration = [](DWORD, const char*, DWORD) { return E_FAIL; };
    EXPECT_EQ("Can not set configuration!", thrownBy<IOException>([&] { ctrl->createRangeset("x"); }).getDesc());
}

TEST_F(CCoverageControllerTest, FailuresAreJudgedByTheClassOfTheDocumentsLastError)
{
    const std::string info = "  data:\n    info: Can not set configuration!\n";
    const std::string why = "    stdError: E_FAIL: kestrix.orbel call failed.\n    orbelErr: why\n    fileName: cov.trd\n";
    const std::string noCode = "kestrix.test call failed, but GetLastError() didn't return error code!";
    const CheckCase cases[] = {
        {S_OK, 0, "IllegalStateException", noCode, info + why},
        {S_OK, 1, "IllegalArgumentException", "Internal error", info + why},
        {S_OK, 25, "IllegalStateException", "Can not set configuration!", info + why},
        {S_OK, 2, "IOException", "Can not set configuration!", "  data:\n" + why},
        // A failing GetLastError gives neither class nor text.
        {E_FAIL, 1, "IllegalStateException", noCode,
         info + "    stdError: E_FAIL: kestrix.orbel call failed.\n    orbelErr: GetLastError failed!\n"
                "    fileName: cov.trd\n"},
    };
    const auto ctrl = open();
    coverage().setConfiguration = [](DWORD, const char*, DWORD) { return E_FAIL; };
    for (const CheckCase& c : cases) {
        coverage().getLastError = [c](DWORD* cls, char* buffer, DWORD size) {
            std::snprintf(buffer, size, "why");
            *cls = c.errorClass;
            return c.lastErrorResult;
        };
        std::string kind;
        std::string desc;
        std::string data;
        try {
            ctrl->clearConfiguration();
            ADD_FAILURE() << "nothing thrown";
        } catch (const IllegalStateException& e) {
            kind = "IllegalStateException", desc = e.getDesc(), data = e.getData();
        } catch (const IllegalArgumentException& e) {
            kind = "IllegalArgumentException", desc = e.getDesc(), data = e.getData();
        } catch (const IOException& e) {
            kind = "IOException", desc = e.getDesc(), data = e.getData();
        }
        EXPECT_EQ(c.kind, kind) << c.errorClass;
        EXPECT_EQ(c.desc, desc) << c.errorClass;
        EXPECT_EQ(c.data, data) << c.errorClass;
    }
    EXPECT_EQ(5u, calls("Coverage.GetLastError(cov.trd, 0, 1000)").size());
}

TEST_F(CCoverageControllerTest, RangesComeBackAsManyAsFound)
{
    const auto ctrl = open();
    CCoverageController::RangeVector ranges(5);
    rangesFound(2);
    ctrl->getActiveRanges(ranges, 8);
    ASSERT_EQ(2u, ranges.size());
    EXPECT_EQ(0x100u, ranges[0].m_aAddress);
    EXPECT_EQ(0x10Fu, ranges[0].m_aEnd);
    EXPECT_EQ(0x200u, ranges[1].m_aAddress);

    rangesFound(3);
    ctrl->resolveRange(2, "main", ranges, 4);
    EXPECT_EQ(3u, ranges.size());

    // A server that reports more than the room given is cut to the room.
    rangesFound(6);
    ctrl->getActiveRanges(ranges, 2);
    EXPECT_EQ(2u, ranges.size());

    rangesFound(0);
    ctrl->getActiveRanges(ranges, 0);
    EXPECT_TRUE(ranges.empty());

    EXPECT_EQ((std::vector<std::string>{
                  "Coverage.GetRanges(cov.trd, 1, 8, '', 0)",
                  "Coverage.GetRanges(cov.trd, 2, 4, 'main', 2)",
                  "Coverage.GetRanges(cov.trd, 1, 2, '', 0)",
                  "Coverage.GetRanges(cov.trd, 1, 0, '', 0)",
              }),
              calls("Coverage.GetRanges("));

    lastError(S_OK, 2, "not recorded");
    coverage().getRanges = [](DWORD, DWORD*, SCoverageRange*, const char*, DWORD) { return E_FAIL; };
    ranges.resize(3);
    EXPECT_EQ("Can not get coverage ranges! ",
              thrownBy<IOException>([&] { ctrl->getActiveRanges(ranges, 4); }).getDesc());
    EXPECT_EQ(3u, ranges.size()) << "a failed read leaves the vector as it was";
}

TEST_F(CCoverageControllerTest, BitmapHasOneByteForEachAddressOfTheRange)
{
    const auto ctrl = open();
    coverage().getBitmap = [](DWORD start, DWORD, DWORD size, BYTE* bitmap) {
        for (DWORD i = 0; i < size; ++i) {
            bitmap[i] = static_cast<BYTE>(start + i);
        }
        return S_OK;
    };
    VectorBYTE bitmap(9, 0xEE);
    ctrl->getCoverageBitmap(0x1000, 0x1003, bitmap);
    EXPECT_EQ((VectorBYTE{0x00, 0x01, 0x02, 0x03}), bitmap);
    EXPECT_EQ(std::vector<std::string>{"Coverage.GetBitmap(cov.trd, 0, 0x1000, 0x1003, 4)"},
              calls("Coverage.GetBitmap("));

    // A range of one address is never read: the bitmap is only emptied.
    ctrl->getCoverageBitmap(0x1000, 0x1000, bitmap);
    EXPECT_TRUE(bitmap.empty());
    EXPECT_EQ(1u, calls("Coverage.GetBitmap(").size());

    bitmap.assign(2, 1);
    const auto reversed =
        thrownBy<IllegalArgumentException>([&] { ctrl->getCoverageBitmap(0x1000, 0x0FFF, bitmap); });
    EXPECT_EQ("Start address is greater than end address: 4096/4095", reversed.getDesc());
    EXPECT_EQ(2u, bitmap.size()) << "refused before the bitmap is touched";

    EXPECT_THROW(ctrl->getCoverageBitmap(0, 0xFFFFFFFF, bitmap), IllegalArgumentException);
    EXPECT_EQ(1u, calls("Coverage.GetBitmap(").size());

    lastError(S_OK, 2, "busy");
    coverage().getBitmap = [](DWORD, DWORD, DWORD, BYTE*) { return E_FAIL; };
    bitmap.assign(2, 1);
    EXPECT_EQ("Can not get coverage bitmap! ",
              thrownBy<IOException>([&] { ctrl->getCoverageBitmap(0, 1, bitmap); }).getDesc());
    EXPECT_TRUE(bitmap.empty());
}

TEST_F(CCoverageControllerTest, StatisticsOfASymbolSpanItsCode)
{
    const auto ctrl = open();
    answers().getAddress = [](DWORD, const char* name, BYTE* area, ADDRESS* address, DWORD* size, SType*) {
        if (std::string(name) != "filter_step") {
            return S_FALSE;
        }
        *area = 0;
        *address = 0x200;
        *size = 0x40;
        return S_OK;
    };
    // Each kind answers a number of its own, so that a swapped field shows.
    coverage().getStatistics = [](DWORD type, DWORD, DWORD, DWORD* value) {
        *value = 100 + type;
        return S_OK;
    };
    const CCoverageStatistic statistic = ctrl->getStatisticsForSymbol("filter_step");
    EXPECT_EQ((std::vector<DWORD>{101, 102, 103, 104, 105, 106, 107}),
              (std::vector<DWORD>{statistic.getBytesAll(), statistic.getBytesExecutedAbs(), statistic.getBranchesAll(),
                                  statistic.getBranchesExecutedAbs(), statistic.getBranchesTakenAbs(),
                                  statistic.getBranchesNotTakenAbs(), statistic.getBranchesBothAbs()}));

    EXPECT_EQ(std::vector<std::string>{"OrbelDebug.GetAddress(0x4000, filter_step)"}, calls("OrbelDebug."));
    std::vector<std::string> expected;
    for (int type = 1; type <= 7; ++type) {
        expected.push_back("Coverage.GetStatistics(cov.trd, " + std::to_string(type) + ", 0x200, 0x23F)");
    }
    EXPECT_EQ(expected, calls("Coverage.GetStatistics("));

    const auto unknown = thrownBy<IllegalArgumentException>([&] { ctrl->getStatisticsForSymbol("nope"); });
    EXPECT_EQ("Symbol 'nope' not found!", unknown.getDesc());
    EXPECT_EQ("  data:\n    error: Operation failed with error code S_FALSE.\n"
              "    stdErr: Command getSymbolInfo() failed!\n",
              unknown.getData());

    serverError("no symbols loaded");
    answers().getAddress = [](DWORD, const char*, BYTE*, ADDRESS*, DWORD*, SType*) { return E_FAIL; };
    EXPECT_EQ("'getSymbolInfo(main)' command failed: E_FAIL: kestrix.orbel call failed. / no symbols loaded",
              thrownBy<IOException>([&] { ctrl->getStatisticsForSymbol("main"); }).getDesc());
    EXPECT_EQ(7u, calls("Coverage.GetStatistics(").size()) << "no statistics without an address";
}

TEST_F(CCoverageControllerTest, OneStatisticIsReturnedOrItsFailureRaised)
{
    const auto ctrl = open();
    coverage().getStatistics = [](DWORD, DWORD start, DWORD end, DWORD* value) {
        *value = end - start;
        return S_OK;
    };
    EXPECT_EQ(0xFFu, ctrl->getCoverageStatistics(2, 0x100, 0x1FF));
    lastError(S_OK, 25, "not stopped");
    coverage().getStatistics = [](DWORD, DWORD, DWORD, DWORD*) { return ORBEL_E_ERROR; };
    EXPECT_EQ("Can not get coverage statistics! ",
              thrownBy<IllegalStateException>([&] { ctrl->getCoverageStatistics(1, 0, 1); }).getDesc());
}

TEST_F(CCoverageControllerTest, AMissingCoverageInterfaceNamesTheGate)
{
    script().missing = {"OrbelCoverage"};
    auto fresh = std::make_shared<ConnectionMgr>();
    fresh->connect("", 1234);
    useConnection(fresh);
    const auto ctrl = open();
    EXPECT_EQ("Coverage interface is not available. Make sure that application is connected to quillon (see "
              "ConnectionMgr.connect...())!",
              thrownBy<IOException>([&] { ctrl->clearConfiguration(); }).getDesc());
}
