#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <sstream>
#include <string>
#include <utility>

#include "CValueType.h"
#include "IOException.h"
#include "IllegalArgumentException.h"

using namespace kestrix;

namespace {

SValue raw(QWORD bits)
{
    SValue value;
    value.m_qwValue = bits;
    return value;
}

template <typename T>
QWORD bitsOf(T value)
{
    QWORD bits = 0;
    std::memcpy(&bits, &value, sizeof(value));
    return bits;
}

// The result of a getter as text, or "!" and the description of the IOException it raised.
template <typename F>
std::string outcome(F getter)
{
    try {
        std::ostringstream text;
        text << getter();
        return text.str();
    } catch (const IOException& e) {
        return "!" + e.getDesc();
    }
}

template <typename E, typename F>
std::string descOf(F body)
{
    try {
        body();
    } catch (const E& e) {
        EXPECT_NE(std::string(e.what()).find("  [/CValueType.cpp, "), std::string::npos) << e.what();
        return e.getDesc();
    }
    ADD_FAILURE() << "nothing thrown";
    return "";
}

struct ConversionRow {
    BYTE code;
    BYTE bits;
    QWORD raw;
    const char* asInt;
    const char* asLong;
    const char* asFloat;
    const char* asDouble;
};

const char* const kMore32 = "!Value has more than 32 bits. Use 'getLong()' instead!";
const char* const kFloatInt = "!Can not return float value from 'getInt()' method. Use 'getFloat()' instead!";
const char* const kFloatLong = "!Can not return float value from 'getLong()' method. Use 'getFloat()' instead!";

const ConversionRow kConversions[] = {
    {1, 8, 0xFF, "255", "255", "255", "255"},
    {1, 12, 0xABC, "2748", "2748", "2748", "2748"},
    {1, 16, 0xFFFF, "65535", "65535", "65535", "65535"},
    {1, 24, 0x123456, "1193046", "1193046", "1.19305e+06", "1.19305e+06"},
    {1, 32, 0xFFFFFFFF, "-1", "4294967295", "4.29497e+09", "4.29497e+09"},
    {1, 40, 0xFF00000001, kMore32, "1095216660481", "1.09522e+12", "1.09522e+12"},
    {1, 64, 0x8000000000000000, kMore32, "-9223372036854775808", "-9.22337e+18", "-9.22337e+18"},
    {1, 72, 1, kMore32, "!Bit size not supported: 72", "!Bit size not supported: 72", "!Bit size not supported: 72"},
    {2, 8, 0x80, "-128", "-128", "-128", "-128"},
    {2, 16, 0x8000, "-32768", "-32768", "-32768", "-32768"},
    {2, 24, 0x123456, "!Bit size not supported: 24", "!Bit size not supported: 24", "!Bit size not supported: 24",
     "!Bit size not supported: 24"},
    {2, 32, 0x80000000, "-2147483648", "-2147483648", "-2.14748e+09", "-2.14748e+09"},
    {2, 64, 0xFFFFFFFFFFFFFFFF, "!Value has 64 bits. Use 'getLong()' instead!", "-1", "-1", "-1"},
    {3, 32, bitsOf(1.5f), kFloatInt, kFloatLong, "1.5", "1.5"},
    {3, 64, bitsOf(2.25), kFloatInt, kFloatLong,
     "!Only 32 bit floats can be returned by 'getFloat()' method. Bit size = 64", "2.25"},
    {3, 16, 0, kFloatInt, kFloatLong, "!Only 32 bit floats can be returned by 'getFloat()' method. Bit size = 16",
     "!Invalid bit size for double: 16"},
    {4, 32, 0x1000, "!Can not return address from 'getInt()' method. Use 'getAddress()' instead!",
     "!Can not return address from 'getLong()' method. Use 'getAddress()' instead!",
     "!Can not return address from 'getFloat()' method. Use 'getAddress()' instead!",
     "!Can not return address from 'getDouble()' method. Use 'getAddress()' instead!"},
    {255, 8, 1, "!Compund data type not supported. Bit size = 8", "!Compund data type not supported. Bit size = 8",
     "!Compund data type not supported. Bit size = 8", "!Compund data type not supported. Bit size = 8"},
    {0, 32, 1, "!Unknown item type: 0", "!Unknown item type: 0", "!Unknown item type: 0", "!Unknown item type: 0"},
    {7, 8, 1, "!Unknown item type: 7", "!Unknown item type: 7", "!Unknown item type: 7", "!Unknown item type: 7"},
};

} // namespace

