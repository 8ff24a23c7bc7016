#pragma once

#include "OrbelTypes.h"

namespace kestrix {

/// Command words of OrbelProject.
struct OrbelProjectFlags {
    /// Word of ProjectCommand, with its second and third arguments.
    enum EProjectCommand : DWORD {
        /// Second: the operation, third: its parameters.
        pcCustom = 1,
        /// Third: the file.
        pcCompile = 2,
        pcLink = 3,
        pcMake = 4,
        pcBuild = 5,
        pcDependencies = 6,
        pcStop = 15,
        pcCommandMask = 0x0F,
        /// The flag of link, make and build.
        pcFlag = 0x10
    };

    /// Word of BuildOption.
    enum EBuildOption : DWORD {
        /// Read into the value buffer.
        boGet = 0x10000,
        /// ORed with an index in the low word; S_FALSE past the last element.
        boGetByIndex = 0x20000,
        boSet = 0x30000,
        boAdd = 0x40000,
        /// Value "" of size 0.
        boRemove = 0x50000,
        boMove = 0x60000,
        boOperationMask = 0xF0000,
        boIndexMask = 0x0FFFF
    };
};

} // namespace kestrix
