#include "expr/FunctionCaller.h"

#include "expr/ExprError.h"

#include "target/Target.h"
#include "target/TargetError.h"

#include <array>
#include <cstdio>

namespace quillon::expr {
namespace {

using debuginfo::Type;
using target::Register;

constexpr std::array<Register, 17> savedRegisters = {
    Register::R0, Register::R1, Register::R2,  Register::R3,  Register::R4,  Register::R5,
    Register::R6, Register::R7, Register::R8,  Register::R9,  Register::R10, Register::R11,
    Register::R12, Register::SP, Register::LR, Register::XPSR, Register::PC,
};

std::string hex(std::uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", value);
    return text;
}

bool isComposite(const Type* type)
{
    const Type::Kind kind = type->unqualified()->kind();
    return kind == Type::Kind::Struct || kind == Type::Kind::Union || kind == Type::Kind::Array;
}

const Type* returnTypeOf(const Type* function)
{
    const Type* result = function->unqualified()->target();
    return result == nullptr || result->unqualified()->kind() == Type::Kind::Void ? nullptr : result;
}

bool returnsByPointer(const Type* returnType)
{
    return returnType != nullptr && isComposite(returnType) && returnType->size() > 4;
}

/// The core's registers and stop, put back when the call is over whichever way it ends.
class RegisterGuard {
public:
    explicit RegisterGuard(target::Target& target)
        : m_target(target), m_returnAddress(target.returnAddress()), m_stop(target.stopInfo())
    {
        for (std::size_t i = 0; i < savedRegisters.size(); ++i) {
            m_values[i] = target.readRegister(savedRegisters[i]);
        }
    }
    ~RegisterGuard()
    {
        try {
            m_target.setReturnAddress(m_returnAddress);
            for (std::size_t i = 0; i < savedRegisters.size(); ++i) {
                m_target.writeRegister(savedRegisters[i], m_values[i]);
            }
            m_target.restoreStop(m_stop);
        } catch (const target::TargetError&) {
            // A target that cannot be written to keeps what it has.
        }
    }
    RegisterGuard(const RegisterGuard&) = delete;
    RegisterGuard& operator=(const RegisterGuard&) = delete;

private:
    target::Target& m_target;
    std::optional<std::uint32_t> m_returnAddress;
    target::StopInfo m_stop;
    std::array<std::uint32_t, savedRegisters.size()> m_values{};
};

} // namespace

FunctionCaller::FunctionCaller(const Converter& converter, target::Target& target, Options options)
    : m_converter(converter), m_target(target), m_options(options)
{
}

Value FunctionCaller::promoted(const Value& argument) const
{
    const Value value = m_converter.decay(argument);
    const Type* plain = value.plainType();
    if (plain->isFloat()) {
        return m_converter.convert(value, m_converter.doubleType());
    }
    if (plain->isInteger()) {
        return m_converter.convert(value, m_converter.promotedType(value));
    }
    return value;
}

std::vector<Value> FunctionCaller::convertArguments(const Type* type, const std::vector<Value>& arguments,
                                                    const std::string& name) const
{
    const Type* function = type->unqualified();
    const auto& parameters = function->parameters();
    if (function->isPrototyped()) {
        if (arguments.size() < parameters.size()) {
            throw ExprError("too few arguments in the call of '" + name + "'");
        }
        if (arguments.size() > parameters.size() && !function->isVariadic()) {
            throw ExprError("too many arguments in the call of '" + name + "'");
        }
    }
    std::vector<Value> converted;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (function->isPrototyped() && i < parameters.size()) {
            converted.push_back(m_converter.convert(arguments[i], parameters[i]));
        } else {
            converted.push_back(promoted(arguments[i]));
        }
    }
    return converted;
}

