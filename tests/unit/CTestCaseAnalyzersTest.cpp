// The analyzer steps of a test run against the recording double: the calls a run makes for a
// trace, coverage, profiler or HIL section and where they stand among the test's own commands,
// the steps one by one (controllers made or kept, configuration, export, bitmap file, results),
// the verify texts, and the YAML file of profiler results.

#include <dlfcn.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "CAnalyzerDocController.h"
#include "CCoverageController.h"
#include "CHILController.h"
#include "CProfilerController.h"
#include "CTestCase.h"
#include "CTestCoverage.h"
#include "CTestHIL.h"
#include "CTestProfiler.h"
#include "CTestSpecification.h"
#include "CTestTrace.h"
#include "Exceptions.h"
#include "FakeProfiler.h"
#include "TestServiceSupport.h"

using namespace kestrix;

namespace {

typedef std::vector<std::string> Calls;
typedef std::shared_ptr<CTestSpecification> SpecPtr;
typedef fakeorbel::ProfilerAnswers* (*ProfilerAnswersFunction)();

/// Where the double's debug interface finds functions: area 0, start address, size.
struct Function {
    ADDRESS address;
    DWORD size;
};
const std::map<std::string, Function> FUNCTIONS = {
    {"filter_step", {0x100, 0x40}}, {"adc_read", {0x200, 0x20}}, {"main", {0x80, 0x10}}};

/// Handles that the double's profiler gives to areas.
const std::map<std::string, DWORD> AREA_HANDLES = {{"compute", 1}, {"state", 2}, {"mode", 3}, {"filter_step", 4}};

SProfilerStatistic statistic(DWORD handle, DWORD value, long long minTime, long long maxTime, long long totalTime,
                             DWORD hits)
{
    SProfilerStatistic s;
    s.m_dwHandle = handle;
    s.m_dwValue = value;
    s.m_llMinTime = minTime;
    s.m_llMaxTime = maxTime;
    s.m_llTotalTime = totalTime;
    s.m_dwNumHits = hits;
    return s;
}

std::string fileText(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

/// The calls that read the seven statistics of a function of `doc` found at `start` .. `end`.
Calls statisticsCalls(const std::string& doc, const std::string& function, const char* start, const char* end)
{
    Calls calls = {"OrbelDebug.GetAddress(0x4000, " + function + ")"};
    for (int type = 1; type <= 7; ++type) {
        calls.push_back("Coverage.GetStatistics(" + doc + ", " + std::to_string(type) + ", " + start + ", " + end + ")");
    }
    return calls;
}

Calls operator+(Calls first, const Calls& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

size_t occurrences(const std::string& text, const std::string& part)
{
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

class CTestCaseAnalyzersTest : public TestServiceTest {
protected:
    void SetUp() override
    {
        TestServiceTest::SetUp();
        m_library = dlopen(library("whole").c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(nullptr, m_library) << dlerror();
        auto answersOf = reinterpret_cast<ProfilerAnswersFunction>(dlsym(m_library, "fakeorbel_profiler_answers"));
        ASSERT_NE(nullptr, answersOf);
        m_profiler = answersOf();
        *m_profiler = fakeorbel::ProfilerAnswers();
        answerAnalyzers();
        testCase = std::make_shared<CTestCase>(connected());
        forget();
    }

    void TearDown() override
    {
        testCase.reset();
        mgr.reset();
        if (m_profiler != nullptr) {
            *m_profiler = fakeorbel::ProfilerAnswers();
        }
        if (m_library != nullptr) {
            dlclose(m_library);
        }
        TestServiceTest::TearDown();
    }

    /// Documents, coverage, HIL and profiler all succeed; functions and areas are found by name;
    /// statistics and history come from the fixture's lists.
    void answerAnalyzers()
    {
        script().ide.document = [](DWORD, const char*, const char*, DWORD) { return S_OK; };
        script().coverage.setConfiguration = [](DWORD, const char*, DWORD) { return S_OK; };
        script().coverage.getStatistics = [this](DWORD type, DWORD, DWORD, DWORD* value) {
            *value = coverageCounts[type];
            return S_OK;
        };
        script().coverage.getRanges = [this](DWORD, DWORD* count, SCoverageRange* ranges, const char*, DWORD) {
            const DWORD n = std::min<DWORD>(*count, static_cast<DWORD>(activeRanges.size()));
            std::copy(activeRanges.begin(), activeRanges.begin() + n, ranges);
            *count = n;
            return S_OK;
        };
        script().coverage.getBitmap = [](DWORD start, DWORD, DWORD size, BYTE* bitmap) {
            for (DWORD i = 0; i < size; ++i) {
                bitmap[i] = static_cast<BYTE>((start >> 4) + i);
            }
            return S_OK;
        };
        script().hil.write = [](DWORD, DWORD, const char*) { return S_OK; };
        script().debug.getAddress = [](DWORD, const char* name, BYTE* area, ADDRESS* address, DWORD* size, SType*) {
            const auto found = FUNCTIONS.find(name);
            if (found == FUNCTIONS.end()) {
                return S_FALSE;
            }
            *area = 0;
            *address = found->second.address;
            *size = found->second.size;
            return S_OK;
        };
        script().debug.getSymbolAtAddress = [](DWORD, BYTE, ADDRESS address, char* buffer, DWORD size) {
            std::snprintf(buffer, size, "sym_%X", address);
            return S_OK;
        };
        profiler().startConfiguration = [](DWORD, SProfilerStartingPoint*) { return S_OK; };
        profiler().addArea = [](DWORD, SProfilerArea*, const char*, DWORD, DWORD, DWORD, DWORD, const DWORD*) {
            return S_OK;
        };
        profiler().control = [](DWORD) { return S_OK; };
        profiler().getStatus = [](DWORD, SProfilerStatus*) { return S_OK; };
        profiler().getArea = [](DWORD key, DWORD, SProfilerArea* area) {
            for (const auto& known : AREA_HANDLES) {
                if ((key == 1 && known.first == area->m_szName) || (key == 0 && known.second == area->m_dwHandle)) {
                    std::snprintf(area->m_szName, sizeof(area->m_szName), "%s", known.first.c_str());
                    area->m_dwHandle = known.second;
                    return S_OK;
                }
            }
            return E_FAIL;
        };
        profiler().getStatistics = [this](DWORD kind, DWORD handle, DWORD, DWORD value, DWORD* count,
                                          SProfilerStatistic* records) {
            std::vector<SProfilerStatistic> found;
            for (const SProfilerStatistic& s : statistics) {
                if (kind == 0x02 || (s.m_dwHandle == handle && (kind == 0x01 || s.m_dwValue == value))) {
                    found.push_back(s);
                }
            }
            *count = std::min<DWORD>(*count, static_cast<DWORD>(found.size()));
            std::copy(found.begin(), found.begin() + *count, records);
            return S_OK;
        };
        profiler().getHistory = [this](DWORD, DWORD, DWORD, DWORD, DWORD start, DWORD* count,
                                       SProfilerHistory* records) {
            const DWORD left = start < history.size() ? static_cast<DWORD>(history.size()) - start : 0;
            *count = std::min(*count, left);
            std::copy(history.begin() + start, history.begin() + start + *count, records);
            return S_OK;
        };
    }

    /// `n` statistics of the two areas "compute" and "state", each with its index as value.
    void recordStatistics(DWORD n)
    {
        statistics.clear();
        for (DWORD i = 0; i < n; ++i) {
            statistics.push_back(statistic(1 + i % 2, i, 1, 2, 3, 4));
        }
    }

    fakeorbel::ProfilerAnswers& profiler() { return *m_profiler; }

    void forget()
    {
        forgetCalls();
        m_from = seen().calls.size();
    }

    /// The calls of the analyzers, of symbols and of the test's control since `forget`, in order.
    Calls analyzerCalls() const
    {
        static const char* const PREFIXES[] = {"OrbelIDE.Document", "Coverage.", "Profiler.", "HIL.",
                                               "OrbelDebug.GetAddress", "OrbelDebug.GetSymbolAtAddress",
                                               "Test.Control("};
        Calls found;
        const Calls& all = seen().calls;
        for (size_t i = m_from; i < all.size(); ++i) {
            for (const char* prefix : PREFIXES) {
                if (all[i].compare(0, std::strlen(prefix), prefix) == 0) {
                    found.push_back(all[i]);
                    break;
                }
            }
        }
        return found;
    }
    Calls callsSince(const std::string& prefix) const
    {
        Calls found;
        for (const std::string& call : analyzerCalls()) {
            if (call.compare(0, prefix.size(), prefix) == 0) {
                found.push_back(call);
            }
        }
        return found;
    }

    /// "ok", or the description of the run's failure behind "failed: ".
    std::string run(SpecPtr spec)
    {
        StrVector results;
        try {
            testCase->runTest(spec, results);
        } catch (const IException& e) {
            return "failed: " + e.getDesc();
        }
        return "ok";
    }

    /// A coverage section with an open document "c1.trd".
    std::shared_ptr<CCoverageController> openCoverage(const CTestCoverage& section)
    {
        auto controller = testCase->createCoverageController(section);
        forget();
        return controller;
    }

    std::shared_ptr<CTestCase> testCase;
    DWORD coverageCounts[8] = {};
    std::vector<SCoverageRange> activeRanges;
    std::vector<SProfilerStatistic> statistics;
    std::vector<SProfilerHistory> history;

private:
    void* m_library = nullptr;
    fakeorbel::ProfilerAnswers* m_profiler = nullptr;
    size_t m_from = 0;
};

const char* const FUNCTION = "func: [filter_step, [], rv]\n";

TEST_F(CTestCaseAnalyzersTest, RunSetsUpEachAnalyzerBeforeTheFunctionAndFinishesItAfter)
{
    const Calls bare = {"Test.Control(1, 7)", "Test.Control(3, 7)", "Test.Control(2, 7)"};
    const struct {
        const char* name;
        const char* section;
        Calls calls;
    } cases[] = {
        {"trace",
         "trace:\n  document: t1.trd\n  trigger: T0\n  isSaveAfterTest: true\n  exportFile: t1.bin\n"
         "  isCloseAfterTest: true\n",
         // opened in mode "w", as an analyzer document; exported as "Binary", the format set first
         {"Test.Control(1, 7)", "OrbelIDE.Document(0xA100000D, t1.trd, NULL, 0)",
          "OrbelIDE.Document(0x50000000, t1.trd, T0, 0)", "OrbelIDE.Document(0x10000000, t1.trd, NULL, 0)",
          "Test.Control(3, 7)", "OrbelIDE.Document(0x20000000, t1.trd, NULL, 0)", "OrbelIDE.Document(0x3, t1.trd, NULL, 0)",
          "OrbelIDE.Document(0x80000000, t1.trd, Binary, 0)",
          "OrbelIDE.Document(0x60000000, t1.trd, t1.bin, 4294967295)", "OrbelIDE.Document(0xB, t1.trd, NULL, 0)",
          "Test.Control(2, 7)"}},
        {"trace without a document", "trace: {trigger: T0, exportFile: t1.bin}\n", bare},
        {"trace off", "trace: {runMode: off, document: t1.trd}\n", bare},
        {"coverage",
         "coverage:\n  document: c1.trd\n  openMode: a\n  exportFormat: XML\n  exportFile: c1.xml\n"
         "  statistics:\n  - func: filter_step\n  - func: adc_read\n",
         Calls{"Test.Control(1, 7)", "OrbelIDE.Document(0x200000D, c1.trd, NULL, 0)",
               "Coverage.SetConfiguration(c1.trd, 4, 'kestrix.test', 0)",
               // includes only, flags 1, 0
               "Coverage.SetConfiguration(c1.trd, 1, '', 3)", "Coverage.SetConfiguration(c1.trd, 5, '', 3)",
               "Coverage.SetConfiguration(c1.trd, 2, '', 1)", "Coverage.SetConfiguration(c1.trd, 3, '', 0)",
               "Coverage.SetConfiguration(c1.trd, 12, 'filter_step', 0)",
               "Coverage.SetConfiguration(c1.trd, 12, 'adc_read', 0)", "OrbelIDE.Document(0x10000000, c1.trd, NULL, 0)",
               "Test.Control(3, 7)", "OrbelIDE.Document(0x20000000, c1.trd, NULL, 0)",
               "OrbelIDE.Document(0x60000000, c1.trd, c1.xml, 3)"} +
             statisticsCalls("c1.trd", "filter_step", "0x100", "0x13F") +
             statisticsCalls("c1.trd", "adc_read", "0x200", "0x21F") + Calls{"Test.Control(2, 7)"}},
        {"coverage off", "coverage: {runMode: off, document: c1.trd, statistics: [{func: filter_step}]}\n", bare},
        {"profiler",
         "profiler:\n  trigger: main\n  codeAreas:\n  - name: compute\n"
         "  dataAreas:\n  - {name: state, value: 1}\n  - {name: state, value: 2}\n  - {name: mode}\n",
         // the trigger is the start address of its function
         {"Test.Control(1, 7)", "OrbelDebug.GetAddress(0x4000, main)",
          "Profiler.StartConfiguration(1, event 1, area 0, 0x80)", "Profiler.AddArea(0x10, data, compute, 0, 0x0, 0x0, 0)",
          "Profiler.AddArea(0x30, data, state, 0, 0x0, 0x0, 0)", "Profiler.AddArea(0x30, data, mode, 0, 0x0, 0x0, 0)",
          "Profiler.Control(1)", "Test.Control(3, 7)", "Profiler.GetStatus(0)",
          "Profiler.GetArea(1, 264, 'compute', 0, 0x0)", "Profiler.GetStatistics(0x1, 1, 0, 0, room 10)",
          "Profiler.GetArea(1, 264, 'state', 0, 0x0)", "Profiler.GetStatistics(0x1, 2, 0, 0, room 100)",
          "Profiler.GetArea(1, 264, 'mode', 0, 0x0)", "Profiler.GetStatistics(0x1, 3, 0, 0, room 100)",
          "Test.Control(2, 7)"}},
        {"profiler off", "profiler: {runMode: off, codeAreas: [{name: compute}]}\n", bare},
        {"HIL", "hil:\n  params:\n    Out1: 1\n    AnalogIn: 2.5\n",
         {"Test.Control(1, 7)", "HIL.Write(0x0, 0x0, Out1:1)", "HIL.Write(0x0, 0x0, AnalogIn:2.5)",
          "Test.Control(3, 7)", "Test.Control(2, 7)"}},
        {"HIL without parameters", "hil: {params: {}}\n", bare},
    };
    for (const auto& c : cases) {
        testCase = std::make_shared<CTestCase>(connected());
        forget();
        EXPECT_EQ("ok", run(CTestSpecification::parseTestSpec(std::string(FUNCTION) + c.section))) << c.name;
        EXPECT_EQ(c.calls, analyzerCalls()) << c.name;
    }
}

TEST_F(CTestCaseAnalyzersTest, CoverageWithoutDocumentFailsBeforeTheTargetRuns)
{
    auto spec = CTestSpecification::parseTestSpec(FUNCTION);
    spec->getCoverage().setRunMode("start");
    spec->getCoverage().addStatistics()->setFunctionName("filter_step");
    EXPECT_EQ("failed: Document name is not specified for coverage!", run(spec));
    const Calls calls = analyzerCalls();
    EXPECT_EQ((Calls{"Test.Control(1, 7)", "Test.Control(2, 7)"}), calls) << "no document, no run, test cleaned";
    const Calls test = testCalls();
    ASSERT_FALSE(test.empty());
    EXPECT_EQ("DestroyTest(7)", test.back());
}

TEST_F(CTestCaseAnalyzersTest, ARunWithoutAnalyzersForgetsTheResultsOfTheLastOne)
{
    statistics = {statistic(1, 0, 5, 6, 11, 2), statistic(2, 9, 1, 1, 1, 1)};
    ASSERT_EQ("ok", run(CTestSpecification::parseTestSpec(std::string(FUNCTION) +
                                                           "profiler: {codeAreas: [{name: compute}], "
                                                           "dataAreas: [{name: state, value: 9}]}\n")));
    ASSERT_EQ(1u, testCase->getCachedProfilerCodeResults().count("compute"));
    EXPECT_EQ(11, testCase->getCachedProfilerCodeResults().at("compute").getTotalTime());
    ASSERT_EQ(1u, testCase->getCachedProfilerDataResults().count("state"));

    ASSERT_EQ("ok", run(CTestSpecification::parseTestSpec(FUNCTION)));
    EXPECT_TRUE(testCase->getCachedProfilerCodeResults().empty());
    EXPECT_TRUE(testCase->getCachedProfilerDataResults().empty());
    EXPECT_TRUE(testCase->getCachedCoverageResults().empty());
}

TEST_F(CTestCaseAnalyzersTest, ControllersAreReplacedOrKept)
{
    auto active = CTestSpecification::parseTestSpec(
        "trace: {document: t1.trd}\ncoverage: {document: c1.trd}\nprofiler: {}\nhil: {params: {Out1: 1}}\n");
    auto inactive = CTestSpecification::parseTestSpec(
        "trace: {runMode: off, document: t2.trd}\ncoverage: {runMode: off, document: c2.trd}\n"
        "profiler: {runMode: off}\nhil: {params: {}}\n");

    EXPECT_EQ(nullptr, testCase->createTraceController(inactive->getTrace()));
    EXPECT_EQ(nullptr, testCase->createCoverageController(inactive->getCoverage()));
    EXPECT_EQ(nullptr, testCase->createProfilerController(inactive->getProfiler()));
    EXPECT_EQ(nullptr, testCase->createHILController(inactive->getHIL()));
    EXPECT_TRUE(analyzerCalls().empty());

    const auto trace = testCase->createTraceController(active->getTrace());
    const auto coverage = testCase->createCoverageController(active->getCoverage());
    const auto profilerCtrl = testCase->createProfilerController(active->getProfiler());
    const auto hil = testCase->createHILController(active->getHIL());
    ASSERT_TRUE(trace && coverage && profilerCtrl && hil);
    EXPECT_EQ(2u, callsSince("OrbelIDE.Document").size());

    // Documents are opened anew by each active section; profiler and HIL controllers stay.
    EXPECT_NE(trace, testCase->createTraceController(active->getTrace()));
    EXPECT_NE(coverage, testCase->createCoverageController(active->getCoverage()));
    EXPECT_EQ(profilerCtrl, testCase->createProfilerController(active->getProfiler()));
    EXPECT_EQ(hil, testCase->createHILController(active->getHIL()));
    EXPECT_EQ(4u, callsSince("OrbelIDE.Document").size());

    // An inactive section gives what is there.
    const auto lastTrace = testCase->createTraceController(active->getTrace());
    EXPECT_EQ(lastTrace, testCase->createTraceController(inactive->getTrace()));
    EXPECT_EQ(profilerCtrl, testCase->createProfilerController(inactive->getProfiler()));
    EXPECT_EQ(hil, testCase->createHILController(inactive->getHIL()));
    auto noDocument = CTestSpecification::parseTestSpec("trace: {trigger: T0}\n");
    EXPECT_EQ(lastTrace, testCase->createTraceController(noDocument->getTrace()));
}

TEST_F(CTestCaseAnalyzersTest, StepsWithoutControllerOrRunModeDoNothing)
{
    auto active = CTestSpecification::parseTestSpec(
        "trace: {document: t1.trd, isSaveAfterTest: true}\n"
        "coverage: {document: c1.trd, statistics: [{func: filter_step}]}\n"
        "profiler: {outFile: never.yaml, codeAreas: [{name: compute, hits: [1, 1]}]}\nhil: {params: {Out1: 1}}\n");
    auto inactive = CTestSpecification::parseTestSpec(
        "trace: {runMode: off, document: t1.trd, isSaveAfterTest: true}\n"
        "coverage: {runMode: off, document: c1.trd, statistics: [{func: filter_step}]}\n"
        "profiler: {runMode: off, codeAreas: [{name: compute, hits: [1, 1]}]}\nhil: {params: {}}\n");
    const auto trace = testCase->createTraceController(active->getTrace());
    const auto coverage = testCase->createCoverageController(active->getCoverage());
    const auto profilerCtrl = testCase->createProfilerController(active->getProfiler());
    const auto hil = testCase->createHILController(active->getHIL());
    statistics = {statistic(1, 0, 1, 1, 1, 5)};
    forget();

    CoverageStatisticMap coverageResults;
    ProfilerStatisticMap codeResults;
    ProfilerStatisticVectorMap dataResults;
    const auto everyStep = [&](const std::shared_ptr<CAnalyzerDocController>& traceCtrl,
                               const std::shared_ptr<CCoverageController>& coverageCtrl,
                               const std::shared_ptr<CProfilerController>& profilerCtrl2,
                               const std::shared_ptr<CHILController>& hilCtrl, CTestSpecification& spec) {
        testCase->configureTrace(traceCtrl, spec.getTrace());
        testCase->configureCoverage(coverageCtrl, spec.getCoverage());
        testCase->configureProfiler(profilerCtrl2, spec.getProfiler(), "filter_step");
        testCase->configureHIL(hilCtrl, spec.getHIL());
        testCase->finalizeTrace(traceCtrl, spec.getTrace());
        if (coverageCtrl) {
            testCase->finalizeCoverage(coverageCtrl, spec.getCoverage());
        }
        testCase->finalizeProfiler(profilerCtrl2, spec.getProfiler(), StrStrMap());
        testCase->getCoverageResults(coverageCtrl, spec.getCoverage(), coverageResults);
        testCase->getProfilerCodeResults(profilerCtrl2, spec.getProfiler(), codeResults);
        testCase->getProfilerDataResults(profilerCtrl2, spec.getProfiler(), dataResults);
        EXPECT_EQ("", testCase->verifyProfiler(spec.getProfiler(), profilerCtrl2));
    };
    everyStep(trace, coverage, profilerCtrl, hil, *inactive); // run mode off, with controllers
    everyStep(nullptr, nullptr, nullptr, nullptr, *active);   // sections active, no controllers
    testCase->profilerResultsToYaml(tempFolder("none") + "/p.yaml", true, true, nullptr);

    EXPECT_TRUE(analyzerCalls().empty()) << analyzerCalls().front();
    EXPECT_TRUE(coverageResults.empty() && codeResults.empty() && dataResults.empty());
    EXPECT_FALSE(std::filesystem::exists(tempFolder("none") + "/p.yaml"));

    // Only the coverage is missed when it should be finished.
    EXPECT_EQ("Internal error - coverage is ON, but coverage controller does not exist!",
              thrownBy<IllegalStateException>([&] { testCase->finalizeCoverage(nullptr, active->getCoverage()); })
                  .getDesc());
}

TEST_F(CTestCaseAnalyzersTest, CoverageConfigurationByRunModeAndDecisionFlag)
{
    const struct {
        const char* section;
        Calls calls;
    } cases[] = {
        {"{document: c1.trd, runMode: resume, rangeset: rs, statistics: [{func: filter_step}]}",
         {"OrbelIDE.Document(0x40000000, c1.trd, NULL, 0)"}},
        {"{document: c1.trd, isDecisionCoverage: true, rangeset: rs, statistics: [{func: adc_read}]}",
         {"Coverage.SetConfiguration(c1.trd, 4, 'rs', 0)", "Coverage.SetConfiguration(c1.trd, 1, '', 3)",
          "Coverage.SetConfiguration(c1.trd, 5, '', 3)", "Coverage.SetConfiguration(c1.trd, 2, '', 3)",
          "Coverage.SetConfiguration(c1.trd, 3, '', 0)", "Coverage.SetConfiguration(c1.trd, 12, 'adc_read', 0)",
          "OrbelIDE.Document(0x10000000, c1.trd, NULL, 0)"}},
    };
    for (const auto& c : cases) {
        auto spec = CTestSpecification::parseTestSpec(std::string("coverage: ") + c.section + "\n");
        auto controller = openCoverage(spec->getCoverage());
        testCase->configureCoverage(controller, spec->getCoverage());
        EXPECT_EQ(c.calls, analyzerCalls()) << c.section;
    }
}

TEST_F(CTestCaseAnalyzersTest, CoverageExportFormats)
{
    const struct {
        const char* format;
        const char* number;
    } cases[] = {
        {"HTML", "0"}, {"Text", "1"}, {"CSV", "2"}, {"XML", "3"}, {"Review (HTML)", "4"},
        {"Review (Text)", "5"}, {"XML2", "6"}, {"", "2"},
    };
    auto spec = CTestSpecification::parseTestSpec("coverage: {document: c1.trd, exportFile: out.x}\n");
    CTestCoverage& section = spec->getCoverage();
    for (const auto& c : cases) {
        section.setExportFormat(c.format);
        auto controller = openCoverage(section);
        testCase->finalizeCoverage(controller, section);
        EXPECT_EQ((Calls{"OrbelIDE.Document(0x20000000, c1.trd, NULL, 0)",
                         std::string("OrbelIDE.Document(0x60000000, c1.trd, out.x, ") + c.number + ")"}),
                  analyzerCalls())
            << c.format;
    }

    // The texts are compared whole, case and all; the document is stopped, and not closed.
    section.setCloseAfterTest(true);
    for (const char* format : {"csv", "Binary", "Xml", "Review(HTML)", "XML3"}) {
        section.setExportFormat(format);
        auto controller = openCoverage(section);
        const auto e = thrownBy<IllegalArgumentException>([&] { testCase->finalizeCoverage(controller, section); });
        EXPECT_EQ("Unknown export format for coverage files!", e.getDesc()) << format;
        EXPECT_EQ(std::string("  data:\n    format: ") + format + "\n", e.getData()) << format;
        EXPECT_EQ(Calls{"OrbelIDE.Document(0x20000000, c1.trd, NULL, 0)"}, analyzerCalls()) << format;
    }
}

TEST_F(CTestCaseAnalyzersTest, BitmapFileHoldsTheRangesOneAfterTheOther)
{
    const std::string folder = tempFolder("bitmap");
    const std::string path = folder + "/cov.bin";
    writeFile(path, "older and longer content");
    auto spec = CTestSpecification::parseTestSpec("coverage: {document: c1.trd, isSaveAfterTest: true, "
                                                  "isCloseAfterTest: true}\n");
    CTestCoverage& section = spec->getCoverage();
    section.setBitmapFileName(path);
    activeRanges = {SCoverageRange{0x100, 0x103}, SCoverageRange{0x230, 0x231}};
    auto controller = openCoverage(section);
    testCase->finalizeCoverage(controller, section);
    EXPECT_EQ((Calls{"OrbelIDE.Document(0x20000000, c1.trd, NULL, 0)", "OrbelIDE.Document(0x3, c1.trd, NULL, 0)",
                     "Coverage.GetRanges(c1.trd, 1, 100, '', 0)", "Coverage.GetBitmap(c1.trd, 0, 0x100, 0x103, 4)",
                     "Coverage.GetBitmap(c1.trd, 0, 0x230, 0x231, 2)", "OrbelIDE.Document(0xB, c1.trd, NULL, 0)"}),
              analyzerCalls());
    // Each byte is the start's upper bits plus its offset in the range.
    EXPECT_EQ(std::string("\x10\x11\x12\x13\x23\x24", 6), fileText(path));

    activeRanges.clear();
    controller = openCoverage(section);
    testCase->finalizeCoverage(controller, section);
    EXPECT_EQ("", fileText(path)) << "no range, an empty file";

    const std::string unreachable = folder + "/no/such/folder/cov.bin";
    section.setBitmapFileName(unreachable);
    controller = openCoverage(section);
    EXPECT_EQ("Can not open coverage bitmap file: " + unreachable,
              thrownBy<IOException>([&] { testCase->finalizeCoverage(controller, section); }).getDesc());
    EXPECT_EQ(1u, callsSince("Coverage.GetRanges").size()) << "the ranges are asked for first";
    EXPECT_TRUE(callsSince("OrbelIDE.Document(0xB").empty());
}

TEST_F(CTestCaseAnalyzersTest, ProfilerWithoutAreasMeasuresTheFunctionUnderTest)
{
    statistics = {statistic(4, 0, 10, 20, 30, 1)};
    auto spec = CTestSpecification::parseTestSpec(std::string(FUNCTION) + "profiler: {}\n");
    ASSERT_EQ("ok", run(spec));
    EXPECT_EQ((Calls{"Profiler.StartConfiguration(1, event 0, area 0, 0x0)",
                     "Profiler.AddArea(0x10, data, filter_step, 0, 0x0, 0x0, 0)", "Profiler.Control(1)",
                     "Profiler.GetStatus(0)"}),
              callsSince("Profiler."));
    EXPECT_TRUE(testCase->getCachedProfilerCodeResults().empty());
    EXPECT_TRUE(testCase->getCachedProfilerDataResults().empty());

    forget();
    EXPECT_EQ("", testCase->verifyProfiler(spec->getProfiler(), testCase->createProfilerController(spec->getProfiler())));
    EXPECT_TRUE(analyzerCalls().empty());
}

TEST_F(CTestCaseAnalyzersTest, DataAreasOfOneVariableShareTheirMeasurement)
{
    statistics = {statistic(2, 1, 5, 5, 5, 1), statistic(2, 2, 7, 8, 15, 2), statistic(2, 5, 1, 1, 1, 1),
                  statistic(3, 0, 9, 9, 9, 1)};
    auto spec = CTestSpecification::parseTestSpec(std::string(FUNCTION) +
                                                  "profiler:\n  dataAreas:\n  - {name: state, value: 1}\n"
                                                  "  - {name: state, value: 2, hits: [1, 1]}\n");
    ASSERT_EQ("ok", run(spec));
    EXPECT_EQ(Calls{"Profiler.AddArea(0x30, data, state, 0, 0x0, 0x0, 0)"}, callsSince("Profiler.AddArea"));
    EXPECT_EQ(Calls{"Profiler.GetStatistics(0x1, 2, 0, 0, room 100)"}, callsSince("Profiler.GetStatistics"));

    const ProfilerStatisticVectorMap& data = testCase->getCachedProfilerDataResults();
    ASSERT_EQ(1u, data.size());
    const ProfilerStatisticVector& values = data.at("state");
    ASSERT_EQ(3u, values.size()) << "every value of the variable, those nobody expects too";
    EXPECT_EQ(1u, values[0].getValue());
    EXPECT_EQ(2u, values[1].getValue());
    EXPECT_EQ(15, values[1].getTotalTime());
    EXPECT_EQ(5u, values[2].getValue());

    // Verifying reads each area's own value.
    forget();
    EXPECT_EQ("Profiler Error: Profiler result is outside of range!\n  resultItem: hits (data val = 2)\n"
              "  area: state\n  expectedMin: 1\n  expectedMax: 1\n  measuredValue: 2\n",
              testCase->verifyProfiler(spec->getProfiler(), testCase->createProfilerController(spec->getProfiler())));
    EXPECT_EQ((Calls{"Profiler.GetStatistics(0x21, 2, 0, 1, room 10)", "Profiler.GetStatistics(0x21, 2, 0, 2, room 10)"}),
              callsSince("Profiler.GetStatistics"));
}

TEST_F(CTestCaseAnalyzersTest, CodeAreaStatisticsAreOneEntryAtMost)
{
    auto spec = CTestSpecification::parseTestSpec("profiler: {codeAreas: [{name: compute}, {name: mode}]}\n");
    auto controller = testCase->createProfilerController(spec->getProfiler());
    const struct {
        std::vector<SProfilerStatistic> recorded;
        size_t entries;
        const char* failure;
    } cases[] = {
        {{statistic(1, 0, 1, 2, 3, 4), statistic(3, 0, 5, 6, 7, 8)}, 2, ""},
        {{statistic(3, 0, 5, 6, 7, 8)}, 1, ""},
        {{}, 0, ""},
        {{statistic(1, 0, 1, 2, 3, 4), statistic(1, 1, 1, 2, 3, 4)}, 0, "  data:\n    statSize: 2\n"},
    };
    for (const auto& c : cases) {
        statistics = c.recorded;
        ProfilerStatisticMap results;
        if (*c.failure != '\0') {
            const auto e = thrownBy<IOException>(
                [&] { testCase->getProfilerCodeResults(controller, spec->getProfiler(), results); });
            EXPECT_EQ("Invalid size of profiler code statistics vector - greater than 1!", e.getDesc());
            EXPECT_EQ(c.failure, e.getData());
            continue;
        }
        testCase->getProfilerCodeResults(controller, spec->getProfiler(), results);
        ASSERT_EQ(c.entries, results.size());
        for (const auto& entry : results) {
            EXPECT_EQ(AREA_HANDLES.at(entry.first), entry.second.getHandle()) << entry.first;
        }
    }
}

TEST_F(CTestCaseAnalyzersTest, CoverageVerificationTexts)
{
    // Counts by kind: bytes, executed; branches, executed, taken, not taken, both.
    const DWORD usual[8] = {0, 64, 48, 8, 6, 2, 1, 3};
    const DWORD noBranches[8] = {0, 3, 2, 0, 0, 0, 0, 0};
    const DWORD nothing[8] = {};
    const DWORD noneExecuted[8] = {0, 10, 0, 4, 0, 0, 0, 0};
    const std::string head = "Coverage Error:\n  resultItem: ";
    const std::string function = "\n  function: sym_100\n";
    const struct {
        const char* expected;
        const DWORD* counts;
        std::string text;
    } cases[] = {
        {"code: 80", usual, head + "bytes executed" + function + "  expected: 80\n  measured: 75\n"},
        {"code: 75, branches: 75, taken: 25, notTaken: 12.5, both: 37.5", usual, ""},
        {"code: 0, branches: 0, taken: 0, notTaken: 0, both: 0", noneExecuted, ""},
        {"code: 0, branches: 0, taken: 0, notTaken: 0, both: 0", nothing, ""},
        {"taken: 0.001", noneExecuted, head + "branches taken" + function + "  expected: 0.001\n  measured: 0\n"},
        {"branches: 80, taken: 10, notTaken: 10, both: 40", usual,
         head + "branches executed" + function + "  expected: 80\n  measured: 75\n" + head + "branches both" +
             function + "  expected: 40\n  measured: 37.5\n"},
        {"code: 100, branches: 100, taken: 100, notTaken: 100, both: 100", nothing, ""},
        {"code: 70, branches: 50", noBranches, head + "bytes executed" + function + "  expected: 70\n  measured: 66.6667\n"},
        {"code: 66.67, taken: 0.5", noBranches, head + "bytes executed" + function + "  expected: 66.67\n  measured: 66.6667\n"},
    };
    for (const auto& c : cases) {
        std::copy(c.counts, c.counts + 8, coverageCounts);
        auto spec = CTestSpecification::parseTestSpec(std::string("coverage: {document: c1.trd, statistics: "
                                                                  "[{func: filter_step, ") +
                                                      c.expected + "}]}\n");
        auto controller = openCoverage(spec->getCoverage());
        EXPECT_EQ(c.text, testCase->verifyCoverage(spec->getCoverage(), controller)) << c.expected;
    }
    EXPECT_EQ(statisticsCalls("c1.trd", "filter_step", "0x100", "0x13F") +
                  Calls{"OrbelDebug.GetSymbolAtAddress(0x4, 0, 0x100, 512)"},
              analyzerCalls())
        << "the last verification's calls";
}

TEST_F(CTestCaseAnalyzersTest, CoverageVerificationOfSeveralFunctions)
{
    const DWORD halfExecuted[8] = {0, 10, 5, 0, 0, 0, 0, 0};
    std::copy(halfExecuted, halfExecuted + 8, coverageCounts);
    auto spec = CTestSpecification::parseTestSpec("coverage: {document: c1.trd, statistics: "
                                                  "[{func: filter_step, code: 60}, {func: adc_read, code: 40}, "
                                                  "{func: main, code: 50.5}]}\n");
    auto controller = openCoverage(spec->getCoverage());
    EXPECT_EQ("Coverage Error:\n  resultItem: bytes executed\n  function: sym_100\n  expected: 60\n  measured: 50\n"
              "Coverage Error:\n  resultItem: bytes executed\n  function: sym_80\n  expected: 50.5\n  measured: 50\n",
              testCase->verifyCoverage(spec->getCoverage(), controller));
    EXPECT_EQ((Calls{"OrbelDebug.GetSymbolAtAddress(0x4, 0, 0x100, 512)", "OrbelDebug.GetSymbolAtAddress(0x4, 0, 0x200, 512)",
                     "OrbelDebug.GetSymbolAtAddress(0x4, 0, 0x80, 512)"}),
              callsSince("OrbelDebug.GetSymbolAtAddress"));
    EXPECT_THROW(testCase->verifyCoverage(spec->getCoverage(), nullptr), IllegalArgumentException);
}

TEST_F(CTestCaseAnalyzersTest, ProfilerVerificationOfRanges)
{
    const std::string head = "Profiler Error: Profiler result is outside of range!\n  resultItem: ";
    const struct {
        const char* limits;
        SProfilerStatistic measured;
        std::string text;
    } cases[] = {
        {"minTime: [10, 20], maxTime: [10, 20], totalTime: [10, 20], hits: [10, 20]",
         statistic(1, 0, 10, 20, 15, 10), ""},
        {"minTime: [10, 20]", statistic(1, 0, 9, 0, 0, 0),
         head + "min\n  area: compute\n  expectedMin: 10\n  expectedMax: 20\n  measuredValue: 9\n"},
        {"maxTime: [10, 20]", statistic(1, 0, 0, 21, 0, 0),
         head + "max\n  area: compute\n  expectedMin: 10\n  expectedMax: 20\n  measuredValue: 21\n"},
        {"minTime: [0, 10]", statistic(1, 0, -3, 0, 0, 0),
         head + "min\n  area: compute\n  expectedMin: 0\n  expectedMax: 10\n  measuredValue: -3\n"},
        {"hits: [0, 4294967295]", statistic(1, 0, 0, 0, 0, 4000000000u), ""},
        {"hits: [0, 2147483647]", statistic(1, 0, 0, 0, 0, 4000000000u),
         head + "hits\n  area: compute\n  expectedMin: 0\n  expectedMax: 2147483647\n  measuredValue: 4000000000\n"},
        {"minTime: [1, 2], maxTime: [1, 2], totalTime: [1, 2], hits: [1, 2]", statistic(1, 0, 3, 0, 3, 0),
         head + "min\n  area: compute\n  expectedMin: 1\n  expectedMax: 2\n  measuredValue: 3\n" + head +
             "max\n  area: compute\n  expectedMin: 1\n  expectedMax: 2\n  measuredValue: 0\n" + head +
             "total\n  area: compute\n  expectedMin: 1\n  expectedMax: 2\n  measuredValue: 3\n" + head +
             "hits\n  area: compute\n  expectedMin: 1\n  expectedMax: 2\n  measuredValue: 0\n"},
        {"", statistic(1, 0, 99, 99, 99, 99), ""},
    };
    for (const auto& c : cases) {
        auto spec = CTestSpecification::parseTestSpec(std::string("profiler: {codeAreas: [{name: compute") +
                                                      (*c.limits != '\0' ? ", " : "") + c.limits + "}]}\n");
        statistics = {c.measured};
        EXPECT_EQ(c.text, testCase->verifyProfiler(spec->getProfiler(),
                                                   testCase->createProfilerController(spec->getProfiler())))
            << c.limits;
    }
    EXPECT_EQ(Calls{"Profiler.GetStatistics(0x1, 1, 0, 0, room 10)"},
              Calls(1, callsSince("Profiler.GetStatistics").back()));
}

TEST_F(CTestCaseAnalyzersTest, ProfilerResultsAsYaml)
{
    const std::string path = tempFolder("yaml") + "/prof.yaml";
    statistics = {statistic(1, 0, -3, 7, 20, 4), statistic(2, 4294967295u, 1, 1, 1, 1)};
    history = {SProfilerHistory{2, 5, 100}, SProfilerHistory{1, 0, 250}, SProfilerHistory{2, 6, 300}};
    auto controller = testCase->createProfilerController(CTestSpecification::parseTestSpec("profiler: {}\n")->getProfiler());
    forget();
    testCase->profilerResultsToYaml(path, false, true, controller);
    EXPECT_EQ("---\n"
              "statistics:\n"
              "- handle: 1\n  area: compute\n  value: 0\n  minTime: -3\n  maxTime: 7\n  totalTime: 20\n  numHits: 4\n"
              "- handle: 2\n  area: state\n  value: 4294967295\n  minTime: 1\n  maxTime: 1\n  totalTime: 1\n"
              "  numHits: 1\n"
              "history:\n"
              "- idx: 0\n  handle: 2\n  area: state\n  value: 5\n  hitTime: 100\n"
              "- idx: 1\n  handle: 1\n  area: compute\n  value: 0\n  hitTime: 250\n"
              "- idx: 2\n  handle: 2\n  area: state\n  value: 6\n  hitTime: 300\n"
              "...\n",
              fileText(path));
    EXPECT_EQ((Calls{"Profiler.GetStatistics(0x2, 0, 0, 0, room 1000)", "Profiler.GetArea(0, 264, '', 1, 0x0)",
                     "Profiler.GetArea(0, 264, '', 2, 0x0)", "Profiler.GetHistory(0x2, 0, 0, 0, from 0, room 1000)",
                     "Profiler.GetArea(0, 264, '', 2, 0x0)", "Profiler.GetArea(0, 264, '', 1, 0x0)"}),
              callsSince("Profiler."))
        << "the history asks once for each area";

    // Without history, and nothing recorded.
    statistics.clear();
    testCase->profilerResultsToYaml(path, true, false, controller);
    EXPECT_EQ("---\nstatistics: []\n...\n", fileText(path));
}

TEST_F(CTestCaseAnalyzersTest, ExistingProfilerFileIsKeptWithoutForce)
{
    const std::string folder = tempFolder("keep");
    const std::string path = folder + "/prof.yaml";
    writeFile(path, "earlier results\n");
    auto controller = testCase->createProfilerController(CTestSpecification::parseTestSpec("profiler: {}\n")->getProfiler());
    forget();
    const auto e = thrownBy<IOException>([&] { testCase->profilerResultsToYaml(path, false, false, controller); });
    EXPECT_EQ("Profiler output file already exists, and forceOverwrite == false!", e.getDesc());
    EXPECT_EQ("  data:\n    fileName: " + path + "\n", e.getData());
    EXPECT_EQ("earlier results\n", fileText(path));
    EXPECT_TRUE(analyzerCalls().empty());

    testCase->profilerResultsToYaml(path, true, false, controller);
    EXPECT_EQ("---\nstatistics: []\n...\n", fileText(path));

    const std::string unreachable = folder + "/missing/prof.yaml";
    EXPECT_EQ("Can not open file for writing profiler output: " + unreachable,
              thrownBy<IOException>([&] { testCase->profilerResultsToYaml(unreachable, true, false, controller); })
                  .getDesc());
}

TEST_F(CTestCaseAnalyzersTest, ProfilerStatisticsAreReadWithMoreRoomWhileFull)
{
    const std::string path = tempFolder("room") + "/prof.yaml";
    auto controller = testCase->createProfilerController(CTestSpecification::parseTestSpec("profiler: {}\n")->getProfiler());
    const struct {
        DWORD recorded;
        DWORD reads;
        bool isTooMany;
    } cases[] = {{999, 1, false}, {1000, 2, false}, {2500, 3, false}, {9999, 10, true}, {10000, 10, true},
                 {25000, 10, true}};
    for (const auto& c : cases) {
        recordStatistics(c.recorded);
        forget();
        if (c.isTooMany) {
            const auto e = thrownBy<IllegalStateException>(
                [&] { testCase->profilerResultsToYaml(path, true, false, controller); });
            EXPECT_EQ("Statistics size exceeds max statistics size!", e.getDesc()) << c.recorded;
            EXPECT_EQ("  data:\n    statisticsSize: 10000\n    maxStatisticsSize: 10000\n", e.getData());
        } else {
            testCase->profilerResultsToYaml(path, true, false, controller);
            EXPECT_EQ(c.recorded, occurrences(fileText(path), "- handle: ")) << c.recorded;
        }
        const Calls reads = callsSince("Profiler.GetStatistics");
        ASSERT_EQ(c.reads, reads.size()) << c.recorded;
        for (DWORD i = 0; i < c.reads; ++i) {
            EXPECT_EQ("Profiler.GetStatistics(0x2, 0, 0, 0, room " + std::to_string(1000 * (i + 1)) + ")", reads[i]);
        }
    }
}

TEST_F(CTestCaseAnalyzersTest, ProfilerHistoryIsReadInBlocks)
{
    const std::string path = tempFolder("history") + "/prof.yaml";
    auto controller = testCase->createProfilerController(CTestSpecification::parseTestSpec("profiler: {}\n")->getProfiler());
    const struct {
        DWORD recorded;
        std::vector<DWORD> starts;
    } cases[] = {{0, {0}}, {999, {0}}, {1000, {0, 1000}}, {1003, {0, 1000}}, {2000, {0, 1000, 2000}}};
    for (const auto& c : cases) {
        history.clear();
        for (DWORD i = 0; i < c.recorded; ++i) {
            history.push_back(SProfilerHistory{1 + i % 2, i, 10ull * i});
        }
        forget();
        testCase->profilerResultsToYaml(path, true, true, controller);
        Calls expected;
        for (DWORD start : c.starts) {
            expected.push_back("Profiler.GetHistory(0x2, 0, 0, 0, from " + std::to_string(start) + ", room 1000)");
        }
        EXPECT_EQ(expected, callsSince("Profiler.GetHistory")) << c.recorded;
        const std::string text = fileText(path);
        EXPECT_EQ(c.recorded, occurrences(text, "- idx: ")) << c.recorded;
        if (c.recorded > 0) {
            const std::string last = std::to_string(c.recorded - 1);
            EXPECT_NE(std::string::npos, text.find("- idx: " + last + "\n  handle: " + std::to_string(1 + (c.recorded - 1) % 2) +
                                                   "\n  area: " + (c.recorded % 2 == 1 ? "compute" : "state") +
                                                   "\n  value: " + last + "\n  hitTime: " + last + "0\n"))
                << "the numbering goes on over the blocks";
        }
        EXPECT_LE(callsSince("Profiler.GetArea").size(), 2u) << "one question for each area";
    }
}

TEST_F(CTestCaseAnalyzersTest, ProfilerOutputFileNameTakesVariables)
{
    const std::string folder = tempFolder("vars");
    auto spec = CTestSpecification::parseTestSpec("profiler: {outFile: '${dir}/p_${test}.yaml', isSaveHistory: true}\n");
    auto controller = testCase->createProfilerController(spec->getProfiler());
    bool isLoading = true;
    profiler().getStatus = [&isLoading](DWORD, SProfilerStatus* status) {
        status->m_byFlags = isLoading ? 0x04 : 0;
        isLoading = false;
        return S_OK;
    };
    forget();
    testCase->finalizeProfiler(controller, spec->getProfiler(), StrStrMap{{"dir", folder}, {"test", "t1"}});
    const Calls calls = callsSince("Profiler.");
    ASSERT_GE(calls.size(), 3u);
    EXPECT_EQ((Calls{"Profiler.GetStatus(0)", "Profiler.GetStatus(0)", "Profiler.GetStatistics(0x2, 0, 0, 0, room 1000)"}),
              Calls(calls.begin(), calls.begin() + 3))
        << "loaded before it is read";
    EXPECT_EQ("---\nstatistics: []\nhistory: []\n...\n", fileText(folder + "/p_t1.yaml"));

    EXPECT_THROW(testCase->finalizeProfiler(controller, spec->getProfiler(), StrStrMap{{"dir", folder}}),
                 IllegalArgumentException)
        << "an unknown variable";
}

} // namespace
