#pragma once

#include "CYAMLScalar.h"

namespace kestrix {

/// A scalar that holds a bool. Accepted texts: "true", "1", "yes" and "false", "0", "no".
class CYAMLBool : public CYAMLScalar {
public:
    CYAMLBool();
    explicit CYAMLBool(bool value);
    explicit CYAMLBool(const yaml_event_t& event);
    /// Keeps the scalar's flags and style; its text must be a bool word.
    explicit CYAMLBool(const CYAMLScalar& scalar);

    std::shared_ptr<CYAMLObject> clone() const override;

    bool getBool() const { return m_bool; }
    void setBool(bool value);
    /// No text (so not written), yet `getBool()` answers `value`.
    void setDefault(bool value);

    /// The bool of a text, or IllegalArgumentException for anything else.
    static bool toBool(const std::string& text);

private:
    bool m_bool = false;
};

} // namespace kestrix
