// C type texts against the firmware's DWARF, with the base types the DWARF lacks.
#include "ExprFixture.h"

#include "expr/TypeTextParser.h"

namespace quillon::expr::test {
namespace {

TEST(TypeTextTest, ReadsNamesPointersArraysAndQualifiers)
{
    struct Case {
        const char* text;
        const char* name;
        std::uint64_t size;
        debuginfo::Type::Kind kind;
    };
    using K = debuginfo::Type::Kind;
    const std::vector<Case> cases = {
        {"int", "int", 4, K::Base},
        {"unsigned char", "unsigned char", 1, K::Base},
        {"unsigned", "unsigned int", 4, K::Base},
        {"long long unsigned", "long long unsigned int", 8, K::Base},
        {"short", "short int", 2, K::Base},
        {"char[16]", "char[16]", 16, K::Array},
        {"int[2][3]", "int[2][3]", 24, K::Array},
        {"struct point", "struct point", 8, K::Struct},
        {"union number", "union number", 4, K::Union},
        {"enum color", "enum color", 1, K::Enum},
        {"ring_t *", "ring_t *", 4, K::Pointer},
        {"ring_t", "ring_t", 18, K::Typedef},
        {"const uint8_t *", "const uint8_t *", 4, K::Pointer},
        {"uint8_t const*", "const uint8_t *", 4, K::Pointer},
        {"char *[4]", "char *[4]", 16, K::Array},
        {"struct point **", "struct point **", 4, K::Pointer},
        {"volatile int", "volatile int", 4, K::Volatile},
        {"  struct   record  ", "struct record", 52, K::Struct},
        {"double", "double", 8, K::Base},
        {"long double", "long double", 8, K::Base},
        {"void *", "void *", 4, K::Pointer},
        {"binary_fn", "binary_fn", 4, K::Typedef},
    };
    TypeTextParser parser(firmware().types());
    for (const Case& c : cases) {
        const debuginfo::Type* type = parser.parse(c.text);
        ASSERT_NE(type, nullptr) << c.text;
        EXPECT_EQ(type->name(), c.name) << c.text;
        EXPECT_EQ(type->size(), c.size) << c.text;
        EXPECT_EQ(type->kind(), c.kind) << c.text;
    }
    EXPECT_EQ(parser.parse("struct point *")->target(), parser.parse("struct point"));
    EXPECT_EQ(parser.parse("ring_t")->stripTypedefs(), firmware().findType("struct ring"));
}

TEST(TypeTextTest, UnknownTypesAndBadTextsAreErrors)
{
    struct Case {
        const char* text;
        const char* message;
    };
    const std::vector<Case> cases = {
        {"struct nosuch", "unknown type 'struct nosuch' (column 1)"},
        {"nosuch_t", "unknown type 'nosuch_t' (column 1)"},
        {"g_point", "unknown type 'g_point' (column 1)"},
        {"long char", "unknown type 'long char' (column 1)"},
        {"", "type name expected (column 1)"},
        {"*", "type name expected (column 1)"},
        {"int[", "array size expected (column 5)"},
        {"int x", "unexpected 'x' in type 'int x' (column 5)"},
        {"char[16", "']' expected (column 8)"},
    };
    TypeTextParser parser(firmware().types());
    for (const Case& c : cases) {
        try {
            parser.parse(c.text);
            ADD_FAILURE() << c.text << " gave no error";
        } catch (const ExprError& error) {
            EXPECT_EQ(std::string(error.what()), c.message) << c.text;
        }
    }
}

} // namespace
} // namespace quillon::expr::test
