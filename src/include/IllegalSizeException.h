#pragma once

#include "IException.h"

namespace kestrix {

class IllegalSizeException : public IException {
    KX_EXCEPTION_MEMBER(IllegalSizeException)
};

} // namespace kestrix
