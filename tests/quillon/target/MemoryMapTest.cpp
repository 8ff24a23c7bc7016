#include <gtest/gtest.h>

#include <cstring>

#include "target/MemoryMap.h"
#include "target/TargetError.h"

namespace quillon::target {
namespace {

// Two adjacent areas and one apart: 0x1000-0x1FFF, 0x2000-0x2FFF, 0x8000-0x8FFF.
MemoryMap threeAreas()
{
    MemoryMap map;
    map.add("a", 0x1000, 0x1000, MemoryArea::Read);
    map.add("b", 0x2000, 0x1000, MemoryArea::Read | MemoryArea::Write);
    map.add("c", 0x8000, 0x1000, MemoryArea::Read | MemoryArea::Write | MemoryArea::Execute);
    return map;
}

TEST(MemoryArea, AccessTextRoundTrip)
{
    struct Case {
        const char* text;
        std::optional<unsigned> access;
        const char* canonical;
    };
    const Case cases[] = {
        {"r", MemoryArea::Read, "r"},
        {"rx", MemoryArea::Read | MemoryArea::Execute, "rx"},
        {"xr", MemoryArea::Read | MemoryArea::Execute, "rx"},
        {"rwx", MemoryArea::Read | MemoryArea::Write | MemoryArea::Execute, "rwx"},
        {"w", MemoryArea::Write, "w"},
        {"", std::nullopt, nullptr},
        {"rr", std::nullopt, nullptr},
        {"rwz", std::nullopt, nullptr},
        {"RX", std::nullopt, nullptr},
    };
    for (const Case& c : cases) {
        auto access = MemoryArea::parseAccess(c.text);
        EXPECT_EQ(access, c.access) << c.text;
        if (access) {
            EXPECT_EQ(MemoryArea::accessText(*access), c.canonical);
        }
    }
    EXPECT_EQ(MemoryArea::accessText(MemoryArea::None), "-");
}

TEST(MemoryMap, RejectsBadLayouts)
{
    struct Case {
        const char* name;
        uint32_t start, size;
        const char* message;
    };
    const Case cases[] = {
        {"empty", 0x4000, 0, "memory area 'empty' has no size"},
        {"a", 0x4000, 0x1000, "memory area 'a' is given twice"},
        {"late", 0x2800, 0x1000, "memory area 'late' overlaps area 'b'"},
        {"around", 0x0000, 0x10000, "memory area 'around' overlaps area 'a'"},
    };
    for (const Case& c : cases) {
        MemoryMap map = threeAreas();
        try {
            map.add(c.name, c.start, c.size, MemoryArea::Read);
            ADD_FAILURE() << c.name << " was accepted";
        } catch (const TargetError& e) {
            EXPECT_EQ(e.kind(), TargetError::Kind::InvalidArgument);
            EXPECT_STREQ(e.what(), c.message);
        }
    }
}

TEST(MemoryMap, AreaAtTopOfAddressSpace)
{
    MemoryMap map;
    const MemoryArea& top = map.add("top", 0xFFFFF000u, 0x1000, MemoryArea::Read);
    EXPECT_EQ(top.end(), uint64_t(1) << 32);
    EXPECT_EQ(map.find(0xFFFFFFFFu), &top);
    uint8_t byte = 0;
    EXPECT_THROW(map.read(0xFFFFFFFFu, &byte, 2), TargetError);
}

TEST(MemoryMap, FindsTheAreaOfAnAddress)
{
    MemoryMap map = threeAreas();
    struct Case {
        uint64_t address;
        const char* area;
    };
    const Case cases[] = {{0x0FFF, nullptr}, {0x1000, "a"}, {0x1FFF, "a"}, {0x2000, "b"},
                          {0x3000, nullptr}, {0x8FFF, "c"}, {0x9000, nullptr}};
    for (const Case& c : cases) {
        const MemoryArea* area = map.find(c.address);
        if (c.area == nullptr) {
            EXPECT_EQ(area, nullptr) << std::hex << c.address;
        } else {
            ASSERT_NE(area, nullptr) << std::hex << c.address;
            EXPECT_EQ(area->name(), c.area);
        }
    }
    EXPECT_EQ(map.findByName("c")->start(), 0x8000u);
    EXPECT_EQ(map.findByName("d"), nullptr);
}

TEST(MemoryMap, ReadsAndWritesAcrossAdjacentAreas)
{
    MemoryMap map = threeAreas();
    const uint8_t data[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    map.write(0x1FFC, data, sizeof data); // four bytes in a, four in b, though a has no write right
    EXPECT_EQ(map.areas()[0].data()[0xFFF], 4);
    EXPECT_EQ(map.areas()[1].data()[0], 5);
    uint8_t back[8] = {};
    map.read(0x1FFC, back, sizeof back);
    EXPECT_EQ(0, std::memcmp(back, data, sizeof data));
    EXPECT_TRUE(map.isMapped(0x1000, 0x2000));
    EXPECT_FALSE(map.isMapped(0x2FFF, 2));
}

TEST(MemoryMap, UnmappedBytesFailWholeAccessAndNameFirstAddress)
{
    MemoryMap map = threeAreas();
    const uint8_t data[4] = {9, 9, 9, 9};
    try {
        map.write(0x2FFE, data, sizeof data); // two bytes in b, two past it
        ADD_FAILURE() << "write past the area";
    } catch (const TargetError& e) {
        EXPECT_EQ(e.kind(), TargetError::Kind::BadAddress);
        EXPECT_STREQ(e.what(), "no memory at 0x00003000");
    }
    EXPECT_EQ(map.areas()[1].data()[0xFFE], 0) << "nothing written";
    uint8_t byte;
    EXPECT_THROW(map.read(0x7FFF, &byte, 1), TargetError);
}

TEST(MemoryMap, SnapshotRestoresContents)
{
    MemoryMap map = threeAreas();
    const uint32_t before = 0x11223344;
    map.write(0x8010, &before, 4);
    MemoryMap::Snapshot snapshot = map.snapshot();
    const uint32_t after = 0xAABBCCDD;
    map.write(0x8010, &after, 4);
    map.write(0x2000, &after, 4);
    map.restore(snapshot);
    uint32_t value = 0;
    map.read(0x8010, &value, 4);
    EXPECT_EQ(value, before);
    map.read(0x2000, &value, 4);
    EXPECT_EQ(value, 0u);

    MemoryMap other;
    other.add("x", 0, 0x1000, MemoryArea::Read);
    EXPECT_THROW(other.restore(snapshot), TargetError);
}

} // namespace
} // namespace quillon::target
