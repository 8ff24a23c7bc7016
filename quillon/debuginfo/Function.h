#pragma once

#include "debuginfo/AddressRange.h"
#include "debuginfo/LocationList.h"
#include "debuginfo/Scope.h"
#include "debuginfo/Type.h"
#include "debuginfo/Variable.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quillon::debuginfo {

/// A function with code: its ranges, parameters in order, locals by lexical block, frame base.
struct Function {
    std::string name;
    std::size_t unit = 0;        ///< index of its compile unit
    bool isExternal = false;     ///< false for a `static` function
    std::uint32_t entry = 0;     ///< first instruction (without the Thumb bit)
    std::vector<AddressRange> ranges;
    std::string declFile;
    unsigned declLine = 0;
    const Type* returnType = nullptr; ///< void type for a void function
    const Type* type = nullptr;       ///< the function type, for pointers to it
    std::vector<Variable> parameters;
    Scope body;                  ///< locals: body.variables and the nested blocks
    LocationList frameBase;      ///< DW_AT_frame_base: what DW_OP_fbreg counts from

    bool contains(std::uint32_t pc) const;
    /// Lowest and highest address of its code: [low, high).
    AddressRange extent() const;
    const Variable* findParameter(const std::string& name) const;
    /// Parameters and locals in scope at pc: innermost block first, parameters last.
    std::vector<const Variable*> visibleAt(std::uint32_t pc) const;
    /// The variable of the name in scope at pc (an inner one hides an outer one); nullptr if none.
    const Variable* findVisible(const std::string& name, std::uint32_t pc) const;
};

} // namespace quillon::debuginfo
