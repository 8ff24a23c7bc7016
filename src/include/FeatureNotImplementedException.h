#pragma once

#include "IException.h"

namespace kestrix {

class FeatureNotImplementedException : public IException {
    KX_EXCEPTION_MEMBER(FeatureNotImplementedException)
};

} // namespace kestrix
