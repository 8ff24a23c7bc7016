#include "CYAMLUtil.h"

#include "CLimitedScalarValidator.h"
#include "CYAMLMap.h"
#include "CYAMLMapReceiver.h"
#include "CYAMLParser.h"
#include "CYAMLSequence.h"
#include "CYAMLSequenceReceiver.h"
#include "CYAMLTestContentHandler.h"
#include "ParserException.h"
#include "YamlFileReader.h"
#include "YamlStringReader.h"

namespace kestrix {

namespace {

void parseInput(ITestParserEventReceiver& receiver, IKestrixYAMLInput& input)
{
    CYAMLParser parser;
    CYAMLTestContentHandler handler(&receiver);
    parser.setContentHandler(&handler);
    parser.parse(input);
}

/// A scalar given as text is read as a one-item flow sequence, so that its quoting follows
/// the rules of a YAML file and a comma splits it into items.
CYAMLSequence parseWrapped(const std::string& text)
{
    CYAMLSequence sequence;
    CYAMLSequenceReceiver receiver(nullptr, &sequence);
    CYAMLUtil::parseYAML(receiver, "[" + text + "]");
    return sequence;
}

CYAMLSequence parseSequence(const std::string& text)
{
    CYAMLSequence sequence;
    CYAMLSequenceReceiver receiver(nullptr, &sequence);
    CYAMLUtil::parseYAML(receiver, text);
    return sequence;
}

CYAMLMap parseMap(const std::string& text)
{
    CYAMLMap map;
    CYAMLMapReceiver receiver(nullptr, &map);
    CYAMLUtil::parseYAML(receiver, text);
    return map;
}

/// The single item of a wrapped scalar; ParserException for none or several.
const CYAMLScalar& singleItem(const CYAMLSequence& sequence, const std::string& text)
{
    if (sequence.size() == 0) {
        throw ParserException(KX_POS, "Empty scalars are not allowed!");
    }
    if (sequence.size() > 1) {
        throw ParserException(KX_POS, "Scalar consists of multiple items. Use quotes to make it a single scalar!")
            .add("scalar", text);
    }
    return sequence.getItems().front();
}

} // namespace

void CYAMLUtil::parseYAML(ITestParserEventReceiver& receiver, const std::string& text)
{
    YamlStringReader input(text);
    parseInput(receiver, input);
}

void CYAMLUtil::parseYAML(ITestParserEventReceiver& receiver, const std::string& fileName, int seekPos)
{
    YamlFileReader input(fileName, seekPos);
    parseInput(receiver, input);
}

void CYAMLUtil::parseScalar(CYAMLScalar& out, const std::string& text)
{
    if (text.empty()) {
        out = CYAMLScalar(std::string());
        return;
    }
    CYAMLSequence sequence = parseWrapped(text);
    out = singleItem(sequence, text);
}

void CYAMLUtil::parseYAMLList(StrVector& out, const std::string& text)
{
    StrVector items;
    parseSequence(text).getVector(items);
    out.swap(items);
}

void CYAMLUtil::parseYAMLMap(StrVector& keys, StrVector& values, const std::string& text)
{
    CYAMLMap map = parseMap(text);
    StrVector newKeys;
    StrVector newValues;
    map.getKeys(newKeys);
    map.getValues(newValues);
    keys.swap(newKeys);
    values.swap(newValues);
}

void CYAMLUtil::parseYAMLMap(StrStrMap& out, const std::string& text)
{
    StrStrMap pairs;
    parseMap(text).getMap(pairs);
    out.swap(pairs);
}

std::string CYAMLUtil::strVector2Str(const StrVector& items)
{
    std::string text;
    for (size_t i = 0; i < items.size(); ++i) {
        if (i > 0) {
            text += ", ";
        }
        text += items[i];
    }
    return text;
}

void CYAMLUtil::verifyScalar(const std::string& text)
{
    if (!text.empty()) {
        singleItem(parseWrapped(text), text);
    }
}

void CYAMLUtil::verifyLimitedScalar(const std::string& text, const std::string& description)
{
    CYAMLSequence sequence = parseWrapped(text);
    if (sequence.size() > 1) {
        throw ParserException(KX_POS, "Scalar consists of multiple items. Remove commas!").add("scalar", text);
    }
    if (sequence.size() == 1) {
        CLimitedScalarValidator validator;
        validator.validate(sequence.getItems().front(), description);
    }
}

void CYAMLUtil::verifyList(const std::string& text)
{
    parseSequence(text);
}

void CYAMLUtil::verifyMap(const std::string& text)
{
    parseMap(text);
}

} // namespace kestrix
