#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <sstream>
#include <string>

#include "CValueType.h"
#include "IOException.h"
#include "IllegalArgumentException.h"

using namespace kestrix;

namespace {

SType typeOf(int code, int bits)
{
    SType type;
    type.m_byType = static_cast<BYTE>(code);
    type.m_byBitSize = static_cast<BYTE>(bits);
    return type;
}

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
    int code;
    int bits;
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
        const CValueType value(typeOf(row.code, row.bits), raw(row.raw), "text");
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
    struct Row {
        int code;
        int bits;
        QWORD raw;
        const char* text;
    } rows[] = {
        {1, 8, 65, "A"},          {1, 16, 0x12345, "9029"},    {1, 32, 0x1FFFFFFFF, "4294967295"},
        {1, 40, 0xFFFFFFFFFF, "1099511627775"},                {2, 8, 0x41, "A"},
        {2, 16, 0xFFFF, "-1"},    {2, 32, 0xFFFFFFFF, "-1"},   {2, 12, 0xFFF, "4095"},
        {3, 32, bitsOf(1.0f / 3), "0.333333"},                 {3, 64, bitsOf(2.0 / 3), "0.666667"},
        {4, 32, 0x1000, ""},      {255, 8, 1, ""},             {0, 8, 65, ""},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.text, CValueType(typeOf(row.code, row.bits), raw(row.raw)).getResult())
            << "type " << row.code << ", " << row.bits << " bits";
    }
    try {
        CValueType(typeOf(SType::tFloat, 16), raw(0));
        FAIL() << "a 16 bit float has no text";
    } catch (const IOException& e) {
        EXPECT_EQ("Can not convert value to string!", e.getDesc());
        EXPECT_NE(e.getData().find("type: SType.tFloat"), std::string::npos) << e.getData();
        EXPECT_NE(e.getData().find("bitSize: 16"), std::string::npos) << e.getData();
    }
}

TEST(CValueType, IntegersAreStoredBySizeWithoutSignExtension)
{
    const CValueType byteFromSigned(typeOf(SType::tSigned, 8), -1LL);
    EXPECT_EQ(0xFFu, byteFromSigned.getValue().m_qwValue);
    EXPECT_EQ("-1", byteFromSigned.getResult());
    EXPECT_EQ(-1, byteFromSigned.getInt());

    const CValueType truncated(typeOf(SType::tUnsigned, 16), 0x1234567890ULL);
    EXPECT_EQ(0x7890u, truncated.getValue().m_qwValue);
    EXPECT_EQ("78187493520", truncated.getResult());

    const CValueType a(typeOf(SType::tUnsigned, 8), 65ULL);
    EXPECT_EQ("65", a.getResult());

    const CValueType signed24(BYTE(24), -1LL);
    EXPECT_TRUE(signed24.isTypeSigned());
    EXPECT_EQ(0xFFFFFFFFu, signed24.getValue().m_qwValue);
    EXPECT_EQ("", signed24.getResult());
    EXPECT_EQ("Bit size not supported: 24", descOf<IOException>([&] { signed24.getInt(); }));

    const CValueType unsigned24(BYTE(24), 0x123456ULL);
    EXPECT_TRUE(unsigned24.isTypeUnsigned());
    EXPECT_EQ(0x123456, unsigned24.getInt());

    const CValueType wide(BYTE(64), 0xFEDCBA9876543210ULL);
    EXPECT_EQ(static_cast<long long>(0xFEDCBA9876543210ULL), wide.getLong());

    EXPECT_EQ("Invalid type for integral value: 3",
              descOf<IOException>([] { CValueType(typeOf(SType::tFloat, 32), 1LL); }));
    EXPECT_EQ("Invalid type for integral value: 4",
              descOf<IOException>([] { CValueType(typeOf(SType::tAddress, 32), 1ULL); }));
    EXPECT_EQ("Invalid bit size for integral value: 65",
              descOf<IOException>([] { CValueType(typeOf(SType::tUnsigned, 65), 1ULL); }));
    EXPECT_EQ("Invalid bit size for integral value: 128", descOf<IOException>([] { CValueType(BYTE(128), 1LL); }));
}

