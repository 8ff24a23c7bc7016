#include <gtest/gtest.h>

#include "CIntervalValidator.h"
#include "CLimitedScalarValidator.h"
#include "IllegalArgumentException.h"
#include "ParserException.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using kestrix_test::failureOf;

namespace {

CYAMLSequence sequenceOf(std::initializer_list<const char*> items)
{
    CYAMLSequence sequence;
    for (const char* item : items) {
        sequence.add(CYAMLScalar(item));
    }
    return sequence;
}

} // namespace

TEST(CLimitedScalarValidatorTest, AllowsIdCharactersOnly)
{
    CLimitedScalarValidator validator;
    validator.validate(CYAMLScalar("a.b-c_1:/x"), "test ID");
    validator.validate(CYAMLScalar(""), "test ID");
    EXPECT_EQ("Only subset of all characters is allowed: letters, numbers, and symbols: _-./:\n  data:\n"
              "    description: \n    invalidString: x*y+\n    forbiddenChar: '*'\n",
              failureOf<IllegalArgumentException>([&] { validator.validate(CYAMLScalar("x*y+"), ""); }));
    const std::string withNul("a\0b", 3);
    EXPECT_NE("no exception",
              failureOf<IllegalArgumentException>([&] { validator.validate(CYAMLScalar(withNul), ""); }));
    // Collections are not checked.
    validator.validate(sequenceOf({"a b"}));
}

TEST(CIntervalValidatorTest, NeedsNoneOrTwoOrderedUnsignedIntegers)
{
    CIntervalValidator validator;
    validator.validate(sequenceOf({}));
    validator.validate(sequenceOf({"5", "5"}));
    validator.validate(CYAMLScalar("123"), "min");
    const std::string twoItems = "Interval in profiler area section should have two items defined!\n  data:\n";
    EXPECT_EQ(twoItems + "    noOfItems: 1\n",
              failureOf<ParserException>([&] { validator.validate(sequenceOf({"1"})); }));
    EXPECT_EQ(twoItems + "    noOfItems: 3\n",
              failureOf<ParserException>([&] { validator.validate(sequenceOf({"1", "2", "3"})); }));
    EXPECT_EQ("Invalid profiler limits. Min time > max time!\n  data:\n    min: 10\n    max: 9\n",
              failureOf<ParserException>([&] { validator.validate(sequenceOf({"10", "9"})); }));
    EXPECT_EQ("Integer expected: x\n",
              failureOf<IllegalArgumentException>([&] { validator.validate(sequenceOf({"x", "9"})); }));
    EXPECT_EQ("Integer expected: -5\n",
              failureOf<IllegalArgumentException>([&] { validator.validate(CYAMLScalar("-5"), "min"); }));
    EXPECT_EQ("Conversion from string to 'long long' failed, because the string is empty!\n",
              failureOf<IllegalArgumentException>([&] { validator.validate(CYAMLScalar(""), "min"); }));
}
