#pragma once

#include "IException.h"

namespace kestrix {

class FileNotFoundException : public IException {
    KX_EXCEPTION_MEMBER(FileNotFoundException)
};

} // namespace kestrix
