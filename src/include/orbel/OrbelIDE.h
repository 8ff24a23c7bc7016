#pragma once

#include "IUnknown.h"
#include "OrbelIDEFlags.h"
#include "SApplicationData.h"

namespace kestrix {

/// Quillon as an application: its documents, its workspace, its main window.
class OrbelIDE : public IUnknown {
public:
    /// Acts on the document of fileName ("" for the terminal) by the flag word
    /// (OrbelIDEFlags::EDocumentFlags). strParameter may be null.
    virtual HRESULT Document(DWORD flags, const char* fileName, const char* strParameter,
                             DWORD dwParameter) = 0;
    /// Workspace command (OrbelIDEFlags::EWorkspaceCommand); fileName "" where none.
    virtual HRESULT Workspace(DWORD command, const char* fileName) = 0;
    /// Window and message box commands (OrbelIDEFlags::EApplicationCommand).
    virtual HRESULT Application(DWORD command, SApplicationData* data) = 0;

protected:
    ~OrbelIDE() = default;
};

} // namespace kestrix
