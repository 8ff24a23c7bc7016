#pragma once

#include <memory>

#include "IEmitter.h"
#include "IStream.h"

namespace kestrix {

/// Makes the emitter of an output format on a stream.
class EmitterFactory {
public:
    static std::shared_ptr<IEmitter> createYamlEmitter(std::shared_ptr<IStream> stream);
    static std::shared_ptr<IEmitter> createXmlEmitter(std::shared_ptr<IStream> stream);
};

} // namespace kestrix
