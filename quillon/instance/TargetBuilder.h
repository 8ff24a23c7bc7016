#pragma once

#include <memory>

#include "instance/Workspace.h"
#include "target/Target.h"
#include "target/TargetConfig.h"

namespace quillon {

/// Makes the target of an instance from its workspace: its core, its clock and its memory areas,
/// which exist but hold nothing yet. A workspace without memory gets the areas that
/// `DerivedMemory` derives from its download files, which are read for that.
class TargetBuilder {
public:
    /// Throws `WorkspaceError`; a download file that cannot be read as an ARM ELF is named with
    /// its key and line: "<workspace>:<line>: download file '<path>' in 'download[<i>].file'
    /// cannot be used: <why>".
    static target::TargetConfig configFor(const Workspace& workspace);

    /// The target of `configFor`; a layout that the target refuses is a `WorkspaceError` too, and so
    /// is a terminal UART or a HIL channel whose register lies in no writable memory area.
    static std::unique_ptr<target::Target> build(const Workspace& workspace);

private:
    static std::vector<target::TargetConfig::Area> derivedMemory(const Workspace& workspace);
    static unsigned targetAccess(unsigned workspaceAccess);
    static void checkRegisters(const Workspace& workspace, const target::MemoryMap& memory);
};

} // namespace quillon
