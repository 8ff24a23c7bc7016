#include "CDataController.h"

#include <cstring>

#include "CLogger.h"
#include "Exceptions.h"
#include "MemoryAreaTable.h"
#include "OrbelDebug2.h"
#include "OrbelIDE3.h"
#include "OrbelIdentifiers.h"
#include "OrbelResults.h"
#include "SLine_IN.h"
#include "SLine_OUT.h"
#include "SScan_OUT.h"
#include "Scan.h"

namespace kestrix {

namespace {

const char* const CLASS_PREFIX = "kestrix::CDataController::";
const DWORD TEXT_BUFFER_SIZE = 512;
const DWORD SERVICE_FLAGS = OrbelIDEFlags::SERVICE_CALL_FLAGS;

std::string method(const char* name)
{
    return std::string(CLASS_PREFIX) + name;
}

/// The text of a buffer up to its first zero byte, or the whole buffer.
std::string bufferText(const char* buffer, size_t size)
{
    return std::string(buffer, strnlen(buffer, size));
}

/// Failure of ReadMemory and WriteMemory.
[[noreturn]] void throwMemoryFailure(const WrapperBase& base, const std::string& operation, HRESULT hr)
{
    const std::string prefix = "F. " + operation + "() failed";
    if (hr == ORBEL_E_CAN_NOT_ACCESS) {
        throw IOException(KX_POS,
                          prefix + ". Memory can not be accessed. This can be caused by bad memory area "
                                   "specification, out of range address, unavailability of the requested access "
                                   "mode (real-time) or the CPU is not in a mode that allows memory access.",
                          base.getLastErrorText());
    }
    if (hr == ORBEL_E_SIZE) {
        throw IOException(KX_POS, prefix + ". The byBytesPerMAU value is incorrect for the specified memory area.",
                          base.getLastErrorText());
    }
    throw IOException(KX_POS, prefix + ": ", base.getResultText(hr));
}

/// Failure of ReadRegister and WriteRegister.
[[noreturn]] void throwRegisterFailure(const WrapperBase& base, const std::string& operation, HRESULT hr,
                                       const std::string& name)
{
    const std::string prefix = "F. " + operation + "() failed";
    if (hr == ORBEL_E_CAN_NOT_ACCESS) {
        throw IOException(KX_POS, prefix + ". The register can not be accessed in the current CPU mode.",
                          base.getLastErrorText());
    }
    if (hr == ORBEL_E_SIZE) {
        throw IOException(KX_POS, prefix + ". The specified register is to long to fit SValue.",
                          base.getLastErrorText());
    }
    if (hr == ORBEL_E_BAD_ID) {
        throw IOException(KX_POS, prefix + ". The specified register does not exist: " + name,
                          base.getLastErrorText());
    }
    throw IOException(KX_POS, prefix + ": ", base.getResultText(hr));
}

/// Failure of Evaluate and Modify: the reason is Quillon's text in the buffer.
[[noreturn]] void throwExpressionFailure(const WrapperBase& base, const std::string& operation, HRESULT hr,
                                         const std::string& expression, const char* buffer)
{
    throw IOException(KX_POS, "F. " + operation + "() failed!")
        .add("expression", expression)
        .add("error", base.getResultText(hr))
        .add("reason", bufferText(buffer, TEXT_BUFFER_SIZE));
}

void requireBytes(const void* bytes, const char* name)
{
    if (bytes == nullptr) {
        throw IllegalArgumentException(KX_POS, std::string("'") + name + "' must not be null!");
    }
}

} // namespace

CDataController::CDataController(std::shared_ptr<ConnectionMgr> connectionMgr)
    : WrapperBase(std::move(connectionMgr))
{
    instanceId = "dataCtrl";
}

CDataController::~CDataController()
{
    try {
        if (CLogger* logger = getLogger()) {
            logger->logc("Dtor: ~CDataController");
        }
    } catch (...) {
        // A destructor reports nothing; a failed log line is lost.
    }
}

CCPUInfo CDataController::getCPUInfo()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getCPUInfo"));
    }
    CCPUInfo info;
    (void)getOrbelDebug()->GetCPUInfo(&info);
    return info;
}

BYTE CDataController::getMemoryAreaBytesPerMAU(int memArea)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getMemoryAreaBytesPerMAU"), static_cast<DWORD>(memArea));
    }
    CCPUInfo info;
    (void)getOrbelDebug()->GetCPUInfo(&info);
    return static_cast<BYTE>(bytesPerMAUOf(memArea, info));
}

