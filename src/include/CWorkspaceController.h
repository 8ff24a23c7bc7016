#pragma once

#include <memory>
#include <string>

#include "WrapperBase.h"

namespace kestrix {

/// Opens, saves and closes Quillon's workspace: one command word each on `OrbelIDE::Workspace`.
/// Only `open` tells an S_FALSE answer; the others let it pass.
class CWorkspaceController : public WrapperBase {
public:
    explicit CWorkspaceController(std::shared_ptr<ConnectionMgr> connectionMgr);
    ~CWorkspaceController() override;

    void newWS(const std::string& fileName);
    bool open(const std::string& fileName);
    void save();
    void saveAs(const std::string& fileName);
    void close();
    void closeDiscard();

#ifdef SWIG
    OrbelIDE* getOrbelIDE() const;
#endif

private:
    /// Sends `command` with `fileName`: true for S_OK, false for S_FALSE, else IOException.
    bool workspace(DWORD command, const std::string& fileName);
    static std::string method(const char* name);
};

} // namespace kestrix
