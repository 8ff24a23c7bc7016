#pragma once

#include <string>

#include "CYAMLEnum.h"
#include "CYAMLMap.h"
#include "CYAMLSequence.h"

namespace kestrix {

/// What the sections share for their setters and their refusals. Text from a caller is
/// parsed as YAML, so it obeys the quoting of a file, into a temporary; the field changes
/// only when the parse succeeds. Single scalars go through `CYAMLUtil::parseScalar`, which
/// already works that way.
class CSectionSetters {
public:
    /// Replaces the items by those of a YAML list; anchor, tag and style of the field stay.
    static void setSequenceItems(CYAMLSequence& field, const std::string& text);
    /// Replaces entries and key order by those of a YAML mapping; anchor, tag and style stay.
    static void setMapEntries(CYAMLMap& field, const std::string& text);

    /// An empty text empties the run mode, which then reads 0. Any other text must be a word
    /// of the table and is taken as it is, not as YAML text.
    template <typename E>
    static void setRunModeText(CYAMLEnum<E>& field, const std::string& text)
    {
        if (text.empty()) {
            field.setDefault(static_cast<E>(0));
        } else {
            field.setEnum(CYAMLEnum<E>::lookUp(text));
        }
    }

    /// Refuses an analyzer document's open mode other than "u", "r", "w" and "a" with a
    /// ParserException that names the `analyzer` ("trace", "coverage") and the text.
    static void verifyOpenMode(const std::string& text, const std::string& analyzer);

    /// The text of a mapping event that came in a state where the section takes none.
    static std::string sectionTypeMessage(const std::string& key, int state);
};

} // namespace kestrix
