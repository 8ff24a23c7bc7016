#pragma once

#include "IException.h"

namespace kestrix {

class VersionConflictException : public IException {
    KX_EXCEPTION_MEMBER(VersionConflictException)
};

} // namespace kestrix
