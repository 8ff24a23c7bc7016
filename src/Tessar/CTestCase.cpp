#include "CTestCase.h"

#include <algorithm>
#include <iterator>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "CAnalyzerDocController.h"
#include "CAreaProperties.h"
#include "CCoverageController.h"
#include "CDebugFacade.h"
#include "CHILController.h"
#include "CProfilerController.h"
#include "CTestHIL.h"
#include "CTestTrace.h"
#include "CYAMLMap.h"
#include "CYAMLSequence.h"
#include "IOException.h"
#include "CIDEController.h"
#include "CStringStream.h"
#include "CTestEnvironmentConfig.h"
#include "ConnectionMgr.h"
#include "CTestCaseController.h"
#include "CTestCoverage.h"
#include "CTestCoverageStatistics.h"
#include "CTestFunction.h"
#include "CTestProfiler.h"
#include "CTestSpecification.h"
#include "CTestStubController.h"
#include "CUtil.h"
#include "CYAMLEmitter.h"
#include "ICustomFunctions.h"
#include "IllegalArgumentException.h"
#include "IllegalStateException.h"
#include "OrbelTestFlags.h"

namespace kestrix {

namespace {

const char* const POSITION_PARAM_PREFIX = "kestrix___position_param_";
// Reading back expressions and their operands.
const DWORD EVALUATE_FLAGS = 1;
const DWORD MODIFY_FLAGS = 0;
// A run polls the target without a time limit.
const int RUN_TIMEOUT = -1;
const DWORD RUN_POLLING_MS = 50;
// Running to the stop function of the environment.
const int STOP_FUNCTION_TIMEOUT = 0;
const DWORD STOP_FUNCTION_POLLING_MS = 100;

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool startsName(char c)
{
    return c == '_' || isLetter(c);
}

/// Blanks only: tabs stay.
std::string trimBlanks(const std::string& text)
{
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) {
        return "";
    }
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// `key`, with the next display format behind a comma while formats are left.
std::string withFormat(const std::string& key, const StrVector& formats, size_t& formatIndex)
{
    if (formatIndex < formats.size()) {
        return key + "," + formats[formatIndex++];
    }
    return key;
}

template <class T>
T& required(const std::shared_ptr<T>& pointer, const char* what)
{
    if (!pointer) {
        throw IllegalArgumentException(KX_POS, std::string(what) + " must not be null!");
    }
    return *pointer;
}

/// The target records 32-bit values: an expected -1 is the measured 0xffffffff.
bool isSameTargetValue(long long first, long long second)
{
    return static_cast<DWORD>(first) == static_cast<DWORD>(second);
}

} // namespace

CTestCase::CTestCase(std::shared_ptr<ConnectionMgr> connectionMgr) : connectionMgr(std::move(connectionMgr))
{
    // The facade's controllers need a live connection; initEnvironment may make it later.
    if (this->connectionMgr && this->connectionMgr->isConnected()) {
        debug = std::make_shared<CDebugFacade>(this->connectionMgr);
    }
}

CDebugFacade& CTestCase::debugFacade()
{
    if (!debug) {
        required(connectionMgr, "Connection manager");
        debug = std::make_shared<CDebugFacade>(connectionMgr);
    }
    return *debug;
}

void CTestCase::initEnvironment(CTestEnvironmentConfig& config, bool isInitTarget)
{
    required(connectionMgr, "Connection manager").connectMRU(config.getWorkspace());
    if (!isInitTarget) {
        return;
    }
    CDebugFacade& facade = debugFacade();
    if (config.idDownloadOnInit()) {
        facade.getLoaderController().download();
    }
    CExecutionController& execution = facade.getExecutionController();
    if (config.isResetOnInit()) {
        execution.reset();
    }
    if (config.isRunOnInit()) {
        const std::string stopFunction = config.getStopFunction();
        if (stopFunction.empty()) {
            execution.run();
        } else {
            execution.runUntilFunction(stopFunction);
            execution.waitUntilStopped(STOP_FUNCTION_TIMEOUT, STOP_FUNCTION_POLLING_MS);
        }
    }
}

std::shared_ptr<CIDEController> CTestCase::createIDEController(std::shared_ptr<CTestSpecification> spec)
{
    if (!required(spec, "Test specification").getOptionKeys().empty() && !ideController) {
        ideController = std::make_shared<CIDEController>(connectionMgr);
    }
    return ideController;
}

void CTestCase::setOptions(std::shared_ptr<CIDEController> ideController, std::shared_ptr<CTestSpecification> spec)
{
    if (!ideController) {
        return;
    }
    const CTestSpecification& test = required(spec, "Test specification");
    const StrVector& keys = test.getOptionKeys();
    StrVector values;
    test.getOptionValues(values);
    for (size_t i = 0; i < keys.size(); ++i) {
        ideController->setOption(keys[i], i < values.size() ? values[i] : std::string());
    }
}

CTestCase::~CTestCase() = default;

void CTestCase::setCallbackObject(ICustomFunctions* callbackObject)
{
    this->callbackObject = callbackObject;
}

std::string CTestCase::positionParamName(size_t index)
{
    return POSITION_PARAM_PREFIX + CUtil::i2a(static_cast<unsigned long long>(index));
}

void CTestCase::tessarCpp(const std::string& testSpecText, StrVector& results, bool keepFailedTest)
{
    runTest(CTestSpecification::parseTestSpec(testSpecText), results, keepFailedTest);
}

void CTestCase::checkAnalyzers(CTestSpecification& spec)
{
    const int active = (spec.getTrace().getRunMode() != CTestTrace::rmOff ? 1 : 0) +
                       (spec.getCoverage().getRunMode() != 0 ? 1 : 0) +
                       (spec.getProfiler().getRunMode() != 0 ? 1 : 0);
    if (active > 1) {
        throw IllegalArgumentException(KX_POS, "To many analyzers!\nOnly one of analyzers (trace, coverage, "
                                               "profiler)\nmay be specified in the same test specification!");
    }
}

void CTestCase::runTest(std::shared_ptr<CTestSpecification> spec, StrVector& results, bool keepFailedTest)
{
    CTestSpecification& test = required(spec, "Test specification");
    if (!test.getRunFlag()) {
        return;
    }
    checkAnalyzers(test);
    const CTestFunction& function = test.getFunctionUnderTest();
    std::shared_ptr<CTestCaseController> ctrl = createTestController(function.getName(), function.getRetValueName());
    try {
        setOptions(createIDEController(spec), spec);
        createParameters(spec, ctrl);
        createLocals(spec, ctrl);
        createStubs(test.getStubs(), ctrl);
        ctrl->init();
    } catch (const std::exception&) {
        ctrl->destroy();
        throw;
    }
    try {
        runInitializedTest(spec, results, ctrl);
    } catch (const std::exception&) {
        if (!keepFailedTest) {
            ctrl->clean();
            ctrl->destroy();
        }
        throw;
    }
}

void CTestCase::runInitializedTest(std::shared_ptr<CTestSpecification> spec, StrVector& results,
                                   std::shared_ptr<CTestCaseController> ctrl)
{
    setLocals(spec, ctrl);
    setParameters(spec, ctrl);
    startAnalyzers(*spec);
    callInitFunction(spec->getInitFunction());
    callFunctionUnderTest(spec->getStubs(), ctrl);
    callEndFunction(spec->getEndFunction());
    stopAnalyzers(*spec);
    StrVector expected;
    spec->getExpectedResults(expected, false);
    verifyResults(expected, results, true, ctrl);
    ctrl->clean();
    ctrl->destroy();
}

std::string CTestCase::toYAMLString(const ITestParserEventReceiver& object)
{
    auto stream = std::make_shared<CStringStream>();
    auto emitter = std::make_shared<CYAMLEmitter>(stream);
    emitter->startStream();
    emitter->startDocument(false);
    // Serializing only reads the object.
    const_cast<ITestParserEventReceiver&>(object).serialize(emitter);
    emitter->endDocument(false);
    emitter->endStream();
    return stream->getString();
}

std::shared_ptr<CTestCaseController> CTestCase::createTestController(const std::string& functionName,
                                                                     const std::string& retValName)
{
    return std::make_shared<CTestCaseController>(connectionMgr, functionName, retValName);
}

void CTestCase::createParameters(std::shared_ptr<CTestSpecification> spec, std::shared_ptr<CTestCaseController> ctrl)
{
    CTestSpecification& test = required(spec, "Test specification");
    CTestCaseController& controller = required(ctrl, "Test case controller");
    if (!test.hasPositionParams()) {
        return;
    }
    StrVector params;
    test.getPositionParams(params);
    for (size_t i = 0; i < params.size(); ++i) {
        controller.createParameter(static_cast<DWORD>(i), positionParamName(i));
    }
}

void CTestCase::setParameters(std::shared_ptr<CTestSpecification> spec, std::shared_ptr<CTestCaseController> ctrl)
{
    CTestSpecification& test = required(spec, "Test specification");
    StrVector values;
    test.getFunctionUnderTest().getPositionParams(values);
    if (values.empty() && test.hasPositionParams()) {
        test.getPositionParams(values);
    }
    for (size_t i = 0; i < values.size(); ++i) {
        modifyWStr(positionParamName(i), values[i], ctrl);
    }
}

void CTestCase::createLocals(std::shared_ptr<CTestSpecification> spec, std::shared_ptr<CTestCaseController> ctrl)
{
    CTestCaseController& controller = required(ctrl, "Test case controller");
    StrStrMap locals;
    required(spec, "Test specification").getLocalVariables(locals);
    for (const auto& local : locals) {
        controller.createVariable(local.first, local.second);
    }
}

void CTestCase::setLocals(std::shared_ptr<CTestSpecification> spec, std::shared_ptr<CTestCaseController> ctrl)
{
    CTestSpecification& test = required(spec, "Test specification");
    const StrVector& keys = test.getInitKeys();
    StrVector values;
    test.getInitValues(values);
    for (size_t i = 0; i < keys.size() && i < values.size(); ++i) {
        modifyWStr(keys[i], values[i], ctrl);
    }
}

void CTestCase::modifyWStr(const std::string& variable, const std::string& value,
                           std::shared_ptr<CTestCaseController> ctrl)
{
    CTestCaseController& controller = required(ctrl, "Test case controller");
    if (value.size() < 2 || value.front() != '"' || value.back() != '"') {
        controller.modify(variable, value, MODIFY_FLAGS);
        return;
    }
    const size_t length = value.size() - 2;
    for (size_t k = 0; k < length; ++k) {
        controller.modify(variable + "[" + CUtil::i2a(static_cast<unsigned long long>(k)) + "]",
                          std::string("'") + value[k + 1] + "'", MODIFY_FLAGS);
    }
    controller.modify(variable + "[" + CUtil::i2a(static_cast<unsigned long long>(length)) + "]", "0", MODIFY_FLAGS);
}

void CTestCase::createStubs(const StubsVector& stubs, std::shared_ptr<CTestCaseController> ctrl)
{
    CTestCaseController& controller = required(ctrl, "Test case controller");
    for (const std::shared_ptr<CTestStub>& stub : stubs) {
        const CTestStub& spec = required(stub, "Stub");
        std::shared_ptr<CTestStubController> stubController = controller.createStub(spec.getFunctionName());
        stubController->createReturnValue(spec.getRetValName());
        setStubParameterNames(spec, stubController);
    }
}

void CTestCase::setStubParameterNames(const CTestStub& stub, std::shared_ptr<CTestStubController> stubController)
{
    CTestStubController& controller = required(stubController, "Stub controller");
    StrVector names;
    stub.getParamNames(names);
    for (size_t i = 0; i < names.size(); ++i) {
        controller.createParameter(static_cast<DWORD>(i), names[i]);
    }
}

void CTestCase::setStubAssignements(const CTestStub& stub, std::shared_ptr<CTestCaseController> ctrl)
{
    const StrVector& keys = stub.getAssignmentKeys();
    StrVector values;
    stub.getAssignmentValues(values);
    for (size_t i = 0; i < keys.size() && i < values.size(); ++i) {
        modifyWStr(keys[i], values[i], ctrl);
    }
}

int CTestCase::callInitFunction(const CTestFunction& function)
{
    const std::string name = function.getName();
    if (name.empty()) {
        return 0;
    }
    if (callbackObject == nullptr) {
        throw IllegalStateException(KX_POS, "Custom functions object is not set. Can not call init function! See "
                                            "method setCallbackObject() in this class!");
    }
    StrVector params;
    function.getPositionParams(params);
    return callbackObject->init(name, params);
}

int CTestCase::callEndFunction(const CTestFunction& function)
{
    const std::string name = function.getName();
    if (name.empty()) {
        return 0;
    }
    if (callbackObject == nullptr) {
        throw IllegalStateException(KX_POS, "Custom functions object is not set. Can not call end function! See "
                                            "method setCallbackObject() in this class!");
    }
    StrVector params;
    function.getPositionParams(params);
    return callbackObject->end(name, params);
}

void CTestCase::callFunctionUnderTest(const StubsVector& stubs, std::shared_ptr<CTestCaseController> ctrl)
{
    CTestCaseController& controller = required(ctrl, "Test case controller");
    for (;;) {
        controller.run();
        controller.waitUntilStopped(RUN_TIMEOUT, RUN_POLLING_MS);
        callStubs(stubs, ctrl);
        if (controller.getStatus() == OrbelTestFlags::stateStub) {
            continue;
        }
        if (controller.getStatus() == OrbelTestFlags::stateEnded) {
            return;
        }
        throw IllegalStateException(KX_POS, "Test didn't end normally. State = " +
                                                CTestCaseController::testState2str(controller.getStatus()));
    }
}

void CTestCase::callStubs(const StubsVector& stubs, std::shared_ptr<CTestCaseController> ctrl)
{
    CTestCaseController& controller = required(ctrl, "Test case controller");
    if (controller.getStatus() != OrbelTestFlags::stateStub) {
        return;
    }
    const std::string stoppedOn = controller.getActiveStub()->getStubName();
    const CTestStub* found = nullptr;
    for (const std::shared_ptr<CTestStub>& stub : stubs) {
        if (stub && stub->getFunctionName() == stoppedOn) {
            found = stub.get();
            break;
        }
    }
    if (found == nullptr) {
        throw IllegalStateException(
            KX_POS, "Stopped in state 'stStub', but stub specification not found. Stopped on function: " + stoppedOn);
    }
    setStubAssignements(*found, ctrl);
    if (found->getScriptFunction().getName().empty()) {
        return;
    }
    if (callbackObject == nullptr) {
        throw IllegalStateException(KX_POS, "Custom functions object is not set. Can not call stub function! See "
                                            "method setCallbackObject() in this class!");
    }
    callbackObject->stub(*found);
}

void CTestCase::verifyResults(const StrVector& expected, StrVector& results, bool isShowExpression,
                              std::shared_ptr<CTestCaseController> ctrl)
{
    CTestCaseController& controller = required(ctrl, "Test case controller");
    for (const std::string& item : expected) {
        std::string expression = item;
        StrVector formats;
        const size_t marker = expression.find("@@");
        if (marker != std::string::npos) {
            StrVector parts;
            CUtil::split(expression.substr(marker + 2), ' ', parts);
            for (const std::string& part : parts) {
                const std::string format = CUtil::trim(part);
                if (!format.empty()) {
                    formats.push_back(format);
                }
            }
            expression = CUtil::trim(expression.substr(0, marker));
        }
        if (CTestCaseController::s2i64(controller.evaluate(expression, EVALUATE_FLAGS)) != 0) {
            results.push_back("");
            continue;
        }
        StrVector names;
        StrStrMap values;
        evalVars(names, formats, expression, values, ctrl);
        std::string message = isShowExpression ? expression + "\n" : "";
        for (size_t k = 0; k < names.size(); ++k) {
            if (k > 0) {
                message += "\n";
            }
            if (isShowExpression) {
                message += "    ";
            }
            message += names[k] + " = " + values[names[k]];
        }
        results.push_back(message);
    }
}

void CTestCase::evalVars(StrVector& names, const StrVector& formats, const std::string& expression, StrStrMap& values,
                         std::shared_ptr<CTestCaseController> ctrl)
{
    CTestCaseController& controller = required(ctrl, "Test case controller");
    size_t formatIndex = 0;
    for (size_t i = 0; i < expression.size(); ++i) {
        if (!startsName(expression[i])) {
            continue;
        }
        // The x of 0x10 and a character constant 'a' start no name.
        if (i > 0 && (isDigit(expression[i - 1]) || expression[i - 1] == '\'')) {
            continue;
        }
        size_t j = i + 1;
        while (j < expression.size() && (startsName(expression[j]) || isDigit(expression[j]) || expression[j] == '.')) {
            ++j;
        }
        const std::string key = expression.substr(i, j - i);
        i = j;
        if (values.count(key) != 0) {
            continue;
        }
        const std::string text = withFormat(key, formats, formatIndex);
        try {
            values[key] = controller.evaluate(text, EVALUATE_FLAGS);
        } catch (const IException& e) {
            values[key] = e.toString();
        }
        names.push_back(key);
    }
}

void CTestCase::evalSubExpressions(StrVector& names, const StrVector& formats, const std::string& expression,
                                   StrStrMap& values, DWORD formatIndex, std::shared_ptr<CTestCaseController> ctrl)
{
    CTestCaseController& controller = required(ctrl, "Test case controller");
    size_t nextFormat = formatIndex;
    size_t start = 0;
    const size_t size = expression.size();
    for (size_t i = 0; i < size; ++i) {
        const char c = expression[i];
        const char d = i + 1 < size ? expression[i + 1] : '\0';
        std::string operand;
        if (i + 1 == size) {
            operand = expression.substr(start);
        } else if ((c == '&' && d == '&') || (c == '|' && d == '|') ||
                   (d == '=' && (c == '=' || c == '!' || c == '<' || c == '>'))) {
            operand = expression.substr(start, i - start);
            start = i + 2;
            ++i;
        } else if (d != '=' && (c == '<' || (c == '>' && (i == 0 || expression[i - 1] != '-')))) {
            // A '>' behind '-' is the arrow of a member access.
            operand = expression.substr(start, i - start);
            start = i + 1;
        } else {
            continue;
        }
        const std::string key = trimBlanks(operand);
        if (key.empty() || !startsName(key[0]) || values.count(key) != 0) {
            continue;
        }
        const std::string text = withFormat(key, formats, nextFormat);
        try {
            values[key] = controller.evaluate(text, EVALUATE_FLAGS);
            names.push_back(key);
        } catch (const IException&) {
            // An operand that does not evaluate is left out.
        }
    }
}

CTestResult CTestCase::getTestResults(std::shared_ptr<CTestSpecification> spec, const StrVector& expressionResults,
                                      const CTestCoverage& coverage, const CoverageStatisticMap& coverageResults,
                                      const CTestProfiler& profiler, const ProfilerStatisticMap& profilerCodeResults,
                                      const ProfilerStatisticVectorMap& profilerDataResults)
{
    StrCoverageTestResultsMap coverageJudged;
    if (coverage.getRunMode() != CTestCoverage::rmOff) {
        for (int i = 0; i < coverage.getStatisticsSize(); ++i) {
            const CTestCoverageStatistics& expected = *coverage.getStatistics(i);
            const auto measured = coverageResults.find(expected.getFunctionName());
            coverageJudged[expected.getFunctionName()] =
                CCoverageTestResult(CCoverageTestExpected(expected),
                                    measured == coverageResults.end() ? CCoverageStatistic() : measured->second);
        }
    }
    StrProfilerTestResultsMap codeJudged;
    for (const auto& area : profiler.getCodeAreas()) {
        const auto measured = profilerCodeResults.find(area->getAreaName());
        codeJudged[area->getAreaName()] = CProfilerTestResult(
            *area, measured == profilerCodeResults.end() ? CProfilerStatistic() : measured->second, true);
    }
    return CTestResult(std::move(spec), expressionResults, coverageJudged, codeJudged,
                       judgeDataAreas(profiler.getDataAreas(), profilerDataResults));
}

StrProfilerTestResultsVectorMap CTestCase::judgeDataAreas(const ProfilerAreasVector& areas,
                                                          const ProfilerStatisticVectorMap& measured)
{
    StrProfilerTestResultsVectorMap judged;
    for (const auto& [variable, entries] : measured) {
        ProfilerTestResultsVector& results = judged[variable];
        for (const CProfilerStatistic& entry : entries) {
            const CProfilerArea* area = findDataArea(areas, variable, true, entry.getValue());
            if (area != nullptr) {
                results.emplace_back(*area, entry, false);
                continue;
            }
            area = findDataArea(areas, variable, false, 0);
            if (area == nullptr) {
                continue;
            }
            auto withoutValue = std::find_if(results.begin(), results.end(),
                                             [](const CProfilerTestResult& r) { return !r.isValueSet(); });
            if (withoutValue != results.end()) {
                withoutValue->addMeasuredResults(entry);
            } else {
                results.emplace_back(*area, entry, false);
            }
        }
    }
    // Expected values that never occurred.
    for (const auto& area : areas) {
        ProfilerTestResultsVector& results = judged[area->getAreaName()];
        const bool isFound = std::any_of(results.begin(), results.end(), [&](const CProfilerTestResult& r) {
            return r.isValueSet() == area->isAreaValueSet() &&
                   (!r.isValueSet() || isSameTargetValue(r.getValue(), area->getAreaValue()));
        });
        if (!isFound) {
            results.emplace_back(*area, false);
        }
    }
    // A measured variable that no area names leaves no list.
    for (auto it = judged.begin(); it != judged.end();) {
        it = it->second.empty() ? judged.erase(it) : std::next(it);
    }
    return judged;
}

const CProfilerArea* CTestCase::findDataArea(const ProfilerAreasVector& areas, const std::string& name,
                                              bool isWithValue, long long value)
{
    for (const auto& area : areas) {
        if (area->getAreaName() != name || area->isAreaValueSet() != isWithValue) {
            continue;
        }
        if (!isWithValue || isSameTargetValue(area->getAreaValue(), value)) {
            return area.get();
        }
    }
    return nullptr;
}

// ---- Analyzer steps ----

void CTestCase::startAnalyzers(CTestSpecification& spec)
{
    createTraceController(spec.getTrace());
    createCoverageController(spec.getCoverage());
    createProfilerController(spec.getProfiler());
    createHILController(spec.getHIL());
    configureTrace(traceController, spec.getTrace());
    configureCoverage(coverageController, spec.getCoverage());
    configureProfiler(profilerController, spec.getProfiler(), spec.getFunctionUnderTest().getName());
    configureHIL(hilController, spec.getHIL());
}

void CTestCase::stopAnalyzers(CTestSpecification& spec)
{
    finalizeTrace(traceController, spec.getTrace());
    finalizeCoverage(coverageController, spec.getCoverage());
    finalizeProfiler(profilerController, spec.getProfiler(), StrStrMap());
    coverageResults.clear();
    profilerCodeResults.clear();
    profilerDataResults.clear();
    getCoverageResults(coverageController, spec.getCoverage(), coverageResults);
    getProfilerCodeResults(profilerController, spec.getProfiler(), profilerCodeResults);
    getProfilerDataResults(profilerController, spec.getProfiler(), profilerDataResults);
}

namespace {

const char* const DEFAULT_OPEN_MODE = "w";
const char* const DEFAULT_RANGESET = "kestrix.test";
const char* const DEFAULT_TRACE_EXPORT = "Binary";
const char* const DEFAULT_COVERAGE_EXPORT = "CSV";
const DWORD COVERAGE_FLAGS = 1;
const DWORD DECISION_COVERAGE_FLAGS = 3;
const DWORD PROFILER_START_FLAGS = 1;
const DWORD MAX_COVERAGE_RANGES = 100;
// Entries read for one code area or one value of a variable, and for all values of a variable.
const DWORD MAX_AREA_STATISTICS = 10;
const DWORD MAX_DATA_STATISTICS = 100;
const DWORD STATISTICS_STEP = 1000;
const DWORD MAX_STATISTICS = 10000;
const DWORD HISTORY_BLOCK = 1000;
// Symbol kinds of the address controller: functions by name, then by address.
const DWORD FUNCTION_SYMBOL = 0x4000;
const DWORD FUNCTION_NAMES = 4;
// Statistic kinds of the coverage document.
enum CoverageKind : DWORD {
    csftBytes = 1,
    csftBytesExec = 2,
    csftBranches = 3,
    csftBranchesExec = 4,
    csftBranchesTaken = 5,
    csftBranchesNotTaken = 6,
    csftBranchesBoth = 7
};

std::string openModeOf(const std::string& openMode)
{
    return openMode.empty() ? DEFAULT_OPEN_MODE : openMode;
}

int coverageExportFormat(const std::string& format)
{
    static const char* const FORMATS[] = {"HTML", "Text", "CSV", "XML", "Review (HTML)", "Review (Text)", "XML2"};
    for (int i = 0; i < static_cast<int>(sizeof(FORMATS) / sizeof(FORMATS[0])); ++i) {
        if (format == FORMATS[i]) {
            return i;
        }
    }
    IllegalArgumentException e(KX_POS, "Unknown export format for coverage files!");
    e.add("format", format);
    throw e;
}

std::string decimal(long long value)
{
    return std::to_string(value);
}

} // namespace

std::shared_ptr<CAnalyzerDocController> CTestCase::createTraceController(const CTestTrace& section)
{
    if (section.getRunMode() == CTestTrace::rmOff || section.getDocumentFileName().empty()) {
        return traceController;
    }
    traceController.reset();
    traceController = std::make_shared<CAnalyzerDocController>(connectionMgr, CAnalyzerDocController::ANALYZER,
                                                               section.getDocumentFileName(),
                                                               openModeOf(section.getOpenMode()));
    return traceController;
}

std::shared_ptr<CCoverageController> CTestCase::createCoverageController(const CTestCoverage& section)
{
    if (section.getRunMode() == CTestCoverage::rmOff) {
        return coverageController;
    }
    if (section.getDocumentFileName().empty()) {
        throw IllegalArgumentException(KX_POS, "Document name is not specified for coverage!");
    }
    coverageController.reset();
    coverageController = std::make_shared<CCoverageController>(connectionMgr, section.getDocumentFileName(),
                                                               openModeOf(section.getOpenMode()));
    return coverageController;
}

std::shared_ptr<CProfilerController> CTestCase::createProfilerController(const CTestProfiler& section)
{
    if (section.getRunMode() != CTestProfiler::rmOff && !profilerController) {
        profilerController = std::make_shared<CProfilerController>(connectionMgr);
    }
    return profilerController;
}

std::shared_ptr<CHILController> CTestCase::createHILController(const CTestHIL& section)
{
    if (!section.getHILParamKeys().empty() && !hilController) {
        hilController = std::make_shared<CHILController>(connectionMgr);
    }
    return hilController;
}

void CTestCase::configureTrace(std::shared_ptr<CAnalyzerDocController> controller, const CTestTrace& section)
{
    if (section.getRunMode() == CTestTrace::rmOff || !controller) {
        return;
    }
    if (!section.getTriggerName().empty()) {
        controller->select(section.getTriggerName());
    }
    controller->start();
}

void CTestCase::configureCoverage(std::shared_ptr<CCoverageController> controller, const CTestCoverage& section)
{
    if (section.getRunMode() == CTestCoverage::rmOff || !controller) {
        return;
    }
    if (section.getRunMode() == CTestCoverage::rmResume) {
        controller->resume();
        return;
    }
    if (section.getRunMode() != CTestCoverage::rmStart) {
        return;
    }
    const std::string rangeset = section.getRangesetName();
    controller->createRangeset(rangeset.empty() ? DEFAULT_RANGESET : rangeset);
    controller->setConfiguration(CCoverageController::csIncludesOnly,
                                 section.isDecisionCoverage() ? DECISION_COVERAGE_FLAGS : COVERAGE_FLAGS, 0);
    for (int i = 0; i < section.getStatisticsSize(); ++i) {
        controller->addRangesetInclude(CCoverageController::rsFunction, section.getStatistics(i)->getFunctionName());
    }
    controller->start();
}

void CTestCase::configureProfiler(std::shared_ptr<CProfilerController> controller, const CTestProfiler& section,
                                  const std::string& functionName)
{
    if (section.getRunMode() == CTestProfiler::rmOff || !controller) {
        return;
    }
    if (section.getTriggerName().empty()) {
        controller->startConfiguration(PROFILER_START_FLAGS);
    } else {
        controller->startConfiguration(PROFILER_START_FLAGS, section.getTriggerName());
    }
    const ProfilerAreasVector& codeAreas = section.getCodeAreas();
    const ProfilerAreasVector& dataAreas = section.getDataAreas();
    if (codeAreas.empty() && dataAreas.empty()) {
        controller->addFunction(functionName, false);
    }
    for (const auto& area : codeAreas) {
        controller->addFunction(area->getAreaName(), false);
    }
    std::vector<std::string> variables;
    for (const auto& area : dataAreas) {
        if (std::find(variables.begin(), variables.end(), area->getAreaName()) == variables.end()) {
            variables.push_back(area->getAreaName());
            controller->addVariable(area->getAreaName(), false, false);
        }
    }
    controller->start();
}

void CTestCase::configureHIL(std::shared_ptr<CHILController> controller, const CTestHIL& section)
{
    const StrVector& keys = section.getHILParamKeys();
    if (keys.empty() || !controller) {
        return;
    }
    StrVector values;
    section.getHILParamValues(values);
    for (size_t i = 0; i < keys.size() && i < values.size(); ++i) {
        controller->write(keys[i] + ":" + values[i]);
    }
}

void CTestCase::finalizeTrace(std::shared_ptr<CAnalyzerDocController> controller, const CTestTrace& section)
{
    if (section.getRunMode() == CTestTrace::rmOff || !controller) {
        return;
    }
    controller->stop();
    if (section.isSaveAfterTest()) {
        controller->save();
    }
    if (!section.getExportFileName().empty()) {
        const std::string format = section.getExportFormat();
        controller->exportAs(0, section.getExportFileName(), format.empty() ? DEFAULT_TRACE_EXPORT : format);
    }
    if (section.isCloseAfterTest()) {
        controller->closeDiscard();
    }
}

void CTestCase::finalizeCoverage(std::shared_ptr<CCoverageController> controller, const CTestCoverage& section)
{
    if (section.getRunMode() == CTestCoverage::rmOff) {
        return;
    }
    if (!controller) {
        throw IllegalStateException(KX_POS, "Internal error - coverage is ON, but coverage controller does not exist!");
    }
    controller->stop();
    if (section.isSaveAfterTest()) {
        controller->save();
    }
    if (!section.getExportFileName().empty()) {
        const std::string format = section.getExportFormat();
        controller->exportAs(0, section.getExportFileName(),
                             static_cast<DWORD>(coverageExportFormat(format.empty() ? DEFAULT_COVERAGE_EXPORT : format)));
    }
    const std::string bitmapFile = section.getBitmapFileName();
    if (!bitmapFile.empty()) {
        CCoverageController::RangeVector ranges;
        controller->getActiveRanges(ranges, MAX_COVERAGE_RANGES);
        std::FILE* file = std::fopen(bitmapFile.c_str(), "wb");
        if (file == nullptr) {
            throw IOException(KX_POS, "Can not open coverage bitmap file: " + bitmapFile);
        }
        try {
            for (const SCoverageRange& range : ranges) {
                VectorBYTE bitmap;
                controller->getCoverageBitmap(range.m_aAddress, range.m_aEnd, bitmap);
                if (std::fwrite(bitmap.data(), 1, bitmap.size(), file) != bitmap.size()) {
                    throw IOException(KX_POS, "Can not write all data to coverage bitmap file: " + bitmapFile);
                }
            }
        } catch (...) {
            std::fclose(file);
            throw;
        }
        if (std::fclose(file) != 0) {
            throw IOException(KX_POS, "Can not close covearge bitmap file: " + bitmapFile);
        }
    }
    if (section.isCloseAfterTest()) {
        controller->closeDiscard();
    }
}

void CTestCase::finalizeProfiler(std::shared_ptr<CProfilerController> controller, const CTestProfiler& section,
                                 const StrStrMap& variables)
{
    if (section.getRunMode() == CTestProfiler::rmOff || !controller) {
        return;
    }
    controller->waitUntilLoaded(0, 100);
    if (!section.getOutputFileName().empty()) {
        const std::string fileName = CUtil::substVars(section.getOutputFileName(), variables);
        profilerResultsToYaml(fileName, section.isForceOverwrite(), section.isSaveHistory(), controller);
    }
}

void CTestCase::getCoverageResults(std::shared_ptr<CCoverageController> controller, const CTestCoverage& section,
                                   CoverageStatisticMap& results)
{
    if (!controller || section.getRunMode() == CTestCoverage::rmOff) {
        return;
    }
    for (int i = 0; i < section.getStatisticsSize(); ++i) {
        const std::string function = section.getStatistics(i)->getFunctionName();
        results[function] = controller->getStatisticsForSymbol(function);
    }
}

void CTestCase::getProfilerCodeResults(std::shared_ptr<CProfilerController> controller, const CTestProfiler& section,
                                       ProfilerStatisticMap& results)
{
    if (!controller || section.getRunMode() == CTestProfiler::rmOff) {
        return;
    }
    for (const auto& area : section.getCodeAreas()) {
        const CAreaProperties properties = controller->getAreaProperties(area->getAreaName());
        ProfilerStatisticVector list;
        controller->getStatisticsForHandle(properties.getHandle(), MAX_AREA_STATISTICS, list);
        if (list.size() > 1) {
            IOException e(KX_POS, "Invalid size of profiler code statistics vector - greater than 1!");
            e.add("statSize", static_cast<int>(list.size()));
            throw e;
        }
        if (!list.empty()) {
            results[area->getAreaName()] = list.front();
        }
    }
}

void CTestCase::getProfilerDataResults(std::shared_ptr<CProfilerController> controller, const CTestProfiler& section,
                                       ProfilerStatisticVectorMap& results)
{
    if (!controller || section.getRunMode() == CTestProfiler::rmOff) {
        return;
    }
    for (const auto& area : section.getDataAreas()) {
        if (results.count(area->getAreaName()) != 0) {
            continue;
        }
        ProfilerStatisticVector& values = results[area->getAreaName()];
        const CAreaProperties properties = controller->getAreaProperties(area->getAreaName());
        ProfilerStatisticVector list;
        controller->getStatisticsForHandle(properties.getHandle(), MAX_DATA_STATISTICS, list);
        values.insert(values.end(), list.begin(), list.end());
    }
}

std::string CTestCase::verifyCoverage(const CTestCoverage& section, std::shared_ptr<CCoverageController> controller)
{
    CCoverageController& coverage = required(controller, "Coverage controller");
    std::ostringstream errors;
    for (int i = 0; i < section.getStatisticsSize(); ++i) {
        const CTestCoverageStatistics& expected = *section.getStatistics(i);
        const CSymbolInfo info = debugFacade().getSymbolInfo(FUNCTION_SYMBOL, expected.getFunctionName());
        const DWORD start = info.getAddress();
        const DWORD end = start + info.getSizeMAUs() - 1;
        double counts[8] = {};
        for (DWORD kind = csftBytes; kind <= csftBranchesBoth; ++kind) {
            counts[kind] = coverage.getCoverageStatistics(kind, start, end);
        }
        const std::string name = debugFacade().getSymbolAtAddress(FUNCTION_NAMES, info.getMemArea(), start);
        const struct {
            const char* item;
            float expected;
            double measured;
        } rows[] = {
            {"bytes executed", expected.getBytesExecuted(), 100.0 * counts[csftBytesExec] / counts[csftBytes]},
            {"branches executed", expected.getBranchExecuted(), 100.0 * counts[csftBranchesExec] / counts[csftBranches]},
            {"branches taken", expected.getBranchTaken(), 100.0 * counts[csftBranchesTaken] / counts[csftBranches]},
            {"branches not taken", expected.getBranchNotTaken(),
             100.0 * counts[csftBranchesNotTaken] / counts[csftBranches]},
            {"branches both", expected.getBranchBoth(), 100.0 * counts[csftBranchesBoth] / counts[csftBranches]},
        };
        for (const auto& row : rows) {
            // Nothing in range gives NaN, which is never below what is expected.
            if (row.expected > row.measured) {
                errors << "Coverage Error:\n"
                       << "  resultItem: " << row.item << "\n"
                       << "  function: " << name << "\n"
                       << "  expected: " << row.expected << "\n"
                       << "  measured: " << row.measured << "\n";
            }
        }
    }
    return errors.str();
}

std::string CTestCase::verifyProfiler(const CTestProfiler& section, std::shared_ptr<CProfilerController> controller)
{
    if (!controller || section.getRunMode() == CTestProfiler::rmOff) {
        return "";
    }
    std::ostringstream errors;
    for (const auto& area : section.getCodeAreas()) {
        ProfilerStatisticVector list;
        controller->getStatisticsForHandle(controller->getAreaProperties(area->getAreaName()).getHandle(),
                                           MAX_AREA_STATISTICS, list);
        checkProfilerArea(*area, list, false, errors);
    }
    for (const auto& area : section.getDataAreas()) {
        ProfilerStatisticVector list;
        const DWORD handle = controller->getAreaProperties(area->getAreaName()).getHandle();
        controller->getStatisticsForValue(handle, static_cast<DWORD>(area->getAreaValue()), MAX_AREA_STATISTICS, list);
        checkProfilerArea(*area, list, true, errors);
    }
    return errors.str();
}

void CTestCase::checkProfilerArea(const CProfilerArea& area, const ProfilerStatisticVector& measured, bool isDataArea,
                                  std::ostream& errors)
{
    for (const CProfilerStatistic& entry : measured) {
        const std::string suffix = isDataArea ? " (data val = " + decimal(area.getAreaValue()) + ")" : "";
        const struct {
            const char* item;
            MinMaxLimits limits;
            long long value;
        } rows[] = {
            {"min", area.getMinTime(), entry.getMinTime()},
            {"max", area.getMaxTime(), entry.getMaxTime()},
            {"total", area.getTotalTime(), entry.getTotalTime()},
            {"hits", area.getHits(), static_cast<long long>(entry.getNumHits())},
        };
        for (const auto& row : rows) {
            if (!row.limits.m_isDefined || (row.value >= row.limits.m_min && row.value <= row.limits.m_max)) {
                continue;
            }
            errors << "Profiler Error: Profiler result is outside of range!\n"
                   << "  resultItem: " << row.item << suffix << "\n"
                   << "  area: " << area.getAreaName() << "\n"
                   << "  expectedMin: " << row.limits.m_min << "\n"
                   << "  expectedMax: " << row.limits.m_max << "\n"
                   << "  measuredValue: " << row.value << "\n";
        }
    }
}

void CTestCase::profilerResultsToYaml(const std::string& fileName, bool isForceOverwrite, bool isSaveHistory,
                                      std::shared_ptr<CProfilerController> controller)
{
    if (!controller) {
        return;
    }
    std::error_code error;
    if (!isForceOverwrite && std::filesystem::exists(fileName, error)) {
        IOException e(KX_POS, "Profiler output file already exists, and forceOverwrite == false!");
        e.add("fileName", fileName);
        throw e;
    }
    std::ofstream file(fileName, std::ios::out | std::ios::trunc);
    if (!file) {
        throw IOException(KX_POS, "Can not open file for writing profiler output: " + fileName);
    }
    auto emitter = std::make_shared<CYAMLEmitter>(&file);
    emitter->startStream();
    emitter->startDocument(false);
    emitter->writeMapStart(CYAMLMap());
    emitter->write(std::string("statistics"));
    emitter->writeSequenceStart(CYAMLSequence());
    DWORD size = STATISTICS_STEP;
    ProfilerStatisticVector statistics;
    controller->getStatisticsAll(size, statistics);
    while (statistics.size() == size && size < MAX_STATISTICS) {
        size += STATISTICS_STEP;
        statistics.clear();
        controller->getStatisticsAll(size, statistics);
    }
    if (size >= MAX_STATISTICS) {
        IllegalStateException e(KX_POS, "Statistics size exceeds max statistics size!");
        e.add("statisticsSize", static_cast<int>(MAX_STATISTICS));
        e.add("maxStatisticsSize", static_cast<int>(MAX_STATISTICS));
        throw e;
    }
    for (const CProfilerStatistic& entry : statistics) {
        emitter->mapStart();
        emitter->writeMappingPair("handle", static_cast<unsigned int>(entry.getHandle()));
        emitter->writeMappingPair("area", controller->getAreaProperties(entry.getHandle()).getName());
        emitter->writeMappingPair("value", static_cast<unsigned int>(entry.getValue()));
        emitter->writeMappingPair("minTime", static_cast<long long>(entry.getMinTime()));
        emitter->writeMappingPair("maxTime", static_cast<long long>(entry.getMaxTime()));
        emitter->writeMappingPair("totalTime", static_cast<long long>(entry.getTotalTime()));
        emitter->writeMappingPair("numHits", static_cast<unsigned int>(entry.getNumHits()));
        emitter->mapEnd();
    }
    emitter->writeSequenceEnd();
    if (isSaveHistory) {
        writeProfilerHistory(*emitter, *controller);
    }
    emitter->writeMapEnd();
    emitter->endDocumentAndStream();
    // A failing close leaves only the stream's error state.
    file.close();
}

void CTestCase::writeProfilerHistory(IEmitter& emitter, CProfilerController& controller)
{
    emitter.write(std::string("history"));
    emitter.writeSequenceStart(CYAMLSequence());
    DWORD index = 0;
    std::map<DWORD, std::string> areaNames;
    ProfilerHistoryVector block;
    do {
        block.clear();
        controller.getHistoryAll(index, HISTORY_BLOCK, block);
        for (const CProfilerHistory& entry : block) {
            auto name = areaNames.find(entry.getHandle());
            if (name == areaNames.end()) {
                name = areaNames.emplace(entry.getHandle(), controller.getAreaProperties(entry.getHandle()).getName()).first;
            }
            emitter.mapStart();
            emitter.writeMappingPair("idx", static_cast<unsigned int>(index++));
            emitter.writeMappingPair("handle", static_cast<unsigned int>(entry.getHandle()));
            emitter.writeMappingPair("area", name->second);
            emitter.writeMappingPair("value", static_cast<unsigned int>(entry.getValue()));
            emitter.writeMappingPair("hitTime", static_cast<long long>(entry.getHitTime()));
            emitter.mapEnd();
        }
    } while (block.size() == HISTORY_BLOCK);
    emitter.writeSequenceEnd();
}

} // namespace kestrix
