#include "services/TestService.h"

#include "expr/ExprError.h"
#include "expr/ScopeChain.h"
#include "services/CallConvention.h"
#include "target/Hex.h"
#include "target/TargetError.h"

namespace quillon::services {
namespace {

TestError illegalState(const std::string& message)
{
    return TestError(TestError::Kind::IllegalState, message);
}

TestError illegalArgument(const std::string& message)
{
    return TestError(TestError::Kind::IllegalArgument, message);
}

bool inRun(TestState state)
{
    return state == TestState::Running || state == TestState::Stub || state == TestState::Paused;
}

} // namespace

TestService::TestService(target::Target& target, std::uint64_t maxInstructions, ProgramSource programs)
    : TestService(target, LimitSource([maxInstructions] { return maxInstructions; }), std::move(programs))
{
}

TestService::TestService(target::Target& target, LimitSource maxInstructions, ProgramSource programs)
    : m_target(target), m_maxInstructions(std::move(maxInstructions)), m_programs(std::move(programs))
{
}

TestService::~TestService()
{
    try {
        clearAll();
    } catch (const std::exception&) {
        // The target goes with the instance.
    }
}

void TestService::setProgramSource(ProgramSource programs)
{
    std::lock_guard lock(m_mutex);
    m_programs = std::move(programs);
}

const debuginfo::DebugInfo& TestService::program() const
{
    const debuginfo::DebugInfo* debug = m_programs ? m_programs() : nullptr;
    if (debug == nullptr) {
        throw illegalState("no program with debug information is downloaded");
    }
    return *debug;
}

TestCase& TestService::test(std::uint32_t handle)
{
    const auto found = m_tests.find(handle);
    if (found == m_tests.end()) {
        throw illegalArgument("no test has the handle " + std::to_string(handle));
    }
    return *found->second;
}

TestCase& TestService::usable(std::uint32_t handle)
{
    TestCase& found = test(handle);
    requireProgram(found);
    return found;
}

void TestService::requireProgram(const TestCase& test) const
{
    if (&program() != &test.debugInfo()) {
        throw illegalState("the program was downloaded again since the test of '" + test.name() +
                           "' was made: destroy it");
    }
}

TestCase& TestService::current()
{
    if (m_tests.count(m_current) == 0) {
        throw illegalState("no test is created to declare it in");
    }
    requireProgram(*m_tests.at(m_current));
    return *m_tests.at(m_current);
}

TestCase& TestService::owner(const std::map<std::uint32_t, std::uint32_t>& owners, std::uint32_t handle,
                             const char* what)
{
    const auto found = owners.find(handle);
    if (found == owners.end()) {
        throw illegalArgument(std::string("no ") + what + " has the handle " + std::to_string(handle));
    }
    return test(found->second);
}

TestCase* TestService::active()
{
    const auto found = m_tests.find(m_active);
    return found == m_tests.end() ? nullptr : found->second.get();
}

void TestService::requireDeclaring(const TestCase& test, const char* operation) const
{
    if (test.state() != TestState::Offline) {
        throw illegalState(std::string("cannot ") + operation + " in the test of '" + test.name() + "' in state " +
                           testStateName(test.state()) + ": declarations come before init");
    }
}

void TestService::requireStoppedTest(const TestCase& test, const char* operation) const
{
    if (test.state() == TestState::Running) {
        throw illegalState(std::string("cannot ") + operation + " while the test of '" + test.name() + "' runs");
    }
}

std::uint32_t TestService::createTest(const std::string& function)
{
    std::lock_guard lock(m_mutex);
    const debuginfo::DebugInfo& debug = program();
    const debuginfo::Function* found = debug.findFunction(function);
    if (found == nullptr) {
        throw illegalArgument("unknown function '" + function + "': the program has no function of that name");
    }
    const std::uint32_t handle = m_nextHandle++;
    m_tests[handle] = std::make_unique<TestCase>(handle, debug, *found);
    m_current = handle;
    return handle;
}

void TestService::destroy(std::uint32_t handle)
{
    TestCase& found = test(handle);
    if (handle == m_active) {
        if (inRun(found.state())) {
            m_target.stop();
            m_target.waitUntilStopped();
            endRun();
        }
        m_active = 0;
    }
    for (auto it = m_variableOwners.begin(); it != m_variableOwners.end();) {
        it = it->second == handle ? m_variableOwners.erase(it) : std::next(it);
    }
    for (auto it = m_stubOwners.begin(); it != m_stubOwners.end();) {
        it = it->second == handle ? m_stubOwners.erase(it) : std::next(it);
    }
    m_problems.erase(handle);
    m_tests.erase(handle);
}

void TestService::destroyTest(std::uint32_t handle)
{
    std::lock_guard lock(m_mutex);
    update();
    destroy(handle);
}

void TestService::createParameter(std::uint32_t handle, unsigned index, const std::string& name)
{
    std::lock_guard lock(m_mutex);
    TestCase& found = usable(handle);
    requireDeclaring(found, "name a parameter");
    found.nameParameter(index, name);
}

void TestService::createReturnValue(std::uint32_t handle, const std::string& name)
{
    std::lock_guard lock(m_mutex);
    TestCase& found = usable(handle);
    requireDeclaring(found, "name the return value");
    found.nameReturnValue(name);
}

std::uint32_t TestService::createVariable(const std::string& name, const std::string& type)
{
    std::lock_guard lock(m_mutex);
    TestCase& owner = current();
    requireDeclaring(owner, "create a variable");
    const expr::ScopeChain scopes = expr::ScopeChain::forGlobals(owner.debugInfo(), m_target);
    TestVariable variable;
    try {
        variable.type = evaluator(owner, scopes)->parseType(type);
    } catch (const expr::ExprError& error) {
        throw illegalArgument("unknown type '" + type + "' of test variable '" + name + "': " + error.what());
    }
    if (variable.type == nullptr || variable.type->size() == 0) {
        throw illegalArgument("type '" + type + "' of test variable '" + name + "' has no size");
    }
    variable.handle = m_nextHandle;
    variable.name = name;
    owner.addVariable(variable);
    m_variableOwners[m_nextHandle] = owner.handle();
    return m_nextHandle++;
}

void TestService::destroyVariable(std::uint32_t handle)
{
    std::lock_guard lock(m_mutex);
    TestCase& found = owner(m_variableOwners, handle, "test variable");
    requireDeclaring(found, "destroy a variable");
    found.removeVariable(handle);
    m_variableOwners.erase(handle);
}

std::uint32_t TestService::createStub(const std::string& function)
{
    std::lock_guard lock(m_mutex);
    TestCase& owner = current();
    requireDeclaring(owner, "create a stub");
    const debuginfo::Function* found = owner.debugInfo().findFunction(function);
    if (found == nullptr) {
        throw illegalArgument("unknown function '" + function + "' to stub: the program has no function of that name");
    }
    TestStub stub;
    stub.handle = m_nextHandle;
    stub.function = found;
    owner.addStub(stub);
    m_stubOwners[m_nextHandle] = owner.handle();
    return m_nextHandle++;
}

void TestService::destroyStub(std::uint32_t handle)
{
    std::lock_guard lock(m_mutex);
    TestCase& found = owner(m_stubOwners, handle, "stub");
    requireDeclaring(found, "destroy a stub");
    found.removeStub(handle);
    m_stubOwners.erase(handle);
}

void TestService::createStubParameter(std::uint32_t stubHandle, unsigned index, const std::string& name)
{
    std::lock_guard lock(m_mutex);
    TestCase& found = owner(m_stubOwners, stubHandle, "stub");
    requireDeclaring(found, "name a stub parameter");
    found.nameStubParameter(stubHandle, index, name);
}

void TestService::createStubReturnValue(std::uint32_t stubHandle, const std::string& name)
{
    std::lock_guard lock(m_mutex);
    TestCase& found = owner(m_stubOwners, stubHandle, "stub");
    requireDeclaring(found, "name a stub return value");
    found.nameStubReturnValue(stubHandle, name);
}

std::unique_ptr<expr::ExpressionEvaluator> TestService::evaluator(const TestCase& test, const expr::ScopeChain& scopes)
{
    expr::FunctionCaller::Options options;
    options.instructionLimit = m_maxInstructions();
    options.returnAddress = returnAddress;
    return std::make_unique<expr::ExpressionEvaluator>(test.debugInfo(), m_target, scopes, options);
}

template <class F> auto TestService::inStoppedTest(const std::string& expression, F&& f)
{
    update();
    TestCase* test = active();
    if (test == nullptr) {
        throw illegalState("no test is initialized to evaluate '" + expression + "' in");
    }
    requireStoppedTest(*test, "evaluate");
    requireProgram(*test);
    const TestStub* stub = test->state() == TestState::Stub ? test->stub(m_activeStub) : nullptr;
    try {
        expr::ScopeChain scopes = expr::ScopeChain::forGlobals(test->debugInfo(), m_target);
        scopes.prepend(test->scope(m_target, stub));
        return f(*evaluator(*test, scopes));
    } catch (const expr::ExprError& error) {
        throw illegalArgument("expression '" + expression + "': " + error.what());
    } catch (const target::TargetError& error) {
        throw TestError(TestError::Kind::Io, "expression '" + expression + "': " + error.what());
    }
}

std::string TestService::evaluate(const std::string& expression)
{
    std::lock_guard lock(m_mutex);
    return inStoppedTest(expression, [&](expr::ExpressionEvaluator& evaluator) {
        return evaluator.evaluate(expression).text;
    });
}

std::string TestService::modify(const std::string& expression, const std::string& value)
{
    std::lock_guard lock(m_mutex);
    return inStoppedTest(expression, [&](expr::ExpressionEvaluator& evaluator) {
        return evaluator.modify(expression, value).text;
    });
}

void TestService::clearAll()
{
    std::lock_guard lock(m_mutex);
    update();
    while (!m_tests.empty()) {
        destroy(m_tests.begin()->first);
    }
    m_current = 0;
}

void TestService::init(std::uint32_t handle)
{
    std::lock_guard lock(m_mutex);
    update();
    TestCase& found = usable(handle);
    if (inRun(found.state())) {
        throw illegalState("cannot init the test of '" + found.name() + "' in state " +
                           testStateName(found.state()) + ": abort it first");
    }
    TestCase* other = active();
    if (other != nullptr && other != &found) {
        if (inRun(other->state())) {
            throw illegalState("cannot init the test of '" + found.name() + "' while the test of '" + other->name() +
                               "' is in state " + testStateName(other->state()));
        }
        other->dropFrame();
        other->setState(TestState::Offline);
    }
    try {
        found.placeFrame(m_target, TestFrame::stackTop(m_target));
    } catch (const target::TargetError& error) {
        throw TestError(TestError::Kind::Io, "cannot place the frame of the test of '" + found.name() + "': " +
                                                 error.what());
    }
    m_active = handle;
    m_problems.erase(handle);
    found.setState(TestState::Initialized);
}

void TestService::clean(std::uint32_t handle)
{
    std::lock_guard lock(m_mutex);
    update();
    TestCase& found = test(handle);
    if (inRun(found.state())) {
        throw illegalState("cannot clean the test of '" + found.name() + "' in state " +
                           testStateName(found.state()) + ": abort it first");
    }
    found.dropFrame();
    found.setState(TestState::Offline);
    if (m_active == handle) {
        m_active = 0;
    }
}

void TestService::start(TestCase& test)
{
    std::unique_ptr<expr::ExpressionEvaluator> caller;
    const expr::ScopeChain scopes = expr::ScopeChain::forGlobals(test.debugInfo(), m_target);
    caller = evaluator(test, scopes);
    try {
        test.callFrame = caller->caller().setUp(test.function().entry, test.function().type, test.parameterValues(),
                                                test.frameBase(), test.name());
    } catch (const expr::ExprError& error) {
        throw TestError(TestError::Kind::Io, "cannot call '" + test.name() + "': " + error.what());
    }
    m_target.writeRegister(target::Register::XPSR, 0x01000000);
    m_savedReturnAddress = m_target.returnAddress();
    m_target.setReturnAddress(returnAddress);
    for (const TestStub& stub : test.stubs()) {
        m_target.setBreakpoint(stub.function->entry);
        m_stubBreakpoints.push_back(stub.function->entry);
    }
}

void TestService::run(std::uint32_t handle)
{
    std::lock_guard lock(m_mutex);
    update();
    TestCase& found = usable(handle);
    const TestState state = found.state();
    if (m_active != handle ||
        (state != TestState::Initialized && state != TestState::Stub && state != TestState::Paused)) {
        throw illegalState("cannot run the test of '" + found.name() + "' in state " + testStateName(state) +
                           (state == TestState::Offline ? ": init it first" : ""));
    }
    try {
        if (state == TestState::Initialized) {
            start(found);
        } else if (state == TestState::Stub) {
            const TestStub& stub = *found.stub(m_activeStub);
            CallConvention::returnNow(m_target, stub.function->returnType, found.stubReturnBytes(m_target, stub));
            m_activeStub = 0;
        }
        target::RunOptions options;
        options.instructionLimit = m_maxInstructions();
        m_target.run(options);
    } catch (const target::TargetError& error) {
        throw TestError(TestError::Kind::Io, "cannot run the test of '" + found.name() + "': " + error.what());
    }
    found.setState(TestState::Running);
}

void TestService::abort(std::uint32_t handle)
{
    std::lock_guard lock(m_mutex);
    update();
    TestCase& found = test(handle);
    if (!inRun(found.state())) {
        throw illegalState("cannot abort the test of '" + found.name() + "' in state " +
                           testStateName(found.state()) + ": it does not run");
    }
    m_target.stop();
    m_target.waitUntilStopped();
    endRun();
    found.setState(TestState::Aborted);
}

void TestService::pause(std::uint32_t handle)
{
    std::lock_guard lock(m_mutex);
    update();
    TestCase& found = usable(handle);
    if (found.state() != TestState::Running) {
        throw illegalState("cannot pause the test of '" + found.name() + "' in state " +
                           testStateName(found.state()) + ": it does not run");
    }
    m_target.stop();
    m_target.waitUntilStopped();
    if (m_target.stopInfo().reason == target::StopReason::StopRequest) {
        found.setState(TestState::Paused);
    } else {
        update();
    }
}

TestState TestService::state(std::uint32_t handle)
{
    std::lock_guard lock(m_mutex);
    update();
    return test(handle).state();
}

std::uint32_t TestService::activeStub()
{
    std::lock_guard lock(m_mutex);
    update();
    const TestCase* test = active();
    if (test == nullptr || test->state() != TestState::Stub) {
        throw illegalState("the target is not stopped in a stub");
    }
    return m_activeStub;
}

std::string TestService::problem(std::uint32_t handle)
{
    std::lock_guard lock(m_mutex);
    update();
    test(handle);
    const auto found = m_problems.find(handle);
    return found == m_problems.end() ? std::string() : found->second;
}

bool TestService::waitWhileRunning(std::uint32_t handle, std::chrono::milliseconds timeout)
{
    if (!m_target.waitUntilStopped(timeout)) {
        return false;
    }
    return state(handle) != TestState::Running;
}

void TestService::update()
{
    TestCase* test = active();
    if (test == nullptr || test->state() != TestState::Running || m_target.isRunning()) {
        return;
    }
    const debuginfo::DebugInfo* now = m_programs ? m_programs() : nullptr;
    if (now != &test->debugInfo()) {
        m_problems[test->handle()] = "the program was downloaded again while the test of '" + test->name() + "' ran";
        endRun();
        test->setState(TestState::UnexpectedStop);
        return;
    }
    stopped(*test, m_target.stopInfo());
}

void TestService::stopped(TestCase& test, const target::StopInfo& stop)
{
    using target::StopReason;
    if (stop.reason == StopReason::Returned) {
        const expr::ScopeChain scopes = expr::ScopeChain::forGlobals(test.debugInfo(), m_target);
        try {
            test.storeReturnValue(m_target, evaluator(test, scopes)->caller().returnValue(test.callFrame));
        } catch (const std::exception& error) {
            m_problems[test.handle()] = "the return value of '" + test.name() + "' cannot be kept: " + error.what();
        }
        endRun();
        test.setState(TestState::Ended);
        return;
    }
    if (stop.reason == StopReason::Breakpoint) {
        if (TestStub* stub = const_cast<TestStub*>(test.stubAt(stop.pc))) {
            ++stub->hits;
            m_activeStub = stub->handle;
            test.setState(TestState::Stub);
            return;
        }
    }
    std::string what;
    switch (stop.reason) {
    case StopReason::InstructionLimit:
        what = "the run of '" + test.name() + "' did not end within " + std::to_string(m_maxInstructions()) +
               " instructions";
        break;
    case StopReason::Fault:
        what = "the run of '" + test.name() + "' faulted: " + stop.message;
        break;
    case StopReason::Breakpoint:
        what = "the run of '" + test.name() + "' stopped at a breakpoint";
        break;
    default:
        what = std::string("the run of '") + test.name() + "' stopped (" + target::StopInfo::reasonName(stop.reason) +
               ")";
        break;
    }
    m_problems[test.handle()] = what + "; stopped " + where(test, stop.pc);
    endRun();
    test.setState(TestState::UnexpectedStop);
}

std::string TestService::where(const TestCase& test, std::uint32_t pc) const
{
    std::string text = "at " + target::hex32(pc);
    if (const debuginfo::Function* function = test.debugInfo().functionAt(pc)) {
        text += " in '" + function->name + "'";
    }
    if (const auto line = test.debugInfo().lines().find(pc)) {
        const std::size_t slash = line->file.find_last_of('/');
        text += " (" + (slash == std::string::npos ? line->file : line->file.substr(slash + 1)) + ":" +
                std::to_string(line->line) + ")";
    }
    return text;
}

void TestService::endRun()
{
    m_activeStub = 0;
    try {
        for (std::uint32_t address : m_stubBreakpoints) {
            m_target.removeBreakpoint(address);
        }
        m_target.setReturnAddress(m_savedReturnAddress);
    } catch (const target::TargetError&) {
        // A target that runs again for another reason keeps them until its next stop.
    }
    m_savedReturnAddress.reset();
    m_stubBreakpoints.clear();
}

} // namespace quillon::services
