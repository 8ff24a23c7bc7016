#include "CIDEController.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "CLogger.h"
#include "Exceptions.h"
#include "OrbelIDE3.h"
#include "OrbelIDEFlags.h"
#include "OrbelResults.h"
#include "Platform.h"

namespace kestrix {

namespace {

typedef OrbelIDEFlags F;

const int DYNAMIC_OPTIONS_BUILD = 98;

struct Destination {
    const char* text;
    DWORD bits;
};

/// A float as a whole number for a message; out of range values are clamped.
int wholeNumber(double value)
{
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= double(std::numeric_limits<int>::max())) {
        return std::numeric_limits<int>::max();
    }
    if (value <= double(std::numeric_limits<int>::min())) {
        return std::numeric_limits<int>::min();
    }
    return static_cast<int>(value);
}

const char* textOrNull(const char* text)
{
    return text != nullptr ? text : "NULL";
}

} // namespace

const char* const CIDEController::OPT_DEST_IDE = "IDE";
const char* const CIDEController::OPT_DEST_DOCUMENT = "Document";
const char* const CIDEController::OPT_DEST_VALKE = "VALKE";
const char* const CIDEController::OPT_DEST_PLUGIN = "Plugin";
const char* const CIDEController::OPT_DEST_HIL = "HIL";

CIDEController::CIDEController(std::shared_ptr<ConnectionMgr> connectionMgr) : WrapperBase(std::move(connectionMgr))
{
    instanceId = "ideCtrl";
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId + " = obFactory.getIdeCtrl()");
    }
}

CIDEController::~CIDEController()
{
    try {
        if (CLogger* logger = getLogger()) {
            logger->logc("Dtor: ~CIDEController");
        }
    } catch (...) {
        // A destructor reports nothing; a failed log line is lost.
    }
}

std::string CIDEController::method(const char* name) const
{
    return std::string("kestrix::CIDEController::") + name;
}

template <class F>
auto CIDEController::silently(F&& operation)
{
    CLogger* logger = getLogger();
    if (logger != nullptr) {
        logger->loggingOff();
    }
    auto result = operation();
    if (logger != nullptr) {
        logger->loggingOn();
    }
    return result;
}

// ---- information and windows

SQuillonVersionInfo CIDEController::information(DWORD request, const char* failure)
{
    SQuillonVersionInfo info;
    info.m_dwFlags = request;
    const HRESULT hr = getOrbelIDE3()->GetQuillonVersion(sizeof(SQuillonVersionInfo), &info);
    if (hr != S_OK) {
        throw IOException(KX_POS, failure, getResultText(hr));
    }
    return info;
}

CQuillonVersion CIDEController::getQuillonVersion()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getQuillonVersion"));
    }
    const SQuillonVersionInfo info = information(F::vrVersion, "F. getQuillonVersion() failed. ");
    if ((info.m_dwFlags & F::vrVersion) == 0) {
        throw IOException(KX_POS, "F. getQuillonVersion() did not return version info.");
    }
    return CQuillonVersion(info.m_byMajor, info.m_byMinor, info.m_wBuild, 0xFFFF);
}

std::string CIDEController::getPath(int pathType)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getPath"), DWORD(pathType));
    }
    DWORD request = 0;
    switch (pathType) {
    case 0:
        request = F::vrPath0;
        break;
    case 1:
        request = F::vrPath1;
        break;
    case 2:
        request = F::vrPath2;
        break;
    default:
        throw IllegalArgumentException(KX_POS, "Invalid path type!").add("pathType", pathType);
    }
    const SQuillonVersionInfo info = information(request, "F. getQuillonVersion() failed. ");
    if ((info.m_dwFlags & request) == 0) {
        throw IOException(KX_POS, "F. getPath() is not implemented for this version of quillon!");
    }
    return std::string(info.m_szPath, strnlen(info.m_szPath, sizeof(info.m_szPath)));
}

DWORD CIDEController::getNumClients()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getNumClients"));
    }
    SQuillonVersionInfo info;
    info.m_dwFlags = F::vrNumClients;
    const HRESULT hr = getOrbelIDE3()->GetQuillonVersion(sizeof(SQuillonVersionInfo), &info);
    if (hr != S_OK) {
        throw IOException(KX_POS, getResultText(hr));
    }
    return info.m_dwNumClients;
}

