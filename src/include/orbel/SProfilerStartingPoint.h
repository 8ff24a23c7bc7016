#pragma once

#include "SStartingPoint.h"

namespace kestrix {

/// The starting point given to OrbelProfiler2::StartConfiguration. Adds no field.
struct SProfilerStartingPoint : public SStartingPoint {
};

static_assert(sizeof(SProfilerStartingPoint) == 20, "SProfilerStartingPoint is twenty bytes on the interface");

} // namespace kestrix
