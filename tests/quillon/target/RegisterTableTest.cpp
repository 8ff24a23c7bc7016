#include <gtest/gtest.h>

#include "target/CpuModel.h"
#include "target/RegisterTable.h"
#include "target/TargetError.h"

namespace quillon::target {
namespace {

TEST(RegisterTable, NamesAliasesAndCase)
{
    struct Case {
        const char* name;
        std::optional<Register> reg;
    };
    const Case cases[] = {
        {"r0", Register::R0},   {"R12", Register::R12},    {"sp", Register::SP},
        {"r13", Register::SP},  {"LR", Register::LR},      {"r14", Register::LR},
        {"Pc", Register::PC},   {"r15", Register::PC},     {"xPSR", Register::XPSR},
        {"msp", Register::MSP}, {"PSP", Register::PSP},    {"primask", Register::PRIMASK},
        {"CONTROL", Register::CONTROL},
        {"r16", std::nullopt},  {"", std::nullopt},        {"r", std::nullopt},
        {"sp ", std::nullopt},  {"apsr", std::nullopt},    {"r1x", std::nullopt},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(RegisterTable::find(c.name), c.reg) << '"' << c.name << '"';
    }
}

TEST(RegisterTable, EveryRegisterOnceUnderItsOwnName)
{
    const auto& all = RegisterTable::all();
    ASSERT_EQ(all.size(), 21u); // r0-r12, sp, lr, pc, xpsr, msp, psp, primask, control
    for (Register reg : all) {
        EXPECT_EQ(RegisterTable::find(RegisterTable::name(reg)), reg) << RegisterTable::name(reg);
    }
    EXPECT_STREQ(RegisterTable::name(Register::SP), "sp");
}

TEST(CpuModel, KnownNamesIgnoreCase)
{
    EXPECT_EQ(CpuModel::fromName("Cortex-M4").name(), "cortex-m4");
    EXPECT_NE(CpuModel::fromName("cortex-m0").engineModel(), CpuModel::fromName("cortex-m7").engineModel());
    EXPECT_THROW(CpuModel::fromName("cortex-m33"), TargetError) << "Unicorn's M33 needs another mode";
}

} // namespace
} // namespace quillon::target
