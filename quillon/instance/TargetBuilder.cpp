#include "instance/TargetBuilder.h"

#include <cstdio>

#include "debuginfo/DebugInfoError.h"
#include "debuginfo/ElfImage.h"
#include "instance/DerivedMemory.h"
#include "instance/WorkspaceError.h"
#include "target/MemoryArea.h"
#include "target/TargetError.h"

namespace quillon {

target::TargetConfig TargetBuilder::configFor(const Workspace& workspace)
{
    target::TargetConfig config;
    config.cpu = Workspace::cpuName(workspace.cpu());
    config.clockHz = workspace.clock();
    if (workspace.memoryFromDownload()) {
        config.memory = derivedMemory(workspace);
        return config;
    }
    for (const Workspace::MemoryArea& area : workspace.memory()) {
        config.memory.push_back({area.name, area.start, area.size, targetAccess(area.access)});
    }
    return config;
}

std::unique_ptr<target::Target> TargetBuilder::build(const Workspace& workspace)
{
    const target::TargetConfig config = configFor(workspace);
    std::unique_ptr<target::Target> target;
    try {
        target = std::make_unique<target::Target>(config);
    } catch (const target::TargetError& error) {
        throw WorkspaceError(workspace.file().string() + ": " + error.what());
    }
    checkRegisters(workspace, target->memory());
    return target;
}

void TargetBuilder::checkRegisters(const Workspace& workspace, const target::MemoryMap& memory)
{
    auto check = [&](std::uint32_t address, int line, const std::string& what, const std::string& key) {
        const target::MemoryArea* area = memory.find(address);
        if (area == nullptr || !(area->access() & target::MemoryArea::Write) || std::uint64_t(address) + 4 > area->end()) {
            char hex[16];
            std::snprintf(hex, sizeof hex, "0x%08x", address);
            throw WorkspaceError(workspace.file().string() + ":" + std::to_string(line) + ": " + what + " at " + hex
                                 + " in '" + key + "' lies in no writable memory area");
        }
    };
    if (const auto& terminal = workspace.terminal()) {
        check(terminal->uart, terminal->line, "the terminal's UART", "terminal.uart");
    }
    const auto& channels = workspace.hilChannels();
    for (std::size_t i = 0; i < channels.size(); ++i) {
        check(channels[i].address, channels[i].line, "HIL channel '" + channels[i].name + "'",
              "hil[" + std::to_string(i) + "].address");
    }
}

std::vector<target::TargetConfig::Area> TargetBuilder::derivedMemory(const Workspace& workspace)
{
    std::vector<debuginfo::ElfImage> images;
    const auto& downloads = workspace.downloads();
    for (std::size_t i = 0; i < downloads.size(); ++i) {
        try {
            images.push_back(debuginfo::ElfImage::open(downloads[i].file.string()));
        } catch (const debuginfo::DebugInfoError& error) {
            throw WorkspaceError(workspace.file().string() + ":" + std::to_string(downloads[i].line)
                                 + ": download file '" + downloads[i].file.string() + "' in 'download["
                                 + std::to_string(i) + "].file' cannot be used: " + error.what());
        }
    }
    std::vector<const debuginfo::ElfImage*> pointers;
    for (const debuginfo::ElfImage& image : images) {
        pointers.push_back(&image);
    }
    return DerivedMemory::fromImages(pointers);
}

unsigned TargetBuilder::targetAccess(unsigned workspaceAccess)
{
    using target::MemoryArea;
    return ((workspaceAccess & Workspace::Read) ? MemoryArea::Read : 0u)
           | ((workspaceAccess & Workspace::Write) ? MemoryArea::Write : 0u)
           | ((workspaceAccess & Workspace::Execute) ? MemoryArea::Execute : 0u);
}

} // namespace quillon
