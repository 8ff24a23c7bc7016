// The test controllers, the script functions a caller implements, and the test run. Declared
// by hand: the controllers' base is not exported, and overloads keep the callers' numbers.
// Comes after the test specification, whose classes the run uses.

%{
#include "CTestCase.h"
#include "CTestCaseController.h"
#include "CTestStubController.h"
#include "CTestVariableController.h"
#include "ICustomFunctions.h"

// Defined behind the director classes, which it deletes.
extern "C" void kx_deleteCustomFunctions(kestrix::ICustomFunctions* functions);
%}

%shared_ptr(kestrix::CTestCaseController)
%shared_ptr(kestrix::CTestVariableController)
%shared_ptr(kestrix::CTestStubController)

// A managed caller implements the script functions by deriving from the proxy.
%feature("director") kestrix::ICustomFunctions;
// It is deleted through the director below, not through its own type.
%warnfilter(514) kestrix::ICustomFunctions;

namespace kestrix {

class CIDEController;
class CTestEnvironmentConfig;
class ConnectionMgr;
class OrbelTest;
class ITestParserEventReceiver;

class CTestVariableController {
public:
    CTestVariableController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& name,
                            const std::string& type);
    virtual ~CTestVariableController();
    void destroy();
    DWORD getHandle() const;
    std::string getName() const;
};

class CTestStubController {
public:
    CTestStubController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& functionName);
    CTestStubController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& functionName,
                        const std::string& retValName);
    virtual ~CTestStubController();
    void destroy();
    void createParameter(DWORD index, const std::string& name);
    void createReturnValue(const std::string& name);
    DWORD getHandle() const;
    std::string getStubName() const;
    std::string getRetValName() const;
};

class CTestCaseController {
public:
    CTestCaseController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& functionName,
                        const std::string& retValName);
    virtual ~CTestCaseController();
    void destroy();
    void createParameter(DWORD index, const std::string& name);
    std::shared_ptr<CTestVariableController> createVariable(const std::string& name, const std::string& type);
    std::shared_ptr<CTestStubController> createStub(const std::string& functionName);
    std::shared_ptr<CTestStubController> getActiveStub();
    std::string evaluate(const std::string& expression, DWORD accessFlags = 0);
    std::string modify(const std::string& expression, const std::string& value, DWORD accessFlags = 0);
    DWORD getStatus();
    DWORD getStatus(DWORD kind);
    void init();
    void clean();
    void run();
    void abort();
    void pause();
    bool waitUntilStopped(int timeout = 0, DWORD pollingInterval = 100);

    static void clearAllTests(std::shared_ptr<ConnectionMgr> connectionMgr);
    static void verifyRetVal(OrbelTest* orbelTest, HRESULT hr, const std::string& message, DWORD handle,
                             const std::string& name);
    static std::string testState2str(DWORD value);
    static std::string stubState2str(DWORD value);
    static long long s2i64(const std::string& text);
};

class ICustomFunctions {
public:
    virtual int init(const std::string& functionName, const StrStrMap& params) = 0;
    virtual int init(const std::string& functionName, const StrVector& params) = 0;
    virtual int end(const std::string& functionName, const StrStrMap& params) = 0;
    virtual int end(const std::string& functionName, const StrVector& params) = 0;
    virtual int stub(const CTestStub& stubSpec) = 0;
};

class CTestCase {
public:
    CTestCase(std::shared_ptr<ConnectionMgr> connectionMgr);
    ~CTestCase();

    void setCallbackObject(ICustomFunctions* callbackObject);
    void tessarCpp(const std::string& testSpecText, StrVector& results, bool keepFailedTest = false);
    void runTest(std::shared_ptr<CTestSpecification> spec, StrVector& results, bool keepFailedTest = false);
    void initEnvironment(CTestEnvironmentConfig& config, bool isInitTarget);
    static std::string toYAMLString(const ITestParserEventReceiver& object);

    std::shared_ptr<CTestCaseController> createTestController(const std::string& functionName,
                                                              const std::string& retValName);
    std::shared_ptr<CIDEController> createIDEController(std::shared_ptr<CTestSpecification> spec);
    void setOptions(std::shared_ptr<CIDEController> ideController, std::shared_ptr<CTestSpecification> spec);
    void createParameters(std::shared_ptr<CTestSpecification> spec, std::shared_ptr<CTestCaseController> ctrl);
    void setParameters(std::shared_ptr<CTestSpecification> spec, std::shared_ptr<CTestCaseController> ctrl);
    void createLocals(std::shared_ptr<CTestSpecification> spec, std::shared_ptr<CTestCaseController> ctrl);
    void setLocals(std::shared_ptr<CTestSpecification> spec, std::shared_ptr<CTestCaseController> ctrl);
    void createStubs(const std::vector<std::shared_ptr<CTestStub> >& stubs, std::shared_ptr<CTestCaseController> ctrl);
    void setStubParameterNames(const CTestStub& stub, std::shared_ptr<CTestStubController> stubController);
    void setStubAssignements(const CTestStub& stub, std::shared_ptr<CTestCaseController> ctrl);
    void modifyWStr(const std::string& variable, const std::string& value, std::shared_ptr<CTestCaseController> ctrl);
    int callInitFunction(const CTestFunction& function);
    int callEndFunction(const CTestFunction& function);
    void callFunctionUnderTest(const std::vector<std::shared_ptr<CTestStub> >& stubs, std::shared_ptr<CTestCaseController> ctrl);
    void callStubs(const std::vector<std::shared_ptr<CTestStub> >& stubs, std::shared_ptr<CTestCaseController> ctrl);

