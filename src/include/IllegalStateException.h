#pragma once

#include "IException.h"

namespace kestrix {

class IllegalStateException : public IException {
    KX_EXCEPTION_MEMBER(IllegalStateException)
};

} // namespace kestrix
