#include "CAddressController.h"

#include <cstring>

#include "CLogger.h"
#include "CUtil.h"
#include "Exceptions.h"
#include "OrbelDebug.h"
#include "OrbelResults.h"

namespace kestrix {

namespace {

const DWORD SYMBOL_BUFFER_SIZE = 512;
const DWORD FILE_NAME_BUFFER_SIZE = 260;

std::string bufferText(const char* buffer, size_t size)
{
    return std::string(buffer, strnlen(buffer, size));
}

} // namespace

CAddressController::CAddressController(std::shared_ptr<ConnectionMgr> connectionMgr)
    : WrapperBase(std::move(connectionMgr))
{
    instanceId = "addrCtrl";
    if (CLogger* logger = getLogger()) {
        logger->log("addrCtrl = obFactory.getDebugFacade()");
    }
}

CAddressController::~CAddressController()
{
    try {
        if (CLogger* logger = getLogger()) {
            logger->logc("Dtor: ~CAddressController");
        }
    } catch (...) {
        // A destructor reports nothing; a failed log line is lost.
    }
}

std::string CAddressController::method(const char* name) const
{
    return std::string("kestrix::CAddressController::") + name;
}

int CAddressController::getCodeArea(bool isPhysical)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getCodeArea"), static_cast<DWORD>(isPhysical));
    }
    CCPUInfo info;
    (void)getOrbelDebug()->GetCPUInfo(&info);
    switch (info.m_wCPU) {
    case 8:
    case 12:
        return 1;
    case 18:
        return isPhysical ? 1 : 0;
    default:
        return 0;
    }
}

CMemAddress CAddressController::getFunctionAddress(const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getFunctionAddress"), name);
    }
    const CSymbolInfo info = quietSymbolInfo(OrbelDebugFlags::gafFunctions, name);
    if (CLogger* logger = getLogger()) {
        const SType type = info.getMType();
        logger->logc("symInfo.memArea = " + CUtil::i2a(int{info.getMemArea()}));
        logger->logc("symInfo.address = " + CUtil::i2a(static_cast<unsigned int>(info.getAddress())));
        logger->logc("symInfo.sizeMAUs = " + CUtil::i2a(static_cast<unsigned int>(info.getSizeMAUs())));
        logger->logc("symInfo.type.bitSize = " + CUtil::i2a(int{type.m_byBitSize}));
        logger->logc("symInfo.type.type = " + CLogger::obSTypeType2str(type.m_byType));
    }
    return CMemAddress(info.getMemArea(), info.getAddress());
}

CMemAddress CAddressController::getVariableAddress(const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getVariableAddress"), name);
    }
    const CSymbolInfo info = quietSymbolInfo(OrbelDebugFlags::gafVariables, name);
    return CMemAddress(info.getMemArea(), info.getAddress());
}

CMemAddress CAddressController::getLabelAddress(const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getLabelAddress"), name);
    }
    const CSymbolInfo info = quietSymbolInfo(OrbelDebugFlags::gafLabels, name);
    return CMemAddress(info.getMemArea(), info.getAddress());
}

CSymbolInfo CAddressController::quietSymbolInfo(DWORD flags, const std::string& name)
{
    // A failure leaves the logger off.
    CLogger* logger = getLogger();
    if (logger != nullptr) {
        logger->loggingOff();
    }
    CSymbolInfo info = getSymbolInfo(flags, name);
    if (logger != nullptr) {
        logger->loggingOn();
    }
    return info;
}

CSymbolInfo CAddressController::getSymbolInfo(DWORD flags, const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("getSymbolInfo"), "Ds", flags, name);
        logger->logc(CUtil::i2h(static_cast<unsigned int>(flags)) + " = " +
                     CLogger::obDebugAccessFlags2str(static_cast<int>(flags)) + " | " +
                     CLogger::obDebugAddressFlags2str(static_cast<int>(flags)) + " | ...");
    }
    BYTE memArea = 0;
    ADDRESS address = 0;
    DWORD sizeMAUs = 0;
    SType type;
    const HRESULT hr = getOrbelDebug()->GetAddress(flags, name.c_str(), &memArea, &address, &sizeMAUs, &type);
    if (hr == S_OK) {
        return CSymbolInfo(memArea, address, sizeMAUs, type);
    }
    if (hr == S_FALSE) {
        throw IllegalArgumentException(KX_POS, "Symbol '" + name + "' not found!")
            .add("error", "Command getSymbolInfo() failed!")
            .add("stdErr", getResultText(hr));
    }
    throw IOException(KX_POS, "'getSymbolInfo(" + name + ")' command failed: ", getResultText(hr));
}

std::string CAddressController::getSymbolAtAddress(DWORD symbolFlags, BYTE memArea, ADDRESS address)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("getSymbolAtAddress"), "viD",
                     CLogger::obDebugSymbolFlags2str(static_cast<int>(symbolFlags)), memArea, address);
    }
    char buffer[SYMBOL_BUFFER_SIZE] = {};
    const HRESULT hr = getOrbelDebug()->GetSymbolAtAddress(symbolFlags, memArea, address, buffer, SYMBOL_BUFFER_SIZE);
    if (hr == S_OK) {
        return bufferText(buffer, SYMBOL_BUFFER_SIZE);
    }
    if (hr == S_FALSE) {
        return "";
    }
    throw IOException(KX_POS, "'getSymbolAtAddress()' command failed: ", getResultText(hr));
}

VectorDWORD CAddressController::getAddressOfSourceLine(const std::string& fileName, int lineNumber)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("getAddressOfSourceLine"), "si", fileName, lineNumber);
    }
    ADDRESS addresses[MAX_LINE_ADDRESSES] = {};
    DWORD count = MAX_LINE_ADDRESSES;
    const HRESULT hr = getOrbelDebug()->GetAddressOfSourceLine(0, fileName.c_str(), lineNumber, addresses, &count);
    if (hr == S_OK) {
        // A count beyond the array would be the server's fault; it is cut to the array.
        const DWORD filled = count < MAX_LINE_ADDRESSES ? count : MAX_LINE_ADDRESSES;
        return VectorDWORD(addresses, addresses + filled);
    }
    if (hr == S_FALSE) {
        return VectorDWORD();
    }
    throw IOException(KX_POS,
                      "'getAddressOfSourceLine()' command failed! file: " + fileName + "  line: " +
                          CUtil::i2a(lineNumber) + ".\n",
                      getResultText(hr));
}

CLineLocation CAddressController::getSourceLineAtAddress(ADDRESS address)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getSourceLineAtAddress"), static_cast<DWORD>(address));
    }
    char fileName[FILE_NAME_BUFFER_SIZE] = {};
    DWORD line = 0;
    const HRESULT hr = getOrbelDebug()->GetSourceLineAtAddress(0, address, fileName, FILE_NAME_BUFFER_SIZE, &line);
    if (hr == S_OK) {
        return CLineLocation(bufferText(fileName, FILE_NAME_BUFFER_SIZE), line);
    }
    if (hr == S_FALSE) {
        return CLineLocation("", 0);
    }
    throw IOException(KX_POS, "'getSourceLineAtAddress()' command failed: ", getResultText(hr));
}

CLineLocation CAddressController::getSourceLineAtAddress(ADDRESS address, DWORD, DWORD)
{
    return getSourceLineAtAddress(address);
}

} // namespace kestrix