TEST(CValueType, GettersConvertByTypeAndBitSize)
{
    for (const ConversionRow& row : kConversions) {
        const CValueType value(SType{row.code, row.bits}, raw(row.raw), "text");
        SCOPED_TRACE("type " + std::to_string(row.code) + ", " + std::to_string(row.bits) + " bits");
        EXPECT_EQ(row.asInt, outcome([&] { return value.getInt(); }));
        EXPECT_EQ(row.asLong, outcome([&] { return value.getLong(); }));
        EXPECT_EQ(row.asFloat, outcome([&] { return value.getFloat(); }));
        EXPECT_EQ(row.asDouble, outcome([&] { return value.getDouble(); }));
        EXPECT_EQ("text", value.getResult());
    }
}

TEST(CValueType, TextOfAValueByTypeAndBitSize)
{
    const struct {
        BYTE code;
        BYTE bits;
        QWORD raw;
        const char* text;
    } rows[] = {
        {1, 8, 65, "A"},       {1, 16, 0x12345, "9029"},  {1, 32, 0x1FFFFFFFF, "4294967295"},
        {1, 40, 0xFFFFFFFFFF, "1099511627775"},           {2, 8, 0x41, "A"},     {2, 16, 0xFFFF, "-1"},
        {2, 32, 0xFFFFFFFF, "-1"},                        {2, 12, 0xFFF, "4095"}, {3, 32, bitsOf(1.0f / 3), "0.333333"},
        {3, 64, bitsOf(2.0 / 3), "0.666667"},             {4, 32, 0x1000, ""},   {255, 8, 1, ""}, {0, 8, 65, ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, CValueType(SType{row.code, row.bits}, raw(row.raw)).getResult())
            << "type " << int(row.code) << ", " << int(row.bits) << " bits";
    }
    try {
        CValueType(SType{SType::tFloat, 16}, raw(0));
        FAIL() << "a 16 bit float has no text";
    } catch (const IOException& e) {
        EXPECT_EQ("Can not convert value to string!", e.getDesc());
        EXPECT_NE(e.getData().find("type: SType.tFloat"), std::string::npos) << e.getData();
        EXPECT_NE(e.getData().find("bitSize: 16"), std::string::npos) << e.getData();
    }
}

TEST(CValueType, RefusalsCarryTheirMessages)
{
    const std::pair<std::function<void()>, const char*> rows[] = {
        {[] { CValueType(SType{SType::tFloat, 32}, 1LL); }, "Invalid type for integral value: 3"},
        {[] { CValueType(SType{SType::tAddress, 32}, 1ULL); }, "Invalid type for integral value: 4"},
        {[] { CValueType(SType{SType::tUnsigned, 65}, 1ULL); }, "Invalid bit size for integral value: 65"},
        {[] { CValueType(SType{SType::tFloat, 16}, 1.0f); }, "Invalid bit size for floats: 16"},
        {[] { CValueType(SType{SType::tFloat, 32}, 1.0); }, "Invalid bit size for doubles: 32"},
        {[] { CValueType(SType{SType::tUnsigned, 32}, CAddress()); }, "Invalid type for address: 1"},
        {[] { CValueType(BYTE(32), 5ULL).getAddress(); }, "Invalid value type. Expected address type, but it is: 1"},
        {[] { CValueType(SType{SType::tUnsigned, 65}, std::string("1")); },
         "Invalid bit size for unsigned integral value: 65"},
        {[] { CValueType(std::string("no symbol")).getInt(); }, "Compund data type not supported. Bit size = 0"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.second, descOf<IOException>(row.first));
    }
    EXPECT_EQ("Only unsigned types are supported in strings! (type.m_byType != SType::tUnsigned)",
              descOf<IllegalArgumentException>([] { CValueType(SType{SType::tSigned, 32}, std::string("1")); }));
    // The 64 bit conversion is strict and its failure passes through.
    EXPECT_THROW(CValueType(SType{SType::tUnsigned, 64}, std::string("12abc")), IllegalArgumentException);
}

