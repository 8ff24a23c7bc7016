#include "CYAMLDocumentWriter.h"

#include <fstream>
#include <sstream>

#include "CYAMLEmitter.h"

namespace kestrix {

namespace {

void writeDocument(const std::function<void(const std::shared_ptr<CYAMLEmitter>&)>& write, std::ostream& stream)
{
    auto emitter = std::make_shared<CYAMLEmitter>(&stream);
    emitter->startStream();
    emitter->startDocument(true);
    write(emitter);
    emitter->endDocument(true);
    emitter->endStream();
}

void writeDocument(ITestParserEventReceiver& object, std::ostream& stream)
{
    writeDocument([&object](const std::shared_ptr<CYAMLEmitter>& emitter) { object.serialize(emitter); }, stream);
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

std::string CYAMLDocumentWriter::toString(const std::function<void(IEmitter&)>& write)
{
    std::ostringstream text;
    writeDocument([&write](const std::shared_ptr<CYAMLEmitter>& emitter) { write(*emitter); }, text);
    return text.str();
}

} // namespace kestrix
