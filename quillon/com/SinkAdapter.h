#pragma once

#include "OrbelSink.h"
#include "com/Adapter.h"

namespace quillon::com {

/// `OrbelSink`: the event sink; no operation of its own.
class SinkAdapter final : public Adapter<kestrix::OrbelSink> {
public:
    using Adapter::Adapter;
};

} // namespace quillon::com
