#pragma once

#include <memory>
#include <string>
#include <vector>

#include "CCPUInfo.h"
#include "CValueType.h"
#include "Containers.h"
#include "SBatchAccessHeader.h"
#include "SBatchAccessItem.h"
#include "SBatchAccessItemResult.h"
#include "SType.h"
#include "WrapperBase.h"

namespace kestrix {

typedef std::vector<SBatchAccessItem> VectorBatchAccessItem;
typedef std::vector<SBatchAccessItemResult> VectorBatchAccessResult;

/// Target data: memory, registers, typed values, expressions, batched accesses, JTAG scans,
/// the OCD port lines and the flash. Each operation is one checked call of the automation
/// interfaces; failing results become exceptions.
class CDataController : public WrapperBase {
public:
    /// Longest text that the string form of `modify` takes, without its terminating zero.
    static const size_t MAX_MODIFY_TEXT = 511;

    explicit CDataController(std::shared_ptr<ConnectionMgr> connectionMgr);
    ~CDataController() override;

    /// The result code of the interface is not looked at.
    CCPUInfo getCPUInfo();
    BYTE getMemoryAreaBytesPerMAU(int memArea);

    /// The data of all MAUs followed by one access result byte per MAU.
    VectorBYTE readMemory(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, DWORD aNumMAUs, BYTE bytesPerMAU);
    /// Writes the first bytesPerMAU * aNumMAUs bytes of buff; one access result byte per MAU.
    VectorBYTE writeMemory(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, DWORD aNumMAUs, BYTE bytesPerMAU,
                           const VectorBYTE& buff);

    CValueType readRegister(DWORD accessFlags, const std::string& name);
    void writeRegister(DWORD accessFlags, const std::string& name, const CValueType& value);

    CValueType readValue(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, const SType& type);
    void writeValue(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, const CValueType& value);

    CValueType evaluate(DWORD accessFlags, const std::string& expression);
    CValueType evaluate(DWORD accessFlags, DWORD evaluateFlags, const std::string& expression);

    std::string modify(DWORD accessFlags, const std::string& expression, const CValueType& value);
    /// Quillon parses `value` in the target's terms; at most MAX_MODIFY_TEXT characters.
    std::string modify(DWORD accessFlags, const std::string& expression, const std::string& value);
    std::string modify(DWORD accessFlags, DWORD evaluateFlags, const std::string& expression, const CValueType& value);
    std::string modify(DWORD accessFlags, DWORD evaluateFlags, const std::string& expression,
                       const std::string& value);

    /// True when done, false on S_FALSE. items and results must not be empty, and results must
    /// have room for every item.
    bool batchAccess(DWORD batchFlags, const SBatchAccessHeader* header, const VectorBatchAccessItem& items,
                     VectorBatchAccessResult& results);

    void jtagScan(DWORD scanFlags, DWORD numBits, const VectorBYTE& tdi, bool isTdoRequested, VectorBYTE& tdo);
    void setJtagLine(DWORD line, bool state);
    void setOcdPortTristate(bool tristate);

    void eraseFlash();
    void secureFlash();
    void unsecureFlash();

    /// Helpers of managed callers that hold an unmanaged byte buffer; no target access.
    VectorBYTE byteArrayToVector(const BYTE* bytes, DWORD size);
    /// Copies the whole vector into a buffer of `size` bytes, which must be large enough.
    void vectorToByteArray(const VectorBYTE& source, BYTE* bytes, DWORD size);
    BYTE getByte(const BYTE* bytes, int index);
    void setByte(BYTE* bytes, int index, BYTE value);

private:
    std::string modifyWith(DWORD flags, const std::string& expression, char* buffer, const SValue* value,
                           const SType* type);
    void setLine(DWORD line, bool state, const char* failure);
    void flashCommand(DWORD command, const char* failure);
};

} // namespace kestrix
