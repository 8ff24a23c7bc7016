#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "CLineLocation.h"
#include "CMemAddress.h"
#include "CSymbolInfo.h"
#include "MemoryAreaTable.h"
#include "SType2.h"

using namespace kestrix;

namespace {

CCPUInfo cpu(int code, int variant = 0)
{
    CCPUInfo info;
    info.m_wCPU = static_cast<WORD>(code);
    info.m_wVariant = static_cast<WORD>(variant);
    return info;
}

} // namespace

TEST(ValueRecords, Texts)
{
    EXPECT_EQ("CMemAddress:\n  memArea: 2\n  address: 4096", CMemAddress(2, 0x1000).toString());
    SType type;
    type.m_byType = SType::tSigned;
    type.m_byBitSize = 16;
    const CSymbolInfo symbol(1, 0x20000000, 4, type);
    EXPECT_EQ("CSymbolInfo:\n  memArea: 1\n  address: 536870912\n  sizeMAUs: 4\n  type: 2\n  bitSize: 16",
              symbol.toString());
    EXPECT_EQ(16, symbol.getMType().m_byBitSize);
    EXPECT_EQ("CLineLocation:\n  fileName: src/main.c\n  lineNumber: 42", CLineLocation("src/main.c", 42).toString());
}

TEST(ValueRecords, SType2FieldsBehindTheBase)
{
    SType2 type;
    const char* base = reinterpret_cast<const char*>(&type);
    EXPECT_EQ(0, reinterpret_cast<const char*>(&type.m_byType) - base);
    EXPECT_EQ(2, reinterpret_cast<const char*>(&type.m_byType2) - base);
    EXPECT_EQ(3, reinterpret_cast<const char*>(&type.m_byReserved) - base);
    EXPECT_EQ(4, reinterpret_cast<const char*>(&type.m_dw1) - base);
    EXPECT_EQ(8, reinterpret_cast<const char*>(&type.m_dw2) - base);
}

TEST(MemoryAreaTable, BytesPerMAU)
{
    EXPECT_EQ(4, bytesPerMAUOf(0, cpu(24)));  // 22 bits
    EXPECT_EQ(1, bytesPerMAUOf(3, cpu(1)));   // 1 bit
    EXPECT_EQ(0, bytesPerMAUOf(12, cpu(1)));  // beyond the list
    EXPECT_EQ(0, bytesPerMAUOf(-1, cpu(1)));
    EXPECT_EQ(1, bytesPerMAUOf(11, cpu(1)));
    EXPECT_EQ(2, bytesPerMAUOf(0, cpu(4, 1)));  // 14 bits
    EXPECT_EQ(2, bytesPerMAUOf(0, cpu(4, 2)));  // 16 bits
    EXPECT_EQ(1, bytesPerMAUOf(2, cpu(4, 1)));
    EXPECT_EQ(0, bytesPerMAUOf(2, cpu(4, 0)));
    EXPECT_EQ(4, bytesPerMAUOf(3, cpu(18)));    // 32 bits
    EXPECT_EQ(2, bytesPerMAUOf(2, cpu(30)));
    EXPECT_EQ(1, bytesPerMAUOf(1, cpu(15)));    // 4 bits
    EXPECT_EQ(1, bytesPerMAUOf(1, cpu(38)));
    EXPECT_EQ(0, bytesPerMAUOf(2, cpu(38)));
}

TEST(MemoryAreaTable, ListsByCpuAndVariant)
{
    EXPECT_EQ(2u, getMemoryAreas(cpu(0, 0)).count);
    const MemoryAreaList logical = getMemoryAreas(cpu(0, 1));
    ASSERT_EQ(3u, logical.count);
    EXPECT_EQ(std::string("Logical"), logical.rows[2].name);
    EXPECT_EQ(0xFFFFFu, logical.rows[0].lastAddress);
    EXPECT_EQ(0u, getMemoryAreas(cpu(0, 3)).count);
    EXPECT_EQ(0u, getMemoryAreas(cpu(4, 7)).count);
    // Other CPUs ignore the variant.
    EXPECT_EQ(12u, getMemoryAreas(cpu(1, 9)).count);
    EXPECT_EQ(std::string("SFR"), getMemoryAreas(cpu(1)).rows[11].name);
    EXPECT_EQ(10u, getMemoryAreas(cpu(10)).count);
    EXPECT_EQ(7u, getMemoryAreas(cpu(18)).count);
    for (int code : {39, 100, 0xFFFF}) {
        const MemoryAreaList unknown = getMemoryAreas(cpu(code));
        ASSERT_EQ(1u, unknown.count) << code;
        EXPECT_EQ(std::string(""), unknown.rows[0].name);
        EXPECT_EQ(8, unknown.rows[0].bitsPerMAU);
        EXPECT_EQ(0xFFFFFFFFu, unknown.rows[0].lastAddress);
    }
    for (int code = 1; code < 39; ++code) {
        const MemoryAreaList areas = getMemoryAreas(cpu(code));
        EXPECT_GT(areas.count, 0u) << "CPU " << code;
        EXPECT_EQ(0u, areas.rows[0].firstAddress);
    }
}
