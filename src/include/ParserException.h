#pragma once

#include "IException.h"

namespace kestrix {

class ParserException : public IException {
    KX_EXCEPTION_MEMBER(ParserException)
};

} // namespace kestrix
