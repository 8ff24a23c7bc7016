#include <algorithm>

#include "ServiceFixture.h"

namespace quillon::services {
namespace {

using SymbolTest = ServiceFixture;

bool endsWith(const std::string& text, const std::string& tail)
{
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

TEST_F(SymbolTest, FunctionsByNameHaveTheirEntryAndCodeSize)
{
    // add, twice, depth follow each other: each one's code ends where the next begins
    const char* order[] = {"add", "twice", "depth", "write_flash"};
    for (int i = 0; i < 3; ++i) {
        auto info = service->findSymbol(DebugService::Functions, order[i]);
        ASSERT_TRUE(info.has_value()) << order[i];
        EXPECT_EQ(info->address, elfSymbol(order[i]));
        EXPECT_EQ(info->address + info->size, elfSymbol(order[i + 1])) << order[i];
        EXPECT_EQ(info->type, (ScalarType{ScalarType::Address, 32}));
    }
    EXPECT_FALSE(service->findSymbol(DebugService::Functions, "g_counter").has_value());
    EXPECT_FALSE(service->findSymbol(DebugService::Functions, "nope").has_value());
}

TEST_F(SymbolTest, VariablesHaveTheirSizeAndKind)
{
    struct Case {
        const char* name;
        std::uint32_t size;
        ScalarType type;
    };
    const Case cases[] = {
        {"g_counter", 4, {ScalarType::Signed, 32}},
        {"g_depth", 4, {ScalarType::Signed, 32}},
        {"g_table", 16, {ScalarType::Compound, 128}},
    };
    for (const Case& c : cases) {
        auto info = service->findSymbol(DebugService::Variables, c.name);
        ASSERT_TRUE(info.has_value()) << c.name;
        EXPECT_EQ(info->address, elfSymbol(c.name)) << c.name;
        EXPECT_EQ(info->size, c.size) << c.name;
        EXPECT_EQ(info->type, c.type) << c.name;
    }
    EXPECT_FALSE(service->findSymbol(DebugService::Variables, "tick").has_value());
}

TEST_F(SymbolTest, LabelsAndAnySymbolOrNumber)
{
    auto label = service->findSymbol(DebugService::Labels, "Reset_Handler");
    ASSERT_TRUE(label.has_value());
    EXPECT_EQ(label->address, elfSymbol("Reset_Handler"));
    EXPECT_EQ(service->findSymbol(DebugService::AnySymbol, "g_total")->address, 0x20000000u);
    EXPECT_EQ(service->findSymbol(DebugService::AnySymbol, "tick")->address, elfSymbol("tick"));
    EXPECT_EQ(service->findSymbol(DebugService::AnySymbol, "0x1234")->address, 0x1234u);
    EXPECT_FALSE(service->findSymbol(DebugService::AnySymbol, "0x1234z").has_value());
    EXPECT_FALSE(service->findSymbol(DebugService::AnySymbol, "nope").has_value());
}

TEST_F(SymbolTest, SymbolAtAnAddressByKind)
{
    using K = SymbolIndex::SymbolKinds;
    std::uint32_t add = elfSymbol("add");
    std::uint32_t table = elfSymbol("g_table");
    struct Case {
        unsigned kinds;
        std::uint32_t address;
        std::optional<std::string> expected;
    };
    const Case cases[] = {
        {K::Functions, add, "add"},
        {K::Functions, add + 4, "add+0x4"},
        {K::Functions, table, std::nullopt},
        {K::Variables, table + 8, "g_table+0x8"},
        {K::Variables, add, std::nullopt},
        {K::Labels, add, "add"},
        {K::Labels, add + 4, std::nullopt},
        {0, add + 2, "add+0x2"},
        {K::Functions, 0x30000000, std::nullopt},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(service->symbolAt(c.kinds, 0, c.address), c.expected) << c.kinds << " " << c.address;
    }
    auto line = service->symbolAt(K::Lines, 0, addressOfLine("int sum = a + b;"));
    ASSERT_TRUE(line.has_value());
    EXPECT_TRUE(endsWith(*line, "services_test.c:" + std::to_string(lineOf("int sum = a + b;")))) << *line;
    EXPECT_FALSE(service->symbolAt(K::Functions, 1, add).has_value());
}

TEST_F(SymbolTest, SourceLinesBothWays)
{
    const char* lines[] = {"int sum = a + b;", "return sum;", "g_depth++;", "g_counter++;", "tick();"};
    for (const char* text : lines) {
        std::vector<std::uint32_t> addresses = service->addressesOfLine("services_test.c", lineOf(text));
        ASSERT_FALSE(addresses.empty()) << text;
        EXPECT_TRUE(std::is_sorted(addresses.begin(), addresses.end()));
        for (std::uint32_t address : addresses) {
            auto back = service->sourceLineAt(address);
            ASSERT_TRUE(back.has_value()) << text;
            EXPECT_EQ(back->line, lineOf(text));
            EXPECT_TRUE(endsWith(back->file, "/tests/firmware/services/services_test.c")) << back->file;
        }
    }
    // the full path names the file too
    EXPECT_EQ(service->addressesOfLine(servicesSource(), lineOf("g_counter++;")),
              service->addressesOfLine("services_test.c", lineOf("g_counter++;")));
    EXPECT_TRUE(service->addressesOfLine("services_test.c", 3).empty());
    EXPECT_TRUE(service->addressesOfLine("nofile.c", 11).empty());
    EXPECT_FALSE(service->sourceLineAt(0x30000000).has_value());
    EXPECT_FALSE(service->sourceLineAt(0x20000000).has_value()); // data, no code
}

TEST_F(SymbolTest, FunctionsAtAddressesAndSourceFiles)
{
    EXPECT_EQ(service->functionAt(elfSymbol("twice") + 6), "twice");
    EXPECT_EQ(service->functionAt(elfSymbol("main")), "main");
    EXPECT_FALSE(service->functionAt(0x20000000).has_value());
    std::vector<std::string> files = service->sourceFiles();
    EXPECT_TRUE(std::is_sorted(files.begin(), files.end()));
    auto has = [&](const std::string& tail) {
        return std::any_of(files.begin(), files.end(), [&](const std::string& f) { return endsWith(f, tail); });
    };
    EXPECT_TRUE(has("/services/services_test.c"));
    EXPECT_TRUE(has("/examples/firmware/startup.c"));
}

} // namespace
} // namespace quillon::services
