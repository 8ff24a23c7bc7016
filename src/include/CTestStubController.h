#pragma once

#include <memory>
#include <string>

#include "OrbelTypes.h"
#include "WrapperBase.h"

namespace kestrix {

class ConnectionMgr;

/// One stub of the test being prepared: the target stops at the entry of the stubbed function.
class CTestStubController : public WrapperBase {
public:
    CTestStubController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& functionName);
    /// Also names the stub's return value when `retValName` is not empty.
    CTestStubController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& functionName,
                        const std::string& retValName);
    /// Destroys the stub on the Quillon side if still alive; never throws.
    ~CTestStubController() override;

    void destroy();
    void createParameter(DWORD index, const std::string& name);
    /// Names the return value on the Quillon side; `getRetValName` keeps the constructor's name.
    void createReturnValue(const std::string& name);

    DWORD getHandle() const { return handle; }
    std::string getStubName() const { return stubName; }
    std::string getRetValName() const { return retValName; }

private:
    void create(const std::string& functionName);

    DWORD handle = 0;
    std::string stubName;
    std::string retValName;
    bool isDestroyed = false;
};

} // namespace kestrix
