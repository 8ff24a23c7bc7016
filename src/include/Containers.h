#pragma once

// The shared container types of the library.

#include <map>
#include <string>
#include <vector>

#include "OrbelTypes.h"

namespace kestrix {

typedef std::vector<std::string> StrVector;
typedef std::map<std::string, std::string> StrStrMap;
typedef std::vector<BYTE> VectorBYTE;
typedef std::vector<DWORD> VectorDWORD;

} // namespace kestrix
