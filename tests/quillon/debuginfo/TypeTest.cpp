#include "DebugInfoFixture.h"

#include "debuginfo/TypeTable.h"

#include <gtest/gtest.h>

namespace quillon::debuginfo::test {
namespace {

using Encoding = Type::Encoding;
using Kind = Type::Kind;

const Type* typeOf(const std::string& global)
{
    const Variable* variable = firmware().findGlobal(global);
    EXPECT_NE(variable, nullptr) << global;
    return variable ? variable->type : nullptr;
}

const Type* named(const std::string& text)
{
    const Type* type = firmware().findType(text);
    EXPECT_NE(type, nullptr) << text;
    return type;
}

struct BaseCase {
    const char* global;
    const char* name;
    std::uint64_t size;
    Encoding encoding;
};

// ARM EABI: plain char is unsigned, long is 32 bits, long double is a double.
const BaseCase baseCases[] = {
    {"g_char", "char", 1, Encoding::UnsignedChar},
    {"g_schar", "signed char", 1, Encoding::SignedChar},
    {"g_uchar", "unsigned char", 1, Encoding::UnsignedChar},
    {"g_short", "short int", 2, Encoding::Signed},
    {"g_ushort", "short unsigned int", 2, Encoding::Unsigned},
    {"g_int", "int", 4, Encoding::Signed},
    {"g_uint", "unsigned int", 4, Encoding::Unsigned},
    {"g_long", "long int", 4, Encoding::Signed},
    {"g_ulong", "long unsigned int", 4, Encoding::Unsigned},
    {"g_llong", "long long int", 8, Encoding::Signed},
    {"g_ullong", "long long unsigned int", 8, Encoding::Unsigned},
    {"g_float", "float", 4, Encoding::Float},
    {"g_double", "double", 8, Encoding::Float},
    {"g_ldouble", "long double", 8, Encoding::Float},
    {"g_bool", "_Bool", 1, Encoding::Bool},
};

TEST(Types, BaseTypesOfEachSize)
{
    for (const BaseCase& c : baseCases) {
        const Type* type = typeOf(c.global);
        ASSERT_NE(type, nullptr);
        EXPECT_EQ(type->kind(), Kind::Base) << c.global;
        EXPECT_EQ(type->name(), c.name) << c.global;
        EXPECT_EQ(type->size(), c.size) << c.global;
        EXPECT_EQ(type->encoding(), c.encoding) << c.global;
        EXPECT_EQ(type->isFloat(), c.encoding == Encoding::Float) << c.global;
        EXPECT_EQ(type->isInteger(), c.encoding != Encoding::Float) << c.global;
    }
}

struct EnumCase {
    const char* global;
    const char* name;
    std::uint64_t size;
    bool isSigned;
    const char* enumerator;
    std::int64_t value;
};

TEST(Types, ShortEnumsTakeTheSmallestSizeAndKeepTheirSign)
{
    const EnumCase cases[] = {
        {"g_color", "enum color", 1, false, "COLOR_BLUE", 200},
        {"g_delta", "enum delta", 1, true, "DELTA_DOWN", -1},
        {"g_wide", "enum wide", 4, false, "WIDE_BIG", 0x12345},
    };
    for (const EnumCase& c : cases) {
        const Type* type = typeOf(c.global);
        ASSERT_NE(type, nullptr);
        EXPECT_EQ(type->kind(), Kind::Enum);
        EXPECT_EQ(type->name(), c.name);
        EXPECT_EQ(type->size(), c.size) << c.name;
        EXPECT_EQ(type->isSigned(), c.isSigned) << c.name;
        EXPECT_TRUE(type->isInteger());
        const Type::Enumerator* enumerator = type->findEnumerator(c.enumerator);
        ASSERT_NE(enumerator, nullptr) << c.enumerator;
        EXPECT_EQ(enumerator->value, c.value) << c.enumerator;
        EXPECT_EQ(type->findEnumerator(c.value), enumerator);
    }
    const std::vector<Type::Enumerator>& colors = named("enum color")->enumerators();
    ASSERT_EQ(colors.size(), 3u);
    EXPECT_EQ(colors[0].name, "COLOR_RED");
    EXPECT_EQ(colors[1].value, 5);
}

struct MemberCase {
    const char* type;
    const char* member;
    std::uint64_t offset;
    const char* memberType;
};

TEST(Types, MembersOfStructsAndUnionsAtTheirOffsets)
{
    const MemberCase cases[] = {
        {"struct point", "y", 2, "int16_t"},
        {"struct segment", "to", 4, "struct point"},
        {"struct shape", "name", 0, "char[16]"},
        {"struct shape", "edges", 16, "struct segment[3]"},
        {"struct shape", "grid", 40, "int32_t[2][3]"},
        {"struct shape", "color", 64, "enum color"},
        {"struct shape", "flags", 68, "struct flags"},
        {"struct shape", "value", 72, "union number"}, // the union holds a double: 8-aligned
        {"struct shape", "parent", 80, "const struct shape *"},
        {"union number", "d", 0, "double"},
        {"union number", "bytes", 0, "uint8_t[8]"},
        {"struct node", "prev", 8, "struct node *"},
        {"struct message", "payload", 2, "uint8_t[]"},
        // Members of the anonymous union of struct packet, found through it.
        {"struct packet", "word", 4, "uint32_t"},
        {"struct packet", "raw", 4, "uint8_t[4]"},
    };
    for (const MemberCase& c : cases) {
        const Type* type = named(c.type);
        ASSERT_NE(type, nullptr);
        auto member = type->findMember(c.member);
        ASSERT_TRUE(member.has_value()) << c.type << "." << c.member;
        EXPECT_EQ(member->offset, c.offset) << c.type << "." << c.member;
        EXPECT_EQ(member->type->name(), c.memberType) << c.type << "." << c.member;
        EXPECT_FALSE(member->isBitField());
    }
    EXPECT_FALSE(named("struct point")->findMember("z").has_value());
}

TEST(Types, AggregateSizes)
{
    const std::pair<const char*, std::uint64_t> cases[] = {
        {"struct point", 4}, {"struct segment", 8}, {"union number", 8}, {"struct shape", 88},
        {"struct node", 12}, {"struct packet", 8},  {"struct message", 2}, // the flexible member adds nothing
    };
    for (const auto& [text, size] : cases) {
        EXPECT_EQ(named(text)->size(), size) << text;
    }
}

struct BitFieldCase {
    const char* member;
    std::uint64_t offset;
    unsigned bitOffset;
    unsigned bitSize;
};

void expectBitFields(const Type* type, const std::vector<BitFieldCase>& cases)
{
    ASSERT_NE(type, nullptr);
    for (const BitFieldCase& c : cases) {
        auto member = type->findMember(c.member);
        ASSERT_TRUE(member.has_value()) << c.member;
        EXPECT_EQ(member->offset, c.offset) << type->name() << "." << c.member;
        EXPECT_EQ(member->bitOffset, c.bitOffset) << type->name() << "." << c.member;
        EXPECT_EQ(member->bitSize, c.bitSize) << type->name() << "." << c.member;
    }
}

// AAPCS little-endian: bit fields fill their container from bit 0 up; one that does not fit in
// the rest of its container ('mid') starts the next one.
const std::vector<BitFieldCase> flagsLayout = {
    {"ready", 0, 0, 1}, {"mode", 0, 1, 3}, {"level", 0, 4, 4}, {"count", 1, 0, 12}, {"tail", 3, 0, 0}};
const std::vector<BitFieldCase> packedLayout = {{"lo", 0, 0, 4}, {"hi", 0, 4, 4}, {"mid", 2, 0, 9}, {"top", 3, 1, 7}};

TEST(Types, BitFieldsOfDwarf4And5)
{
    // DWARF 4 has DW_AT_bit_offset and DW_AT_byte_size, DWARF 5 DW_AT_data_bit_offset.
    for (auto [version, flags, packed] : {std::tuple{4u, "g_flags", "g_packed"}, std::tuple{5u, "v5_flags", "v5_packed"}}) {
        const Variable* variable = firmware().findGlobal(flags);
        ASSERT_EQ(firmware().units()[variable->unit].version, version);
        expectBitFields(variable->type, flagsLayout);
        expectBitFields(typeOf(packed), packedLayout);
        EXPECT_TRUE(variable->type->findMember("level")->type->isSigned());
    }
}

TEST(Types, TypedefChainsLeadToTheirBaseType)
{
    const Type* timeout = typeOf("g_timeout");
    ASSERT_EQ(timeout->kind(), Kind::Typedef);
    EXPECT_EQ(timeout->name(), "timeout_t");
    EXPECT_EQ(timeout->target()->name(), "tick_t");
    EXPECT_EQ(timeout->target()->target()->name(), "uint32_t");
    const Type* base = timeout->stripTypedefs();
    EXPECT_EQ(base->name(), "long unsigned int");
    EXPECT_EQ(timeout->size(), 4u);
    EXPECT_TRUE(timeout->isInteger());
    EXPECT_FALSE(timeout->isSigned());

    const Type* cursor = typeOf("g_cursor");
    EXPECT_EQ(cursor->name(), "node_ptr");
    EXPECT_TRUE(cursor->isPointer());
    EXPECT_EQ(cursor->stripTypedefs()->target()->name(), "node_t");
    EXPECT_EQ(cursor->stripTypedefs()->target()->stripTypedefs(), named("struct node"));
}

TEST(Types, ASelfReferencingStructIsOneObject)
{
    const Type* node = typeOf("g_head")->stripTypedefs();
    ASSERT_EQ(node->kind(), Kind::Struct);
    const Type* next = node->findMember("next")->type;
    ASSERT_EQ(next->kind(), Kind::Pointer);
    EXPECT_EQ(next->target(), node);
    EXPECT_EQ(next->target()->findMember("next")->type, next);
}

struct NameCase {
    const char* global;
    const char* name;
    const char* declaration;
};

TEST(Types, CTypeTexts)
{
    const NameCase cases[] = {
        {"g_limit", "const int", "const int g_limit"},
        {"g_volatile", "volatile uint32_t", "volatile uint32_t g_volatile"},
        {"g_banner", "const char *const", "const char *const g_banner"},
        {"g_status_reg", "const volatile uint16_t *", "const volatile uint16_t *g_status_reg"},
        {"g_argv_like", "char *const *", "char *const *g_argv_like"},
        {"g_keep", "const volatile void *[42]", "const volatile void *g_keep[42]"},
        {"vector_table", "const void *const[2]", "const void *const vector_table[2]"},
        {"g_handler", "int (*)(int, int)", "int (*g_handler)(int, int)"},
        {"g_ops", "binary_op[2]", "binary_op g_ops[2]"},
        {"g_callback", "void (*)(void)", "void (*g_callback)(void)"},
        {"g_printf_like", "int (*)(const char *, ...)", "int (*g_printf_like)(const char *, ...)"},
        {"g_row", "char (*)[16]", "char (*g_row)[16]"},
        {"g_grid_row", "int32_t (*)[3]", "int32_t (*g_grid_row)[3]"},
        {"g_nodes", "struct node[3]", "struct node g_nodes[3]"},
        {"g_message", "struct message *", "struct message *g_message"},
    };
    for (const NameCase& c : cases) {
        const Type* type = typeOf(c.global);
        ASSERT_NE(type, nullptr);
        EXPECT_EQ(type->name(), c.name) << c.global;
        EXPECT_EQ(type->declare(c.global), c.declaration) << c.global;
    }
}

TEST(Types, QualifiersReadThroughTypedefs)
{
    EXPECT_TRUE(typeOf("g_limit")->isConst());
    EXPECT_TRUE(typeOf("g_limit")->isInteger());
    EXPECT_TRUE(typeOf("g_volatile")->isVolatile());
    EXPECT_FALSE(typeOf("g_volatile")->isConst());
    const Type* banner = typeOf("g_banner");
    EXPECT_TRUE(banner->isConst());
    EXPECT_TRUE(banner->isPointer());
    EXPECT_TRUE(banner->unqualified()->target()->isConst());
    EXPECT_FALSE(typeOf("g_status_reg")->isConst()); // the pointee is, the pointer is not
}

TEST(Types, FunctionPointersCarryTheirPrototype)
{
    const Type* op = named("binary_op")->stripTypedefs();
    ASSERT_EQ(op->kind(), Kind::Pointer);
    const Type* function = op->target();
    ASSERT_EQ(function->kind(), Kind::Function);
    EXPECT_EQ(function->target()->name(), "int");
    ASSERT_EQ(function->parameters().size(), 2u);
    EXPECT_EQ(function->parameters()[1]->name(), "int");
    EXPECT_FALSE(function->isVariadic());
    EXPECT_TRUE(typeOf("g_printf_like")->target()->isVariadic());
    EXPECT_TRUE(op->isScalar());
}

TEST(Types, MultiDimensionalArraysAreArraysOfArrays)
{
    const Type* grid = named("struct shape")->findMember("grid")->type;
    ASSERT_EQ(grid->kind(), Kind::Array);
    EXPECT_EQ(grid->count(), 2u);
    EXPECT_EQ(grid->size(), 24u);
    const Type* row = grid->target();
    ASSERT_EQ(row->kind(), Kind::Array);
    EXPECT_EQ(row->count(), 3u);
    EXPECT_EQ(row->size(), 12u);
    EXPECT_EQ(row->target()->name(), "int32_t");

    const Type* payload = named("struct message")->findMember("payload")->type;
    EXPECT_FALSE(payload->count().has_value());
    EXPECT_EQ(payload->size(), 0u);
}

TEST(Types, NamedTypesFromCTypeTexts)
{
    const std::pair<const char*, const char*> cases[] = {
        {"int", "int"},
        {"unsigned", "unsigned int"},
        {"signed", "int"},
        {"unsigned long long", "long long unsigned int"},
        {"long long unsigned", "long long unsigned int"},
        {"unsigned short int", "short unsigned int"},
        {"long", "long int"},
        {"signed char", "signed char"},
        {"long double", "long double"},
        {"double long", "long double"},
        {"long int signed", "long int"},
        {"  struct   point ", "struct point"},
        {"union number", "union number"},
        {"enum color", "enum color"},
        {"tick_t", "tick_t"},
        {"node_t", "node_t"},
        {"void", "void"},
    };
    for (const auto& [text, name] : cases) {
        const Type* type = firmware().findType(text);
        ASSERT_NE(type, nullptr) << text;
        EXPECT_EQ(type->name(), name) << text;
    }
    for (const char* text : {"struct nosuch", "nosuch_t", "unsigned float", "struct", "short long", "int int",
                             "long long long", "signed unsigned", "short char", "_Bool int", "enum point",
                             "struct point extra", ""}) {
        EXPECT_EQ(firmware().findType(text), nullptr) << text;
    }
}

TEST(Types, LookupsPreferTheCurrentUnit)
{
    const Variable* dwarf4 = firmware().findGlobal("g_flags");
    const Variable* dwarf5 = firmware().findGlobal("v5_flags");
    ASSERT_NE(dwarf4->type, dwarf5->type); // one type object per DWARF entry, each unit has its own
    EXPECT_EQ(firmware().findType("struct flags", dwarf4->unit), dwarf4->type);
    EXPECT_EQ(firmware().findType("struct flags", dwarf5->unit), dwarf5->type);
}

TEST(TypeTable, StandardBaseTypesWithoutDwarfHaveEabiSizes)
{
    TypeTable table;
    table.completeBaseTypes();
    EXPECT_EQ(table.find("unsigned long long")->size(), 8u);
    EXPECT_EQ(table.find("long")->size(), 4u);
    EXPECT_EQ(table.find("char")->encoding(), Encoding::UnsignedChar);
    EXPECT_EQ(table.find("double")->encoding(), Encoding::Float);
    EXPECT_EQ(table.find("struct point"), nullptr);
}

TEST(TypeTable, DerivedTypesAreMadeOnceAndNamed)
{
    TypeTable& types = firmware().types();
    const Type* integer = named("int");
    const Type* pointer = types.pointerTo(integer);
    EXPECT_EQ(types.pointerTo(integer), pointer);
    EXPECT_EQ(pointer->name(), "int *");
    EXPECT_EQ(pointer->size(), 4u);
    const Type* points = types.arrayOf(named("struct point"), 4);
    EXPECT_EQ(points->name(), "struct point[4]");
    EXPECT_EQ(points->size(), 16u);
    EXPECT_NE(types.arrayOf(named("struct point"), std::nullopt), points);
    EXPECT_EQ(types.arrayOf(named("struct point"), std::nullopt)->name(), "struct point[]");
    EXPECT_EQ(types.qualified(integer, Kind::Const)->name(), "const int");
    EXPECT_EQ(types.pointerTo(types.arrayOf(named("char"), 16))->name(), "char (*)[16]");
    EXPECT_EQ(types.pointerTo(typeOf("g_handler"))->name(), "int (**)(int, int)");
}

TEST(TypeNames, DeclaratorsReadInsideOut)
{
    TypeTable table;
    table.completeBaseTypes();
    const Type* integer = table.find("int");
    const Type* character = table.find("char");
    Type* function = table.create(Kind::Function, "", 0);
    function->setTarget(integer);
    const Type* pointerToFunction = table.pointerTo(function);
    EXPECT_EQ(table.arrayOf(pointerToFunction, 4)->name(), "int (*[4])(void)");

    // A function of int returning a pointer to char[8], and a pointer to it.
    Type* returnsRow = table.create(Kind::Function, "", 0);
    returnsRow->setTarget(table.pointerTo(table.arrayOf(character, 8)));
    returnsRow->addParameter(integer);
    EXPECT_EQ(table.pointerTo(returnsRow)->name(), "char (*(*)(int))[8]");
    EXPECT_EQ(returnsRow->declare("f"), "char (*f(int))[8]");

    Type* oldStyle = table.create(Kind::Function, "", 0);
    oldStyle->setTarget(integer);
    oldStyle->setPrototyped(false);
    EXPECT_EQ(oldStyle->name(), "int ()");

    const Type* anonymous = table.create(Kind::Struct, "", 4);
    EXPECT_EQ(table.pointerTo(anonymous)->name(), "struct {...} *");
    EXPECT_EQ(table.pointerTo(table.pointerTo(table.qualified(character, Kind::Const)))->name(), "const char **");
    EXPECT_EQ(table.qualified(table.qualified(integer, Kind::Volatile), Kind::Const)->name(), "const volatile int");
}

} // namespace
} // namespace quillon::debuginfo::test
