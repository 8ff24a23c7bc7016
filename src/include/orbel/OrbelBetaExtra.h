#pragma once

#include "IUnknown.h"

namespace kestrix {

/// The fourth interface of the beta client (IID_OrbelBetaExtra): fetched and released, never
/// called; no operation of its own is known.
class OrbelBetaExtra : public IUnknown {
protected:
    ~OrbelBetaExtra() = default;
};

} // namespace kestrix
