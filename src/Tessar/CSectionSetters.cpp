#include "CSectionSetters.h"

#include "CYAMLMapReceiver.h"
#include "CYAMLSequenceReceiver.h"
#include "CYAMLUtil.h"
#include "ParserException.h"

namespace kestrix {

void CSectionSetters::setSequenceItems(CYAMLSequence& field, const std::string& text)
{
    CYAMLSequence parsed;
    CYAMLSequenceReceiver receiver(nullptr, &parsed);
    CYAMLUtil::parseYAML(receiver, text);
    field.getItems() = parsed.getItems();
}

void CSectionSetters::setMapEntries(CYAMLMap& field, const std::string& text)
{
    CYAMLMap parsed;
    CYAMLMapReceiver receiver(nullptr, &parsed);
    CYAMLUtil::parseYAML(receiver, text);
    field.assignEntries(parsed);
}

void CSectionSetters::verifyOpenMode(const std::string& text, const std::string& analyzer)
{
    if (text != "u" && text != "r" && text != "w" && text != "a") {
        throw ParserException(KX_POS, "Invalid open mode for " + analyzer +
                                          " document. Should be 'u', 'w', or 'a'.")
            .add("openMode", text);
    }
}

std::string CSectionSetters::sectionTypeMessage(const std::string& key, int state)
{
    return "Invalid section type for mapping. Key: '" + key + "':   Section: " + std::to_string(state);
}

} // namespace kestrix
