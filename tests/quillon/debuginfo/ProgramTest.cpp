#include "DebugInfoFixture.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quillon::debuginfo::test {
namespace {

const Function& function(const std::string& name)
{
    const Function* found = firmware().findFunction(name);
    if (found == nullptr) {
        throw std::runtime_error("no function " + name);
    }
    return *found;
}

std::string baseName(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

std::vector<std::string> names(const std::vector<const Variable*>& variables)
{
    std::vector<std::string> result;
    for (const Variable* variable : variables) {
        result.push_back(variable->name);
    }
    return result;
}

// The ELF symbol of a function or variable: the global one, or the local one of its file.
const ElfImage::Symbol* symbolOf(const std::string& name, std::size_t unit)
{
    const std::string file = baseName(firmware().units()[unit].path);
    for (const ElfImage::Symbol* symbol : firmware().elf().findSymbols(name)) {
        if (symbol->global || symbol->file == file) {
            return symbol;
        }
    }
    return nullptr;
}

struct Signature {
    const char* function;
    const char* returnType;
    std::vector<std::string> parameters; // declarations
};

TEST(Functions, ParametersInOrderWithTheirTypes)
{
    const Signature cases[] = {
        {"main", "int", {}},
        {"point_add", "struct point", {"struct point a", "struct point b"}},
        {"scale", "int64_t", {"int64_t value", "int factor"}},
        {"sum_points", "int", {"const struct point *pts", "unsigned int count"}},
        {"fill", "void", {"char *dst", "char c", "int n"}},
        {"mix", "double", {"float f", "double d", "enum color c", "struct flags fl"}},
        {"checksum", "int", {"const uint8_t *data", "int len"}},
        {"clamp_add", "int", {"int a", "int b", "int lo", "int hi"}},
        {"v5_flags_address", "struct flags *", {}},
    };
    for (const Signature& c : cases) {
        const Function& f = function(c.function);
        EXPECT_EQ(f.returnType->name(), c.returnType) << c.function;
        std::vector<std::string> parameters;
        for (const Variable& parameter : f.parameters) {
            EXPECT_TRUE(parameter.isParameter);
            parameters.push_back(parameter.type->declare(parameter.name));
        }
        EXPECT_EQ(parameters, c.parameters) << c.function;
    }
    EXPECT_EQ(function("sum_points").type->name(), "int (const struct point *, unsigned int)");
    EXPECT_EQ(function("main").type->name(), "int (void)");
    EXPECT_EQ(function("fill").findParameter("c")->type->name(), "char");
    EXPECT_EQ(function("fill").findParameter("x"), nullptr);
}

TEST(Functions, RangesAgreeWithTheElfSymbols)
{
    int checked = 0;
    for (const Function& f : firmware().functions()) {
        const ElfImage::Symbol* symbol = symbolOf(f.name, f.unit);
        ASSERT_NE(symbol, nullptr) << f.name;
        EXPECT_EQ(f.entry, symbol->address) << f.name;
        EXPECT_EQ(f.extent().low, symbol->address) << f.name;
        EXPECT_EQ(f.extent().high, symbol->address + symbol->size) << f.name;
        ++checked;
    }
    EXPECT_GE(checked, 20);
}

TEST(Functions, DeclaredWhereTheSourceSaysAndExternalUnlessStatic)
{
    const Function& sum = function("sum_points");
    EXPECT_EQ(sum.declFile, sourcePath("functions.c"));
    EXPECT_EQ(sum.declLine, markerLine("functions.c", "int sum_points("));
    EXPECT_TRUE(sum.isExternal);
    EXPECT_EQ(firmware().units()[sum.unit].path, sourcePath("functions.c"));
    EXPECT_FALSE(function("add").isExternal);
}

TEST(Functions, StaticFunctionsOfTheSameNameInTwoFiles)
{
    const std::vector<const Function*> bumps = firmware().findFunctions("bump");
    ASSERT_EQ(bumps.size(), 2u);
    EXPECT_NE(bumps[0]->unit, bumps[1]->unit);
    for (const Function* bump : bumps) {
        EXPECT_EQ(firmware().findFunction("bump", bump->unit), bump);
        EXPECT_FALSE(bump->isExternal);
    }
    const auto unitB = firmware().findUnit("counter_b.c");
    ASSERT_TRUE(unitB.has_value());
    EXPECT_EQ(baseName(firmware().findFunction("bump", unitB)->declFile), "counter_b.c");
}

TEST(Functions, FunctionAtAddress)
{
    const Function& sum = function("sum_points");
    EXPECT_EQ(firmware().functionAt(sum.entry), &sum);
    EXPECT_EQ(firmware().functionAt(sum.extent().high - 1), &sum);
    EXPECT_NE(firmware().functionAt(sum.extent().high), &sum);
    EXPECT_EQ(firmware().functionAt(4), nullptr); // the vector table
    EXPECT_EQ(firmware().functionAt(0x20000000), nullptr);
    EXPECT_EQ(firmware().unitAt(sum.entry), sum.unit);
    EXPECT_EQ(firmware().unitAt(0x20000000), std::nullopt);
}

TEST(Functions, WhatTheLinkerDroppedIsNotThere)
{
    // Unreferenced: its DWARF remains, relocated to address 0, where the vector table is.
    EXPECT_EQ(firmware().findFunction("unused_function"), nullptr);
    EXPECT_EQ(firmware().findGlobal("g_unused"), nullptr);
    EXPECT_TRUE(firmware().lines().addresses("functions.c", markerLine("functions.c", "return x + g_unused")).empty());
    EXPECT_NE(firmware().findGlobal("vector_table"), nullptr); // what is really at 0 stays
}

TEST(Scopes, LocalsOfNestedBlocksInnermostFirstThenParameters)
{
    const Function& sum = function("sum_points");
    const std::vector<std::uint32_t> loopBody =
        firmware().lines().addresses("functions.c", markerLine("functions.c", "@accumulate"));
    ASSERT_FALSE(loopBody.empty());
    EXPECT_EQ(names(sum.visibleAt(loopBody.front())),
              (std::vector<std::string>{"dx", "i", "calls", "total", "pts", "count"}));
    // Before the loop, its variables are out of scope.
    EXPECT_EQ(names(sum.visibleAt(firmware().breakpointAddress(sum))),
              (std::vector<std::string>{"calls", "total", "pts", "count"}));
    EXPECT_EQ(sum.findVisible("count", loopBody.front()), sum.findParameter("count"));
    EXPECT_EQ(sum.findVisible("dx", sum.entry), nullptr);
}

TEST(Scopes, AFunctionLocalStaticHasItsSymbolsAddress)
{
    const Function& sum = function("sum_points");
    const Variable* calls = sum.findVisible("calls", sum.entry);
    ASSERT_NE(calls, nullptr);
    ASSERT_TRUE(calls->address.has_value());
    const ElfImage::Symbol* symbol = firmware().elf().findSymbol("calls.0"); // GCC's name for it
    ASSERT_NE(symbol, nullptr);
    EXPECT_EQ(*calls->address, symbol->address);
}

TEST(Globals, AddressesAndSizesAgreeWithTheElfSymbols)
{
    int checked = 0;
    for (const Variable& global : firmware().globals()) {
        ASSERT_TRUE(global.address.has_value()) << global.name;
        const ElfImage::Symbol* symbol = symbolOf(global.name, global.unit);
        ASSERT_NE(symbol, nullptr) << global.name;
        EXPECT_EQ(*global.address, symbol->address) << global.name;
        EXPECT_EQ(global.type->size(), symbol->size) << global.name << " : " << global.type->name();
        ++checked;
    }
    EXPECT_GE(checked, 50);
}

TEST(Globals, FileStaticsOfTheSameNameAreToldApart)
{
    const std::vector<const Variable*> counts = firmware().findGlobals("count");
    ASSERT_EQ(counts.size(), 2u);
    const Variable* a = firmware().findGlobal("counter_a.c", "count");
    const Variable* b = firmware().findGlobal("tests/firmware/debuginfo/counter_b.c", "count");
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);
    EXPECT_NE(a->address, b->address);
    EXPECT_FALSE(a->isExternal);
    EXPECT_EQ(firmware().findGlobal("count", a->unit), a);
    EXPECT_EQ(firmware().findGlobal("count", b->unit), b);
    EXPECT_EQ(firmware().findGlobal("counter_c.c", "count"), nullptr);
    EXPECT_EQ(firmware().findGlobal("ounter_a.c", "count"), nullptr);

    // counter_b.c's count starts at 100 (.data); counter_a.c's is in .bss.
    const ElfImage::Segment& data = firmware().elf().segments().at(1);
    const std::uint32_t offset = *b->address - data.virtualAddress;
    EXPECT_EQ(data.bytes.at(offset), 100);
    EXPECT_GE(*a->address, firmware().elf().findSymbol("_sbss")->address);
}

TEST(Globals, GlobalAtAddress)
{
    const Variable* shape = firmware().findGlobal("g_shape");
    EXPECT_EQ(firmware().globalAt(*shape->address + 20), shape);
    EXPECT_EQ(firmware().globalAt(*shape->address + 88), firmware().findGlobal("g_cursor"));
    EXPECT_EQ(firmware().globalAt(*firmware().findGlobal("g_char")->address)->name, "g_char");
    EXPECT_EQ(firmware().globalAt(0x30000000), nullptr);
    // A global is located at its address in any frame.
    const Location location = firmware().locate(*shape, nullptr, 0, FakeFrame());
    ASSERT_EQ(location.kind(), Location::Kind::Memory);
    EXPECT_EQ(location.address(), *shape->address);
}

TEST(Units, FoundByFileAndByAddress)
{
    const auto unit = firmware().findUnit("debuginfo/counter_a.c");
    ASSERT_TRUE(unit.has_value());
    EXPECT_EQ(firmware().units()[*unit].path, sourcePath("counter_a.c"));
    EXPECT_EQ(firmware().unitAt(function("counter_a_next").entry), unit);
    EXPECT_FALSE(firmware().findUnit("nter_a.c").has_value());
    EXPECT_FALSE(firmware().units()[*unit].hasLocationLists);
    EXPECT_TRUE(firmware().units()[function("checksum").unit].hasLocationLists);
}

} // namespace
} // namespace quillon::debuginfo::test
