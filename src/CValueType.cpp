#include "CValueType.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <sstream>

#include "CUtil.h"
#include "IOException.h"
#include "IllegalArgumentException.h"

namespace kestrix {

namespace {

constexpr unsigned long kMax32 = 0xFFFFFFFFul;

// strtoul as on a platform whose unsigned long has 32 bits: base from the prefix, leading
// blanks and one sign accepted, saturation at 0xFFFFFFFF, no number gives 0.
DWORD parseUnsigned32(const std::string& text)
{
    size_t pos = 0;
    while (pos < text.size() && std::isspace(static_cast<unsigned char>(text[pos]))) {
        ++pos;
    }
    bool negative = false;
    if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) {
        negative = text[pos] == '-';
        ++pos;
    }
    if (pos >= text.size() || !std::isdigit(static_cast<unsigned char>(text[pos]))) {
        return 0;
    }
    errno = 0;
    unsigned long long magnitude = std::strtoull(text.c_str() + pos, nullptr, 0);
    if (errno == ERANGE || magnitude > kMax32) {
        return static_cast<DWORD>(kMax32);
    }
    DWORD value = static_cast<DWORD>(magnitude);
    return negative ? static_cast<DWORD>(0u - value) : value;
}

// A number given with its type must be of an integer type.
const SType& integralType(const SType& type)
{
    if (type.m_byType != SType::tUnsigned && type.m_byType != SType::tSigned) {
        throw IOException(KX_POS, "Invalid type for integral value: ", type.m_byType);
    }
    return type;
}

SType typeOf(BYTE code, BYTE bitSize)
{
    SType type;
    type.m_byType = code;
    type.m_byBitSize = bitSize;
    return type;
}

} // namespace

CValueType::CValueType(const SType& type, const SValue& value) : m_type(type), m_value(value)
{
    m_result = valueText();
}

CValueType::CValueType(const SType& type, const SValue& value, const std::string& result)
    : m_type(type), m_value(value), m_result(result)
{
}

CValueType::CValueType(const SType& type, long long value) : m_type(integralType(type)), m_result(CUtil::i2a(value))
{
    storeIntegral(static_cast<unsigned long long>(value));
}

CValueType::CValueType(const SType& type, unsigned long long value)
    : m_type(integralType(type)), m_result(CUtil::i2a(value))
{
    storeIntegral(value);
}

CValueType::CValueType(const SType& type, float value) : m_type(type)
{
    if (type.m_byType != SType::tFloat) {
        return;
    }
    if (type.m_byBitSize == 32) {
        m_value.m_fValue = value;
    } else if (type.m_byBitSize == 64) {
        m_value.m_dValue = value;
    } else {
        throw IOException(KX_POS, "Invalid bit size for floats: ", type.m_byBitSize);
    }
}

CValueType::CValueType(const SType& type, double value) : m_type(type)
{
    if (type.m_byType != SType::tFloat) {
        return;
    }
    if (type.m_byBitSize != 64) {
        throw IOException(KX_POS, "Invalid bit size for doubles: ", type.m_byBitSize);
    }
    m_value.m_dValue = value;
}

CValueType::CValueType(BYTE bitSize, long long value) : m_type(typeOf(SType::tSigned, bitSize))
{
    storeIntegral(static_cast<unsigned long long>(value));
}

CValueType::CValueType(BYTE bitSize, unsigned long long value) : m_type(typeOf(SType::tUnsigned, bitSize))
{
    storeIntegral(value);
}

CValueType::CValueType(float value) : m_type(typeOf(SType::tFloat, 32))
{
    m_value.m_fValue = value;
}

CValueType::CValueType(double value) : m_type(typeOf(SType::tFloat, 64))
{
    m_value.m_dValue = value;
}

CValueType::CValueType(const SType& type, const CAddress& address) : m_type(type)
{
    if (type.m_byType != SType::tAddress) {
        throw IOException(KX_POS, "Invalid type for address: ", type.m_byType);
    }
    m_value.m_address = address;
}

CValueType::CValueType(const SType& type, const std::string& value) : m_type(type), m_result(value)
{
    if (type.m_byType != SType::tUnsigned) {
        throw IllegalArgumentException(
            KX_POS, "Only unsigned types are supported in strings! (type.m_byType != SType::tUnsigned)");
    }
    storeUnsignedText(value);
}

CValueType::CValueType(const std::string& message)
    : m_type(typeOf(SType::tCompound, 0)), m_result(message), m_isError(true)
{
}

// Keeps as many low bits as the bit size asks for; the bytes above stay zero.
void CValueType::storeIntegral(unsigned long long bits)
{
    const int bitSize = m_type.m_byBitSize;
    if (bitSize <= 8) {
        m_value.m_byValue = static_cast<BYTE>(bits);
    } else if (bitSize <= 16) {
        m_value.m_wValue = static_cast<WORD>(bits);
    } else if (bitSize <= 32) {
        m_value.m_dwValue = static_cast<DWORD>(bits);
    } else if (bitSize <= 64) {
        m_value.m_qwValue = bits;
    } else {
        throw IOException(KX_POS, "Invalid bit size for integral value: ", bitSize);
    }
}

void CValueType::storeUnsignedText(const std::string& text)
{
    const int bitSize = m_type.m_byBitSize;
    if (bitSize <= 16) {
        m_value.m_wValue = static_cast<WORD>(parseUnsigned32(text));
    } else if (bitSize <= 32) {
        m_value.m_dwValue = parseUnsigned32(text);
    } else if (bitSize <= 64) {
        m_value.m_qwValue = static_cast<QWORD>(CUtil::aOrHex2l(text));
    } else {
        throw IOException(KX_POS, "Invalid bit size for unsigned integral value: ", bitSize);
    }
}

