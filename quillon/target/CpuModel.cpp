#include "target/CpuModel.h"

#include <unicorn/unicorn.h>

#include <cctype>

#include "target/TargetError.h"

namespace quillon::target {

namespace {

struct Model {
    const char* name;
    int engineModel;
};

const Model models[] = {
    {"cortex-m0", UC_CPU_ARM_CORTEX_M0},
    {"cortex-m3", UC_CPU_ARM_CORTEX_M3},
    {"cortex-m4", UC_CPU_ARM_CORTEX_M4},
    {"cortex-m7", UC_CPU_ARM_CORTEX_M7},
};

} // namespace

CpuModel CpuModel::fromName(std::string_view name)
{
    std::string lower;
    for (char c : name) {
        lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    for (const Model& m : models) {
        if (lower == m.name) {
            return CpuModel(m.name, m.engineModel);
        }
    }
    std::string known;
    for (const std::string& n : names()) {
        known += (known.empty() ? "" : ", ") + n;
    }
    throw TargetError(TargetError::Kind::InvalidArgument,
                      "unknown CPU '" + std::string(name) + "' (known: " + known + ")");
}

const std::vector<std::string>& CpuModel::names()
{
    static const std::vector<std::string> list = [] {
        std::vector<std::string> n;
        for (const Model& m : models) {
            n.push_back(m.name);
        }
        return n;
    }();
    return list;
}

} // namespace quillon::target
