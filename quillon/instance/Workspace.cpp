#include "instance/Workspace.h"

#include <system_error>

#include "instance/WorkspaceParser.h"

namespace quillon {

Workspace Workspace::load(const std::filesystem::path& file)
{
    return WorkspaceParser(file).parse();
}

std::filesystem::path Workspace::canonicalPath(const std::filesystem::path& path)
{
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    if (error) {
        return path.lexically_normal();
    }
    std::filesystem::path result = std::filesystem::weakly_canonical(absolute, error);
    return error ? absolute.lexically_normal() : result;
}

const char* Workspace::cpuName(Cpu cpu)
{
    switch (cpu) {
    case Cpu::CortexM0: return "cortex-m0";
    case Cpu::CortexM3: return "cortex-m3";
    case Cpu::CortexM4: return "cortex-m4";
    case Cpu::CortexM7: return "cortex-m7";
    }
    return "cortex-m3";
}

} // namespace quillon
