#pragma once

#include "IUnknown.h"
#include "OrbelProfilerFlags.h"

namespace kestrix {

/// Base of the profiler interface. It has no operation of its own, so the operations of
/// OrbelProfiler2 follow those of IUnknown directly.
class OrbelProfiler : public IUnknown {
protected:
    ~OrbelProfiler() = default;
};

} // namespace kestrix
