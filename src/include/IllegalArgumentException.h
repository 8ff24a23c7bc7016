#pragma once

#include "IException.h"

namespace kestrix {

class IllegalArgumentException : public IException {
    KX_EXCEPTION_MEMBER(IllegalArgumentException)
};

} // namespace kestrix
