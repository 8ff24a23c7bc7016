#include "CYAMLDocumentWriter.h"

#include <fstream>
#include <sstream>

#include "CYAMLEmitter.h"

namespace kestrix {

namespace {

void writeDocument(ITestParserEventReceiver& object, std::ostream& stream)
{
    auto emitter = std::make_shared<CYAMLEmitter>(&stream);
    emitter->startStream();
    emitter->startDocument(true);
    object.serialize(emitter);
    emitter->endDocument(true);
    emitter->endStream();
}

} // namespace

void CYAMLDocumentWriter::save(ITestParserEventReceiver& object, const std::string& fileName, bool isAppend)
{
    std::ofstream file(fileName, isAppend ? std::ios::app : std::ios::trunc);
    if (!file.is_open()) {
        return;
    }
    writeDocument(object, file);
}

std::string CYAMLDocumentWriter::toString(ITestParserEventReceiver& object)
{
    std::ostringstream text;
    writeDocument(object, text);
    return text.str();
}

} // namespace kestrix
