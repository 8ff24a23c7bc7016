#include "ModuleVersion.h"

namespace kestrix {

std::string getModuleVersion()
{
    return "1.3.2";
}

} // namespace kestrix
