#include "CHILController.h"

#include <cstring>
#include <vector>

#include "CLogger.h"
#include "Exceptions.h"
#include "IDescriptor.h"
#include "OrbelHIL.h"
#include "OrbelResults.h"

namespace kestrix {

CHILController::CHILController(std::shared_ptr<ConnectionMgr> connectionMgr) : WrapperBase(std::move(connectionMgr))
{
    instanceId = "hilCtrl";
}

CHILController::~CHILController()
{
    try {
        if (CLogger* logger = getLogger()) {
            logger->logc("Dtor: ~CHILController");
        }
    } catch (...) {
        // A destructor reports nothing; a failed log line is lost.
    }
}

std::string CHILController::method(const char* operation)
{
    return std::string("kestrix::CHILController::") + operation;
}

std::string CHILController::read(const std::string& paths, DWORD bufferSize, DWORD flags1, DWORD flags2)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("read"), paths);
    }
    // One byte beyond the size given keeps the text terminated whatever Quillon writes.
    std::vector<char> buffer(static_cast<size_t>(bufferSize) + 1, '\0');
    const HRESULT hr = getOrbelHIL()->Read(flags1, flags2, paths.c_str(), buffer.data(), bufferSize);
    if (hr == S_OK) {
        return std::string(buffer.data(), strnlen(buffer.data(), bufferSize));
    }
    if (hr == ORBEL_E_SIZE) {
        throw IllegalSizeException(KX_POS, "Data size exceeds buffer size!").add("bufferSize", static_cast<int>(bufferSize));
    }
    throw IOException(KX_POS, "Can not read from HIL!").add("paths", paths);
}

void CHILController::write(const std::string& values, DWORD flags1, DWORD flags2)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("write"), values);
    }
    if (getOrbelHIL()->Write(flags1, flags2, values.c_str()) != S_OK) {
        throw IOException(KX_POS, "Can not write to HIL!").add("values", values);
    }
}

IVectorVariableDescriptors* CHILController::getDescriptors()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getDescriptors"));
    }
    SHILInfo info;
    info.m_dwFlags = OrbelHILFlags::hiDescriptor;
    const HRESULT hr = getOrbelHIL()->GetInfo(sizeof(SHILInfo), &info);
    if (hr != S_OK || (info.m_dwFlags & OrbelHILFlags::hiDescriptor) == 0 || info.m_pIDescriptor == nullptr) {
        throw IOException(KX_POS, "Can not get HIL parameters!");
    }
    return info.m_pIDescriptor->VariableDescriptors();
}

} // namespace kestrix
