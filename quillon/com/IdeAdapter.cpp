#include "com/IdeAdapter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "OrbelIDEFlags.h"
#include "OrbelIdentifiers.h"
#include "com/DocumentCommand.h"
#include "com/QuillonVersion.h"
#include "instance/WorkspaceError.h"
#include "services/ServiceError.h"

namespace quillon::com {

using kestrix::SOptionValue;
using kestrix::SQuillonVersionInfo;
using services::OptionTree;
using F = kestrix::OrbelIDEFlags;

namespace {

const char* const OPTION = "OrbelIDE3::Option";

/// The module of an option path by its bits; null for bits no module has.
const char* moduleName(DWORD bits)
{
    switch (bits) {
    case F::ofModuleIDE:
        return "IDE";
    case F::ofModuleDocument:
        return "Document";
    case F::ofModuleVALKE:
        return "VALKE";
    case F::ofModulePlugin:
        return "Plugin";
    case F::ofModuleHIL:
        return "HIL";
    default:
        return nullptr;
    }
}

std::string hex(DWORD value)
{
    char text[16];
    std::snprintf(text, sizeof(text), "0x%X", value);
    return text;
}

std::string message(const std::string& problem)
{
    return std::string(OPTION) + ": " + problem;
}

} // namespace

HRESULT IdeAdapter::Document(DWORD flags, const char* fileName, const char* strParameter, DWORD dwParameter)
{
    const char* name = "OrbelIDE::Document";
    return call(name, [&] {
        const auto instance = m_session.instance();
        if (!instance) {
            return fail(kestrix::ORBEL_E_NOT_CONNECTED, std::string(name) + ": not attached to a Quillon instance");
        }
        try {
            const DocumentCommand command(flags, fileName != nullptr ? fileName : "", strParameter, dwParameter);
            return command.run(instance->workbench()->documents()) ? kestrix::S_OK : kestrix::S_FALSE;
        } catch (const services::AnalyzerError& error) {
            return fail(DocumentCommand::codeOf(error.kind()), std::string(name) + ": " + error.what());
        }
    });
}

HRESULT IdeAdapter::Workspace(DWORD command, const char* fileName)
{
    const char* name = "OrbelIDE::Workspace";
    return call(name, [&] {
        const auto instance = m_session.instance();
        if (!instance) {
            return fail(kestrix::ORBEL_E_NOT_CONNECTED, std::string(name) + ": not attached to a Quillon instance");
        }
        try {
            return workspace(*instance, command, fileName != nullptr ? fileName : "");
        } catch (const WorkspaceError& error) {
            // The message names the file, and the line and key at fault.
            return fail(kestrix::ORBEL_E_ERROR, error.what());
        }
    });
}

HRESULT IdeAdapter::workspace(Instance& instance, DWORD command, const std::string& fileName)
{
    const char* name = "OrbelIDE::Workspace";
    const bool needsFile = command == F::wsNew || command == F::wsOpen || command == F::wsSaveAs;
    if (needsFile && fileName.empty()) {
        return fail(kestrix::E_INVALIDARG, std::string(name) + ": command " + std::to_string(command)
                                               + " needs a file name");
    }
    switch (command) {
    case F::wsNew:
        instance.newWorkspace(fileName);
        return kestrix::S_OK;
    case F::wsOpen:
        instance.openWorkspace(fileName);
        return kestrix::S_OK;
    case F::wsSave:
        // Without a file there is nowhere to save to: S_FALSE, as for a save the user cancels.
        return instance.saveWorkspace() ? kestrix::S_OK : kestrix::S_FALSE;
    case F::wsSaveAs:
        instance.saveWorkspaceAs(fileName);
        return kestrix::S_OK;
    case F::wsClose:
        instance.closeWorkspace(true);
        return kestrix::S_OK;
    case F::wsCloseDiscard:
        instance.closeWorkspace(false);
        return kestrix::S_OK;
    default:
        return fail(kestrix::E_INVALIDARG, std::string(name) + ": unknown command " + std::to_string(command));
    }
}

HRESULT IdeAdapter::Application(DWORD, kestrix::SApplicationData*)
{
    return notImplemented("OrbelIDE::Application");
}

HRESULT IdeAdapter::ServiceCall(DWORD, const kestrix::GUID* service, DWORD inSize, const void* in, DWORD, void*,
                                DWORD)
{
    if (service == nullptr || !(*service == kestrix::SERVICE_Flash)) {
        return notImplemented("OrbelIDE2::ServiceCall");
    }
    return call("OrbelIDE2::ServiceCall", [&] {
        const char* name = "OrbelIDE2::ServiceCall";
        if (!m_session.instance()) {
            return fail(kestrix::ORBEL_E_NOT_CONNECTED, std::string(name) + ": not attached to a Quillon instance");
        }
        DWORD command = 0;
        if (in != nullptr && inSize >= sizeof command) {
            std::memcpy(&command, in, sizeof command);
        }
        return fail(kestrix::ORBEL_E_NOT_AVAILABLE, std::string(name) + ": flash command " + std::to_string(command)
                                                        + ": the simulated target has no flash controller");
    });
}

HRESULT IdeAdapter::GetQuillonVersion(DWORD size, SQuillonVersionInfo* info)
{
    return call("OrbelIDE3::GetQuillonVersion", [&] { return quillonVersion(size, info); });
}

HRESULT IdeAdapter::quillonVersion(DWORD size, SQuillonVersionInfo* info)
{
    if (info == nullptr) {
        return fail(kestrix::E_INVALIDARG, "OrbelIDE3::GetQuillonVersion: no SQuillonVersionInfo given");
    }
    if (size < sizeof(SQuillonVersionInfo)) {
        return fail(kestrix::ORBEL_E_SIZE, "OrbelIDE3::GetQuillonVersion: the block has " + std::to_string(size)
                                               + " bytes, not " + std::to_string(sizeof(SQuillonVersionInfo)));
    }
    const auto instance = m_session.instance();
    if (!instance) {
        return fail(kestrix::ORBEL_E_NOT_CONNECTED, "OrbelIDE3::GetQuillonVersion: not attached to a Quillon instance");
    }
    const DWORD requested = info->m_dwFlags;
    DWORD answered = 0;
    if (requested & kestrix::OrbelIDEFlags::vrVersion) {
        info->m_byMajor = QuillonVersion::kMajor;
        info->m_byMinor = QuillonVersion::kMinor;
        info->m_wBuild = QuillonVersion::kBuild;
        answered |= kestrix::OrbelIDEFlags::vrVersion;
    }
    if (requested & kestrix::OrbelIDEFlags::vrNumClients) {
        info->m_dwNumClients = DWORD(instance->clients());
        answered |= kestrix::OrbelIDEFlags::vrNumClients;
    }
    const std::string folder = instance->workspace().folder().string();
    if ((requested & F::vrPathMask) == F::vrPath0 && !folder.empty() && folder.size() < sizeof(info->m_szPath)) {
        std::memcpy(info->m_szPath, folder.c_str(), folder.size() + 1);
        answered |= F::vrPath0;
    }
    info->m_dwFlags = answered;
    return kestrix::S_OK;
}

HRESULT IdeAdapter::Reserved6()
{
    return notImplemented("OrbelIDE3::Reserved6");
}

HRESULT IdeAdapter::Reserved7()
{
    return notImplemented("OrbelIDE3::Reserved7");
}

HRESULT IdeAdapter::Reserved8()
{
    return notImplemented("OrbelIDE3::Reserved8");
}

HRESULT IdeAdapter::Option(DWORD flags, const char* scope, const char* name, SOptionValue* value)
{
    return call(OPTION, [&] {
        try {
            return option(flags, scope, name, value);
        } catch (const services::ServiceError& error) {
            const bool unknown = error.kind() == services::ServiceError::Kind::NotFound;
            return fail(unknown ? kestrix::ORBEL_E_BAD_ID : kestrix::E_INVALIDARG, message(error.what()));
        }
    });
}

HRESULT IdeAdapter::option(DWORD flags, const char* scope, const char* name, SOptionValue* value)
{
    if (value == nullptr) {
        return fail(kestrix::E_INVALIDARG, message("no SOptionValue given"));
    }
    const auto instance = m_session.instance();
    if (!instance) {
        return fail(kestrix::ORBEL_E_NOT_CONNECTED, message("not attached to a Quillon instance"));
    }
    if (flags & F::ofCommit) {
        // Options take effect when set: there is nothing left to commit.
        if (value->m_pszStringOut != nullptr && value->m_dwStringOutSize > 0) {
            value->m_pszStringOut[0] = '\0';
        }
        return kestrix::S_OK;
    }
    const char* module = moduleName(flags & F::ofModuleMask);
    if (module == nullptr) {
        return fail(kestrix::E_INVALIDARG, message("no module has the bits " + hex(flags & F::ofModuleMask)));
    }
    const std::shared_ptr<Workbench> bench = instance->workbench();
    OptionTree& options = bench->options();
    const std::string scopeText = scope != nullptr ? scope : "";
    const DWORD kind = flags & F::ofKindMask;
    if (kind == F::ofNameValue && (flags & (F::ofRead | F::ofDynamicMask)) == 0) {
        return setNameValues(options, module, scopeText, *value);
    }
    if (name == nullptr || *name == '\0') {
        return fail(kestrix::E_INVALIDARG, message("no option name given"));
    }
    const std::string path = OptionTree::path(module, scopeText, name);
    HRESULT result = kestrix::S_OK;
    if (flags & F::ofDynamicMask) {
        result = dynamicOption(options, path, flags & F::ofDynamicMask, *value);
    } else if (flags & F::ofRead) {
        result = readOption(options, path, kind, *value);
    } else {
        result = writeOption(options, path, kind, *value);
    }
    if (result == kestrix::S_OK) {
        value->m_pIDescriptor = describe(options, path);
    }
    return result;
}

kestrix::IDescriptor* IdeAdapter::describe(const OptionTree& options, const std::string& path)
{
    const bool isItem = !path.empty() && path.back() == ']' && path.rfind('[') != std::string::npos;
    const std::string optionPath = isItem ? path.substr(0, path.rfind('[')) : path;
    const auto& definitions = OptionTree::definitions();
    const auto definition = std::find_if(definitions.begin(), definitions.end(),
                                         [&](const OptionTree::Definition& d) { return optionPath == d.path; });
    if (definition == definitions.end()) {
        return nullptr;
    }
    std::unique_ptr<OptionDescriptor>& descriptor = m_optionDescriptors[path];
    if (!descriptor) {
        descriptor = std::make_unique<OptionDescriptor>(owner(), path, definition->kind, isItem);
    }
    if (definition->kind == OptionTree::Kind::List && !isItem) {
        descriptor->setItemCount(DWORD(options.listSize(path)));
    }
    return descriptor.get();
}

HRESULT IdeAdapter::setNameValues(OptionTree& options, const std::string& module, const std::string& scope,
                                  const SOptionValue& value)
{
    if (value.m_pszStringIn == nullptr) {
        return fail(kestrix::E_INVALIDARG, message("no name:value text given"));
    }
    const char valueSeparator = kestrix::ValueSeparator(value.m_cValueSeparator);
    const char optionSeparator = kestrix::OptionSeparator(value.m_cOptionSeparator);
    const std::string text = value.m_pszStringIn;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find(optionSeparator, start);
        if (end == std::string::npos) {
            end = text.size();
        }
        const std::string pair = text.substr(start, end - start);
        const size_t split = pair.find(valueSeparator);
        if (split == std::string::npos || split == 0) {
            return fail(kestrix::E_INVALIDARG, message("'" + pair + "' is not of the form name" + valueSeparator + "value"));
        }
        options.set(OptionTree::path(module, scope, pair.substr(0, split)), pair.substr(split + 1));
        start = end + 1;
    }
    return kestrix::S_OK;
}