void CIDEController::bringQuillonToTop()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("bringQuillonToTop"));
    }
    const SQuillonVersionInfo info = information(F::vrMainWindow, "'bringQuillonToTop' command failed: ");
    if ((info.m_dwFlags & F::vrMainWindow) != 0 && info.m_dwMainWindow != 0) {
        platform::setForegroundWindow(info.m_dwMainWindow);
    }
}

CIDEData CIDEController::application(DWORD command, int left, int top, int right, int bottom)
{
    SApplicationData data;
    data.m_dwLeft = DWORD(left);
    data.m_dwTop = DWORD(top);
    data.m_dwRight = DWORD(right);
    data.m_dwBottom = DWORD(bottom);
    const HRESULT hr = getOrbelIDE()->Application(command, &data);
    if (hr != S_OK) {
        throw IOException(KX_POS, "CIDEController::application() failed!", getResultText(hr));
    }
    return CIDEData(data);
}

CIDEData CIDEController::activate()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("activate"));
    }
    return application(F::acActivate);
}

CIDEData CIDEController::minimize()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("minimize"));
    }
    return application(F::acMinimize);
}

CIDEData CIDEController::restore()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("restore"));
    }
    return application(F::acRestore);
}

CIDEData CIDEController::maximize()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("maximize"));
    }
    return application(F::acMaximize);
}

CIDEData CIDEController::move(int left, int top, int right, int bottom)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("move"), "iiii", left, top, right, bottom);
    }
    return application(F::acMove, left, top, right, bottom);
}

void CIDEController::setMsgBoxHook(bool isOn)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("setMsgBoxHook"), DWORD(isOn ? 1 : 0));
    }
    application(isOn ? F::acMsgBoxHookOn : F::acMsgBoxHookOff);
}

void CIDEController::setMsgBoxHookMode(int mode)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("setMsgBoxHookMode"), DWORD(mode));
    }
    switch (mode) {
    case 0:
        application(F::acMsgBoxHookOff);
        application(F::acMsgBoxHookMode0);
        break;
    case 1:
        application(F::acMsgBoxHookOn);
        break;
    case 2:
        application(F::acMsgBoxHookMode2);
        break;
    default:
        application(F::acMsgBoxHookModeOther);
        break;
    }
}

int CIDEController::getMsgBoxHookMode()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getMsgBoxHookMode"));
    }
    throw FeatureNotImplementedException(KX_POS, "Not yet implemented - call method isMsgBoxHookOn() instead!");
}

bool CIDEController::isMsgBoxHookOn()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("isMsgBoxHookOn"));
    }
    SApplicationData data;
    const HRESULT hr = getOrbelIDE()->Application(F::acIsMsgBoxHookOn, &data);
    if (hr == S_OK) {
        return true;
    }
    if (hr == S_FALSE) {
        return false;
    }
    throw IOException(KX_POS, "'Set Message Box Hook' command failed: ", getResultText(hr));
}

// ---- options

CIDEController::OptionUrl CIDEController::parseOptionUrl(const std::string& url)
{
    if (url.empty()) {
        throw IllegalArgumentException(KX_POS, "Empty option URL is not allowed!").add("url", url);
    }
    if (url[0] != '/') {
        throw IllegalArgumentException(KX_POS, "Option URL should start with '/'!").add("url", url);
    }
    const size_t moduleEnd = url.find('/', 1);
    if (moduleEnd == std::string::npos) {
        throw IllegalArgumentException(KX_POS, "Option URL without module type is not allowed!").add("url", url);
    }
    const std::string module = url.substr(1, moduleEnd - 1);
    static const Destination destinations[] = {
        {OPT_DEST_IDE, F::ofModuleIDE},         {OPT_DEST_DOCUMENT, F::ofModuleDocument},
        {OPT_DEST_VALKE, F::ofModuleVALKE},     {OPT_DEST_PLUGIN, F::ofModulePlugin},
        {OPT_DEST_HIL, F::ofModuleHIL},
    };
    OptionUrl parts;
    bool known = false;
    for (const Destination& destination : destinations) {
        if (module == destination.text) {
            parts.module = destination.bits;
            known = true;
        }
    }
    if (!known) {
        throw IllegalArgumentException(KX_POS, "Unknown module type when setting option!")
            .add("url", url)
            .add("module", module);
    }
    const size_t scopeEnd = url.find('/', moduleEnd + 1);
    if (scopeEnd != std::string::npos) {
        parts.scope = url.substr(moduleEnd + 1, scopeEnd - moduleEnd - 1);
        parts.name = url.substr(scopeEnd + 1);
    } else {
        parts.name = url.substr(moduleEnd + 1);
    }
    if (parts.name.empty()) {
        throw IllegalArgumentException(KX_POS, "Option URL without 'option' part is not allowed!").add("url", url);
    }
    return parts;
}