VectorBYTE CDataController::readMemory(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, DWORD aNumMAUs,
                                       BYTE bytesPerMAU)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("readMemory"), "viDDi", CLogger::obDebugAccessFlags2str(accessFlags), memArea,
                     aAddress, aNumMAUs, bytesPerMAU);
    }
    OrbelDebug* debug = getOrbelDebug();
    const size_t dataSize = size_t{bytesPerMAU} * aNumMAUs;
    VectorBYTE buffer(dataSize + aNumMAUs, 0);
    const HRESULT hr =
        debug->ReadMemory(accessFlags, memArea, aAddress, aNumMAUs, buffer.data(), bytesPerMAU, buffer.data() + dataSize);
    if (hr != S_OK) {
        throwMemoryFailure(*this, "ReadMemory", hr);
    }
    return buffer;
}

VectorBYTE CDataController::writeMemory(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, DWORD aNumMAUs,
                                        BYTE bytesPerMAU, const VectorBYTE& buff)
{
    if (CLogger* logger = getLogger()) {
        logger->fillVectorBYTE("bytes", buff);
        logger->logf(instanceId, method("writeMemory"), "viDDiv", CLogger::obDebugAccessFlags2str(accessFlags),
                     memArea, aAddress, aNumMAUs, bytesPerMAU, "bytes");
    }
    if (buff.size() < size_t{bytesPerMAU} * aNumMAUs) {
        throw IllegalArgumentException(
            KX_POS, "'buff' size is smaller than 'bytesPerMAU * aNumMAUs'. size = " + std::to_string(buff.size()));
    }
    OrbelDebug* debug = getOrbelDebug();
    VectorBYTE results(aNumMAUs, 0);
    // The interface takes the data through a writable pointer; it only reads them.
    const HRESULT hr = debug->WriteMemory(accessFlags, memArea, aAddress, aNumMAUs, const_cast<BYTE*>(buff.data()),
                                          bytesPerMAU, results.data());
    if (hr != S_OK) {
        throwMemoryFailure(*this, "WriteMemory", hr);
    }
    return results;
}

CValueType CDataController::readRegister(DWORD accessFlags, const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("readRegister"), "vs", CLogger::obDebugAccessFlags2str(accessFlags), name);
    }
    OrbelDebug* debug = getOrbelDebug();
    SValue value;
    SType type;
    const HRESULT hr = debug->ReadRegister(accessFlags, name.c_str(), &value, &type);
    if (hr != S_OK) {
        throwRegisterFailure(*this, "ReadRegister", hr, name);
    }
    return CValueType(type, value);
}

void CDataController::writeRegister(DWORD accessFlags, const std::string& name, const CValueType& value)
{
    if (CLogger* logger = getLogger()) {
        logger->createCValueType("wrValue", value);
        logger->logf(instanceId, method("writeRegister"), "vsv", CLogger::obDebugAccessFlags2str(accessFlags), name,
                     "wrValue");
    }
    OrbelDebug* debug = getOrbelDebug();
    const SValue data = value.getValue();
    const SType type = value.getType();
    const HRESULT hr = debug->WriteRegister(accessFlags, name.c_str(), &data, &type);
    if (hr == ORBEL_S_SIZE) {
        throw IOException(KX_POS,
                          "F. WriteRegister() failed. The specified bit size does not match register size: " + name,
                          getLastErrorText());
    }
    if (hr != S_OK) {
        throwRegisterFailure(*this, "WriteRegister", hr, name);
    }
}

CValueType CDataController::readValue(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, const SType& type)
{
    if (CLogger* logger = getLogger()) {
        logger->createSType("rdType", type);
        logger->logf(instanceId, method("readValue"), "viDv", CLogger::obDebugAccessFlags2str(accessFlags), memArea,
                     aAddress, "rdType");
    }
    OrbelDebug* debug = getOrbelDebug();
    SValue value;
    const HRESULT hr = debug->ReadValue(accessFlags, memArea, aAddress, &value, &type);
    if (hr == S_FALSE) {
        throw IOException(KX_POS, "F. ReadValue() failed. ", getLastErrorText());
    }
    if (hr != S_OK) {
        throw IOException(KX_POS, "F. ReadValue() failed. ", getResultText(hr));
    }
    return CValueType(type, value);
}

void CDataController::writeValue(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, const CValueType& value)
{
    if (CLogger* logger = getLogger()) {
        logger->createCValueType("wrValue", value);
        logger->logf(instanceId, method("writeValue"), "viDv", CLogger::obDebugAccessFlags2str(accessFlags), memArea,
                     aAddress, "wrValue");
    }
    OrbelDebug* debug = getOrbelDebug();
    const SValue data = value.getValue();
    const SType type = value.getType();
    const HRESULT hr = debug->WriteValue(accessFlags, memArea, aAddress, &data, &type);
    if (hr != S_OK) {
        throw IOException(KX_POS, "F. WriteValue() failed. ", getResultText(hr));
    }
}

