#pragma once

#include <cstdint>
#include <string>

#include "CYAMLObject.h"

namespace kestrix {

/// A scalar: its text without quotes, and libyaml's implicit flags and scalar style.
class CYAMLScalar : public CYAMLObject {
public:
    /// YAML's non-specific tag: the node is taken by its kind alone, whatever its quotes.
    static constexpr const char* NON_SPECIFIC_TAG = "!";

    CYAMLScalar();
    // Built from text or numbers: plain and implicit, style left to the emitter.
    CYAMLScalar(const std::string& value);
    CYAMLScalar(const char* value);
    CYAMLScalar(int value);
    CYAMLScalar(unsigned int value);
    CYAMLScalar(long long value);
    CYAMLScalar(double value);
    /// From a scalar event, with anchor, tag, flags and style as parsed.
    explicit CYAMLScalar(const yaml_event_t& event);

    std::shared_ptr<CYAMLObject> clone() const override;
    int getType() const override;
    CYAMLScalar& asScalar() override;
    const CYAMLScalar& asScalar() const override;
    bool isEmpty() const override;
    void initStartEvent(yaml_event_t* event) const override;

    const std::string& getValue() const { return m_value; }
    uint32_t getLength() const { return m_length; }
    int getPlainImplicit() const { return m_plainImplicit; }
    int getQuotedImplicit() const { return m_quotedImplicit; }
    /// libyaml's scalar style: 0 any, 1 plain, 2 single quoted, 3 double quoted, 4 literal, 5 folded.
    int getStyle() const { return m_style; }

    /// New text, plain and implicit; the style stays.
    void setValue(const std::string& value);
    void setStyle(int style) { m_style = style; }

    /// Whether the text counts as plain, quotes or not. libyaml reads a quoted scalar behind the
    /// non-specific tag "!" as plain implicit and not quoted implicit: that is the form in which
    /// it writes a plain text that cannot stand plain (`! 'a: b'`, `! "a\tb"`).
    bool isPlainText() const;
    /// A copy with the flags of a plain text and no tag: libyaml writes it plain where it can,
    /// and otherwise quoted behind "!", so it reads back as plain text.
    CYAMLScalar toPlainText() const;

protected:
    /// Sets text and length, plainImplicit 1, quotedImplicit 0.
    void assignPlain(const std::string& value);

private:
    std::string m_value;
    uint32_t m_length = 0;
    int m_plainImplicit = 0;
    int m_quotedImplicit = 0;
    int m_style = 0;
};

/// The text of a scalar as it leaves YAML for an expression: double-quoted text keeps its
/// quotes, a single-quoted text of one character (or a backslash escape) is a character literal,
/// plain text (`isPlainText`) has none, whatever it was written with.
std::string toExpressionText(const CYAMLScalar& scalar);

/// The text with the quotes it was written with, whatever its length; plain text has none.
std::string toQuotedText(const CYAMLScalar& scalar);

/// Byte-wise comparison of `toExpressionText` of both, without building the texts.
int compareExpressionText(const CYAMLScalar& a, const CYAMLScalar& b);
int compareExpressionText(const CYAMLScalar& a, const std::string& b);

} // namespace kestrix
