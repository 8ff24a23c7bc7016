#include "services/TestCase.h"

#include <algorithm>

#include "services/CallConvention.h"
#include "services/TestError.h"

namespace quillon::services {
namespace {

TestError illegalArgument(const std::string& message)
{
    return TestError(TestError::Kind::IllegalArgument, message);
}

} // namespace

TestCase::TestCase(std::uint32_t handle, const debuginfo::DebugInfo& debug, const debuginfo::Function& function)
    : m_handle(handle), m_debug(debug), m_function(function), m_name(function.name)
{
}

const debuginfo::Type* TestCase::nonVoid(const debuginfo::Type* type)
{
    return type == nullptr || type->unqualified()->kind() == debuginfo::Type::Kind::Void ? nullptr : type;
}

const debuginfo::Type* TestCase::returnType() const
{
    return nonVoid(m_function.returnType);
}

void TestCase::claim(const std::string& name)
{
    if (name.empty()) {
        throw illegalArgument("an empty name in the test of '" + m_function.name + "'");
    }
    if (!m_names.insert(name).second) {
        throw illegalArgument("the name '" + name + "' is used twice in the test of '" + m_function.name + "'");
    }
}

void TestCase::release(const std::string& name)
{
    m_names.erase(name);
}

void TestCase::nameParameter(unsigned index, const std::string& name)
{
    if (index >= m_function.parameters.size()) {
        throw illegalArgument("function '" + m_function.name + "' has no parameter " + std::to_string(index) +
                              ": it has " + std::to_string(m_function.parameters.size()));
    }
    claim(name);
    const auto old = m_parameterNames.find(index);
    if (old != m_parameterNames.end()) {
        release(old->second);
    }
    m_parameterNames[index] = name;
}

void TestCase::nameReturnValue(const std::string& name)
{
    if (!name.empty() && returnType() == nullptr) {
        throw illegalArgument("function '" + m_function.name + "' returns no value to name '" + name + "'");
    }
    if (!name.empty()) {
        claim(name);
    }
    if (!m_returnName.empty()) {
        release(m_returnName);
    }
    m_returnName = name;
}

void TestCase::addVariable(TestVariable variable)
{
    claim(variable.name);
    m_variables.push_back(std::move(variable));
}

bool TestCase::removeVariable(std::uint32_t handle)
{
    const auto found = std::find_if(m_variables.begin(), m_variables.end(),
                                     [&](const TestVariable& variable) { return variable.handle == handle; });
    if (found == m_variables.end()) {
        return false;
    }
    release(found->name);
    m_variables.erase(found);
    return true;
}

void TestCase::addStub(TestStub stub)
{
    if (stub.function == &m_function) {
        throw illegalArgument("function '" + m_function.name + "' is under test and cannot be stubbed");
    }
    if (stubAt(stub.function->entry) != nullptr) {
        throw illegalArgument("function '" + stub.function->name + "' is stubbed twice in the test of '" +
                              m_function.name + "'");
    }
    m_stubs.push_back(std::move(stub));
}

bool TestCase::removeStub(std::uint32_t handle)
{
    const auto found =
        std::find_if(m_stubs.begin(), m_stubs.end(), [&](const TestStub& stub) { return stub.handle == handle; });
    if (found == m_stubs.end()) {
        return false;
    }
    for (const auto& parameter : found->parameterNames) {
        release(parameter.second);
    }
    if (!found->returnName.empty()) {
        release(found->returnName);
    }
    m_stubs.erase(found);
    return true;
}

TestStub* TestCase::stub(std::uint32_t handle)
{
    for (TestStub& stub : m_stubs) {
        if (stub.handle == handle) {
            return &stub;
        }
    }
    return nullptr;
}

const TestStub* TestCase::stubAt(std::uint32_t entry) const
{
    for (const TestStub& stub : m_stubs) {
        if (stub.function->entry == (entry & ~1u)) {
            return &stub;
        }
    }
    return nullptr;
}

void TestCase::nameStubParameter(std::uint32_t stubHandle, unsigned index, const std::string& name)
{
    TestStub& found = *stub(stubHandle);
    if (index >= found.function->parameters.size()) {
        throw illegalArgument("stubbed function '" + found.function->name + "' has no parameter " +
                              std::to_string(index) + ": it has " +
                              std::to_string(found.function->parameters.size()));
    }
    claim(name);
    const auto old = found.parameterNames.find(index);
    if (old != found.parameterNames.end()) {
        release(old->second);
    }
    found.parameterNames[index] = name;
}

void TestCase::nameStubReturnValue(std::uint32_t stubHandle, const std::string& name)
{
    TestStub& found = *stub(stubHandle);
    if (!name.empty() && nonVoid(found.function->returnType) == nullptr) {
        throw illegalArgument("stubbed function '" + found.function->name + "' returns no value to name '" + name +
                              "'");
    }
    if (!name.empty()) {
        claim(name);
    }
    if (!found.returnName.empty()) {
        release(found.returnName);
    }
    found.returnName = name;
}

void TestCase::placeFrame(target::Target& target, std::uint32_t top)
{
    std::vector<const debuginfo::Type*> types;
    for (const debuginfo::Variable& parameter : m_function.parameters) {
        types.push_back(parameter.type);
    }
    if (returnType() != nullptr) {
        types.push_back(returnType());
    }
    for (const TestVariable& variable : m_variables) {
        types.push_back(variable.type);
    }
    for (const TestStub& stub : m_stubs) {
        if (!stub.returnName.empty()) {
            types.push_back(stub.function->returnType);
        }
    }
    TestFrame frame(target, top, types);
    frame.clear(target);

    std::size_t slot = 0;
    m_parameterSlots.clear();
    for (std::size_t i = 0; i < m_function.parameters.size(); ++i) {
        m_parameterSlots.push_back(frame.address(slot++));
    }
    m_returnSlot = returnType() != nullptr ? frame.address(slot++) : 0;
    m_variableSlots.clear();
    for (const TestVariable& variable : m_variables) {
        m_variableSlots[variable.handle] = frame.address(slot++);
    }
    m_stubSlots.clear();
    for (TestStub& stub : m_stubs) {
        stub.hits = 0;
        if (!stub.returnName.empty()) {
            m_stubSlots[stub.handle] = frame.address(slot++);
        }
    }
    m_frame = std::move(frame);
}

std::vector<expr::Value> TestCase::parameterValues() const
{
    std::vector<expr::Value> values;
    for (std::size_t i = 0; i < m_function.parameters.size(); ++i) {
        values.push_back(expr::Value::inMemory(m_function.parameters[i].type, m_parameterSlots[i]));
    }
    return values;
}

void TestCase::storeReturnValue(target::Target& target, const expr::Value& value) const
{
    if (returnType() != nullptr && m_returnSlot != 0) {
        target.writeMemory(m_returnSlot, value.bytes(target));
    }
}

std::vector<std::uint8_t> TestCase::stubReturnBytes(const target::Target& target, const TestStub& stub) const
{
    const debuginfo::Type* type = nonVoid(stub.function->returnType);
    if (type == nullptr) {
        return {};
    }
    const auto slot = m_stubSlots.find(stub.handle);
    if (slot == m_stubSlots.end()) {
        return std::vector<std::uint8_t>(type->size(), 0);
    }
    return target.readMemory(slot->second, type->size());
}

std::shared_ptr<expr::NamedObjectScope> TestCase::scope(const target::Target& target, const TestStub* active) const
{
    auto named = std::make_shared<expr::NamedObjectScope>();
    if (!m_frame) {
        return named;
    }
    for (const auto& [index, name] : m_parameterNames) {
        named->add(name, m_function.parameters[index].type, m_parameterSlots[index]);
    }
    if (!m_returnName.empty() && m_returnSlot != 0) {
        named->add(m_returnName, returnType(), m_returnSlot);
    }
    for (const TestVariable& variable : m_variables) {
        named->add(variable.name, variable.type, m_variableSlots.at(variable.handle));
    }
    if (active != nullptr) {
        const std::vector<expr::Value> parameters = CallConvention::entryParameters(target, *active->function);
        for (const auto& [index, name] : active->parameterNames) {
            named->add(name, parameters.at(index));
        }
        const auto slot = m_stubSlots.find(active->handle);
        if (slot != m_stubSlots.end()) {
            named->add(active->returnName, active->function->returnType, slot->second);
        }
    }
    return named;
}

} // namespace quillon::services
