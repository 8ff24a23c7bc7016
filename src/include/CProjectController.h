#pragma once

#include <memory>
#include <string>

#include "CBuildOptions.h"
#include "CBuildStatus.h"
#include "OrbelTypes.h"
#include "WrapperBase.h"

namespace kestrix {

/// Quillon's build manager: compile, link, make, build and custom operations, each one command word. A
/// command returns when Quillon has taken it; the build goes on there and shows in `getStatus()`.
class CProjectController : public WrapperBase {
public:
    explicit CProjectController(std::shared_ptr<ConnectionMgr> connectionMgr);
    ~CProjectController() override;

    void compile(const std::string& fileName);
    /// `flag` sets the bit 0x10 of the command word.
    void link(bool flag = false);
    void make(bool flag = false);
    void build(bool flag = false);
    void dependencies();
    void stop();
    void customOperation(const std::string& operation, const std::string& parameters);
    CBuildStatus getStatus();
    CBuildOptions& options();

#ifdef SWIG
    OrbelProject* getOrbelProject() const;
#else
private:
    static std::string method(const char* name);
    /// Sends a command word; `failure` is the text of the IOException of a failing result.
    void command(DWORD word, const char* second, const char* third, const std::string& failure);
    void flagged(const char* name, DWORD word, bool flag);

    CBuildOptions m_options;
#endif
};

} // namespace kestrix
