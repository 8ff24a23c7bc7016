#pragma once

#include <string>

#include "CYAMLEnumTables.h"
#include "CYAMLScalar.h"
#include "IllegalArgumentException.h"

namespace kestrix {

/// A scalar that holds an enumerator; its text is the enumerator's word in the table that
/// `YAMLEnumTable<E>` gives (see CYAMLEnumTables.h).
template <typename E>
class CYAMLEnum : public CYAMLScalar {
public:
    /// No text (not written); the enumerator is 0.
    CYAMLEnum() = default;

    explicit CYAMLEnum(const yaml_event_t& event) : CYAMLScalar(event), m_enum(lookUp(getValue())) {}

    /// Keeps the scalar's flags and style; its text must be a word of the table.
    explicit CYAMLEnum(const CYAMLScalar& scalar) : CYAMLScalar(scalar), m_enum(lookUp(getValue())) {}

    std::shared_ptr<CYAMLObject> clone() const override { return std::make_shared<CYAMLEnum<E>>(*this); }

    E getEnum() const { return m_enum; }

    void setEnum(E value)
    {
        assignPlain(toString(value));
        m_enum = value;
    }

    /// No text (so not written), yet `getEnum()` answers `value`.
    void setDefault(E value)
    {
        assignPlain(std::string());
        m_enum = value;
    }

    /// The word of an enumerator; IllegalArgumentException when it has none.
    static std::string toString(E value)
    {
        const long long index = static_cast<long long>(value);
        const char* const* table = YAMLEnumTable<E>::strings();
        for (long long i = 0; table[i] != nullptr; ++i) {
            if (i == index) {
                return table[i];
            }
        }
        throw IllegalArgumentException(KX_POS, "Invalid enum value: " + std::to_string(index));
    }

    /// The enumerator of a word, compared whole and byte for byte.
    static E lookUp(const std::string& text)
    {
        const char* const* table = YAMLEnumTable<E>::strings();
        for (int i = 0; table[i] != nullptr; ++i) {
            if (text == table[i]) {
                return static_cast<E>(i);
            }
        }
        throw IllegalArgumentException(KX_POS, "Invalid string value for enum : '" + text + "'");
    }

private:
    E m_enum = static_cast<E>(0);
};

} // namespace kestrix
