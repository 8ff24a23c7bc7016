#include "IEmitter.h"

#include "IllegalArgumentException.h"
#include "IllegalStateException.h"

#include <string>

namespace kestrix {

void IEmitter::checkNotNull(const std::shared_ptr<IEmitter>& emitter)
{
    if (!emitter) {
        throw IllegalArgumentException(KX_POS, "Emitter must not be null!");
    }
}

void IEmitter::writeMapOfScalars(const CYAMLMap& map)
{
    writeMapStart(map);
    for (const auto& key : map.getKeyTexts()) {
        const auto& entry = map.entryOf(key);
        write(entry.first);
        write(entry.second->asScalar());
    }
    writeMapEnd();
}

void IEmitter::write(const CYAMLObject& object)
{
    switch (object.getType()) {
    case CYAMLObject::SCALAR:
        write(object.asScalar());
        break;
    case CYAMLObject::SEQUENCE:
        write(object.asSequence());
        break;
    case CYAMLObject::MAPPING:
        write(object.asMap());
        break;
    default:
        throw IllegalStateException(KX_POS, "Unknown YAML object type: " + std::to_string(object.getType()));
    }
}

} // namespace kestrix