HRESULT IdeAdapter::readOption(OptionTree& options, const std::string& path, DWORD kind, SOptionValue& value)
{
    if (kind == F::ofString) {
        const std::string text = options.text(path);
        if (value.m_pszStringOut == nullptr || text.size() >= value.m_dwStringOutSize) {
            return fail(kestrix::ORBEL_E_SIZE, message("the value of '" + path + "' needs " +
                                                       std::to_string(text.size() + 1) + " bytes, the buffer has " +
                                                       std::to_string(value.m_dwStringOutSize)));
        }
        std::memcpy(value.m_pszStringOut, text.c_str(), text.size() + 1);
        return kestrix::S_OK;
    }
    const std::uint64_t number = options.integer(path);
    if (kind == F::ofInteger) {
        if (number > 0xFFFFFFFFu) {
            return fail(kestrix::ORBEL_E_SIZE, message("the value " + std::to_string(number) + " of '" + path +
                                                       "' does not fit in 32 bits"));
        }
        value.m_dwInteger = DWORD(number);
        return kestrix::S_OK;
    }
    if (kind == F::ofFloat) {
        value.m_dFloat = double(number);
        return kestrix::S_OK;
    }
    return fail(kestrix::E_INVALIDARG, message("no value kind to read in the flags"));
}

