#pragma once

#include "IException.h"

namespace kestrix {

class IndexOutOfBoundsException : public IException {
    KX_EXCEPTION_MEMBER(IndexOutOfBoundsException)
};

} // namespace kestrix
