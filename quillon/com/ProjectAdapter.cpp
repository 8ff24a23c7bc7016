#include "com/ProjectAdapter.h"

#include <cstring>

#include "OrbelProjectFlags.h"

namespace quillon::com {

using services::BuildError;
using services::BuildService;
using Flags = kestrix::OrbelProjectFlags;

namespace {

std::string textOf(const char* text)
{
    return text != nullptr ? text : "";
}

} // namespace

HRESULT ProjectAdapter::codeOf(BuildError::Kind kind)
{
    switch (kind) {
    case BuildError::Kind::BadScope:
    case BuildError::Kind::FileNotFound:
        return kestrix::ORBEL_E_FILE_NOT_FOUND;
    case BuildError::Kind::BadOption:
        return kestrix::ORBEL_E_BAD_ID;
    case BuildError::Kind::NotAvailable:
        return kestrix::ORBEL_E_NOT_AVAILABLE;
    case BuildError::Kind::BadConfiguration:
        break;
    }
    return kestrix::ORBEL_E_ERROR;
}

template <class F> HRESULT ProjectAdapter::serve(const char* name, F&& operation) noexcept
{
    return call(name, [&]() -> HRESULT {
        const std::shared_ptr<Instance> instance = m_session.instance();
        if (!instance) {
            return fail(kestrix::ORBEL_E_NOT_CONNECTED, std::string(name) + ": not attached to a Quillon instance");
        }
        try {
            return operation(instance->workbench()->build()); // the bench lives until the call ends
        } catch (const BuildError& error) {
            return fail(codeOf(error.kind()), std::string(name) + ": " + error.what());
        }
    });
}

HRESULT ProjectAdapter::Reserved1()
{
    return notImplemented("OrbelProject::Reserved1");
}

HRESULT ProjectAdapter::ProjectCommand(DWORD word, const char* second, const char* third)
{
    return serve("OrbelProject::ProjectCommand",
                 [&](BuildService& build) { return command(build, word, second, third); });
}

HRESULT ProjectAdapter::command(BuildService& build, DWORD word, const char* second, const char* third)
{
    const DWORD known = Flags::pcCommandMask | Flags::pcFlag;
    switch ((word & ~known) == 0 ? word & Flags::pcCommandMask : 0) {
    case Flags::pcCustom:
        build.custom(textOf(second), textOf(third));
        break;
    case Flags::pcCompile:
        build.compile(textOf(third));
        break;
    case Flags::pcLink:
        build.link();
        break;
    case Flags::pcMake:
        build.make();
        break;
    case Flags::pcBuild:
        build.build();
        break;
    case Flags::pcDependencies:
        build.dependencies();
        break;
    case Flags::pcStop:
        build.stop();
        break;
    default:
        throw BuildError(BuildError::Kind::BadOption, "unknown command word " + std::to_string(word));
    }
    if (word & Flags::pcFlag) {
        build.wait();
    }
    return kestrix::S_OK;
}

HRESULT ProjectAdapter::GetBuildStatus(DWORD, kestrix::CBuildStatus* status)
{
    return serve("OrbelProject::GetBuildStatus", [&](BuildService& build) {
        if (status == nullptr) {
            return fail(kestrix::E_INVALIDARG, "OrbelProject::GetBuildStatus: no CBuildStatus given");
        }
        const BuildService::Status now = build.status();
        status->m_dwState = static_cast<DWORD>(now.state);
        status->m_dwNumErrors = now.errors;
        status->m_dwNumWarnings = now.warnings;
        if (now.state == BuildService::State::IdleWithErrors || now.state == BuildService::State::ConfigError) {
            lastError().setWarning(build.diagnostics());
        }
        return kestrix::S_OK;
    });
}

HRESULT ProjectAdapter::BuildOption(DWORD word, const char* scope, const char* option, char* value, DWORD size)
{
    return serve("OrbelProject::BuildOption", [&](BuildService& build) {
        return ProjectAdapter::option(build, word, scope, option, value, size);
    });
}

HRESULT ProjectAdapter::option(BuildService& build, DWORD word, const char* scope, const char* option, char* value,
                               DWORD size)
{
    const std::string scopeText = textOf(scope);
    const std::string name = textOf(option);
    const DWORD operation = word & Flags::boOperationMask;
    if (operation == Flags::boGet) {
        return copyOut(build.option(scopeText, name), value, size);
    }
    if (operation == Flags::boGetByIndex) {
        const std::optional<std::string> item = build.optionAt(scopeText, name, word & Flags::boIndexMask);
        return item ? copyOut(*item, value, size) : kestrix::S_FALSE;
    }
    const std::string given = value != nullptr ? std::string(value, ::strnlen(value, size)) : std::string();
    switch (word) {
    case Flags::boSet:
        build.setOption(scopeText, name, given);
        break;
    case Flags::boAdd:
        build.addOption(scopeText, name, given);
        break;
    case Flags::boRemove:
        build.removeOption(scopeText, name, given);
        break;
    case Flags::boMove:
        build.moveOption(scopeText, name, given);
        break;
    default:
        throw BuildError(BuildError::Kind::BadOption, "unknown build option word " + std::to_string(word));
    }
    return kestrix::S_OK;
}

HRESULT ProjectAdapter::copyOut(const std::string& text, char* buffer, DWORD size)
{
    if (buffer == nullptr || size == 0) {
        throw BuildError(BuildError::Kind::BadOption, "no buffer for the value");
    }
    const std::size_t count = std::min<std::size_t>(text.size(), size - 1);
    std::memcpy(buffer, text.data(), count);
    buffer[count] = '\0';
    return count < text.size() ? kestrix::ORBEL_S_SIZE : kestrix::S_OK;
}

} // namespace quillon::com
