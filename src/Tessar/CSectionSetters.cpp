#include "CSectionSetters.h"

#include "CYAMLMapReceiver.h"
#include "CYAMLSequenceReceiver.h"
#include "CYAMLUtil.h"

namespace kestrix {

void CSectionSetters::setScalar(CYAMLScalar& field, const std::string& text)
{
    CYAMLScalar parsed;
    CYAMLUtil::parseScalar(parsed, text);
    field = parsed;
}

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

} // namespace kestrix
