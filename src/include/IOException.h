#pragma once

#include "IException.h"

namespace kestrix {

class IOException : public IException {
    KX_EXCEPTION_MEMBER(IOException)
};

} // namespace kestrix
