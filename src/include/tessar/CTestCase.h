#pragma once

#include <memory>
#include <ostream>
#include <string>

#include "CCoverageStatistic.h"
#include "CProfilerStatistic.h"
#include "CTestProfiler.h"
#include "CTestResult.h"
#include "CTestStub.h"
#include "Containers.h"
#include "OrbelTypes.h"

namespace kestrix {

class CAnalyzerDocController;
class CCoverageController;
class CDebugFacade;
class CHILController;
class CIDEController;
class CProfilerController;
class CTestHIL;
class IEmitter;
class CTestTrace;
class CTestEnvironmentConfig;
class ConnectionMgr;
class CTestCaseController;
class CTestCoverage;
class CTestFunction;
class CTestProfiler;
class CTestSpecification;
class CTestStubController;
class ICustomFunctions;
class ITestParserEventReceiver;

/// Runs one test specification on the target: creates the test, plants parameters and locals,
/// runs the function under test, serves its stubs and judges the expected expressions. Each
/// step is public, so that a caller can compose its own run.
class CTestCase {
public:
    /// Builds the debug facade at once if the connection is up, else on the first need.
    explicit CTestCase(std::shared_ptr<ConnectionMgr> connectionMgr);
    ~CTestCase();

    /// Not owned; null until set.
    void setCallbackObject(ICustomFunctions* callbackObject);

    /// Parses the specification text and runs it.
    void tessarCpp(const std::string& testSpecText, StrVector& results, bool keepFailedTest = false);
    /// The whole run; appends one string per expected expression to `results`, empty for a
    /// holding one. Failures leave as exceptions, the test cleaned and destroyed on the way.
    void runTest(std::shared_ptr<CTestSpecification> spec, StrVector& results, bool keepFailedTest = false);

    /// Connects to the workspace's Quillon and, with `isInitTarget`, prepares the target as the
    /// environment asks: download, reset, run (to its stop function).
    void initEnvironment(CTestEnvironmentConfig& config, bool isInitTarget);

    /// YAML text of one object, as an explicit document.
    static std::string toYAMLString(const ITestParserEventReceiver& object);

    std::shared_ptr<CTestCaseController> createTestController(const std::string& functionName,
                                                              const std::string& retValName);
    /// Made on the first specification with options and kept for the next runs; may be null.
    std::shared_ptr<CIDEController> createIDEController(std::shared_ptr<CTestSpecification> spec);
    /// Sets the specification's options in their order; nothing with a null controller.
    void setOptions(std::shared_ptr<CIDEController> ideController, std::shared_ptr<CTestSpecification> spec);
    void createParameters(std::shared_ptr<CTestSpecification> spec, std::shared_ptr<CTestCaseController> ctrl);
    void setParameters(std::shared_ptr<CTestSpecification> spec, std::shared_ptr<CTestCaseController> ctrl);
    void createLocals(std::shared_ptr<CTestSpecification> spec, std::shared_ptr<CTestCaseController> ctrl);
    void setLocals(std::shared_ptr<CTestSpecification> spec, std::shared_ptr<CTestCaseController> ctrl);
    void createStubs(const StubsVector& stubs, std::shared_ptr<CTestCaseController> ctrl);
    void setStubParameterNames(const CTestStub& stub, std::shared_ptr<CTestStubController> stubController);
    void setStubAssignements(const CTestStub& stub, std::shared_ptr<CTestCaseController> ctrl);
    /// Writes one value; a text in double quotes goes into a character array, terminated.
    void modifyWStr(const std::string& variable, const std::string& value, std::shared_ptr<CTestCaseController> ctrl);

    /// The callback's result, 0 if the function has no name.
    int callInitFunction(const CTestFunction& function);
    int callEndFunction(const CTestFunction& function);
    /// Runs the target until the function under test ends, serving each stub stop.
    void callFunctionUnderTest(const StubsVector& stubs, std::shared_ptr<CTestCaseController> ctrl);
    /// Serves one stop on a stub, if the target stopped on one.
    void callStubs(const StubsVector& stubs, std::shared_ptr<CTestCaseController> ctrl);

    /// Judges each expected expression in the stopped test; appends "" for a holding one, else
    /// the values of its identifiers.
    void verifyResults(const StrVector& expected, StrVector& results, bool isShowExpression,
                       std::shared_ptr<CTestCaseController> ctrl);
    /// Evaluates each identifier of `expression` once, a failure giving the exception's text.
    void evalVars(StrVector& names, const StrVector& formats, const std::string& expression, StrStrMap& values,
                  std::shared_ptr<CTestCaseController> ctrl);
    /// Evaluates each operand between comparison and logical operators that begins like a name.
    void evalSubExpressions(StrVector& names, const StrVector& formats, const std::string& expression,
                            StrStrMap& values, DWORD formatIndex, std::shared_ptr<CTestCaseController> ctrl);

