#pragma once

#include "IException.h"

namespace kestrix {

class SystemException : public IException {
    KX_EXCEPTION_MEMBER(SystemException)
};

} // namespace kestrix
