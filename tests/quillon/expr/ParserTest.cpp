// The shape of parsed expressions: precedence, associativity, postfix chains, casts, formats.
#include "ExprFixture.h"

#include "expr/Parser.h"

namespace quillon::expr::test {
namespace {

/// The tree in prefix form: (op left right), names and literals as written.
std::string shape(const Node& node)
{
    auto children = [&](const std::string& head) {
        std::string text = "(" + head;
        for (const auto& child : node.children) {
            text += " " + shape(*child);
        }
        return text + ")";
    };
    switch (node.kind) {
    case Node::Kind::Integer:
    case Node::Kind::Floating:
    case Node::Kind::Character:
        return node.token.text;
    case Node::Kind::String:
        return "\"" + node.token.text + "\"";
    case Node::Kind::Name:
        return node.name;
    case Node::Kind::Register:
        return "@" + node.name;
    case Node::Kind::Member:
        return children("." + node.name);
    case Node::Kind::Arrow:
        return children("->" + node.name);
    case Node::Kind::Index:
        return children("[]");
    case Node::Kind::Call:
        return children("call");
    case Node::Kind::PreIncrement:
        return children("pre" + node.op);
    case Node::Kind::PostIncrement:
        return children("post" + node.op);
    case Node::Kind::Cast:
        return children("cast " + node.type->name());
    case Node::Kind::SizeofType:
        return "(sizeof " + node.type->name() + ")";
    case Node::Kind::SizeofValue:
        return children("sizeof");
    case Node::Kind::LogicalAnd:
    case Node::Kind::LogicalOr:
    case Node::Kind::Unary:
    case Node::Kind::Binary:
    case Node::Kind::Assign:
        return children(node.op);
    case Node::Kind::Conditional:
        return children("?:");
    }
    return "?";
}

class ParserTest : public ::testing::Test {
protected:
    std::string parse(const std::string& text, std::string* format = nullptr)
    {
        TypeTextParser types(firmware().types());
        Parser parser(types);
        ParsedExpression parsed = parser.parse(text);
        if (format) {
            *format = parsed.format;
        }
        return shape(*parsed.root);
    }
};

TEST_F(ParserTest, PrecedenceAndAssociativity)
{
    struct Case {
        const char* text;
        const char* shape;
    };
    const std::vector<Case> cases = {
        {"a + b * c", "(+ a (* b c))"},
        {"a - b - c", "(- (- a b) c)"},
        {"a = b = c", "(= a (= b c))"},
        {"a += b * 2", "(+= a (* b 2))"},
        {"a || b && c | d ^ e & f", "(|| a (&& b (| c (^ d (& e f)))))"},
        {"a == b < c", "(== a (< b c))"},
        {"a << b + c", "(<< a (+ b c))"},
        {"a ? b : c ? d : e", "(?: a b (?: c d e))"},
        {"-a * !b", "(* (- a) (! b))"},
        {"*p++", "(* (post++ p))"},
        {"++*p", "(pre++ (* p))"},
        {"&s.a[1]->b", "(& (->b ([] (.a s) 1)))"},
        {"f(a, b + 1)(c)", "(call (call f a (+ b 1)) c)"},
        {"f()", "(call f)"},
        {"(int)a + b", "(+ (cast int a) b)"},
        {"(struct point *)p->x", "(cast struct point * (->x p))"},
        {"(uint8_t)-1", "(cast uint8_t (- 1))"},
        {"(a)+b", "(+ a b)"},
        {"sizeof a + 1", "(+ (sizeof a) 1)"},
        {"sizeof(int[4])", "(sizeof int[4])"},
        {"sizeof (a)", "(sizeof a)"},
        {"@r0 + 'x'", "(+ @r0 'x')"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(parse(c.text), c.shape) << c.text;
    }
}

TEST_F(ParserTest, DisplayFormatBehindTheLastComma)
{
    std::string format;
    EXPECT_EQ(parse("a + 1,h", &format), "(+ a 1)");
    EXPECT_EQ(format, "h");
    EXPECT_EQ(parse("f(a, b),x", &format), "(call f a b)");
    EXPECT_EQ(format, "x");
    EXPECT_EQ(parse("a", &format), "a");
    EXPECT_EQ(format, "");
}

TEST_F(ParserTest, ErrorsNameTheTokenThatDoesNotFit)
{
    struct Case {
        const char* text;
        const char* message;
    };
    const std::vector<Case> cases = {
        {"a +", "unexpected end of expression (column 4)"},
        {"a b", "unexpected 'b' (column 3)"},
        {"(a", "')' expected at the end (column 3)"},
        {"a[1", "']' expected at the end (column 4)"},
        {"f(a b)", "')' expected instead of 'b' (column 5)"},
        {"a ? b", "':' expected at the end (column 6)"},
        {"a.", "member name expected after '.' (column 3)"},
        {"a->1", "member name expected after '->' (column 4)"},
        {"a,", "display format expected after ',' (column 2)"},
        {"a, b c", "unexpected 'c' (column 6)"},
        {")", "unexpected ')' (column 1)"},
        {"(int", "')' expected at the end (column 5)"},
        {"(struct)a", "name expected after 'struct' (column 8)"},
        {"(int[x])a", "array size expected (column 6)"},
    };
    for (const Case& c : cases) {
        try {
            parse(c.text);
            ADD_FAILURE() << c.text << " gave no error";
        } catch (const ExprError& error) {
            EXPECT_EQ(std::string(error.what()), c.message) << c.text;
        }
    }
}

} // namespace
} // namespace quillon::expr::test
