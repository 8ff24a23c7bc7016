#pragma once

#include "debuginfo/AddressRange.h"
#include "debuginfo/Variable.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quillon::debuginfo {

/// A lexical block of a function (or the body of an inlined function) with its variables and the
/// blocks nested in it.
struct Scope {
    std::vector<AddressRange> ranges; ///< empty: as far as the enclosing scope reaches
    std::vector<Variable> variables;
    std::vector<Scope> children;
    std::string inlinedFunction; ///< the inlined function this scope is the body of; empty for a block

    bool contains(std::uint32_t pc) const
    {
        if (ranges.empty()) {
            return true;
        }
        for (const AddressRange& range : ranges) {
            if (range.contains(pc)) {
                return true;
            }
        }
        return false;
    }
};

} // namespace quillon::debuginfo
