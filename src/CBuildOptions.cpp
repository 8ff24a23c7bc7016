#include "CBuildOptions.h"

#include <cstring>
#include <vector>

#include "CLogger.h"
#include "Exceptions.h"
#include "OrbelProject.h"
#include "OrbelProjectFlags.h"
#include "OrbelResults.h"

namespace kestrix {

namespace {

typedef OrbelProjectFlags F;

const char* suffixOf(HRESULT hr)
{
    switch (hr) {
    case ORBEL_E_FILE_NOT_FOUND:
        return ": The pszScope does not identify a valid option.";
    case ORBEL_E_BAD_ID:
        return ": Invalid option specified by the 'value' parameter.";
    case ORBEL_E_ERROR:
        return ": The current build manager configuration is not valid for this operation.";
    case ORBEL_E_NOT_AVAILABLE:
        return ": Requested operation is not available.";
    default:
        return ": Build manager option operation failed!";
    }
}

} // namespace

CBuildOptions::CBuildOptions(std::shared_ptr<ConnectionMgr> connectionMgr) : WrapperBase(std::move(connectionMgr))
{
    instanceId = "buildOptions";
}

CBuildOptions::~CBuildOptions() = default;

std::string CBuildOptions::method(const char* name)
{
    return std::string("kestrix::CBuildOptions::") + name;
}

std::string CBuildOptions::get(int index, const std::string& scope, const std::string& option)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("get"), "Dss", static_cast<DWORD>(index), scope, option);
    }
    HRESULT hr = S_OK;
    std::string value = read(F::boGetByIndex | static_cast<DWORD>(index), scope, option, hr);
    if (hr == S_FALSE) {
        throw IllegalStateException(KX_POS, "Index out out of range.");
    }
    check(hr, "get");
    return value;
}

std::string CBuildOptions::get(const std::string& scope, const std::string& option)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("get"), "ss", scope, option);
    }
    HRESULT hr = S_OK;
    std::string value = read(F::boGet, scope, option, hr);
    check(hr, "get");
    return value;
}

void CBuildOptions::set(const std::string& scope, const std::string& option, const std::string& value)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("set"), "sss", scope, option, value);
    }
    check(write(F::boSet, scope, option, value), "set");
}

void CBuildOptions::add(const std::string& scope, const std::string& option, const std::string& value)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("add"), "sss", scope, option, value);
    }
    check(write(F::boAdd, scope, option, value), "add");
}

void CBuildOptions::remove(const std::string& scope, const std::string& option)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("remove"), "ss", scope, option);
    }
    char empty[1] = "";
    check(getOrbelProject()->BuildOption(F::boRemove, scope.c_str(), option.c_str(), empty, 0), "remove");
}

void CBuildOptions::move(const std::string& scope, const std::string& option, const std::string& value)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("move"), "sss", scope, option, value);
    }
    check(write(F::boMove, scope, option, value), "move");
}

std::string CBuildOptions::read(DWORD word, const std::string& scope, const std::string& option, HRESULT& hr)
{
    std::vector<char> buffer(VALUE_BUFFER_SIZE, '\0');
    hr = getOrbelProject()->BuildOption(word, scope.c_str(), option.c_str(), buffer.data(), VALUE_BUFFER_SIZE);
    return std::string(buffer.data(), strnlen(buffer.data(), VALUE_BUFFER_SIZE));
}

HRESULT CBuildOptions::write(DWORD word, const std::string& scope, const std::string& option, const std::string& value)
{
    std::vector<char> copy(value.c_str(), value.c_str() + value.size() + 1);
    return getOrbelProject()->BuildOption(word, scope.c_str(), option.c_str(), copy.data(),
                                          static_cast<DWORD>(copy.size()));
}

void CBuildOptions::check(HRESULT hr, const char* operation) const
{
    if (hr != S_OK) {
        throw IOException(KX_POS, method(operation) + suffixOf(hr), getResultText(hr));
    }
}

} // namespace kestrix
