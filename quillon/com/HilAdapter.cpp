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
            operation(instance->hil());
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

HRESULT HilAdapter::GetInfo(DWORD, kestrix::SHILInfo*)
{
    return serve("OrbelHIL::GetInfo", [](services::HilService&) {
        throw AnalyzerError(AnalyzerError::Kind::NotAvailable,
                            "this Quillon gives no descriptors of its HIL channels; Read with no names lists them");
    });
}

} // namespace quillon::com
