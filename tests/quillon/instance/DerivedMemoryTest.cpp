#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "debuginfo/ElfImage.h"
#include "instance/DerivedMemory.h"
#include "target/MemoryArea.h"

namespace quillon {
namespace {

using target::MemoryArea;

constexpr unsigned RX = MemoryArea::Read | MemoryArea::Execute;
constexpr unsigned RWX = MemoryArea::Read | MemoryArea::Write | MemoryArea::Execute;

struct Expected {
    std::string name;
    std::uint32_t start;
    std::uint32_t size;
    unsigned access;
};

bool operator==(const DerivedMemory::Area& a, const Expected& e)
{
    return a.name == e.name && a.start == e.start && a.size == e.size && a.access == e.access;
}

std::string describe(const DerivedMemory::Area& a)
{
    char text[128];
    std::snprintf(text, sizeof text, "%s %x+%x %u", a.name.c_str(), a.start, a.size, a.access);
    return text;
}

debuginfo::ElfImage image(const std::string& name)
{
    return debuginfo::ElfImage::open(std::string(FIRMWARE_DIR) + "/" + name);
}

// debuginfo.elf: code 0..0x8a4 (rx), .data loaded at 0x8a4 and run with .bss at 0x20000000 (rw),
// initial SP 0x20010000. instance_codeonly.elf: 10 bytes of code at 0, initial SP 0x20020000, no RAM.
TEST(DerivedMemory, SegmentsAndTheStackRamRoundedToPages)
{
    const debuginfo::ElfImage withData = image("debuginfo.elf");
    const debuginfo::ElfImage codeOnly = image("instance_codeonly.elf");
    struct Case {
        const char* what;
        std::vector<const debuginfo::ElfImage*> images;
        std::vector<Expected> areas;
    };
    const std::vector<Case> cases = {
        {"data loaded behind the code joins the code's page; the RAM reaches down to .data",
         {&withData},
         {{"download0.segment0", 0, 0xC00, RX}, {"download0.segment1", 0x20000000, 0x10000, RWX}}},
        {"without writable segments the RAM is 64 KiB below the stack pointer",
         {&codeOnly},
         {{"download0.segment0", 0, 0x400, RX}, {"ram", 0x20010000, 0x10000, RWX}}},
        {"the first image at address 0 gives the stack pointer",
         {&withData, &codeOnly},
         {{"download0.segment0", 0, 0xC00, RX}, {"download0.segment1", 0x20000000, 0x10000, RWX}}},
        {"RAM below a higher stack pointer reaches down to another image's data",
         {&codeOnly, &withData},
         {{"download0.segment0", 0, 0xC00, RX}, {"download1.segment1", 0x20000000, 0x20000, RWX}}},
        {"no image, no memory", {}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::vector<DerivedMemory::Area> areas = DerivedMemory::fromImages(c.images);
        ASSERT_EQ(c.areas.size(), areas.size());
        for (std::size_t i = 0; i < areas.size(); ++i) {
            EXPECT_TRUE(areas[i] == c.areas[i]) << describe(areas[i]);
        }
    }
}

} // namespace
} // namespace quillon
