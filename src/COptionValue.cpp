#include "COptionValue.h"

#include <cstring>

namespace kestrix {

COptionValue::COptionValue() = default;

COptionValue::COptionValue(const std::string& value) : m_input(value)
{
    m_value.m_pszStringIn = m_input.c_str();
}

COptionValue::COptionValue(DWORD value)
{
    m_value.m_dwInteger = value;
}

COptionValue::COptionValue(double value)
{
    m_value.m_dFloat = value;
}

void COptionValue::setSeparators(char pathSeparator, char valueSeparator, char optionSeparator)
{
    m_value.m_cPathSeparator = pathSeparator;
    m_value.m_cValueSeparator = valueSeparator;
    m_value.m_cOptionSeparator = optionSeparator;
}

void COptionValue::allocOutputBuffer(DWORD size)
{
    m_output.assign(size, '\0');
    m_value.m_pszStringOut = m_output.empty() ? nullptr : m_output.data();
    m_value.m_dwStringOutSize = size;
}

std::string COptionValue::getOutputBuffer() const
{
    if (m_output.empty()) {
        return "";
    }
    return std::string(m_output.data(), strnlen(m_output.data(), m_output.size()));
}

} // namespace kestrix
