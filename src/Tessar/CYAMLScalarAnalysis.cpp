#include "CYAMLScalarAnalysis.h"

#include <cstring>

namespace kestrix {

namespace {

/// libyaml writes a simple key only up to this length (anchor, tag and text together).
const size_t MAX_SIMPLE_KEY_LENGTH = 128;
/// The prefix of the "!!" handle, which libyaml writes shortened.
const char* const CORE_TAG_PREFIX = "tag:yaml.org,2002:";

bool isBreak(const std::string& text, size_t i)
{
    const auto at = [&](size_t k) { return k < text.size() ? static_cast<unsigned char>(text[k]) : 0; };
    const unsigned char c = at(i);
    return c == '\r' || c == '\n' || (c == 0xC2 && at(i + 1) == 0x85) ||
           (c == 0xE2 && at(i + 1) == 0x80 && (at(i + 2) == 0xA8 || at(i + 2) == 0xA9));
}

/// Blank, break, or the end of the text (libyaml's value carries a terminating NUL).
bool isBlankOrEnd(const std::string& text, size_t i)
{
    return i >= text.size() || text[i] == ' ' || text[i] == '\t' || text[i] == '\0' || isBreak(text, i);
}

/// Bytes of the UTF-8 character that starts with `lead`.
size_t widthOf(unsigned char lead)
{
    return (lead & 0x80) == 0 ? 1 : (lead & 0xE0) == 0xC0 ? 2 : (lead & 0xF0) == 0xE0 ? 3 : (lead & 0xF8) == 0xF0 ? 4 : 1;
}

bool isOneOf(char c, const char* set)
{
    return c != '\0' && std::strchr(set, c) != nullptr;
}

} // namespace

CYAMLScalarAnalysis::CYAMLScalarAnalysis(const std::string& value) : m_length(value.size())
{
    if (value.empty()) {
        m_isFlowPlainAllowed = false;
        m_isBlockAllowed = false;
        return;
    }
    analyzeIndicators(value);
    analyzeSpacing(value);
}

void CYAMLScalarAnalysis::analyzeIndicators(const std::string& value)
{
    bool isFlowIndicator = value.compare(0, 3, "---") == 0 || value.compare(0, 3, "...") == 0;
    bool isBlockIndicator = isFlowIndicator;
    bool isPrecededByBlank = true;
    for (size_t i = 0; i < value.size(); i += widthOf(static_cast<unsigned char>(value[i]))) {
        const char c = value[i];
        const bool isFollowedByBlank = isBlankOrEnd(value, i + widthOf(static_cast<unsigned char>(c)));
        if (i == 0) {
            const bool isIndicator = isOneOf(c, "#,[]{}&*!|>'\"%@`") || (c == '-' && isFollowedByBlank);
            isFlowIndicator |= isIndicator || c == '?' || c == ':';
            isBlockIndicator |= isIndicator || ((c == '?' || c == ':') && isFollowedByBlank);
        } else {
            isFlowIndicator |= isOneOf(c, ",?[]{}:") || (c == '#' && isPrecededByBlank);
            isBlockIndicator |= (c == ':' && isFollowedByBlank) || (c == '#' && isPrecededByBlank);
        }
        if (isBreak(value, i)) {
            m_isMultiline = true;
        }
        isPrecededByBlank = isBlankOrEnd(value, i);
    }
    if (m_isMultiline) {
        m_isFlowPlainAllowed = m_isBlockPlainAllowed = false;
    }
    m_isFlowPlainAllowed = m_isFlowPlainAllowed && !isFlowIndicator;
    m_isBlockPlainAllowed = m_isBlockPlainAllowed && !isBlockIndicator;
}

void CYAMLScalarAnalysis::analyzeSpacing(const std::string& value)
{
    bool isSpecial = false, isSpaceBreak = false, isBreakSpace = false, isBlankAtEnd = false;
    bool isPreviousSpace = false, isPreviousBreak = false, isTrailingSpace = false;
    for (size_t i = 0; i < value.size(); i += widthOf(static_cast<unsigned char>(value[i]))) {
        const unsigned char c = static_cast<unsigned char>(value[i]);
        const bool isFirst = i == 0;
        const bool isLast = i + widthOf(c) >= value.size();
        // Without unicode output every non-ASCII character is escaped, as is every control.
        isSpecial |= c >= 0x7F || (c < 0x20 && c != '\n');
        if (c == ' ') {
            isBlankAtEnd |= isFirst || isLast;
            isTrailingSpace |= isLast;
            isBreakSpace |= isPreviousBreak;
            isPreviousSpace = true, isPreviousBreak = false;
        } else if (isBreak(value, i)) {
            isBlankAtEnd |= isFirst || isLast;
            isSpaceBreak |= isPreviousSpace;
            isPreviousSpace = false, isPreviousBreak = true;
        } else {
            isPreviousSpace = isPreviousBreak = false;
        }
    }
    if (isBlankAtEnd || isBreakSpace) {
        m_isFlowPlainAllowed = m_isBlockPlainAllowed = false;
    }
    if (isBreakSpace) {
        m_isSingleQuotedAllowed = false;
    }
    if (isTrailingSpace) {
        m_isBlockAllowed = false;
    }
    if (isSpaceBreak || isSpecial) {
        m_isFlowPlainAllowed = m_isBlockPlainAllowed = m_isSingleQuotedAllowed = m_isBlockAllowed = false;
    }
}

bool CYAMLScalarAnalysis::isTagWritten(const CYAMLScalar& scalar)
{
    const std::string& tag = scalar.getTag();
    return !tag.empty() && tag != CYAMLScalar::NON_SPECIFIC_TAG && scalar.getPlainImplicit() == 0 &&
           scalar.getQuotedImplicit() == 0;
}

bool CYAMLScalarAnalysis::isSimpleKey(const CYAMLScalar& scalar, bool isKey) const
{
    if (!isKey || m_isMultiline) {
        return false;
    }
    size_t tagLength = 0;
    if (isTagWritten(scalar)) {
        const std::string& tag = scalar.getTag();
        const size_t prefixLength = std::strlen(CORE_TAG_PREFIX);
        const bool isCore = tag.size() > prefixLength && tag.compare(0, prefixLength, CORE_TAG_PREFIX) == 0;
        tagLength = isCore ? tag.size() - prefixLength + 2 : tag.size();
    }
    return scalar.getAnchor().size() + tagLength + m_length <= MAX_SIMPLE_KEY_LENGTH;
}

int CYAMLScalarAnalysis::writtenStyle(const CYAMLScalar& scalar, bool isFlow, bool isKey) const
{
    const bool isSimple = isSimpleKey(scalar, isKey);
    // A tag "!" goes to libyaml as the plain implicit flag (see CYAMLScalar::initStartEvent).
    const bool isPlainImplicit = scalar.getPlainImplicit() != 0 || scalar.getTag() == CYAMLScalar::NON_SPECIFIC_TAG;
    int style = scalar.getStyle() == YAML_ANY_SCALAR_STYLE ? YAML_PLAIN_SCALAR_STYLE : scalar.getStyle();
    if (style == YAML_PLAIN_SCALAR_STYLE) {
        const bool isPlainAllowed = isFlow ? m_isFlowPlainAllowed : m_isBlockPlainAllowed;
        const bool isEmptyInPlace = m_length == 0 && (isFlow || isSimple);
        if (!isPlainAllowed || isEmptyInPlace || (!isTagWritten(scalar) && !isPlainImplicit)) {
            style = YAML_SINGLE_QUOTED_SCALAR_STYLE;
        }
    }
    if (style == YAML_SINGLE_QUOTED_SCALAR_STYLE && !m_isSingleQuotedAllowed) {
        style = YAML_DOUBLE_QUOTED_SCALAR_STYLE;
    }
    if ((style == YAML_LITERAL_SCALAR_STYLE || style == YAML_FOLDED_SCALAR_STYLE) &&
        (!m_isBlockAllowed || isFlow || isSimple)) {
        style = YAML_DOUBLE_QUOTED_SCALAR_STYLE;
    }
    return style;
}

CYAMLScalar CYAMLScalarAnalysis::readBack(const CYAMLScalar& scalar, bool isFlow, bool isKey)
{
    const int style = CYAMLScalarAnalysis(scalar.getValue()).writtenStyle(scalar, isFlow, isKey);
    const bool isTagged = isTagWritten(scalar);
    const bool isQuotedImplicit = scalar.getQuotedImplicit() != 0 && scalar.getTag() != CYAMLScalar::NON_SPECIFIC_TAG;
    // libyaml puts "!" in front of an untagged form other than plain that is not quoted implicit.
    const bool isMarked = !isTagged && !isQuotedImplicit && style != YAML_PLAIN_SCALAR_STYLE;
    // The parser's flags: plain implicit for an untagged plain form or behind "!", quoted
    // implicit for any other untagged form, neither behind a tag.
    const int plainImplicit = (style == YAML_PLAIN_SCALAR_STYLE && !isTagged) || isMarked ? 1 : 0;
    const int quotedImplicit = !isTagged && plainImplicit == 0 ? 1 : 0;
    const std::string tag = isTagged ? scalar.getTag() : (isMarked ? CYAMLScalar::NON_SPECIFIC_TAG : "");
    const std::string& value = scalar.getValue();
    const auto text = [](const std::string& s) {
        return s.empty() ? nullptr : reinterpret_cast<yaml_char_t*>(const_cast<char*>(s.c_str()));
    };
    yaml_event_t event;
    // libyaml refuses text that is not UTF-8, as it does when the scalar itself is written.
    if (value.size() > 0x7fffffffU ||
        !yaml_scalar_event_initialize(&event, text(scalar.getAnchor()), text(tag),
                                      reinterpret_cast<yaml_char_t*>(const_cast<char*>(value.data())),
                                      static_cast<int>(value.size()), plainImplicit, quotedImplicit,
                                      static_cast<yaml_scalar_style_t>(style))) {
        return scalar;
    }
    CYAMLScalar read(event);
    yaml_event_delete(&event);
    return read;
}

} // namespace kestrix
