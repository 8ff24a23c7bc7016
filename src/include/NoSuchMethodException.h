#pragma once

#include "IException.h"

namespace kestrix {

class NoSuchMethodException : public IException {
    KX_EXCEPTION_MEMBER(NoSuchMethodException)
};

} // namespace kestrix
