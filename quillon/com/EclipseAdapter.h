#pragma once

#include "OrbelEclipse.h"
#include "com/Adapter.h"

namespace quillon::com {

/// `OrbelEclipse`: the Eclipse integration; no operation of its own.
class EclipseAdapter final : public Adapter<kestrix::OrbelEclipse> {
public:
    using Adapter::Adapter;
};

} // namespace quillon::com
