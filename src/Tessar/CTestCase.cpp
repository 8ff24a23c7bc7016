#include "CTestCase.h"

#include <algorithm>
#include <iterator>

#include "CDebugFacade.h"
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
#include "FeatureNotImplementedException.h"
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
    // Analyzers need controllers of their own, which the run does not drive yet.
    if (active > 0 || !spec.getHIL().isEmpty()) {
        throw FeatureNotImplementedException(KX_POS, "Analyzers and HIL in a test run are not supported yet!");
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
    callInitFunction(spec->getInitFunction());
    callFunctionUnderTest(spec->getStubs(), ctrl);
    callEndFunction(spec->getEndFunction());
    coverageResults.clear();
    profilerCodeResults.clear();
    profilerDataResults.clear();
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

} // namespace kestrix
