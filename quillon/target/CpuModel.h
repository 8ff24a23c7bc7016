#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillon::target {

/// A Cortex-M core that the emulator models, chosen by name: cortex-m0, cortex-m3, cortex-m4, cortex-m7.
class CpuModel {
public:
    /// Ignores case; an unknown name is a TargetError that lists the known ones.
    static CpuModel fromName(std::string_view name);
    static const std::vector<std::string>& names();

    const std::string& name() const { return m_name; }
    /// The emulator's model number.
    int engineModel() const { return m_engineModel; }

private:
    CpuModel(std::string name, int engineModel) : m_name(std::move(name)), m_engineModel(engineModel) {}

    std::string m_name;
    int m_engineModel;
};

} // namespace quillon::target
