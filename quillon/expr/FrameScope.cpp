#include "expr/FrameScope.h"

#include "expr/ExprError.h"

#include "debuginfo/DebugInfoError.h"
#include "target/Target.h"

#include <algorithm>

namespace quillon::expr {

using debuginfo::Location;

FrameScope::FrameScope(const debuginfo::DebugInfo& debug, const target::Target& target, unsigned frame)
    : m_debug(debug), m_innermost(target)
{
    m_frame = &m_innermost;
    m_pc = target.pc();
    for (unsigned level = 1; level <= frame; ++level) {
        std::optional<debuginfo::CallerFrame> caller;
        try {
            caller = m_debug.unwind(m_pc, *m_frame);
        } catch (const debuginfo::DebugInfoError& error) {
            throw ExprError(error.what());
        }
        if (!caller) {
            throw ExprError("there is no frame " + std::to_string(frame));
        }
        m_callers.push_back(std::make_unique<debuginfo::CallerFrame>(*caller));
        m_contexts.push_back(std::make_unique<debuginfo::UnwoundFrameContext>(*m_frame, *m_callers.back()));
        m_frame = m_contexts.back().get();
        m_pc = m_callers.back()->lookupPc();
        m_isInnermost = false;
    }
    m_function = m_debug.functionAt(m_pc);
}

std::optional<Value> FrameScope::find(const std::string& name) const
{
    if (m_function == nullptr) {
        return std::nullopt;
    }
    const debuginfo::Variable* variable = m_function->findVisible(name, m_pc);
    if (variable == nullptr) {
        return std::nullopt;
    }
    if (variable->address) {
        return Value::inMemory(variable->type, *variable->address);
    }
    try {
        return fromLocation(*variable, m_debug.locate(*variable, m_function, m_pc, *m_frame));
    } catch (const debuginfo::DebugInfoError& error) {
        throw ExprError(error.what());
    }
}

Value FrameScope::fromLocation(const debuginfo::Variable& variable, const Location& location) const
{
    const std::size_t size = variable.type->size();
    switch (location.kind()) {
    case Location::Kind::Memory:
        return Value::inMemory(variable.type, location.address());
    case Location::Kind::Register:
        if (m_isInnermost && location.dwarfRegister() <= 15 && size <= 4) {
            return Value::inRegister(variable.type, static_cast<target::Register>(location.dwarfRegister()));
        }
        return Value::ofBytes(variable.type, pieceBytes(location, size, variable.name));
    case Location::Kind::Value: {
        std::vector<std::uint8_t> bytes = location.bytes();
        bytes.resize(size, 0);
        return Value::ofBytes(variable.type, std::move(bytes));
    }
    case Location::Kind::Composite: {
        std::vector<std::uint8_t> bytes;
        for (const Location& piece : location.pieces()) {
            const std::vector<std::uint8_t> part = pieceBytes(piece, piece.pieceSize(), variable.name);
            bytes.insert(bytes.end(), part.begin(), part.end());
        }
        bytes.resize(size, 0);
        return Value::ofBytes(variable.type, std::move(bytes));
    }
    case Location::Kind::OptimizedOut:
        break;
    }
    throw ExprError("'" + variable.name + "' is optimized out");
}

std::vector<std::uint8_t> FrameScope::pieceBytes(const Location& piece, std::size_t size, const std::string& name) const
{
    std::vector<std::uint8_t> bytes(size, 0);
    switch (piece.kind()) {
    case Location::Kind::Memory:
        if (!m_frame->readMemory(piece.address(), bytes.data(), size)) {
            throw ExprError("'" + name + "' is not readable at " + piece.describe());
        }
        return bytes;
    case Location::Kind::Register:
        // A value wider than a register continues in the next ones.
        for (std::size_t i = 0; i < size; i += 4) {
            const auto value = m_frame->readRegister(piece.dwarfRegister() + static_cast<unsigned>(i / 4));
            if (!value) {
                throw ExprError("'" + name + "' is not available in this frame");
            }
            for (std::size_t b = 0; b < 4 && i + b < size; ++b) {
                bytes[i + b] = static_cast<std::uint8_t>(*value >> (8 * b));
            }
        }
        return bytes;
    case Location::Kind::Value:
        std::copy_n(piece.bytes().begin(), std::min(size, piece.bytes().size()), bytes.begin());
        return bytes;
    default:
        throw ExprError("'" + name + "' is optimized out");
    }
}

} // namespace quillon::expr
