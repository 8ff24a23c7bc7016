#pragma once

#include "IUnknown.h"

namespace kestrix {

/// Interface of the Eclipse client: fetched and released, no operation of its own is known.
class OrbelEclipse : public IUnknown {
protected:
    ~OrbelEclipse() = default;
};

} // namespace kestrix
