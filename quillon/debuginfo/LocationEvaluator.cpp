#include "debuginfo/LocationEvaluator.h"

#include "debuginfo/DebugInfoError.h"

#include <dwarf.h>

#include <cstdio>

namespace quillon::debuginfo {

namespace {

std::string hex(std::uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", value);
    return text;
}

std::string opName(std::uint8_t atom)
{
    switch (atom) {
    case DW_OP_implicit_pointer:
    case DW_OP_GNU_implicit_pointer:
        return "DW_OP_implicit_pointer";
    case DW_OP_call2:
        return "DW_OP_call2";
    case DW_OP_call4:
        return "DW_OP_call4";
    case DW_OP_call_ref:
        return "DW_OP_call_ref";
    case DW_OP_push_object_address:
        return "DW_OP_push_object_address";
    case DW_OP_form_tls_address:
    case DW_OP_GNU_push_tls_address:
        return "DW_OP_form_tls_address";
    case DW_OP_xderef:
    case DW_OP_xderef_size:
        return "DW_OP_xderef";
    case DW_OP_convert:
    case DW_OP_GNU_convert:
        return "DW_OP_convert";
    case DW_OP_regval_type:
    case DW_OP_GNU_regval_type:
        return "DW_OP_regval_type";
    case DW_OP_deref_type:
    case DW_OP_GNU_deref_type:
        return "DW_OP_deref_type";
    case DW_OP_const_type:
    case DW_OP_GNU_const_type:
        return "DW_OP_const_type";
    case DW_OP_GNU_variable_value:
        return "DW_OP_GNU_variable_value";
    default: {
        char text[24];
        std::snprintf(text, sizeof text, "DW_OP 0x%02x", atom);
        return text;
    }
    }
}

std::vector<std::uint8_t> littleEndian(std::uint32_t value)
{
    return {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8),
            static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 24)};
}

} // namespace

// One run of an expression: the stack, and the location of the piece being described.
class LocationEvaluator::Machine {
public:
    Machine(const LocationEvaluator& owner, const LocationExpression& ops) : m_owner(owner), m_ops(ops) {}

    Location run()
    {
        for (size_t i = 0; i < m_ops.size();) {
            i = step(i);
        }
        if (!m_pieces.empty()) {
            return Location::composite(std::move(m_pieces));
        }
        return current();
    }

    std::uint32_t value()
    {
        for (size_t i = 0; i < m_ops.size();) {
            i = step(i);
        }
        if (m_stack.empty()) {
            throw DebugInfoError("a DWARF expression left no value");
        }
        return m_stack.back();
    }

private:
    enum class State { Stack, Register, Value, Unavailable };

    // Executes the operation at index i; returns the index of the next one.
    size_t step(size_t i)
    {
        const LocationOp& op = m_ops[i];
        if (m_state == State::Unavailable && op.atom != DW_OP_piece && op.atom != DW_OP_bit_piece) {
            return i + 1; // the rest of this piece cannot be known
        }
        const auto signedNumber = static_cast<std::int64_t>(op.number);
        const std::uint8_t atom = op.atom;
        if (atom >= DW_OP_lit0 && atom <= DW_OP_lit31) {
            push(atom - DW_OP_lit0);
        } else if (atom >= DW_OP_reg0 && atom <= DW_OP_reg31) {
            setRegister(atom - DW_OP_reg0);
        } else if (atom >= DW_OP_breg0 && atom <= DW_OP_breg31) {
            push(readRegister(atom - DW_OP_breg0) + static_cast<std::uint32_t>(signedNumber));
        } else {
            return stepOther(i, op);
        }
        return i + 1;
    }