    // Analyzer steps: set up before the function runs, stopped and read after it. A section whose run
    // mode is off, or a null controller, makes a step do nothing unless told otherwise.
    /// A new analyzer document for the trace; null without a document name. The field keeps it.
    std::shared_ptr<CAnalyzerDocController> createTraceController(const CTestTrace& section);
    /// A new coverage document; an active section without a document name is refused.
    std::shared_ptr<CCoverageController> createCoverageController(const CTestCoverage& section);
    /// Made once, on the first active section, and kept.
    std::shared_ptr<CProfilerController> createProfilerController(const CTestProfiler& section);
    /// Made once, on the first section with parameters, and kept.
    std::shared_ptr<CHILController> createHILController(const CTestHIL& section);
    void configureTrace(std::shared_ptr<CAnalyzerDocController> controller, const CTestTrace& section);
    void configureCoverage(std::shared_ptr<CCoverageController> controller, const CTestCoverage& section);
    /// With no areas, the function under test is measured.
    void configureProfiler(std::shared_ptr<CProfilerController> controller, const CTestProfiler& section,
                           const std::string& functionName);
    void configureHIL(std::shared_ptr<CHILController> controller, const CTestHIL& section);
    void finalizeTrace(std::shared_ptr<CAnalyzerDocController> controller, const CTestTrace& section);
    void finalizeCoverage(std::shared_ptr<CCoverageController> controller, const CTestCoverage& section);
    /// `variables` expand `${name}` in the output file name.
    void finalizeProfiler(std::shared_ptr<CProfilerController> controller, const CTestProfiler& section,
                          const StrStrMap& variables);
    void getCoverageResults(std::shared_ptr<CCoverageController> controller, const CTestCoverage& section,
                            CoverageStatisticMap& results);
    void getProfilerCodeResults(std::shared_ptr<CProfilerController> controller, const CTestProfiler& section,
                                ProfilerStatisticMap& results);
    void getProfilerDataResults(std::shared_ptr<CProfilerController> controller, const CTestProfiler& section,
                                ProfilerStatisticVectorMap& results);
    /// One "Coverage Error:" block per expected value above its measurement; "" if all are met.
    std::string verifyCoverage(const CTestCoverage& section, std::shared_ptr<CCoverageController> controller);
    /// One "Profiler Error:" block per measurement outside its range; "" if all are in range.
    std::string verifyProfiler(const CTestProfiler& section, std::shared_ptr<CProfilerController> controller);
    /// The raw statistics, and with `isSaveHistory` the history, of the recording as YAML.
    void profilerResultsToYaml(const std::string& fileName, bool isForceOverwrite, bool isSaveHistory,
                               std::shared_ptr<CProfilerController> controller);

    /// Joins a run's expression messages and measured analyzer values with what the specification
    /// expects into one judged result.
    CTestResult getTestResults(std::shared_ptr<CTestSpecification> spec, const StrVector& expressionResults,
                               const CTestCoverage& coverage, const CoverageStatisticMap& coverageResults,
                               const CTestProfiler& profiler, const ProfilerStatisticMap& profilerCodeResults,
                               const ProfilerStatisticVectorMap& profilerDataResults);

    /// Measured analyzer values of the last run, replaced by each run.
    const CoverageStatisticMap& getCachedCoverageResults() const { return coverageResults; }
    const ProfilerStatisticMap& getCachedProfilerCodeResults() const { return profilerCodeResults; }
    const ProfilerStatisticVectorMap& getCachedProfilerDataResults() const { return profilerDataResults; }

private:
    /// The variable name of the parameter at `index`.
    static std::string positionParamName(size_t index);
    static void checkAnalyzers(CTestSpecification& spec);
    /// Measured data values matched with the data areas that expect them.
    static StrProfilerTestResultsVectorMap judgeDataAreas(const ProfilerAreasVector& areas,
                                                          const ProfilerStatisticVectorMap& measured);
    /// The first data area of `name` with (and then of `value`) or without a value; null if none.
    static const CProfilerArea* findDataArea(const ProfilerAreasVector& areas, const std::string& name,
                                             bool isWithValue, long long value);
    /// The analyzer steps around the function under test.
    void startAnalyzers(CTestSpecification& spec);
    void stopAnalyzers(CTestSpecification& spec);
    /// Checks one profiler area's measurements against its ranges into `errors`.
    static void checkProfilerArea(const CProfilerArea& area, const ProfilerStatisticVector& measured,
                                  bool isDataArea, std::ostream& errors);
    static void writeProfilerHistory(IEmitter& emitter, CProfilerController& controller);
    /// Steps of a run from the values on, with the test initialized.
    void runInitializedTest(std::shared_ptr<CTestSpecification> spec, StrVector& results,
                            std::shared_ptr<CTestCaseController> ctrl);

    /// The facade, built now if it is still missing.
    CDebugFacade& debugFacade();

    ICustomFunctions* callbackObject = nullptr;
    std::shared_ptr<ConnectionMgr> connectionMgr;
    std::shared_ptr<CDebugFacade> debug;
    std::shared_ptr<CAnalyzerDocController> traceController;
    std::shared_ptr<CCoverageController> coverageController;
    std::shared_ptr<CProfilerController> profilerController;
    std::shared_ptr<CHILController> hilController;
    std::shared_ptr<CIDEController> ideController;
    CoverageStatisticMap coverageResults;
    ProfilerStatisticMap profilerCodeResults;
    ProfilerStatisticVectorMap profilerDataResults;
};

} // namespace kestrix
