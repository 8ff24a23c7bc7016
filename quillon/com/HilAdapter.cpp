#include "com/HilAdapter.h"

#include <cstring>

namespace quillon::com {

using services::AnalyzerError;

HRESULT HilAdapter::codeOf(AnalyzerError::Kind kind)
{
    switch (kind) {
    case AnalyzerError::Kind::NotFound:
        return kestrix::ORBEL_E_BAD_ID;
    case AnalyzerError::Kind::InvalidArgument:
        return kestrix::E_INVALIDARG;
    case AnalyzerError::Kind::BadSize:
        return kestrix::ORBEL_E_SIZE;
    case AnalyzerError::Kind::NotAvailable:
        return kestrix::ORBEL_E_NOT_AVAILABLE;
    case AnalyzerError::Kind::FileNotFound:
    case AnalyzerError::Kind::NotImplemented:
    case AnalyzerError::Kind::IllegalState:
    case AnalyzerError::Kind::Failed:
        break;
    }
    return kestrix::ORBEL_E_ERROR;
}

template <class F> HRESULT HilAdapter::serve(const char* name, F&& operation) noexcept
{
    return call(name, [&]() -> HRESULT {
        const std::shared_ptr<Instance> instance = m_session.instance();
        if (!instance) {
            return fail(kestrix::ORBEL_E_NOT_CONNECTED, std::string(name) + ": not attached to a Quillon instance");
        }
        try {
            operation(instance->workbench()->hil());
            return kestrix::S_OK;
        } catch (const AnalyzerError& error) {
            return fail(codeOf(error.kind()), std::string(name) + ": " + error.what());
        }
    });
}

HRESULT HilAdapter::Read(DWORD, DWORD, const char* paths, char* buffer, DWORD size)
{
    return serve("OrbelHIL::Read", [&](services::HilService& hil) {
        if (buffer == nullptr) {
            throw AnalyzerError(AnalyzerError::Kind::InvalidArgument, "no buffer for the values");
        }
        const std::string text = hil.read(paths != nullptr ? paths : "");
        if (text.size() + 1 > size) {
            throw AnalyzerError(AnalyzerError::Kind::BadSize, "the values need a buffer of "
                                                                  + std::to_string(text.size() + 1)
                                                                  + " bytes, not " + std::to_string(size));
        }
        std::memcpy(buffer, text.c_str(), text.size() + 1);
    });
}

HRESULT HilAdapter::Write(DWORD, DWORD, const char* values)
{
    return serve("OrbelHIL::Write", [&](services::HilService& hil) {
        if (values == nullptr) {
            throw AnalyzerError(AnalyzerError::Kind::InvalidArgument, "no values given");
        }
        hil.write(values);
    });
}

HRESULT HilAdapter::GetInfo(DWORD size, kestrix::SHILInfo* info)
{
    const char* name = "OrbelHIL::GetInfo";
    return call(name, [&] {
        const std::shared_ptr<Instance> instance = m_session.instance();
        if (!instance) {
            return fail(kestrix::ORBEL_E_NOT_CONNECTED, std::string(name) + ": not attached to a Quillon instance");
        }
        if (info == nullptr) {
            return fail(kestrix::E_INVALIDARG, std::string(name) + ": no SHILInfo given");
        }
        if (size < sizeof(kestrix::SHILInfo)) {
            return fail(kestrix::ORBEL_E_SIZE, std::string(name) + ": the record has " + std::to_string(size)
                                                   + " bytes, not " + std::to_string(sizeof(kestrix::SHILInfo)));
        }
        const bool isAsked = (info->m_dwFlags & kestrix::OrbelHILFlags::hiDescriptor) != 0;
        info->m_dwFlags = 0;
        if (isAsked) {
            std::lock_guard<std::mutex> lock(m_mutex);
            const std::shared_ptr<Workbench> bench = instance->workbench();
            Descriptors& descriptors = m_descriptors[instance->id()];
            if (descriptors.made.empty() || descriptors.bench.lock() != bench) {
                descriptors.made.push_back(std::make_unique<HilDescriptor>(owner(), bench->hil().channels()));
                descriptors.bench = bench;
            }
            info->m_pIDescriptor = descriptors.made.back().get();
            info->m_dwFlags = kestrix::OrbelHILFlags::hiDescriptor;
        }
        return kestrix::S_OK;
    });
}

} // namespace quillon::com