bool CIDEController::option(DWORD flags, const std::string& scope, const std::string& name, COptionValue& value)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("option"), "Dssv", flags, scope, name, "optVal");
    }
    SOptionValue* record = value.getOptionValue();
    const HRESULT hr = getOrbelIDE3()->Option(flags, scope.c_str(), name.c_str(), record);
    if (hr == S_OK) {
        return true;
    }
    throw IOException(KX_POS, "'IDE3::Option()' command failed!")
        .add("stdError", getResultText(hr))
        .add("m_pszStringOut", record->m_pszStringOut != nullptr ? value.getOutputBuffer() : std::string("NULL"))
        .add("flags", static_cast<int>(flags))
        .add("scope", scope)
        .add("option", name)
        .add("optPathSeparator", int{record->m_cPathSeparator})
        .add("optValSeparator", int{record->m_cValueSeparator})
        .add("optOptSeparator", int{record->m_cOptionSeparator})
        .add("optValStr", textOrNull(record->m_pszStringIn))
        .add("optValInt", static_cast<int>(record->m_dwInteger))
        .add("optValFloat", wholeNumber(record->m_dFloat));
}

void CIDEController::sendOption(DWORD flags, const std::string& scope, const std::string& name, COptionValue& value)
{
    silently([&] { return option(flags, scope, name, value); });
}

void CIDEController::setOption(DWORD flags, const std::string& scope, const std::string& name,
                               const std::string& value)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setOption"), "Dsss", flags, scope, name, value);
    }
    COptionValue record(name + ValueSeparator(0) + value);
    sendOption(flags | F::ofNameValue, scope, "", record);
}

void CIDEController::setOption(const std::string& url, const std::string& value)
{
    const OptionUrl parts = parseOptionUrl(url);
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setOption"), "ss", url, value);
    }
    silently([&] {
        setOption(parts.module, parts.scope, parts.name, value);
        return true;
    });
}

void CIDEController::setOption(DWORD flags, const std::string& scope, const std::string& name, DWORD value)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setOption"), "DssD", flags, scope, name, value);
    }
    COptionValue record(value);
    sendOption(flags | F::ofInteger, scope, name, record);
}

void CIDEController::setOption(const std::string& url, DWORD value)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setOption"), "sD", url, value);
    }
    const OptionUrl parts = parseOptionUrl(url);
    silently([&] {
        setOption(parts.module, parts.scope, parts.name, value);
        return true;
    });
}

void CIDEController::setOption(DWORD flags, const std::string& scope, const std::string& name, double value)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setOption"), "Dssd", flags, scope, name, value);
    }
    COptionValue record(value);
    sendOption(flags | F::ofFloat, scope, name, record);
}

void CIDEController::setOption(const std::string& url, double value)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setOption"), "sd", url, value);
    }
    const OptionUrl parts = parseOptionUrl(url);
    silently([&] {
        setOption(parts.module, parts.scope, parts.name, value);
        return true;
    });
}

std::string CIDEController::getOptionStr(DWORD flags, const std::string& scope, const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("getOptionStr"), "Dss", flags, scope, name);
    }
    COptionValue record;
    record.allocOutputBuffer(OPTION_STRING_SIZE);
    sendOption(flags | F::ofRead | F::ofString, scope, name, record);
    return record.getOutputBuffer();
}