std::string CValueType::valueText() const
{
    std::ostringstream text;
    const int bitSize = m_type.m_byBitSize;
    switch (m_type.m_byType) {
    case SType::tUnsigned:
        switch (bitSize) {
        case 8: text << m_value.m_byValue; break;
        case 16: text << m_value.m_wValue; break;
        case 32: text << m_value.m_dwValue; break;
        default: text << m_value.m_qwValue; break;
        }
        break;
    case SType::tSigned:
        switch (bitSize) {
        case 8: text << m_value.m_cValue; break;
        case 16: text << m_value.m_sValue; break;
        case 32: text << m_value.m_iValue; break;
        default: text << m_value.m_llValue; break;
        }
        break;
    case SType::tFloat:
        if (bitSize == 32) {
            text << m_value.m_fValue;
        } else if (bitSize == 64) {
            text << m_value.m_dValue;
        } else {
            throw IOException(KX_POS, "Can not convert value to string!")
                .add("type", "SType.tFloat")
                .add("bitSize", bitSize);
        }
        break;
    default:
        break;
    }
    return text.str();
}

// The failure shared by every numeric getter for a compound or unknown type code.
void CValueType::throwUnsupportedType() const
{
    if (m_type.m_byType == SType::tCompound) {
        throw IOException(KX_POS, "Compund data type not supported. Bit size = ", m_type.m_byBitSize);
    }
    throw IOException(KX_POS, "Unknown item type: ", m_type.m_byType);
}

int CValueType::getInt() const
{
    const int bitSize = m_type.m_byBitSize;
    switch (m_type.m_byType) {
    case SType::tUnsigned:
        if (bitSize <= 8) {
            return m_value.m_byValue;
        }
        if (bitSize <= 16) {
            return m_value.m_wValue;
        }
        if (bitSize <= 32) {
            return static_cast<int>(m_value.m_dwValue);
        }
        throw IOException(KX_POS, "Value has more than 32 bits. Use 'getLong()' instead!");
    case SType::tSigned:
        switch (bitSize) {
        case 8: return m_value.m_cValue;
        case 16: return m_value.m_sValue;
        case 32: return m_value.m_iValue;
        case 64: throw IOException(KX_POS, "Value has 64 bits. Use 'getLong()' instead!");
        default: throw IOException(KX_POS, "Bit size not supported: ", bitSize);
        }
    case SType::tFloat:
        throw IOException(KX_POS, "Can not return float value from 'getInt()' method. Use 'getFloat()' instead!");
    case SType::tAddress:
        throw IOException(KX_POS, "Can not return address from 'getInt()' method. Use 'getAddress()' instead!");
    default:
        throwUnsupportedType();
    }
}

long long CValueType::getLong() const
{
    const int bitSize = m_type.m_byBitSize;
    switch (m_type.m_byType) {
    case SType::tUnsigned:
        if (bitSize < 32) {
            return getInt();
        }
        if (bitSize <= 64) {
            return m_value.m_llValue;
        }
        throw IOException(KX_POS, "Bit size not supported: ", bitSize);
    case SType::tSigned:
        if (bitSize == 8 || bitSize == 16 || bitSize == 32) {
            return getInt();
        }
        if (bitSize == 64) {
            return m_value.m_llValue;
        }
        throw IOException(KX_POS, "Bit size not supported: ", bitSize);
    case SType::tFloat:
        throw IOException(KX_POS,
                          "Can not return float value from 'getLong()' method. Use 'getFloat()' instead!");
    case SType::tAddress:
        throw IOException(KX_POS, "Can not return address from 'getLong()' method. Use 'getAddress()' instead!");
    default:
        throwUnsupportedType();
    }
}

float CValueType::getFloat() const
{
    switch (m_type.m_byType) {
    case SType::tUnsigned:
    case SType::tSigned:
        return static_cast<float>(getLong());
    case SType::tFloat:
        if (m_type.m_byBitSize == 32) {
            return m_value.m_fValue;
        }
        throw IOException(KX_POS, "Only 32 bit floats can be returned by 'getFloat()' method. Bit size = ",
                          m_type.m_byBitSize);
    case SType::tAddress:
        throw IOException(KX_POS,
                          "Can not return address from 'getFloat()' method. Use 'getAddress()' instead!");
    default:
        throwUnsupportedType();
    }
}

double CValueType::getDouble() const
{
    switch (m_type.m_byType) {
    case SType::tUnsigned:
    case SType::tSigned:
        return static_cast<double>(getLong());
    case SType::tFloat:
        if (m_type.m_byBitSize == 32) {
            return m_value.m_fValue;
        }
        if (m_type.m_byBitSize == 64) {
            return m_value.m_dValue;
        }
        throw IOException(KX_POS, "Invalid bit size for double: ", m_type.m_byBitSize);
    case SType::tAddress:
        throw IOException(KX_POS,
                          "Can not return address from 'getDouble()' method. Use 'getAddress()' instead!");
    default:
        throwUnsupportedType();
    }
}

CAddress CValueType::getAddress() const
{
    if (m_type.m_byType != SType::tAddress) {
        throw IOException(KX_POS, "Invalid value type. Expected address type, but it is: ", m_type.m_byType);
    }
    return m_value.m_address;
}

} // namespace kestrix