CValueType CDataController::evaluate(DWORD accessFlags, const std::string& expression)
{
    return evaluate(accessFlags, OrbelDebugFlags::efDefaultMemAreaDisplay, expression);
}

CValueType CDataController::evaluate(DWORD accessFlags, DWORD evaluateFlags, const std::string& expression)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("evaluate"), "vvs", CLogger::obDebugAccessFlags2str(accessFlags),
                     CLogger::obDebugEvaluateFlags2str(evaluateFlags), expression);
    }
    OrbelDebug* debug = getOrbelDebug();
    char buffer[TEXT_BUFFER_SIZE] = {};
    SValue value;
    SType type;
    const HRESULT hr =
        debug->Evaluate(accessFlags | evaluateFlags, expression.c_str(), buffer, TEXT_BUFFER_SIZE, &value, &type);
    if (hr != S_OK) {
        throwExpressionFailure(*this, "Evaluate", hr, expression, buffer);
    }
    return CValueType(type, value, bufferText(buffer, TEXT_BUFFER_SIZE));
}

std::string CDataController::modify(DWORD accessFlags, const std::string& expression, const CValueType& value)
{
    return modify(accessFlags, OrbelDebugFlags::efDefaultMemAreaDisplay, expression, value);
}

std::string CDataController::modify(DWORD accessFlags, const std::string& expression, const std::string& value)
{
    return modify(accessFlags, OrbelDebugFlags::efDefaultMemAreaDisplay, expression, value);
}

std::string CDataController::modify(DWORD accessFlags, DWORD evaluateFlags, const std::string& expression,
                                    const CValueType& value)
{
    if (CLogger* logger = getLogger()) {
        logger->createCValueType("modValue", value);
        logger->logf(instanceId, method("modify"), "vvsv", CLogger::obDebugAccessFlags2str(accessFlags),
                     CLogger::obDebugEvaluateFlags2str(evaluateFlags), expression, "modValue");
    }
    char buffer[TEXT_BUFFER_SIZE] = {};
    const SValue data = value.getValue();
    const SType type = value.getType();
    return modifyWith(accessFlags | evaluateFlags, expression, buffer, &data, &type);
}

std::string CDataController::modify(DWORD accessFlags, DWORD evaluateFlags, const std::string& expression,
                                    const std::string& value)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("modify"), "vvss", CLogger::obDebugAccessFlags2str(accessFlags),
                     CLogger::obDebugEvaluateFlags2str(evaluateFlags), expression, value);
    }
    if (value.size() > MAX_MODIFY_TEXT) {
        throw IllegalArgumentException(KX_POS, "'value' does not fit the buffer of 512 bytes. size = " +
                                                   std::to_string(value.size()));
    }
    char buffer[TEXT_BUFFER_SIZE] = {};
    std::memcpy(buffer, value.data(), value.size());
    return modifyWith(accessFlags | evaluateFlags | OrbelDebugFlags::efValueAsText, expression, buffer, nullptr,
                      nullptr);
}

std::string CDataController::modifyWith(DWORD flags, const std::string& expression, char* buffer, const SValue* value,
                                        const SType* type)
{
    const HRESULT hr = getOrbelDebug()->Modify(flags, expression.c_str(), buffer, TEXT_BUFFER_SIZE, value, type);
    if (hr != S_OK) {
        throwExpressionFailure(*this, "Modify", hr, expression, buffer);
    }
    return bufferText(buffer, TEXT_BUFFER_SIZE);
}

bool CDataController::batchAccess(DWORD batchFlags, const SBatchAccessHeader* header,
                                  const VectorBatchAccessItem& items, VectorBatchAccessResult& results)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("batchAccess"));
    }
    requireBytes(header, "header");
    if (items.empty() || results.empty()) {
        throw IllegalArgumentException(KX_POS, "'items' and 'results' must hold at least one element!")
            .add("items", static_cast<int>(items.size()))
            .add("results", static_cast<int>(results.size()));
    }
    const HRESULT hr = getOrbelDebug2()->BatchAccess(batchFlags, header, items.data(), results.data());
    if (hr == S_OK) {
        return true;
    }
    if (hr == S_FALSE) {
        return false;
    }
    if (hr == E_FAIL) {
        throw IOException(KX_POS, "One of accesses in method BatchAccess() failed!");
    }
    if (hr == E_NOTIMPL) {
        throw FeatureNotImplementedException(KX_POS, "Batch access is not implemented!");
    }
    throw IOException(KX_POS, "Method batchAccess() failed!", getResultText(hr));
}

