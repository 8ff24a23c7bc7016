#pragma once

#include <string>

#include "CYAMLMap.h"
#include "CYAMLScalar.h"
#include "CYAMLSequence.h"

namespace kestrix {

/// Setters shared by the sections: text from a caller is parsed as YAML, so it obeys the
/// quoting of a file, into a temporary; the field changes only when the parse succeeds.
class CSectionSetters {
public:
    /// One scalar, with its quoting style; an empty text gives an empty scalar.
    static void setScalar(CYAMLScalar& field, const std::string& text);
    /// Replaces the items by those of a YAML list; anchor, tag and style of the field stay.
    static void setSequenceItems(CYAMLSequence& field, const std::string& text);
    /// Replaces entries and key order by those of a YAML mapping; anchor, tag and style stay.
    static void setMapEntries(CYAMLMap& field, const std::string& text);
};

} // namespace kestrix
