#include "IEmitter.h"

#include "IllegalStateException.h"

namespace kestrix {

void IEmitter::writeMapOfScalars(const CYAMLMap& map)
{
    writeMapStart(map);
    for (const auto& key : map.getKeyTexts()) {
        const auto entry = map.find(key);
        if (entry == map.getEntries().end()) {
            throw IllegalStateException(KX_POS, "Internal error - key without entry in map!").add("key", key);
        }
        write(entry->first);
        write(entry->second->asScalar());
    }
    writeMapEnd();
}

} // namespace kestrix
