#pragma once

#include <memory>
#include <string>

#include "CLineLocation.h"
#include "CMemAddress.h"
#include "CSymbolInfo.h"
#include "Containers.h"
#include "WrapperBase.h"

namespace kestrix {

/// Translates between names and locations: symbols and addresses, source lines and code
/// addresses. Asks Quillon each time.
class CAddressController : public WrapperBase {
public:
    /// Code addresses of one source line that are asked for.
    static const DWORD MAX_LINE_ADDRESSES = 100;

    explicit CAddressController(std::shared_ptr<ConnectionMgr> connectionMgr);
    ~CAddressController() override;

    /// Index of the memory area that holds program code.
    int getCodeArea(bool isPhysical);

    /// Unknown names raise IllegalArgumentException.
    CMemAddress getFunctionAddress(const std::string& name);
    CMemAddress getVariableAddress(const std::string& name);
    CMemAddress getLabelAddress(const std::string& name);
    CSymbolInfo getSymbolInfo(DWORD flags, const std::string& name);

    /// Empty if nothing stands at the address.
    std::string getSymbolAtAddress(DWORD symbolFlags, BYTE memArea, ADDRESS address);
    /// Empty for a line without code; at most MAX_LINE_ADDRESSES.
    VectorDWORD getAddressOfSourceLine(const std::string& fileName, int lineNumber);
    /// Empty name and line 0 outside the debug information.
    CLineLocation getSourceLineAtAddress(ADDRESS address);
    /// The same; the two further words are not read.
    CLineLocation getSourceLineAtAddress(ADDRESS address, DWORD reserved1, DWORD reserved2);

#ifndef SWIG
private:
    /// getSymbolInfo with the logger switched off around it.
    CSymbolInfo quietSymbolInfo(DWORD flags, const std::string& name);
    std::string method(const char* name) const;
#endif
};

} // namespace kestrix
