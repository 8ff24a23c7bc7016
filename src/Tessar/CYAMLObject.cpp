#include "CYAMLObject.h"

#include "CYAMLMap.h"
#include "CYAMLScalar.h"
#include "CYAMLSequence.h"
#include "IllegalStateException.h"

namespace kestrix {

namespace {

[[noreturn]] void throwWrongKind(const char* kind, int type)
{
    throw IllegalStateException(KX_POS, std::string("This object is not a ") + kind + ". Type = " +
                                            std::to_string(type));
}

} // namespace

CYAMLScalar& CYAMLObject::asScalar()
{
    throwWrongKind("scalar", getType());
}

const CYAMLScalar& CYAMLObject::asScalar() const
{
    throwWrongKind("scalar", getType());
}

CYAMLSequence& CYAMLObject::asSequence()
{
    throwWrongKind("sequence", getType());
}

const CYAMLSequence& CYAMLObject::asSequence() const
{
    throwWrongKind("sequence", getType());
}

CYAMLMap& CYAMLObject::asMap()
{
    throwWrongKind("map", getType());
}

const CYAMLMap& CYAMLObject::asMap() const
{
    throwWrongKind("map", getType());
}

const std::string& CYAMLObject::getAnchor() const
{
    return m_anchor;
}

const std::string& CYAMLObject::getTag() const
{
    return m_tag;
}

std::string CYAMLObject::fromYaml(const yaml_char_t* text)
{
    return text == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(text));
}

yaml_char_t* CYAMLObject::toYaml(const std::string& text)
{
    // libyaml copies the strings it is given and never writes to them.
    return text.empty() ? nullptr : reinterpret_cast<yaml_char_t*>(const_cast<char*>(text.c_str()));
}

} // namespace kestrix
