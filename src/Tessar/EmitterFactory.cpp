#include "EmitterFactory.h"

#include "CXMLEmitter.h"
#include "CYAMLEmitter.h"

namespace kestrix {

std::shared_ptr<IEmitter> EmitterFactory::createYamlEmitter(std::shared_ptr<IStream> stream)
{
    return std::make_shared<CYAMLEmitter>(std::move(stream));
}

std::shared_ptr<IEmitter> EmitterFactory::createXmlEmitter(std::shared_ptr<IStream> stream)
{
    return std::make_shared<CXMLEmitter>(std::move(stream));
}

} // namespace kestrix
