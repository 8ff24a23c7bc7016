#include "target/RegisterTable.h"

#include <unicorn/unicorn.h>

#include <cctype>

namespace quillon::target {

namespace {

struct Row {
    const char* name;
    Register reg;
    int engineId;
};

// Names first, then the aliases; `name()` takes the first row of a register.
const Row rows[] = {
    {"r0", Register::R0, UC_ARM_REG_R0},          {"r1", Register::R1, UC_ARM_REG_R1},
    {"r2", Register::R2, UC_ARM_REG_R2},          {"r3", Register::R3, UC_ARM_REG_R3},
    {"r4", Register::R4, UC_ARM_REG_R4},          {"r5", Register::R5, UC_ARM_REG_R5},
    {"r6", Register::R6, UC_ARM_REG_R6},          {"r7", Register::R7, UC_ARM_REG_R7},
    {"r8", Register::R8, UC_ARM_REG_R8},          {"r9", Register::R9, UC_ARM_REG_R9},
    {"r10", Register::R10, UC_ARM_REG_R10},       {"r11", Register::R11, UC_ARM_REG_R11},
    {"r12", Register::R12, UC_ARM_REG_R12},       {"sp", Register::SP, UC_ARM_REG_SP},
    {"lr", Register::LR, UC_ARM_REG_LR},          {"pc", Register::PC, UC_ARM_REG_PC},
    {"xpsr", Register::XPSR, UC_ARM_REG_XPSR},    {"msp", Register::MSP, UC_ARM_REG_MSP},
    {"psp", Register::PSP, UC_ARM_REG_PSP},       {"primask", Register::PRIMASK, UC_ARM_REG_PRIMASK},
    {"control", Register::CONTROL, UC_ARM_REG_CONTROL},
    {"r13", Register::SP, UC_ARM_REG_SP},         {"r14", Register::LR, UC_ARM_REG_LR},
    {"r15", Register::PC, UC_ARM_REG_PC},
};

const Row& row(Register reg)
{
    for (const Row& r : rows) {
        if (r.reg == reg) {
            return r;
        }
    }
    return rows[0]; // every enumerator has a row
}

bool equalsIgnoreCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) != static_cast<unsigned char>(b[i])) {
            return false;
        }
    }
    return true;
}

} // namespace

std::optional<Register> RegisterTable::find(std::string_view name)
{
    for (const Row& r : rows) {
        if (equalsIgnoreCase(name, r.name)) {
            return r.reg;
        }
    }
    return std::nullopt;
}

const char* RegisterTable::name(Register reg)
{
    return row(reg).name;
}

const std::vector<Register>& RegisterTable::all()
{
    static const std::vector<Register> registers = [] {
        std::vector<Register> list;
        for (const Row& r : rows) {
            if (list.empty() || list.back() < r.reg) {
                list.push_back(r.reg);
            }
        }
        return list;
    }();
    return registers;
}

int RegisterTable::engineId(Register reg)
{
    return row(reg).engineId;
}

} // namespace quillon::target
