#pragma once

#include "OrbelProject.h"
#include "com/Adapter.h"

namespace quillon::com {

/// `OrbelProject`: project and build. Every operation answers E_NOTIMPL with a message that names it
/// until the service behind it exists.
class ProjectAdapter final : public Adapter<kestrix::OrbelProject> {
public:
    using Adapter::Adapter;

    HRESULT Reserved1() override;
    HRESULT ProjectCommand(DWORD, const char*, const char*) override;
    HRESULT GetBuildStatus(DWORD, kestrix::CBuildStatus*) override;
    HRESULT BuildOption(DWORD, const char*, const char*, char*, DWORD) override;
};

} // namespace quillon::com