    size_t stepOther(size_t i, const LocationOp& op)
    {
        const auto signedNumber = static_cast<std::int64_t>(op.number);
        switch (op.atom) {
        case DW_OP_addr:
        case DW_OP_const1u:
        case DW_OP_const2u:
        case DW_OP_const4u:
        case DW_OP_const8u:
        case DW_OP_constu:
        case DW_OP_const1s:
        case DW_OP_const2s:
        case DW_OP_const4s:
        case DW_OP_const8s:
        case DW_OP_consts:
            push(static_cast<std::uint32_t>(op.number));
            break;
        case DW_OP_regx:
            setRegister(static_cast<unsigned>(op.number));
            break;
        case DW_OP_bregx:
            push(readRegister(static_cast<unsigned>(op.number)) + static_cast<std::uint32_t>(op.number2));
            break;
        case DW_OP_fbreg:
            if (!m_owner.m_frameBase) {
                throw DebugInfoError("DW_OP_fbreg outside a function");
            }
            push(m_owner.m_frameBase() + static_cast<std::uint32_t>(signedNumber));
            break;
        case DW_OP_call_frame_cfa:
            if (!m_owner.m_cfa) {
                throw DebugInfoError("DW_OP_call_frame_cfa without call-frame information");
            }
            push(m_owner.m_cfa());
            break;
        case DW_OP_dup:
            push(pick(0));
            break;
        case DW_OP_drop:
            pop();
            break;
        case DW_OP_over:
            push(pick(1));
            break;
        case DW_OP_pick:
            push(pick(static_cast<size_t>(op.number)));
            break;
        case DW_OP_swap:
            std::swap(top(0), top(1));
            break;
        case DW_OP_rot: {
            const std::uint32_t first = top(0);
            top(0) = top(1);
            top(1) = top(2);
            top(2) = first;
            break;
        }
        case DW_OP_deref:
            push(readMemory(pop(), 4));
            break;
        case DW_OP_deref_size:
            if (op.number == 0 || op.number > 4) {
                throw DebugInfoError("DW_OP_deref_size of " + std::to_string(op.number) + " bytes");
            }
            push(readMemory(pop(), static_cast<size_t>(op.number)));
            break;
        case DW_OP_plus_uconst:
            push(pop() + static_cast<std::uint32_t>(op.number));
            break;
        case DW_OP_abs: {
            const auto value = static_cast<std::int32_t>(pop());
            push(static_cast<std::uint32_t>(value < 0 ? -static_cast<std::int64_t>(value) : value));
            break;
        }
        case DW_OP_neg:
            push(0u - pop());
            break;
        case DW_OP_not:
            push(~pop());
            break;
        case DW_OP_skip:
            return jump(i, op);
        case DW_OP_bra:
            return pop() != 0 ? jump(i, op) : i + 1;
        case DW_OP_stack_value:
            m_state = State::Value;
            m_value = littleEndian(pick(0));
            break;
        case DW_OP_implicit_value:
            m_state = State::Value;
            m_value = op.block;
            break;
        case DW_OP_entry_value:
        case DW_OP_GNU_entry_value:
        case DW_OP_GNU_parameter_ref:
            // The value at the function's entry is gone by now.
            m_state = State::Unavailable;
            break;
        case DW_OP_piece:
            endPiece(static_cast<std::uint32_t>(op.number));
            break;
        case DW_OP_bit_piece:
            if (op.number % 8 != 0 || op.number2 != 0) {
                throw DebugInfoError("DW_OP_bit_piece of bits that are not whole bytes");
            }
            endPiece(static_cast<std::uint32_t>(op.number / 8));
            break;
        case DW_OP_nop:
            break;
        default:
            if (!binary(op.atom)) {
                throw DebugInfoError("unsupported DWARF operation " + opName(op.atom));
            }
            break;
        }
        return i + 1;
    }

    bool binary(std::uint8_t atom)
    {
        const auto isBinary = [](std::uint8_t a) {
            switch (a) {
            case DW_OP_and: case DW_OP_div: case DW_OP_minus: case DW_OP_mod: case DW_OP_mul:
            case DW_OP_or: case DW_OP_plus: case DW_OP_shl: case DW_OP_shr: case DW_OP_shra:
            case DW_OP_xor: case DW_OP_eq: case DW_OP_ge: case DW_OP_gt: case DW_OP_le:
            case DW_OP_lt: case DW_OP_ne:
                return true;
            default:
                return false;
            }
        };
        if (!isBinary(atom)) {
            return false;
        }
        const std::uint32_t b = pop();
        const std::uint32_t a = pop();
        const auto sa = static_cast<std::int32_t>(a);
        const auto sb = static_cast<std::int32_t>(b);
        switch (atom) {
        case DW_OP_and: push(a & b); break;
        case DW_OP_or: push(a | b); break;
        case DW_OP_xor: push(a ^ b); break;
        case DW_OP_plus: push(a + b); break;
        case DW_OP_minus: push(a - b); break;
        case DW_OP_mul: push(a * b); break;
        case DW_OP_div:
        case DW_OP_mod:
            if (b == 0) {
                throw DebugInfoError("division by zero in a DWARF expression");
            }
            if (atom == DW_OP_div) {
                push(static_cast<std::uint32_t>(static_cast<std::int64_t>(sa) / sb));
            } else {
                push(a % b);
            }
            break;
        case DW_OP_shl: push(b >= 32 ? 0 : a << b); break;
        case DW_OP_shr: push(b >= 32 ? 0 : a >> b); break;
        case DW_OP_shra: push(static_cast<std::uint32_t>(sa >> (b >= 32 ? 31 : b))); break;
        case DW_OP_eq: push(sa == sb); break;
        case DW_OP_ne: push(sa != sb); break;
        case DW_OP_lt: push(sa < sb); break;
        case DW_OP_le: push(sa <= sb); break;
        case DW_OP_gt: push(sa > sb); break;
        default: push(sa >= sb); break;
        }
        return true;
    }

