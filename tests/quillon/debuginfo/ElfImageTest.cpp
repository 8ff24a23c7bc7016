#include "DebugInfoFixture.h"

#include "debuginfo/DebugInfoError.h"
#include "debuginfo/ElfImage.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace quillon::debuginfo::test {
namespace {

using Kind = ElfImage::SymbolKind;

const ElfImage& image()
{
    return firmware().elf();
}

std::uint32_t wordAt(const std::vector<std::uint8_t>& bytes, std::size_t offset)
{
    return bytes[offset] | bytes[offset + 1] << 8 | bytes[offset + 2] << 16 |
           static_cast<std::uint32_t>(bytes[offset + 3]) << 24;
}

std::string writeTemp(const std::string& name, const std::vector<char>& bytes)
{
    const std::string path = ::testing::TempDir() + name;
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return path;
}

std::vector<char> readAll(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(ElfImage, CodeSegmentStartsWithTheVectorTable)
{
    const ElfImage::Segment& code = image().segments().at(0);
    EXPECT_EQ(code.virtualAddress, 0u);
    EXPECT_EQ(code.physicalAddress, 0u);
    EXPECT_TRUE(code.readable && code.executable);
    EXPECT_FALSE(code.writable);
    // Cortex-M: initial stack pointer, then the reset handler with its Thumb bit.
    EXPECT_EQ(wordAt(code.bytes, 0), image().findSymbol("_estack")->address);
    EXPECT_EQ(wordAt(code.bytes, 4), image().findSymbol("Reset_Handler")->address | 1);
    EXPECT_EQ(image().entry(), image().findSymbol("Reset_Handler")->address | 1);
}

TEST(ElfImage, DataSegmentLoadsFromFlashAndEndsInZeros)
{
    ASSERT_EQ(image().segments().size(), 2u);
    const ElfImage::Segment& data = image().segments()[1];
    EXPECT_EQ(data.virtualAddress, 0x20000000u);
    EXPECT_EQ(data.physicalAddress, image().findSymbol("_sidata")->address);
    EXPECT_TRUE(data.writable);
    EXPECT_GT(data.memorySize, data.bytes.size()); // .bss follows .data
    const std::uint32_t input = image().findSymbol("g_input")->address;
    EXPECT_EQ(wordAt(data.bytes, input - data.virtualAddress), 3u); // volatile int g_input = 3
}

TEST(ElfImage, SymbolsOfFunctionsLoseTheThumbBitThoseOfObjectsCarryTheirSize)
{
    const ElfImage::Symbol* reset = image().findSymbol("Reset_Handler");
    ASSERT_NE(reset, nullptr);
    EXPECT_EQ(reset->kind, Kind::Function);
    EXPECT_TRUE(reset->thumb);
    EXPECT_EQ(reset->address % 2, 0u);
    EXPECT_TRUE(reset->global);
    const ElfImage::Symbol* shape = image().findSymbol("g_shape");
    ASSERT_NE(shape, nullptr);
    EXPECT_EQ(shape->kind, Kind::Object);
    EXPECT_FALSE(shape->thumb);
    // name 16, edges 24, grid 24, color 1 + 3 padding, flags 4, value 8, parent 4: 84, aligned to 8.
    EXPECT_EQ(shape->size, 88u);
}

TEST(ElfImage, LocalSymbolsNameTheirFile)
{
    const std::vector<const ElfImage::Symbol*> counts = image().findSymbols("count");
    ASSERT_EQ(counts.size(), 2u);
    std::vector<std::string> files{counts[0]->file, counts[1]->file};
    std::sort(files.begin(), files.end());
    EXPECT_EQ(files, (std::vector<std::string>{"counter_a.c", "counter_b.c"}));
    EXPECT_FALSE(counts[0]->global);
    EXPECT_NE(counts[0]->address, counts[1]->address);
}

TEST(ElfImage, SymbolAtFindsTheFunctionOrObjectHoldingTheAddress)
{
    const ElfImage::Symbol* sum = image().findSymbol("sum_points");
    const ElfImage::Symbol* shape = image().findSymbol("g_shape");
    const ElfImage::Symbol* probe = image().findSymbol("unwind_probe");
    EXPECT_EQ(image().symbolAt(sum->address), sum);
    EXPECT_EQ(image().symbolAt(sum->address + sum->size - 2), sum);
    EXPECT_EQ(image().symbolAt(shape->address + 5), shape);
    // A label is a symbol of no kind; the function around it holds its address. Mapping symbols are left out.
    const ElfImage::Symbol* label = image().findSymbol("unwind_probe_body");
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->kind, Kind::Other);
    EXPECT_EQ(image().symbolAt(label->address), probe);
    for (const ElfImage::Symbol& symbol : image().symbols()) {
        EXPECT_NE(symbol.name.front(), '$') << symbol.name;
    }
    EXPECT_EQ(image().symbolAt(0x30000000), nullptr);
    // _estack is a label past the end of SRAM: found only at its exact address.
    EXPECT_EQ(image().symbolAt(0x20010000)->name, "_estack");
}

TEST(ElfImage, BadFilesNameTheFileAndTheProblem)
{
    std::vector<char> x86 = readAll(firmwarePath("debuginfo.elf"));
    x86[18] = 3; // e_machine: EM_386
    x86[19] = 0;
    std::vector<char> truncated = readAll(firmwarePath("debuginfo.elf"));
    truncated.resize(60); // the header, not the program headers it points to
    const std::pair<std::string, std::string> cases[] = {
        {::testing::TempDir() + "no-such-file.elf", "No such file or directory"},
        {writeTemp("text.elf", {'h', 'e', 'l', 'l', 'o', '\n'}), "is not an ELF file"},
        {writeTemp("empty.elf", {}), "is not an ELF file"},
        {"/proc/self/exe", "is not a 32-bit little-endian ELF file"},
        {writeTemp("x86.elf", x86), "is not an ARM ELF file (machine 3)"},
        {writeTemp("truncated.elf", truncated), "program headers"},
    };
    for (const auto& [path, expected] : cases) {
        try {
            ElfImage::open(path);
            ADD_FAILURE() << "no error for " << path;
        } catch (const DebugInfoError& error) {
            const std::string message = error.what();
            EXPECT_NE(message.find("'" + path + "'"), std::string::npos) << message;
            EXPECT_NE(message.find(expected), std::string::npos) << message;
        }
    }
}

TEST(DebugInfoOpen, AnElfWithoutDwarfLoadsAsImageButNotAsDebugInformation)
{
    const std::string path = firmwarePath("debuginfo_nodebug.elf");
    EXPECT_FALSE(ElfImage::open(path).segments().empty());
    try {
        DebugInfo::open(path);
        FAIL() << "no error";
    } catch (const DebugInfoError& error) {
        EXPECT_EQ(std::string(error.what()), "'" + path + "' has no DWARF debug information");
    }
}

TEST(DebugInfoOpen, MovesKeepWhatWasHandedOut)
{
    DebugInfo first = DebugInfo::open(firmwarePath("debuginfo.elf"));
    const Function* main = first.findFunction("main");
    const Type* shape = first.findType("struct shape");
    DebugInfo second = std::move(first);
    EXPECT_EQ(second.findFunction("main"), main);
    EXPECT_EQ(second.findType("struct shape"), shape);
    EXPECT_EQ(second.functionAt(main->entry), main);
}

} // namespace
} // namespace quillon::debuginfo::test
