#pragma once

#include <memory>
#include <string>

#include "OrbelTypes.h"
#include "WrapperBase.h"

namespace kestrix {

class ConnectionMgr;

/// One test-local variable on the Quillon side, created in the test being prepared.
class CTestVariableController : public WrapperBase {
public:
    /// The type is a C type text; it is passed on and not kept.
    CTestVariableController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& name,
                            const std::string& type);
    /// Destroys the variable on the Quillon side if still alive; never throws.
    ~CTestVariableController() override;

    void destroy();
    DWORD getHandle() const { return handle; }
    std::string getName() const { return name; }

private:
    DWORD handle = 0;
    std::string name;
    bool isDestroyed = false;
};

} // namespace kestrix
