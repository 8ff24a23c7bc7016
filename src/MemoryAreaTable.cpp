#include "MemoryAreaTable.h"

#include <iterator>

namespace kestrix {

namespace {

constexpr ADDRESS kAll = 0xFFFFFFFF;

// Rows are name, bits per MAU, first address, last address.
const SMemoryAreaInfo kCpu0Var0[] = {{"Physical", 8, 0, 0xFFFF}, {"IO", 8, 0, 0xFFFF}};
const SMemoryAreaInfo kCpu0Var1[] = {{"Physical", 8, 0, 0xFFFFF}, {"IO", 8, 0, 0xFFFF}, {"Logical", 8, 0, 0xFFFF}};
const SMemoryAreaInfo kCpu0Var2[] = {{"Physical", 8, 0, 0xFFFF}, {"IO", 8, 0, 0xFFFF}};
const SMemoryAreaInfo kCpu1[] = {
    {"CODE", 8, 0, 0xFFFF},     {"DATA", 8, 0, 0xFF},      {"IDATA", 8, 0, 0xFF},    {"BDATA", 1, 0, 0xFF},
    {"XDATA", 8, 0, 0xFFFF},    {"PDATA", 8, 0, 0xFF},     {"BankIDATA", 8, 0, 0xFF}, {"EDATA", 8, 0, 0xFFFF},
    {"HDATA", 8, 0, 0x7EFFFF},  {"EEPROM", 8, 0, 0xFF},    {"PHYSICAL", 8, 0, kAll}, {"SFR", 8, 0, 0xFF}};
const SMemoryAreaInfo kPhysical16[] = {{"Physical", 8, 0, 0xFFFF}};
const SMemoryAreaInfo kCpu4Var0[] = {{"PROGRAM", 12, 0, 0xFFFF}, {"REGISTER", 8, 0, 0xFF}};
const SMemoryAreaInfo kCpu4Var1[] = {{"PROGRAM", 14, 0, 0xFFFF}, {"REGISTER", 8, 0, 0xFF}, {"EEPROM", 8, 0, 0x3F}};
const SMemoryAreaInfo kCpu4Var2[] = {{"PROGRAM", 16, 0, 0xFFFF}, {"REGISTER", 8, 0, 0xFF}};
const SMemoryAreaInfo kCpu6[] = {{"Physical", 8, 0, 0xFFFFF}, {"IO", 8, 0, 0xFFFF}};
const SMemoryAreaInfo kCpu7[] = {{"Program", 8, 0, kAll},
                                 {"Data", 8, 0, kAll},
                                 {"Supervisor Program", 8, 0, kAll},
                                 {"Supervisor Data", 8, 0, kAll},
                                 {"User Program", 8, 0, kAll},
                                 {"User Data", 8, 0, kAll},
                                 {"CPU Space", 8, 0, kAll}};
const SMemoryAreaInfo kCpu8[] = {{"Data", 8, 0, 0xFFFFF}, {"Program", 8, 0, 0xFFFFF}};
const SMemoryAreaInfo kCpu9[] = {{"CODE", 8, 0, 0xFFFFF}, {"DATA", 8, 0, 0xFFFFF}, {"REGISTER", 8, 0, 0x3FF}};
const SMemoryAreaInfo kCpu10[] = {
    {"Physical", 8, 0, 0xFFFFFF}, {"Register", 8, 0, 0x3F}, {"SFR", 8, 0, 0xFF},   {"CODE", 8, 0, 0xFFFF},
    {"DATA", 8, 0, 0xFF},         {"IDATA", 8, 0, 0xFF},    {"BDATA", 1, 0, 0xFF}, {"XDATA", 8, 0, 0xFFFF},
    {"PDATA", 8, 0, 0xFF},        {"DATAB", 1, 0, 0x7FF}};
const SMemoryAreaInfo kCpu11[] = {{"Physical", 8, 0, 0xFFFFFF}, {"Logical", 8, 0, 0xFFFF}, {"BDATA", 1, 0, 0xFFF}};
const SMemoryAreaInfo kCpu12[] = {{"Logical", 8, 0, 0xFFFF}, {"Bank", 8, 0, 0xFFFFFF}, {"Linear", 8, 0, 0x3FFFFF}};
const SMemoryAreaInfo kPhysical24[] = {{"Physical", 8, 0, 0xFFFFFF}};
const SMemoryAreaInfo kCpu15[] = {{"Program", 8, 0, 0xFFF}, {"Data", 4, 0, 0xFF}};
const SMemoryAreaInfo kPhysical32[] = {{"Physical", 8, 0, kAll}};
const SMemoryAreaInfo kCpu18[] = {{"Virtual", 8, 0, kAll}, {"Physical", 8, 0, kAll}, {"User", 8, 0, 0x0},
                                  {"SPR", 32, 0, 0x7FF},   {"DCR", 32, 0, 0x3FF},    {"TLB", 32, 0, kAll},
                                  {"PMR", 32, 0, kAll}};
const SMemoryAreaInfo kCpu19[] = {{"Physical", 8, 0, kAll}, {"Supervisor", 8, 0, kAll}, {"User", 8, 0, kAll}};
const SMemoryAreaInfo kCpu21[] = {
    {"Physical", 8, 0, kAll}, {"Prog Info Block", 8, 0, 0xFF}, {"Data Info Block", 8, 0, 0x7F}};
const SMemoryAreaInfo kCpu22[] = {
    {"Physical", 8, 0, kAll}, {"Coprocessor15", 32, 0, 0xFF}, {"Coprocessor", 32, 0, 0xFFFFFF}};
const SMemoryAreaInfo kCpu24[] = {{"Program", 22, 0, 0xFFFF}, {"Data", 8, 0, 0xFFFF}, {"AS ID", 8, 0, 0x7F}};
const SMemoryAreaInfo kCpu25[] = {{"Physical", 8, 0, kAll}, {"Host", 8, 0, 0x7FFFFF}};
const SMemoryAreaInfo kCpu26[] = {{"Program", 8, 0, 0x7FFF}, {"Data", 8, 0, 0xFF}};
const SMemoryAreaInfo kCpu27[] = {{"Physical", 8, 0, kAll}, {"AUX Regs", 32, 0, kAll}};
const SMemoryAreaInfo kCpu28[] = {{"Physical", 8, 0, 0xFFFF}, {"ER", 8, 0, kAll}};
const SMemoryAreaInfo kCpu30[] = {{"Program", 16, 0, 0xFFFF}, {"Data", 16, 0, 0xFFFF}, {"IO", 16, 0, 0xFFFF}};
const SMemoryAreaInfo kCpu34[] = {{"SCM", 8, 0, 0xFFFF}, {"SPRAM", 8, 0, 0x1FFF}};
const SMemoryAreaInfo kCpu35[] = {{"Physical", 8, 0, 0xFFFFF}};
const SMemoryAreaInfo kCpu36[] = {{"Physical", 8, 0, 0x27FFF}};
const SMemoryAreaInfo kCpu37[] = {{"Virtual", 8, 0, kAll}, {"Physical", 8, 0, kAll}};
const SMemoryAreaInfo kCpu38[] = {{"CMEM", 8, 0, 0x7FFF}, {"PRAM", 8, 0, 0x3FFF}};
// CPU codes beyond the table: one unnamed area over the whole address range.
const SMemoryAreaInfo kUnknownCpu[] = {{"", 8, 0, kAll}};

template <size_t N>
constexpr MemoryAreaList listOf(const SMemoryAreaInfo (&rows)[N])
{
    return MemoryAreaList{rows, N};
}

// By CPU code, for the codes whose list does not depend on the variant (0 and 4 do).
const MemoryAreaList kByCpu[] = {
    {nullptr, 0},        listOf(kCpu1),       listOf(kPhysical16), listOf(kPhysical16), {nullptr, 0},
    listOf(kPhysical16), listOf(kCpu6),       listOf(kCpu7),       listOf(kCpu8),       listOf(kCpu9),
    listOf(kCpu10),      listOf(kCpu11),      listOf(kCpu12),      listOf(kPhysical24), listOf(kPhysical16),
    listOf(kCpu15),      listOf(kPhysical32), listOf(kPhysical32), listOf(kCpu18),      listOf(kCpu19),
    listOf(kPhysical16), listOf(kCpu21),      listOf(kCpu22),      listOf(kPhysical32), listOf(kCpu24),
    listOf(kCpu25),      listOf(kCpu26),      listOf(kCpu27),      listOf(kCpu28),      listOf(kPhysical16),
    listOf(kCpu30),      listOf(kPhysical16), listOf(kPhysical32), listOf(kPhysical32), listOf(kCpu34),
    listOf(kCpu35),      listOf(kCpu36),      listOf(kCpu37),      listOf(kCpu38)};

static_assert(std::size(kByCpu) == 39, "one list per CPU code 0 to 38");

MemoryAreaList byVariant(WORD variant, MemoryAreaList v0, MemoryAreaList v1, MemoryAreaList v2)
{
    switch (variant) {
    case 0: return v0;
    case 1: return v1;
    case 2: return v2;
    default: return MemoryAreaList{nullptr, 0};
    }
}

} // namespace

MemoryAreaList getMemoryAreas(const CCPUInfo& info)
{
    if (info.m_wCPU == 0) {
        return byVariant(info.m_wVariant, listOf(kCpu0Var0), listOf(kCpu0Var1), listOf(kCpu0Var2));
    }
    if (info.m_wCPU == 4) {
        return byVariant(info.m_wVariant, listOf(kCpu4Var0), listOf(kCpu4Var1), listOf(kCpu4Var2));
    }
    if (info.m_wCPU < std::size(kByCpu)) {
        return kByCpu[info.m_wCPU];
    }
    return listOf(kUnknownCpu);
}

int bytesPerMAUOf(int memArea, const CCPUInfo& info)
{
    const MemoryAreaList areas = getMemoryAreas(info);
    if (memArea < 0 || static_cast<size_t>(memArea) >= areas.count) {
        return 0;
    }
    const int bits = areas.rows[memArea].bitsPerMAU;
    if (bits <= 8) {
        return 1;
    }
    if (bits <= 16) {
        return 2;
    }
    if (bits <= 32) {
        return 4;
    }
    if (bits <= 64) {
        return 8;
    }
    return bits <= 128 ? 16 : 32;
}

} // namespace kestrix