void CDataController::jtagScan(DWORD scanFlags, DWORD numBits, const VectorBYTE& tdi, bool isTdoRequested,
                               VectorBYTE& tdo)
{
    using DebugService_JTAG::Scan;
    DWORD flags = scanFlags;
    if (tdi.empty()) {
        flags |= Scan::scanNoTDI;
    }
    if (!isTdoRequested) {
        flags |= Scan::scanNoTDO;
    }
    DebugService_JTAG::SScan_IN scan;
    scan.m_dwScanFlags = flags;
    scan.m_dwNumBits = numBits;
    const DWORD inSize = Scan::IN_Size(scan);
    if (tdi.size() < inSize) {
        throw IndexOutOfBoundsException(KX_POS, "Invalid input data size!")
            .add("expected", static_cast<int>(inSize))
            .add("tdiSize", static_cast<int>(tdi.size()));
    }
    const DWORD outSize = Scan::OUT_Size(scan);
    if (isTdoRequested) {
        tdo.resize(outSize);
    }
    OrbelIDE3* ide = getOrbelIDE3();
    DebugService_JTAG::SScan_OUT out;
    const HRESULT hr = ide->ServiceCallData(SERVICE_FLAGS, &SERVICE_Scan, sizeof(scan), &scan, inSize, tdi.data(),
                                            sizeof(out), &out, outSize, isTdoRequested ? tdo.data() : nullptr, 0);
    if (hr != S_OK) {
        throw IOException(KX_POS, "JTAG scan failed!", getResultText(hr));
    }
}

void CDataController::setJtagLine(DWORD line, bool state)
{
    setLine(line, state, "Setting of JTAG line failed!");
}

void CDataController::setOcdPortTristate(bool tristate)
{
    setLine(DebugService_JTAG::SLine_IN::LINE_OCD_TRISTATE, tristate, "Setting of OCD Port Tristate failed!");
}

void CDataController::setLine(DWORD line, bool state, const char* failure)
{
    DebugService_JTAG::SLine_IN in;
    in.m_dwFlags = 1;
    in.m_dwLine = line;
    in.m_dwState = state ? 1 : 0;
    DebugService_JTAG::SLine_OUT out;
    const HRESULT hr = getOrbelIDE3()->ServiceCall(SERVICE_FLAGS, &SERVICE_Line, sizeof(in), &in, sizeof(out), &out, 0);
    if (hr != S_OK) {
        throw IOException(KX_POS, failure, getResultText(hr));
    }
}

void CDataController::eraseFlash()
{
    flashCommand(1, "Erasing of flash failed!");
}

void CDataController::secureFlash()
{
    flashCommand(2, "Securing of flash failed!");
}

void CDataController::unsecureFlash()
{
    flashCommand(3, "Unsecuring of flash failed!");
}

void CDataController::flashCommand(DWORD command, const char* failure)
{
    DWORD done = 0;
    const HRESULT hr =
        getOrbelIDE2()->ServiceCall(SERVICE_FLAGS, &SERVICE_Flash, sizeof(command), &command, sizeof(done), &done, 0);
    if (hr < 0 || done == 0) {
        throw IOException(KX_POS, failure, getResultText(hr));
    }
}

VectorBYTE CDataController::byteArrayToVector(const BYTE* bytes, DWORD size)
{
    if (size == 0) {
        return VectorBYTE();
    }
    requireBytes(bytes, "bytes");
    return VectorBYTE(bytes, bytes + size);
}

void CDataController::vectorToByteArray(const VectorBYTE& source, BYTE* bytes, DWORD size)
{
    if (source.empty()) {
        return;
    }
    requireBytes(bytes, "bytes");
    if (size < source.size()) {
        throw IllegalArgumentException(KX_POS, "'bytes' is smaller than the vector!")
            .add("size", static_cast<int>(size))
            .add("vectorSize", static_cast<int>(source.size()));
    }
    std::memcpy(bytes, source.data(), source.size());
}

BYTE CDataController::getByte(const BYTE* bytes, int index)
{
    requireBytes(bytes, "bytes");
    if (index < 0) {
        throw IndexOutOfBoundsException(KX_POS, "Negative index of a byte!").add("index", index);
    }
    return bytes[index];
}

void CDataController::setByte(BYTE* bytes, int index, BYTE value)
{
    requireBytes(bytes, "bytes");
    if (index < 0) {
        throw IndexOutOfBoundsException(KX_POS, "Negative index of a byte!").add("index", index);
    }
    bytes[index] = value;
}

} // namespace kestrix
