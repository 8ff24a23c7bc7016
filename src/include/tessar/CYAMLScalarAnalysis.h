#pragma once

#include <string>

#include "CYAMLScalar.h"

namespace kestrix {

/// libyaml's emitter's view of a scalar text under the default settings (no canonical form, no
/// unicode output): which styles hold it unchanged, and so the style that it falls back to. Lets
/// a writer see how a scalar reads back before it hands the scalar to libyaml.
class CYAMLScalarAnalysis {
public:
    explicit CYAMLScalarAnalysis(const std::string& value);

    /// The scalar that reading back gives for `scalar` written by libyaml inside a flow
    /// collection (`isFlow`) and in a mapping key's place (`isKey`): the style libyaml falls back
    /// to, and the tag and implicit flags that libyaml's parser sets for what was written.
    static CYAMLScalar readBack(const CYAMLScalar& scalar, bool isFlow, bool isKey);

    /// The style in which libyaml writes `scalar` in that place.
    int writtenStyle(const CYAMLScalar& scalar, bool isFlow, bool isKey) const;

    bool isMultiline() const { return m_isMultiline; }
    bool isFlowPlainAllowed() const { return m_isFlowPlainAllowed; }
    bool isBlockPlainAllowed() const { return m_isBlockPlainAllowed; }
    bool isSingleQuotedAllowed() const { return m_isSingleQuotedAllowed; }
    bool isBlockAllowed() const { return m_isBlockAllowed; }

private:
    /// Indicators and breaks that keep a text from standing plain.
    void analyzeIndicators(const std::string& value);
    /// Spaces and breaks at the ends and next to each other, and characters needing escapes.
    void analyzeSpacing(const std::string& value);
    /// Whether libyaml writes the scalar's tag: only when neither implicit flag is set.
    static bool isTagWritten(const CYAMLScalar& scalar);
    /// Whether libyaml writes the scalar as a simple key: one line, short enough.
    bool isSimpleKey(const CYAMLScalar& scalar, bool isKey) const;

    size_t m_length;
    bool m_isMultiline = false;
    bool m_isFlowPlainAllowed = true;
    bool m_isBlockPlainAllowed = true;
    bool m_isSingleQuotedAllowed = true;
    bool m_isBlockAllowed = true;
};

} // namespace kestrix
