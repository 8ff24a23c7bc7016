#pragma once

#include <string>

namespace kestrix {

/// Version text of the library.
std::string getModuleVersion();

} // namespace kestrix