    size_t jump(size_t i, const LocationOp& op)
    {
        // The operand counts from the end of the 3-byte operation.
        const std::int64_t target = static_cast<std::int64_t>(op.offset) + 3 + static_cast<std::int16_t>(op.number);
        if (target < 0) {
            throw DebugInfoError("a DWARF branch leaves its expression");
        }
        for (size_t j = 0; j < m_ops.size(); ++j) {
            if (m_ops[j].offset == static_cast<std::uint64_t>(target)) {
                if (j <= i && ++m_backJumps > 10000) {
                    throw DebugInfoError("a DWARF expression loops");
                }
                return j;
            }
        }
        if (i + 1 == m_ops.size() || static_cast<std::uint64_t>(target) > m_ops.back().offset) {
            return m_ops.size(); // to the end
        }
        throw DebugInfoError("a DWARF branch lands inside an operation");
    }

    void setRegister(unsigned reg)
    {
        m_state = State::Register;
        m_register = reg;
    }

    Location current() const
    {
        switch (m_state) {
        case State::Register:
            return Location::inRegister(m_register);
        case State::Value:
            return Location::value(m_value);
        case State::Unavailable:
            return Location::optimizedOut();
        case State::Stack:
            break;
        }
        return m_stack.empty() ? Location::optimizedOut() : Location::memory(m_stack.back());
    }

    void endPiece(std::uint32_t size)
    {
        Location piece = current();
        piece.setPieceSize(size);
        m_pieces.push_back(std::move(piece));
        m_stack.clear();
        m_state = State::Stack;
    }

    std::uint32_t readRegister(unsigned reg) const
    {
        auto value = m_owner.m_frame.readRegister(reg);
        if (!value) {
            throw DebugInfoError("register " + std::to_string(reg) + " is not available in this frame");
        }
        return *value;
    }

    std::uint32_t readMemory(std::uint32_t address, size_t size) const
    {
        std::uint8_t bytes[4] = {};
        if (!m_owner.m_frame.readMemory(address, bytes, size)) {
            throw DebugInfoError("cannot read memory at " + hex(address));
        }
        return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
    }

    void push(std::uint32_t value) { m_stack.push_back(value); }

    std::uint32_t pop()
    {
        const std::uint32_t value = pick(0);
        m_stack.pop_back();
        return value;
    }

    std::uint32_t pick(size_t depth) { return top(depth); }

    std::uint32_t& top(size_t depth)
    {
        if (depth >= m_stack.size()) {
            throw DebugInfoError("DWARF expression stack underflow");
        }
        return m_stack[m_stack.size() - 1 - depth];
    }

    const LocationEvaluator& m_owner;
    const LocationExpression& m_ops;
    std::vector<std::uint32_t> m_stack;
    State m_state = State::Stack;
    unsigned m_register = 0;
    std::vector<std::uint8_t> m_value;
    std::vector<Location> m_pieces;
    unsigned m_backJumps = 0;
};

LocationEvaluator::LocationEvaluator(const FrameContext& frame, Provider frameBase, Provider cfa)
    : m_frame(frame), m_frameBase(std::move(frameBase)), m_cfa(std::move(cfa))
{
}

Location LocationEvaluator::locate(const LocationExpression& expression) const
{
    return Machine(*this, expression).run();
}

std::uint32_t LocationEvaluator::value(const LocationExpression& expression) const
{
    return Machine(*this, expression).value();
}

} // namespace quillon::debuginfo