// What each constructor keeps: type code, bit size, the eight raw bytes and the text.
TEST(CValueType, ConstructorsStoreTypeBitsAndText)
{
    const CAddress address{0x20001000, 3, 2, 0};
    struct Row {
        std::function<CValueType()> make;
        BYTE code;
        BYTE bits;
        QWORD stored;
        const char* text;
    } rows[] = {
        // Integers keep as many low bits as their size asks for, without sign extension.
        {[] { return CValueType(SType{SType::tSigned, 8}, -1LL); }, 2, 8, 0xFF, "-1"},
        {[] { return CValueType(SType{SType::tUnsigned, 16}, 0x1234567890ULL); }, 1, 16, 0x7890, "78187493520"},
        {[] { return CValueType(BYTE(24), -1LL); }, 2, 24, 0xFFFFFFFF, ""},
        {[] { return CValueType(BYTE(24), 0x123456ULL); }, 1, 24, 0x123456, ""},
        {[] { return CValueType(BYTE(64), 0xFEDCBA9876543210ULL); }, 1, 64, 0xFEDCBA9876543210, ""},
        {[] { return CValueType(SType{SType::tFloat, 32}, 1.5f); }, 3, 32, bitsOf(1.5f), ""},
        {[] { return CValueType(SType{SType::tFloat, 64}, 0.1f); }, 3, 64, bitsOf(static_cast<double>(0.1f)), ""},
        {[] { return CValueType(SType{SType::tFloat, 64}, 0.1); }, 3, 64, bitsOf(0.1), ""},
        // Another type code takes neither a float nor a double: the type stays, the value is zero.
        {[] { return CValueType(SType{SType::tSigned, 32}, 2.5f); }, 2, 32, 0, ""},
        {[] { return CValueType(SType{SType::tSigned, 64}, 2.5); }, 2, 64, 0, ""},
        {[] { return CValueType(2.5f); }, 3, 32, bitsOf(2.5f), ""},
        {[] { return CValueType(2.5); }, 3, 64, bitsOf(2.5), ""},
        {[&] { return CValueType(SType{SType::tAddress, 32}, address); }, 4, 32, bitsOf(address), ""},
        {[] { return CValueType(std::string("Symbol 'x' not found")); }, 255, 0, 0, "Symbol 'x' not found"},
    };
    for (const Row& row : rows) {
        const CValueType value = row.make();
        SCOPED_TRACE("row " + std::to_string(&row - rows));
        EXPECT_EQ(row.code, value.getType().m_byType);
        EXPECT_EQ(row.bits, value.getBitSize());
        EXPECT_EQ(row.stored, value.getValue().m_qwValue);
        EXPECT_EQ(row.text, value.getResult());
    }
    EXPECT_EQ(bitsOf(address), bitsOf(CValueType(SType{SType::tAddress, 32}, address).getAddress()));
    EXPECT_TRUE(CValueType(std::string("x")).isError());
    EXPECT_FALSE(CValueType(SType{SType::tCompound, 0}, raw(0), "struct").isError());
}

TEST(CValueType, UnsignedValuesParsedFromText)
{
    const struct {
        BYTE bits;
        const char* text;
        QWORD stored;
    } rows[] = {
        {12, "0x12345", 0x2345}, {8, "300", 300},   {16, "  +42", 42},   {32, " -1", 0xFFFFFFFF},
        {32, "017", 15},         {32, "abc", 0},    {32, "12abc", 12},   {16, "99999999999999999999999", 0xFFFF},
        {32, "- 5", 0},          {32, "0x1FFFFFFFF", 0xFFFFFFFF},        {64, "0xFFFFFFFFFF", 0xFFFFFFFFFF},
    };
    for (const auto& row : rows) {
        const CValueType value(SType{SType::tUnsigned, row.bits}, std::string(row.text));
        EXPECT_EQ(row.stored, value.getValue().m_qwValue) << int(row.bits) << " bits from \"" << row.text << "\"";
        EXPECT_EQ(row.text, value.getResult());
    }
}
