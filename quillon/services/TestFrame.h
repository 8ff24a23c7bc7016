#pragma once

#include <cstdint>
#include <vector>

#include "debuginfo/Type.h"
#include "target/Target.h"

namespace quillon::services {

/// The memory of one test in the target: one slot a type (locals, parameters, return values), each at its
/// type's alignment, packed below the top of the stack. The function under test runs with its stack below the
/// frame, so the addresses of the slots are real target addresses that it may use.
class TestFrame {
public:
    /// The frame of `types` (their slots in this order) right below `top`. A TestError Io when it does not fit
    /// writable memory there.
    TestFrame(const target::Target& target, std::uint32_t top, const std::vector<const debuginfo::Type*>& types);

    /// Where the stack starts: the initial stack pointer of the vector table when it points into writable memory,
    /// else the end of the highest writable area.
    static std::uint32_t stackTop(const target::Target& target);

    std::uint32_t base() const { return m_base; }
    std::uint32_t size() const { return m_size; }
    std::uint32_t address(std::size_t slot) const { return m_addresses.at(slot); }

    /// Fills the frame with zeros.
    void clear(target::Target& target) const;

private:
    std::uint32_t m_base = 0;
    std::uint32_t m_size = 0;
    std::vector<std::uint32_t> m_addresses;
};

} // namespace quillon::services