std::string CIDEController::getOptionStr(const std::string& url)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getOptionStr"), url);
    }
    const OptionUrl parts = parseOptionUrl(url);
    return silently([&] { return getOptionStr(parts.module, parts.scope, parts.name); });
}

DWORD CIDEController::getOptionInt(DWORD flags, const std::string& scope, const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("getOptionInt"), "Dss", flags, scope, name);
    }
    COptionValue record;
    sendOption(flags | F::ofRead | F::ofInteger, scope, name, record);
    return record.getOptionValue()->m_dwInteger;
}

DWORD CIDEController::getOptionInt(const std::string& url)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getOptionInt"), url);
    }
    const OptionUrl parts = parseOptionUrl(url);
    return silently([&] { return getOptionInt(parts.module, parts.scope, parts.name); });
}

double CIDEController::getOptionFloat(DWORD flags, const std::string& scope, const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("getOptionFloat"), "Dss", flags, scope, name);
    }
    COptionValue record;
    sendOption(flags | F::ofRead | F::ofFloat, scope, name, record);
    return record.getOptionValue()->m_dFloat;
}

double CIDEController::getOptionFloat(const std::string& url)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getOptionFloat"), url);
    }
    const OptionUrl parts = parseOptionUrl(url);
    return silently([&] { return getOptionFloat(parts.module, parts.scope, parts.name); });
}

DWORD CIDEController::getDynamicOptionSize(DWORD flags, const std::string& scope, const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("getDynamicOptionSize"), "Dss", flags, scope, name);
    }
    COptionValue record;
    sendOption(flags | F::ofDynamicSize, scope, name, record);
    return record.getOptionValue()->m_dwInteger;
}

DWORD CIDEController::getDynamicOptionSize(const std::string& url)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getDynamicOptionSize"), url);
    }
    checkQuillonVersion(DYNAMIC_OPTIONS_BUILD);
    const OptionUrl parts = parseOptionUrl(url);
    return silently([&] { return getDynamicOptionSize(parts.module, parts.scope, parts.name); });
}

void CIDEController::addDynamicOption(DWORD flags, const std::string& scope, const std::string& name, int index)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("addDynamicOption"), "Dssi", flags, scope, name, index);
    }
    checkQuillonVersion(DYNAMIC_OPTIONS_BUILD);
    COptionValue record{DWORD(index)};
    sendOption(flags | F::ofAddDynamic, scope, name, record);
}

void CIDEController::addDynamicOption(const std::string& url, int index)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("addDynamicOption"), "si", url, index);
    }
    checkQuillonVersion(DYNAMIC_OPTIONS_BUILD);
    const OptionUrl parts = parseOptionUrl(url);
    silently([&] {
        addDynamicOption(parts.module, parts.scope, parts.name, index);
        return true;
    });
}

void CIDEController::removeDynamicOption(DWORD flags, const std::string& scope, const std::string& name, int index)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("removeDynamicOption"), "Dssi", flags, scope, name, index);
    }
    checkQuillonVersion(DYNAMIC_OPTIONS_BUILD);
    COptionValue record{DWORD(index)};
    sendOption(flags | F::ofRemoveDynamic, scope, name, record);
}

void CIDEController::removeDynamicOption(const std::string& url, int index)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("removeDynamicOption"), "si", url, index);
    }
    checkQuillonVersion(DYNAMIC_OPTIONS_BUILD);
    const OptionUrl parts = parseOptionUrl(url);
    silently([&] {
        removeDynamicOption(parts.module, parts.scope, parts.name, index);
        return true;
    });
}

void CIDEController::commitOptions(DWORD flags)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("commitOptions"));
    }
    COptionValue record;
    record.allocOutputBuffer(COMMIT_STRING_SIZE);
    const HRESULT hr = getOrbelIDE3()->Option(flags | F::ofCommit, nullptr, nullptr, record.getOptionValue());
    if (hr != S_OK) {
        throw IOException(KX_POS, "'commitOptions' command failed!")
            .add("stdError", getResultText(hr))
            .add("outStr", record.getOutputBuffer());
    }
}

} // namespace kestrix