FunctionCaller::Frame FunctionCaller::setUp(std::uint32_t entry, const Type* type, const std::vector<Value>& arguments,
                                            std::uint32_t stackTop, const std::string& name)
{
    const std::vector<Value> values = convertArguments(type, arguments, name);
    Frame frame;
    frame.entry = entry & ~1u;
    frame.returnType = returnTypeOf(type);
    const bool hidden = returnsByPointer(frame.returnType);

    std::vector<Placement> placements;
    unsigned ncrn = hidden ? 1 : 0;
    std::uint32_t nsaa = 0;
    for (const Value& value : values) {
        Placement placement;
        placement.bytes = value.bytes(m_target);
        placement.bytes.resize((placement.bytes.size() + 3) / 4 * 4, 0);
        const unsigned words = static_cast<unsigned>(placement.bytes.size() / 4);
        const bool doubleAligned = Converter::alignment(value.type()) >= 8;
        if (doubleAligned && ncrn % 2 != 0) {
            ++ncrn;
        }
        if (ncrn + words <= 4) {
            placement.firstRegister = static_cast<int>(ncrn);
            placement.registerBytes = placement.bytes.size();
            ncrn += words;
        } else if (isComposite(value.type()) && ncrn < 4 && nsaa == 0) {
            placement.firstRegister = static_cast<int>(ncrn);
            placement.registerBytes = (4 - ncrn) * 4;
            placement.stackOffset = 0;
            nsaa = static_cast<std::uint32_t>(placement.bytes.size() - placement.registerBytes);
            ncrn = 4;
        } else {
            ncrn = 4;
            if (doubleAligned) {
                nsaa = (nsaa + 7) & ~7u;
            }
            placement.stackOffset = nsaa;
            nsaa += static_cast<std::uint32_t>(placement.bytes.size());
        }
        placements.push_back(std::move(placement));
    }

    std::uint32_t below = stackTop & ~7u;
    if (hidden) {
        below = (below - static_cast<std::uint32_t>(frame.returnType->size())) & ~7u;
        frame.resultAddress = below;
    }
    frame.stackPointer = (below - nsaa) & ~7u;

    try {
        for (const Placement& placement : placements) {
            std::size_t done = 0;
            if (placement.firstRegister >= 0) {
                for (; done < placement.registerBytes; done += 4) {
                    std::uint32_t word = 0;
                    for (std::size_t b = 0; b < 4; ++b) {
                        word |= std::uint32_t(placement.bytes[done + b]) << (8 * b);
                    }
                    m_target.writeRegister(static_cast<Register>(placement.firstRegister + static_cast<int>(done / 4)), word);
                }
            }
            if (done < placement.bytes.size()) {
                m_target.writeMemory(frame.stackPointer + placement.stackOffset, placement.bytes.data() + done,
                                     placement.bytes.size() - done);
            }
        }
    } catch (const target::TargetError& error) {
        throw ExprError("the arguments of '" + name + "' cannot be placed: " + error.what());
    }
    if (hidden) {
        m_target.writeRegister(Register::R0, frame.resultAddress);
    }
    m_target.writeRegister(Register::SP, frame.stackPointer);
    m_target.writeRegister(Register::LR, m_options.returnAddress | 1u);
    m_target.writeRegister(Register::PC, frame.entry);
    return frame;
}

Value FunctionCaller::returnValue(const Frame& frame) const
{
    if (frame.returnType == nullptr) {
        return Value::ofBytes(m_converter.types().voidType(), {});
    }
    const std::size_t size = frame.returnType->size();
    if (returnsByPointer(frame.returnType)) {
        std::vector<std::uint8_t> bytes(size, 0);
        try {
            m_target.readMemory(frame.resultAddress, bytes.data(), size);
        } catch (const target::TargetError&) {
            throw ExprError("the returned structure is not readable at " + hex(frame.resultAddress));
        }
        return Value::ofBytes(frame.returnType, std::move(bytes));
    }
    std::uint64_t bits = m_target.readRegister(Register::R0);
    if (size > 4) {
        bits |= std::uint64_t(m_target.readRegister(Register::R1)) << 32;
    }
    std::vector<std::uint8_t> bytes(size, 0);
    for (std::size_t i = 0; i < size && i < 8; ++i) {
        bytes[i] = static_cast<std::uint8_t>(bits >> (8 * i));
    }
    return Value::ofBytes(frame.returnType, std::move(bytes));
}

Value FunctionCaller::call(std::uint32_t entry, const Type* type, const std::vector<Value>& arguments,
                           const std::string& name, std::optional<std::uint32_t> stackTop)
{
    if (m_target.isRunning()) {
        throw ExprError("cannot call '" + name + "' while the target runs");
    }
    RegisterGuard guard(m_target);
    const std::uint32_t top = stackTop.value_or(m_target.readRegister(Register::SP));
    const Frame frame = setUp(entry, type, arguments, top, name);
    m_target.setReturnAddress(m_options.returnAddress);
    target::RunOptions run;
    run.instructionLimit = m_options.instructionLimit;
    const target::StopInfo stop = m_target.runToStop(run);
    switch (stop.reason) {
    case target::StopReason::Returned:
        return returnValue(frame);
    case target::StopReason::InstructionLimit:
        throw ExprError("the call of '" + name + "' did not return within " +
                        std::to_string(m_options.instructionLimit) + " instructions");
    case target::StopReason::Breakpoint:
        throw ExprError("the call of '" + name + "' stopped at a breakpoint at " + hex(stop.pc));
    case target::StopReason::Fault:
        throw ExprError("the call of '" + name + "' faulted at " + hex(stop.pc) + ": " + stop.message);
    default:
        throw ExprError("the call of '" + name + "' stopped at " + hex(stop.pc) + " (" +
                        target::StopInfo::reasonName(stop.reason) + ")");
    }
}

} // namespace quillon::expr
