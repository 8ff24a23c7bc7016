#include <gtest/gtest.h>

#include <string>

#include "CLineLocation.h"
#include "CMemAddress.h"
#include "CSymbolInfo.h"
#include "MemoryAreaTable.h"
#include "SType2.h"

using namespace kestrix;

TEST(ValueRecords, Texts)
{
    EXPECT_EQ("CMemAddress:\n  memArea: 2\n  address: 4096", CMemAddress(2, 0x1000).toString());
    EXPECT_EQ("CSymbolInfo:\n  memArea: 1\n  address: 536870912\n  sizeMAUs: 4\n  type: 2\n  bitSize: 16",
              CSymbolInfo(1, 0x20000000, 4, SType{SType::tSigned, 16}).toString());
    EXPECT_EQ("CLineLocation:\n  fileName: src/main.c\n  lineNumber: 42", CLineLocation("src/main.c", 42).toString());
}

// offsetof is not defined for a type with a base, so the derived fields are measured here.
TEST(ValueRecords, SType2FieldsBehindTheBase)
{
    const SType2 type;
    const auto at = [&type](const void* field) {
        return static_cast<const char*>(field) - reinterpret_cast<const char*>(&type);
    };
    EXPECT_EQ(0, at(&type.m_byType));
    EXPECT_EQ(2, at(&type.m_byType2));
    EXPECT_EQ(3, at(&type.m_byReserved));
    EXPECT_EQ(4, at(&type.m_dw1));
    EXPECT_EQ(8, at(&type.m_dw2));
}

TEST(MemoryAreaTable, BytesPerMAU)
{
    EXPECT_EQ(4, bytesPerMAUOf(0, CCPUInfo{24, 0}));  // 22 bits
    EXPECT_EQ(2, bytesPerMAUOf(0, CCPUInfo{4, 1}));   // 14 bits
    EXPECT_EQ(1, bytesPerMAUOf(3, CCPUInfo{1, 0}));   // 1 bit
    EXPECT_EQ(1, bytesPerMAUOf(11, CCPUInfo{1, 0}));  // the last area
    EXPECT_EQ(0, bytesPerMAUOf(12, CCPUInfo{1, 0}));  // beyond the list
    EXPECT_EQ(0, bytesPerMAUOf(-1, CCPUInfo{1, 0}));
    EXPECT_EQ(0, bytesPerMAUOf(2, CCPUInfo{4, 0}));   // only variant 1 has a third area
}

TEST(MemoryAreaTable, ListsByCpuAndVariant)
{
    EXPECT_EQ(2u, getMemoryAreas(CCPUInfo{0, 0}).count);
    EXPECT_EQ(3u, getMemoryAreas(CCPUInfo{0, 1}).count);
    EXPECT_EQ(0u, getMemoryAreas(CCPUInfo{0, 3}).count);
    EXPECT_EQ(0u, getMemoryAreas(CCPUInfo{4, 7}).count);
    EXPECT_EQ(12u, getMemoryAreas(CCPUInfo{1, 9}).count) << "other CPUs ignore the variant";
    for (WORD code : {39, 100, 0xFFFF}) {
        const MemoryAreaList unknown = getMemoryAreas(CCPUInfo{code, 0});
        ASSERT_EQ(1u, unknown.count) << code;
        EXPECT_EQ(std::string(""), unknown.rows[0].name);
        EXPECT_EQ(8, unknown.rows[0].bitsPerMAU);
        EXPECT_EQ(0xFFFFFFFFu, unknown.rows[0].lastAddress);
    }
}
