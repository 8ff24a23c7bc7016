#include "com/ProjectAdapter.h"

namespace quillon::com {

HRESULT ProjectAdapter::Reserved1()
{
    return notImplemented("OrbelProject::Reserved1");
}

HRESULT ProjectAdapter::ProjectCommand(DWORD, const char*, const char*)
{
    return notImplemented("OrbelProject::ProjectCommand");
}

HRESULT ProjectAdapter::GetBuildStatus(DWORD, kestrix::CBuildStatus*)
{
    return notImplemented("OrbelProject::GetBuildStatus");
}

HRESULT ProjectAdapter::BuildOption(DWORD, const char*, const char*, char*, DWORD)
{
    return notImplemented("OrbelProject::BuildOption");
}

} // namespace quillon::com