HRESULT IdeAdapter::writeOption(OptionTree& options, const std::string& path, DWORD kind, const SOptionValue& value)
{
    switch (kind) {
    case F::ofString:
        if (value.m_pszStringIn == nullptr) {
            return fail(kestrix::E_INVALIDARG, message("no text given for '" + path + "'"));
        }
        options.set(path, value.m_pszStringIn);
        return kestrix::S_OK;
    case F::ofInteger:
        options.setInteger(path, value.m_dwInteger);
        return kestrix::S_OK;
    case F::ofFloat: {
        // A float is taken where it is a whole number; the tree names any other.
        const double number = value.m_dFloat;
        char text[64];
        if (std::isfinite(number) && number >= 0 && number < 18446744073709551616.0 && std::floor(number) == number) {
            std::snprintf(text, sizeof(text), "%.0f", number);
        } else {
            std::snprintf(text, sizeof(text), "%g", number);
        }
        options.set(path, text);
        return kestrix::S_OK;
    }
    default:
        return fail(kestrix::E_INVALIDARG, message("no value kind to write in the flags"));
    }
}

HRESULT IdeAdapter::dynamicOption(OptionTree& options, const std::string& path, DWORD operation, SOptionValue& value)
{
    switch (operation) {
    case F::ofDynamicSize:
        value.m_dwInteger = DWORD(options.listSize(path));
        return kestrix::S_OK;
    case F::ofAddDynamic:
        options.insertItem(path, value.m_dwInteger);
        return kestrix::S_OK;
    default:
        options.removeItem(path, value.m_dwInteger);
        return kestrix::S_OK;
    }
}

HRESULT IdeAdapter::ServiceCallData(DWORD, const kestrix::GUID*, DWORD, const void*, DWORD, const void*, DWORD,
                                    void*, DWORD, void*, DWORD)
{
    return notImplemented("OrbelIDE3::ServiceCallData");
}

} // namespace quillon::com
