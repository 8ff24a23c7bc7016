#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "debuginfo/DebugInfo.h"
#include "expr/FunctionCaller.h"
#include "expr/NamedObjectScope.h"
#include "services/TestFrame.h"
#include "services/TestState.h"
#include "services/TestStub.h"
#include "services/TestVariable.h"

namespace quillon::services {

/// One test: the function under test with its named parameters and return value, its locals and stubs, its
/// state, and once initialized its frame in target memory. Names are unique within the test.
class TestCase {
public:
    TestCase(std::uint32_t handle, const debuginfo::DebugInfo& debug, const debuginfo::Function& function);

    std::uint32_t handle() const { return m_handle; }
    const debuginfo::DebugInfo& debugInfo() const { return m_debug; }
    const debuginfo::Function& function() const { return m_function; }
    const std::string& name() const { return m_name; }

    TestState state() const { return m_state; }
    void setState(TestState state) { m_state = state; }

    // Declarations; each is a TestError IllegalArgument naming what is wrong.
    void nameParameter(unsigned index, const std::string& name);
    void nameReturnValue(const std::string& name);
    void addVariable(TestVariable variable);
    bool removeVariable(std::uint32_t handle);
    void addStub(TestStub stub);
    bool removeStub(std::uint32_t handle);
    TestStub* stub(std::uint32_t handle);
    const TestStub* stubAt(std::uint32_t entry) const;
    const std::vector<TestStub>& stubs() const { return m_stubs; }
    void nameStubParameter(std::uint32_t stubHandle, unsigned index, const std::string& name);
    void nameStubReturnValue(std::uint32_t stubHandle, const std::string& name);

    /// Places the frame below `top` and zeroes it; every slot moves.
    void placeFrame(target::Target& target, std::uint32_t top);
    void dropFrame() { m_frame.reset(); }
    bool hasFrame() const { return m_frame.has_value(); }

    /// The values of the parameters in their slots, in order.
    std::vector<expr::Value> parameterValues() const;
    /// The frame's base: the function's stack starts below it.
    std::uint32_t frameBase() const { return m_frame->base(); }
    /// Keeps the returned value in the return value's slot.
    void storeReturnValue(target::Target& target, const expr::Value& value) const;
    /// The bytes of a stub's return value (zeros when it has no name).
    std::vector<std::uint8_t> stubReturnBytes(const target::Target& target, const TestStub& stub) const;

    /// The named objects of the test: locals, parameters, the return value and, when `active` names a stub,
    /// that stub's parameters (read at its entry) and return value.
    std::shared_ptr<expr::NamedObjectScope> scope(const target::Target& target, const TestStub* active) const;

    expr::FunctionCaller::Frame callFrame;

private:
    void claim(const std::string& name);
    void release(const std::string& name);
    const debuginfo::Type* returnType() const;
    static const debuginfo::Type* nonVoid(const debuginfo::Type* type);

    std::uint32_t m_handle;
    const debuginfo::DebugInfo& m_debug;
    const debuginfo::Function& m_function;
    const std::string m_name; ///< the function's, kept for messages after a new download
    TestState m_state = TestState::Offline;
    std::map<unsigned, std::string> m_parameterNames;
    std::string m_returnName;
    std::vector<TestVariable> m_variables;
    std::vector<TestStub> m_stubs;
    std::set<std::string> m_names;

    std::optional<TestFrame> m_frame;
    std::vector<std::uint32_t> m_parameterSlots;
    std::uint32_t m_returnSlot = 0;
    std::map<std::uint32_t, std::uint32_t> m_variableSlots; ///< by variable handle
    std::map<std::uint32_t, std::uint32_t> m_stubSlots;     ///< return value by stub handle
};

} // namespace quillon::services
