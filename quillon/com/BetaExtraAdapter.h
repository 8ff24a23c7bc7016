#pragma once

#include "OrbelBetaExtra.h"
#include "com/Adapter.h"

namespace quillon::com {

/// `OrbelBetaExtra`: the fourth interface of the beta client; no operation of its own.
class BetaExtraAdapter final : public Adapter<kestrix::OrbelBetaExtra> {
public:
    using Adapter::Adapter;
};

} // namespace quillon::com
