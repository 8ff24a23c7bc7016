#include "CYAMLBool.h"

#include "IllegalArgumentException.h"

namespace kestrix {

CYAMLBool::CYAMLBool() = default;

CYAMLBool::CYAMLBool(bool value)
{
    setBool(value);
}

CYAMLBool::CYAMLBool(const yaml_event_t& event) : CYAMLScalar(event), m_bool(toBool(getValue())) {}

CYAMLBool::CYAMLBool(const CYAMLScalar& scalar) : CYAMLScalar(scalar), m_bool(toBool(getValue())) {}

std::shared_ptr<CYAMLObject> CYAMLBool::clone() const
{
    return std::make_shared<CYAMLBool>(*this);
}

void CYAMLBool::setBool(bool value)
{
    assignPlain(value ? "true" : "false");
    m_bool = value;
}

void CYAMLBool::setDefault(bool value)
{
    assignPlain(std::string());
    m_bool = value;
}

bool CYAMLBool::toBool(const std::string& text)
{
    if (text == "true" || text == "1" || text == "yes") {
        return true;
    }
    if (text == "false" || text == "0" || text == "no") {
        return false;
    }
    throw IllegalArgumentException(KX_POS, "Invalid value of bool item. Should be one of 'true', 'false', "
                                           "'yes', 'no', '1', or '0', but it is: " + text);
}

} // namespace kestrix
