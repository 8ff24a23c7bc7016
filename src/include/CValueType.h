#pragma once

#include <string>

#include "CAddress.h"
#include "SType.h"
#include "SValue.h"

namespace kestrix {

/// A typed scalar: type code and bit size, eight bytes of value, and a text. The text is either
/// the value's own text or, in the error form, the message of a failed evaluation.
class CValueType {
public:
    CValueType(const SType& type, const SValue& value);
    CValueType(const SType& type, const SValue& value, const std::string& result);
    CValueType(const SType& type, long long value);
    CValueType(const SType& type, unsigned long long value);
    CValueType(const SType& type, float value);
    CValueType(const SType& type, double value);
    CValueType(BYTE bitSize, long long value);
    CValueType(BYTE bitSize, unsigned long long value);
    explicit CValueType(float value);
    explicit CValueType(double value);
    CValueType(const SType& type, const CAddress& address);
    CValueType(const SType& type, const std::string& value);
    /// The error form: compound type of 0 bits carrying the message.
    explicit CValueType(const std::string& message);

    SType getType() const { return m_type; }
    int getBitSize() const { return m_type.m_byBitSize; }
    SValue getValue() const { return m_value; }
    std::string getResult() const { return m_result; }
    bool isError() const { return m_isError; }

    bool isTypeUnsigned() const { return m_type.m_byType == SType::tUnsigned; }
    bool isTypeSigned() const { return m_type.m_byType == SType::tSigned; }
    bool isTypeFloat() const { return m_type.m_byType == SType::tFloat; }
    bool isTypeAddress() const { return m_type.m_byType == SType::tAddress; }
    bool isTypeCompound() const { return m_type.m_byType == SType::tCompound; }

    int getInt() const;
    long long getLong() const;
    float getFloat() const;
    double getDouble() const;
    CAddress getAddress() const;

private:
    void storeIntegral(unsigned long long bits);
    void storeUnsignedText(const std::string& text);
    std::string valueText() const;
    [[noreturn]] void throwUnsupportedType() const;

    SType m_type;
    SValue m_value;
    std::string m_result;
    bool m_isError = false;
};

} // namespace kestrix