    void verifyResults(const StrVector& expected, StrVector& results, bool isShowExpression,
                       std::shared_ptr<CTestCaseController> ctrl);
    void evalVars(StrVector& names, const StrVector& formats, const std::string& expression, StrStrMap& values,
                  std::shared_ptr<CTestCaseController> ctrl);
    void evalSubExpressions(StrVector& names, const StrVector& formats, const std::string& expression,
                            StrStrMap& values, DWORD formatIndex, std::shared_ptr<CTestCaseController> ctrl);

    CTestResult getTestResults(std::shared_ptr<CTestSpecification> spec, const StrVector& expressionResults,
                               const CTestCoverage& coverage,
                               const std::map<std::string, kestrix::CCoverageStatistic>& coverageResults,
                               const CTestProfiler& profiler,
                               const std::map<std::string, kestrix::CProfilerStatistic>& profilerCodeResults,
                               const std::map<std::string, std::vector<kestrix::CProfilerStatistic> >& profilerDataResults);
    std::shared_ptr<CAnalyzerDocController> createTraceController(const CTestTrace& section);
    std::shared_ptr<CCoverageController> createCoverageController(const CTestCoverage& section);
    std::shared_ptr<CProfilerController> createProfilerController(const CTestProfiler& section);
    std::shared_ptr<CHILController> createHILController(const CTestHIL& section);
    void configureTrace(std::shared_ptr<CAnalyzerDocController> controller, const CTestTrace& section);
    void configureCoverage(std::shared_ptr<CCoverageController> controller, const CTestCoverage& section);
    void configureProfiler(std::shared_ptr<CProfilerController> controller, const CTestProfiler& section,
                           const std::string& functionName);
    void configureHIL(std::shared_ptr<CHILController> controller, const CTestHIL& section);
    void finalizeTrace(std::shared_ptr<CAnalyzerDocController> controller, const CTestTrace& section);
    void finalizeCoverage(std::shared_ptr<CCoverageController> controller, const CTestCoverage& section);
    void finalizeProfiler(std::shared_ptr<CProfilerController> controller, const CTestProfiler& section,
                          const StrStrMap& variables);
    void getCoverageResults(std::shared_ptr<CCoverageController> controller, const CTestCoverage& section,
                            std::map<std::string, kestrix::CCoverageStatistic>& results);
    void getProfilerCodeResults(std::shared_ptr<CProfilerController> controller, const CTestProfiler& section,
                                std::map<std::string, kestrix::CProfilerStatistic>& results);
    void getProfilerDataResults(std::shared_ptr<CProfilerController> controller, const CTestProfiler& section,
                                std::map<std::string, std::vector<kestrix::CProfilerStatistic> >& results);
    std::string verifyCoverage(const CTestCoverage& section, std::shared_ptr<CCoverageController> controller);
    std::string verifyProfiler(const CTestProfiler& section, std::shared_ptr<CProfilerController> controller);
    void profilerResultsToYaml(const std::string& fileName, bool isForceOverwrite, bool isSaveHistory,
                               std::shared_ptr<CProfilerController> controller);

    const std::map<std::string, kestrix::CCoverageStatistic>& getCachedCoverageResults() const;
    const std::map<std::string, kestrix::CProfilerStatistic>& getCachedProfilerCodeResults() const;
    const std::map<std::string, std::vector<kestrix::CProfilerStatistic> >& getCachedProfilerDataResults() const;
};

} // namespace kestrix

// The script functions have no virtual destructor; a managed implementation is a director,
// deleted as what it is.
%extend kestrix::ICustomFunctions {
    ~ICustomFunctions() { kx_deleteCustomFunctions($self); }
}
%wrapper %{
void kx_deleteCustomFunctions(kestrix::ICustomFunctions* functions)
{
    // The binding hands out no other implementation, and none derives from the director.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdelete-non-virtual-dtor"
    delete dynamic_cast<SwigDirector_ICustomFunctions*>(functions);
#pragma GCC diagnostic pop
}
%}
