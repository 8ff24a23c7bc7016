#pragma once

#include "IUnknown.h"

namespace kestrix {

/// Named by its identifier only; no operation of its own is known.
class OrbelSink : public IUnknown {
protected:
    ~OrbelSink() = default;
};

} // namespace kestrix
