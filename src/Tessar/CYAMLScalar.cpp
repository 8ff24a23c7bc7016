#include "CYAMLScalar.h"

#include <algorithm>

#include "CUtil.h"
#include "IOException.h"
#include "IllegalArgumentException.h"

namespace kestrix {

CYAMLScalar::CYAMLScalar() : CYAMLObject(SCALAR) {}

CYAMLScalar::CYAMLScalar(const std::string& value) : CYAMLObject(SCALAR)
{
    assignPlain(value);
}

CYAMLScalar::CYAMLScalar(const char* value) : CYAMLScalar(std::string(value)) {}

CYAMLScalar::CYAMLScalar(int value) : CYAMLScalar(CUtil::i2a(value)) {}

CYAMLScalar::CYAMLScalar(unsigned int value) : CYAMLScalar(CUtil::i2a(value)) {}

CYAMLScalar::CYAMLScalar(long long value) : CYAMLScalar(CUtil::i2a(value)) {}

CYAMLScalar::CYAMLScalar(double value) : CYAMLScalar(CUtil::d2a(value)) {}

CYAMLScalar::CYAMLScalar(const yaml_event_t& event) : CYAMLObject(SCALAR)
{
    if (event.type != YAML_SCALAR_EVENT) {
        throw IllegalArgumentException(KX_POS, "Scalar event expected, event type = " +
                                                   std::to_string(event.type));
    }
    const auto& scalar = event.data.scalar;
    m_anchor = fromYaml(scalar.anchor);
    m_tag = fromYaml(scalar.tag);
    m_value.assign(reinterpret_cast<const char*>(scalar.value), scalar.length);
    m_length = static_cast<uint32_t>(scalar.length);
    m_plainImplicit = scalar.plain_implicit;
    m_quotedImplicit = scalar.quoted_implicit;
    m_style = scalar.style;
}

std::shared_ptr<CYAMLObject> CYAMLScalar::clone() const
{
    return std::make_shared<CYAMLScalar>(*this);
}

int CYAMLScalar::getType() const
{
    return SCALAR;
}

CYAMLScalar& CYAMLScalar::asScalar()
{
    return *this;
}

const CYAMLScalar& CYAMLScalar::asScalar() const
{
    return *this;
}

bool CYAMLScalar::isEmpty() const
{
    return m_value.empty();
}

void CYAMLScalar::initStartEvent(yaml_event_t* event) const
{
    if (m_length > 0x7fffffffU) {
        throw IOException(KX_POS, "CYAMLScalar::initStartEvent failed! Length is larger than 2 GB!");
    }
    // libyaml copies the value; it only reads through the pointer.
    auto* value = reinterpret_cast<yaml_char_t*>(const_cast<char*>(m_value.c_str()));
    // libyaml spells "!" as a tag of its own `!<%21>`; its non-specific tag is the plain
    // implicit flag, which it writes as "!" in front of a quoted form.
    const bool isNonSpecific = m_tag == NON_SPECIFIC_TAG;
    const int plainImplicit = isNonSpecific ? 1 : m_plainImplicit;
    const int quotedImplicit = isNonSpecific ? 0 : m_quotedImplicit;
    if (!yaml_scalar_event_initialize(event, toYaml(m_anchor), isNonSpecific ? nullptr : toYaml(m_tag), value,
                                      static_cast<int>(m_length), plainImplicit, quotedImplicit,
                                      static_cast<yaml_scalar_style_t>(m_style))) {
        throw IOException(KX_POS, "CYAMLScalar::initStartEvent failed!")
            .add("anchor", m_anchor)
            .add("tag", m_tag)
            .add("value", m_value)
            .add("length", CUtil::i2a(m_length))
            .add("plainImpicit", m_plainImplicit)
            .add("quoedImplicit", m_quotedImplicit)
            .add("stryle", m_style);
    }
}

void CYAMLScalar::setValue(const std::string& value)
{
    assignPlain(value);
}

bool CYAMLScalar::isPlainText() const
{
    const bool isQuoted = m_style == YAML_SINGLE_QUOTED_SCALAR_STYLE || m_style == YAML_DOUBLE_QUOTED_SCALAR_STYLE;
    return !isQuoted || (m_plainImplicit != 0 && m_quotedImplicit == 0) || m_tag == NON_SPECIFIC_TAG;
}

CYAMLScalar CYAMLScalar::toPlainText() const
{
    CYAMLScalar plain(*this);
    plain.m_tag.clear();
    plain.m_plainImplicit = 1;
    plain.m_quotedImplicit = 0;
    return plain;
}

void CYAMLScalar::assignPlain(const std::string& value)
{
    m_value = value;
    m_length = static_cast<uint32_t>(value.size());
    m_plainImplicit = 1;
    m_quotedImplicit = 0;
}

namespace {

/// The expression text of a scalar (or of a key text) as a value and the quote around it
/// (0 for none), so that texts are compared without being built.
struct ExpressionView {
    char quote;
    const std::string& value;

    explicit ExpressionView(const CYAMLScalar& scalar) : quote(quoteOf(scalar)), value(scalar.getValue()) {}
    explicit ExpressionView(const std::string& text) : quote(0), value(text) {}

    static char quoteOf(const CYAMLScalar& scalar)
    {
        if (scalar.isPlainText()) {
            return 0;
        }
        const std::string& value = scalar.getValue();
        switch (scalar.getStyle()) {
        case YAML_DOUBLE_QUOTED_SCALAR_STYLE:
            return '"';
        case YAML_SINGLE_QUOTED_SCALAR_STYLE:
            // A C character literal: one character or a backslash escape.
            return value.size() <= 1 || (value.size() == 2 && value[0] == '\\') ? '\'' : 0;
        default:
            return 0;
        }
    }

    size_t size() const { return value.size() + (quote != 0 ? 2 : 0); }

    unsigned char at(size_t i) const
    {
        if (quote == 0) {
            return static_cast<unsigned char>(value[i]);
        }
        if (i == 0 || i == value.size() + 1) {
            return static_cast<unsigned char>(quote);
        }
        return static_cast<unsigned char>(value[i - 1]);
    }

    std::string text() const { return quote == 0 ? value : quote + value + quote; }
};

int compareViews(const ExpressionView& a, const ExpressionView& b)
{
    if (a.quote == 0 && b.quote == 0) {
        const int result = a.value.compare(b.value);
        return result < 0 ? -1 : (result > 0 ? 1 : 0);
    }
    const size_t common = std::min(a.size(), b.size());
    for (size_t i = 0; i < common; ++i) {
        if (a.at(i) != b.at(i)) {
            return a.at(i) < b.at(i) ? -1 : 1;
        }
    }
    return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

} // namespace

std::string toExpressionText(const CYAMLScalar& scalar)
{
    return ExpressionView(scalar).text();
}

std::string toQuotedText(const CYAMLScalar& scalar)
{
    const std::string& value = scalar.getValue();
    if (scalar.isPlainText()) {
        return value;
    }
    switch (scalar.getStyle()) {
    case YAML_DOUBLE_QUOTED_SCALAR_STYLE:
        return '"' + value + '"';
    case YAML_SINGLE_QUOTED_SCALAR_STYLE:
        return '\'' + value + '\'';
    default:
        return value;
    }
}

int compareExpressionText(const CYAMLScalar& a, const CYAMLScalar& b)
{
    return compareViews(ExpressionView(a), ExpressionView(b));
}

int compareExpressionText(const CYAMLScalar& a, const std::string& b)
{
    return compareViews(ExpressionView(a), ExpressionView(b));
}

} // namespace kestrix
