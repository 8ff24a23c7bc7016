#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "target/Target.h"

namespace quillon::services {

/// The user's execution breakpoints, one per address, on the target's breakpoints. A breakpoint keeps how it was
/// set (address, function, or file and line) for listing; deleting or enabling names it by any location that
/// resolves to its address.
class BreakpointTable {
public:
    enum class Kind { Address, Function, Line };

    /// Hardware breakpoints the core's comparators allow at once.
    static constexpr std::size_t hardwareLimit = 6;

    struct Settings {
        Kind kind = Kind::Address;
        std::uint32_t address = 0; ///< resolved
        std::string name;          ///< function, or file of a line breakpoint
        unsigned line = 0;
        bool hardware = false;
        bool enabled = true;
        /// 0 or 1: every hit stops; n: every n-th hit stops.
        std::uint32_t hitCount = 0;
        std::string condition;
    };

    struct Entry {
        Settings settings;
        /// Passes where the breakpoint was enabled and its condition held.
        std::uint64_t hits = 0;
    };

    explicit BreakpointTable(target::Target& target) : m_target(target) {}

    /// Sets or replaces the breakpoint at settings.address; true when there was none. `condition` is the compiled
    /// form of settings.condition (empty: none). A hardware breakpoint beyond the limit is a ServiceError Failed.
    bool set(Settings settings, std::function<bool()> condition);
    /// A ServiceError NoBreakpoint when none is at the address.
    void remove(std::uint32_t address);
    void removeAll();
    void enable(std::uint32_t address, bool enabled);
    /// Software or hardware ones.
    void enableAll(bool hardware, bool enabled);

    std::optional<Entry> at(std::uint32_t address) const;
    /// By address.
    std::vector<Entry> list() const;

    /// "function 'main' at 0x000001a4", "line 12 of 'main.c' at 0x...", "address 0x...".
    static std::string describe(const Settings& settings);

private:
    std::map<std::uint32_t, Settings>::iterator find(std::uint32_t address);
    Entry entry(const Settings& settings) const;

    target::Target& m_target;
    std::map<std::uint32_t, Settings> m_settings;
};

} // namespace quillon::services
