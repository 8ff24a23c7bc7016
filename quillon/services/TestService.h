#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "debuginfo/DebugInfo.h"
#include "expr/ExpressionEvaluator.h"
#include "services/TestCase.h"
#include "services/TestError.h"
#include "services/TestState.h"
#include "target/Target.h"

namespace quillon::services {

/// Runs functions of the target as tests. A test names a function of the debug information; its parameters,
/// return value, locals (typed by C type texts) and the return values of its stubs live in a frame below the
/// stack once it is initialized. A run calls the function by the procedure call standard and ends when it
/// returns (Ended), stops at the entry of a stubbed function (Stub: resuming returns the stub's value at once),
/// or ends as UnexpectedStop on a fault, a breakpoint or the instruction limit. Expressions evaluate in the test
/// whose frame is placed, over its named objects, the globals and the registers.
///
/// Locals and stubs belong to the test created last. Every failure is a TestError. All operations may be called
/// from any thread; a run goes on on the target's run thread and state() follows it.
class TestService {
public:
    /// The debug information of the downloaded program; null when there is none.
    using ProgramSource = std::function<const debuginfo::DebugInfo*()>;

    /// Where the function under test returns to: an address no code has, in executable address space.
    static constexpr std::uint32_t returnAddress = 0x9FFFFE00;

    /// The instructions a test run may take, read at each run: the instance's option can change between runs.
    using LimitSource = std::function<std::uint64_t()>;

    TestService(target::Target& target, std::uint64_t maxInstructions, ProgramSource programs = {});
    TestService(target::Target& target, LimitSource maxInstructions, ProgramSource programs = {});
    ~TestService();
    TestService(const TestService&) = delete;
    TestService& operator=(const TestService&) = delete;

    void setProgramSource(ProgramSource programs);

    std::uint32_t createTest(const std::string& function);
    void destroyTest(std::uint32_t handle);
    void createParameter(std::uint32_t handle, unsigned index, const std::string& name);
    void createReturnValue(std::uint32_t handle, const std::string& name);
    std::uint32_t createVariable(const std::string& name, const std::string& type);
    void destroyVariable(std::uint32_t handle);
    std::uint32_t createStub(const std::string& function);
    void destroyStub(std::uint32_t handle);
    void createStubParameter(std::uint32_t stubHandle, unsigned index, const std::string& name);
    void createStubReturnValue(std::uint32_t stubHandle, const std::string& name);

    /// The text of the expression's value in the stopped test.
    std::string evaluate(const std::string& expression);
    /// Assigns `value` (an expression) to `expression`; the text of the new value.
    std::string modify(const std::string& expression, const std::string& value);

    /// Destroys every test; stops a test run first.
    void clearAll();
    void init(std::uint32_t handle);
    /// Frees the test's frame: back to Offline.
    void clean(std::uint32_t handle);
    /// Starts the test, or resumes it from a stub or a pause.
    void run(std::uint32_t handle);
    void abort(std::uint32_t handle);
    void pause(std::uint32_t handle);

    TestState state(std::uint32_t handle);
    /// The handle of the stub the target is stopped in.
    std::uint32_t activeStub();
    /// What ended the test's last run abnormally, with the function and source line; "" if nothing.
    std::string problem(std::uint32_t handle);
    /// Waits while the test runs; false after the timeout.
    bool waitWhileRunning(std::uint32_t handle, std::chrono::milliseconds timeout);

private:
    const debuginfo::DebugInfo& program() const;
    TestCase& test(std::uint32_t handle);
    TestCase& current();
    /// The test, made from the program downloaded now.
    TestCase& usable(std::uint32_t handle);
    void requireProgram(const TestCase& test) const;
    TestCase& owner(const std::map<std::uint32_t, std::uint32_t>& owners, std::uint32_t handle, const char* what);
    TestCase* active();
    void requireDeclaring(const TestCase& test, const char* operation) const;
    void requireStoppedTest(const TestCase& test, const char* operation) const;
    std::unique_ptr<expr::ExpressionEvaluator> evaluator(const TestCase& test, const expr::ScopeChain& scopes);
    template <class F> auto inStoppedTest(const std::string& expression, F&& f);

    /// Follows a running test to its stop.
    void update();
    void stopped(TestCase& test, const target::StopInfo& stop);
    void endRun();
    std::string where(const TestCase& test, std::uint32_t pc) const;
    void start(TestCase& test);
    void destroy(std::uint32_t handle);

    target::Target& m_target;
    const LimitSource m_maxInstructions;
    mutable std::mutex m_mutex;
    ProgramSource m_programs;
    std::map<std::uint32_t, std::unique_ptr<TestCase>> m_tests;
    std::map<std::uint32_t, std::uint32_t> m_variableOwners; ///< test of each variable handle
    std::map<std::uint32_t, std::uint32_t> m_stubOwners;     ///< test of each stub handle
    std::map<std::uint32_t, std::string> m_problems;         ///< by test handle
    std::uint32_t m_nextHandle = 1;
    std::uint32_t m_current = 0;    ///< the test created last
    std::uint32_t m_active = 0;     ///< the test whose frame is placed
    std::uint32_t m_activeStub = 0; ///< the stub the active test is stopped in
    std::optional<std::uint32_t> m_savedReturnAddress;
    std::vector<std::uint32_t> m_stubBreakpoints; ///< set by the run going on
    
};

} // namespace quillon::services