TEST(CValueType, FloatsAndDoublesFollowTheirRules)
{
    const CValueType f32(typeOf(SType::tFloat, 32), 1.5f);
    EXPECT_EQ(1.5f, f32.getFloat());
    const CValueType f64(typeOf(SType::tFloat, 64), 0.1f);
    EXPECT_EQ(static_cast<double>(0.1f), f64.getDouble());
    EXPECT_EQ("Invalid bit size for floats: 16",
              descOf<IOException>([] { CValueType(typeOf(SType::tFloat, 16), 1.0f); }));

    EXPECT_EQ(0.1, CValueType(typeOf(SType::tFloat, 64), 0.1).getDouble());
    EXPECT_EQ("Invalid bit size for doubles: 32",
              descOf<IOException>([] { CValueType(typeOf(SType::tFloat, 32), 1.0); }));

    // Another type code takes neither: the type stays, the value is zero, nothing is raised.
    const CValueType notFloat(typeOf(SType::tSigned, 32), 2.5f);
    EXPECT_TRUE(notFloat.isTypeSigned());
    EXPECT_EQ(0, notFloat.getInt());
    EXPECT_EQ(0, CValueType(typeOf(SType::tSigned, 64), 2.5).getLong());

    const CValueType single(2.5f);
    EXPECT_TRUE(single.isTypeFloat());
    EXPECT_EQ(32, single.getBitSize());
    EXPECT_EQ(2.5, single.getDouble());
    const CValueType dbl(2.5);
    EXPECT_EQ(64, dbl.getBitSize());
    EXPECT_EQ("Only 32 bit floats can be returned by 'getFloat()' method. Bit size = 64",
              descOf<IOException>([&] { dbl.getFloat(); }));
}

TEST(CValueType, AddressesNeedTheAddressType)
{
    CAddress address;
    address.m_aAddress = 0x20001000;
    address.m_iArea = 3;
    address.m_byProcess = 2;
    const CValueType value(typeOf(SType::tAddress, 32), address);
    EXPECT_TRUE(value.isTypeAddress());
    const CAddress back = value.getAddress();
    EXPECT_EQ(0x20001000u, back.m_aAddress);
    EXPECT_EQ(3, back.m_iArea);
    EXPECT_EQ(2, back.m_byProcess);
    EXPECT_EQ("Invalid type for address: 1",
              descOf<IOException>([&] { CValueType(typeOf(SType::tUnsigned, 32), address); }));
    EXPECT_EQ("Invalid value type. Expected address type, but it is: 1",
              descOf<IOException>([] { CValueType(BYTE(32), 5ULL).getAddress(); }));
}

TEST(CValueType, UnsignedValuesParsedFromText)
{
    struct Row {
        int bits;
        const char* text;
        QWORD stored;
    } rows[] = {
        {12, "0x12345", 0x2345},  {8, "300", 300},           {16, "  +42", 42},
        {32, " -1", 0xFFFFFFFF},  {32, "017", 15},           {32, "abc", 0},
        {32, "12abc", 12},        {32, "99999999999", 0xFFFFFFFF}, {32, "0x1FFFFFFFF", 0xFFFFFFFF},
        {32, "- 5", 0},           {64, "0xFFFFFFFFFF", 0xFFFFFFFFFF}, {64, "1234567890123", 1234567890123},
    };
    for (const Row& row : rows) {
        const CValueType value(typeOf(SType::tUnsigned, row.bits), std::string(row.text));
        EXPECT_EQ(row.stored, value.getValue().m_qwValue) << row.bits << " bits from \"" << row.text << "\"";
        EXPECT_EQ(row.text, value.getResult());
    }
    EXPECT_EQ("Only unsigned types are supported in strings! (type.m_byType != SType::tUnsigned)",
              descOf<IllegalArgumentException>([] { CValueType(typeOf(SType::tSigned, 32), std::string("1")); }));
    EXPECT_EQ("Invalid bit size for unsigned integral value: 65",
              descOf<IOException>([] { CValueType(typeOf(SType::tUnsigned, 65), std::string("1")); }));
    // The 64 bit conversion is strict and its failure passes through.
    EXPECT_THROW(CValueType(typeOf(SType::tUnsigned, 64), std::string("12abc")), IllegalArgumentException);
}

TEST(CValueType, ErrorFormCarriesTheMessage)
{
    const CValueType error(std::string("Symbol 'x' not found"));
    EXPECT_TRUE(error.isError());
    EXPECT_TRUE(error.isTypeCompound());
    EXPECT_EQ(0, error.getBitSize());
    EXPECT_EQ("Symbol 'x' not found", error.getResult());
    EXPECT_EQ("Compund data type not supported. Bit size = 0", descOf<IOException>([&] { error.getInt(); }));
    EXPECT_EQ("Compund data type not supported. Bit size = 0", descOf<IOException>([&] { error.getDouble(); }));
    EXPECT_FALSE(CValueType(typeOf(SType::tCompound, 0), raw(0), "struct").isError());
}
