#include "debuginfo/CallFrameInfo.h"

#include "debuginfo/LocationEvaluator.h"
#include "debuginfo/LocationOp.h"

#include <elfutils/libdw.h>

#include <cstdlib>
#include <memory>
#include <vector>

namespace quillon::debuginfo {

namespace {

constexpr unsigned coreRegisters = 16; // r0-r15
constexpr unsigned stackPointer = 13;
constexpr unsigned programCounter = 15;

LocationExpression copy(const Dwarf_Op* ops, size_t count)
{
    LocationExpression expression;
    for (size_t i = 0; i < count; ++i) {
        LocationOp op;
        op.atom = ops[i].atom;
        op.number = ops[i].number;
        op.number2 = ops[i].number2;
        op.offset = ops[i].offset;
        expression.push_back(std::move(op));
    }
    return expression;
}

struct FrameFree {
    void operator()(Dwarf_Frame* frame) const { std::free(frame); }
};

std::uint32_t fromBytes(const std::vector<std::uint8_t>& bytes)
{
    std::uint32_t value = 0;
    for (size_t i = 0; i < bytes.size() && i < 4; ++i) {
        value |= std::uint32_t(bytes[i]) << (8 * i);
    }
    return value;
}

} // namespace

// The rules of one frame, copied out of libdw so that they are evaluated without the lock.
struct CallFrameInfo::Rules {
    enum class Kind { Undefined, SameValue, Expression };
    struct Register {
        Kind kind = Kind::Undefined;
        LocationExpression expression; ///< the saved value's location, or the value (DW_OP_stack_value)
    };

    LocationExpression cfa;
    int returnAddressRegister = -1;
    Register registers[coreRegisters];
};

CallFrameInfo::CallFrameInfo(Dwarf* dwarf)
{
    m_cfi = dwarf_getcfi(dwarf);
    if (m_cfi == nullptr) {
        m_cfi = dwarf_getcfi_elf(dwarf_getelf(dwarf));
        m_ownsCfi = m_cfi != nullptr;
    }
}

CallFrameInfo::~CallFrameInfo()
{
    if (m_ownsCfi) {
        dwarf_cfi_end(m_cfi);
    }
}

std::optional<CallFrameInfo::Rules> CallFrameInfo::rulesAt(std::uint32_t pc) const
{
    if (m_cfi == nullptr) {
        return std::nullopt;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    Dwarf_Frame* raw = nullptr;
    if (dwarf_cfi_addrframe(m_cfi, pc, &raw) != 0) {
        return std::nullopt;
    }
    std::unique_ptr<Dwarf_Frame, FrameFree> frame(raw);
    Dwarf_Op* ops = nullptr;
    size_t count = 0;
    if (dwarf_frame_cfa(frame.get(), &ops, &count) != 0 || count == 0) {
        return std::nullopt;
    }
    Rules rules;
    rules.cfa = copy(ops, count);
    rules.returnAddressRegister = dwarf_frame_info(frame.get(), nullptr, nullptr, nullptr);
    for (unsigned reg = 0; reg < coreRegisters; ++reg) {
        Dwarf_Op opsMemory[3];
        if (dwarf_frame_register(frame.get(), static_cast<int>(reg), opsMemory, &ops, &count) != 0) {
            continue;
        }
        Rules::Register& rule = rules.registers[reg];
        if (count == 0) {
            rule.kind = ops == nullptr ? Rules::Kind::SameValue : Rules::Kind::Undefined;
        } else {
            rule.kind = Rules::Kind::Expression;
            rule.expression = copy(ops, count);
        }
    }
    return rules;
}

std::optional<std::uint32_t> CallFrameInfo::cfa(std::uint32_t pc, const FrameContext& frame) const
{
    auto rules = rulesAt(pc);
    if (!rules) {
        return std::nullopt;
    }
    return LocationEvaluator(frame, nullptr, nullptr).value(rules->cfa);
}

std::optional<CallerFrame> CallFrameInfo::unwind(std::uint32_t pc, const FrameContext& frame) const
{
    auto rules = rulesAt(pc);
    if (!rules) {
        return std::nullopt;
    }
    CallerFrame caller;
    caller.cfa = LocationEvaluator(frame, nullptr, nullptr).value(rules->cfa);
    const LocationEvaluator evaluator(frame, nullptr, [&caller] { return caller.cfa; });
    for (unsigned reg = 0; reg < coreRegisters; ++reg) {
        const Rules::Register& rule = rules->registers[reg];
        std::optional<std::uint32_t> value;
        if (rule.kind == Rules::Kind::SameValue) {
            value = frame.readRegister(reg);
        } else if (rule.kind == Rules::Kind::Expression) {
            const Location saved = evaluator.locate(rule.expression);
            if (saved.kind() == Location::Kind::Memory) {
                std::uint8_t bytes[4];
                if (frame.readMemory(saved.address(), bytes, sizeof bytes)) {
                    value = fromBytes({bytes, bytes + 4});
                }
            } else if (saved.kind() == Location::Kind::Value) {
                value = fromBytes(saved.bytes());
            } else if (saved.kind() == Location::Kind::Register) {
                value = frame.readRegister(saved.dwarfRegister());
            }
        }
        if (value) {
            caller.registers[reg] = *value;
        }
    }
    const int ra = rules->returnAddressRegister;
    if (ra < 0 || static_cast<unsigned>(ra) >= coreRegisters || !caller.reg(static_cast<unsigned>(ra))) {
        return std::nullopt;
    }
    caller.returnAddress = *caller.reg(static_cast<unsigned>(ra));
    caller.registers.emplace(stackPointer, caller.cfa); // the caller's sp is the CFA unless a rule says
    caller.registers[programCounter] = caller.pc();
    return caller;
}

} // namespace quillon::debuginfo
