#include "com/CoverageAdapter.h"

#include <algorithm>
#include <cstring>

#include "OrbelCoverageFlags.h"

namespace quillon::com {

using services::AnalyzerError;
using Flags = kestrix::OrbelCoverageFlags;

namespace {

AnalyzerError badArgument(const std::string& message)
{
    return AnalyzerError(AnalyzerError::Kind::InvalidArgument, message);
}

} // namespace

DWORD CoverageAdapter::classOf(AnalyzerError::Kind kind)
{
    switch (kind) {
    case AnalyzerError::Kind::InvalidArgument:
    case AnalyzerError::Kind::BadSize:
        return Flags::cecInternal;
    case AnalyzerError::Kind::IllegalState:
        return Flags::cecIllegalState;
    case AnalyzerError::Kind::NotFound:
    case AnalyzerError::Kind::FileNotFound:
    case AnalyzerError::Kind::NotAvailable:
    case AnalyzerError::Kind::NotImplemented:
    case AnalyzerError::Kind::Failed:
        break;
    }
    return Flags::cecFailure;
}

template <class F> HRESULT CoverageAdapter::serve(const char* name, const char* fileName, F&& operation) noexcept
{
    return call(name, [&]() -> HRESULT {
        const std::string document = fileName != nullptr ? fileName : "";
        m_coverageError.clear(document);
        const std::shared_ptr<Instance> instance = m_session.instance();
        if (!instance) {
            m_coverageError.set(document, Flags::cecIllegalState, "not attached to a Quillon instance");
            return fail(kestrix::ORBEL_E_NOT_CONNECTED, std::string(name) + ": not attached to a Quillon instance");
        }
        try {
            return operation(instance->workbench()->coverage(), document);
        } catch (const AnalyzerError& error) {
            m_coverageError.set(document, classOf(error.kind()), error.what());
            return fail(kestrix::E_FAIL, std::string(name) + ": " + error.what());
        } catch (const std::exception& error) {
            m_coverageError.set(document, Flags::cecFailure, error.what());
            return fail(kestrix::E_FAIL, std::string(name) + ": " + error.what());
        }
    });
}

HRESULT CoverageAdapter::GetLastError(const char* fileName, DWORD, DWORD* errorClass, char* text, DWORD size)
{
    if (errorClass == nullptr || text == nullptr || size == 0) {
        return kestrix::E_INVALIDARG;
    }
    try {
        const CoverageLastError::Failure failure = m_coverageError.get(fileName != nullptr ? fileName : "");
        *errorClass = failure.errorClass;
        const std::size_t length = std::min<std::size_t>(failure.text.size(), size - 1);
        std::memcpy(text, failure.text.data(), length);
        text[length] = '\0';
        return kestrix::S_OK;
    } catch (...) {
        return kestrix::E_FAIL;
    }
}

HRESULT CoverageAdapter::GetInfo(const char* fileName, DWORD what, DWORD* value)
{
    return serve("OrbelCoverage::GetInfo", fileName, [&](services::CoverageService&, const std::string&) {
        if (value == nullptr) {
            throw badArgument("no place for the information");
        }
        *value = services::CoverageService::info(what);
        return kestrix::S_OK;
    });
}

HRESULT CoverageAdapter::SetConfiguration(const char* fileName, DWORD item, const char* text, DWORD value)
{
    return serve("OrbelCoverage::SetConfiguration", fileName,
                 [&](services::CoverageService& coverage, const std::string& document) {
                     const bool existed = coverage.configure(document, item, text != nullptr ? text : "", value);
                     return existed ? kestrix::S_FALSE : kestrix::S_OK;
                 });
}

HRESULT CoverageAdapter::Reserved4()
{
    return notImplemented("OrbelCoverage::Reserved4");
}

HRESULT CoverageAdapter::Reserved5()
{
    return notImplemented("OrbelCoverage::Reserved5");
}

HRESULT CoverageAdapter::GetRanges(const char* fileName, DWORD kind, DWORD* count, kestrix::SCoverageRange* ranges,
                                   const char* name, DWORD rangeType)
{
    return serve("OrbelCoverage::GetRanges", fileName,
                 [&](services::CoverageService& coverage, const std::string& document) {
                     if (count == nullptr) {
                         throw badArgument("no place for the number of ranges");
                     }
                     const DWORD room = *count;
                     if (ranges == nullptr && room > 0) {
                         throw badArgument("no place for the ranges");
                     }
                     std::vector<services::SpanSet::Span> found;
                     if (kind == Flags::crkActive) {
                         found = coverage.activeRanges(document);
                     } else if (kind == Flags::crkResolve) {
                         found = coverage.resolve(document, rangeType, name != nullptr ? name : "");
                     } else {
                         throw badArgument("unknown kind of ranges " + std::to_string(kind)
                                           + " (1 active ranges, 2 ranges of a name)");
                     }
                     if (found.size() > room) {
                         *count = static_cast<DWORD>(found.size());
                         throw AnalyzerError(AnalyzerError::Kind::Failed,
                                             std::to_string(found.size()) + " ranges found, but room for "
                                                 + std::to_string(room));
                     }
                     for (std::size_t i = 0; i < found.size(); ++i) {
                         ranges[i].m_aAddress = static_cast<ADDRESS>(found[i].begin);
                         ranges[i].m_aEnd = static_cast<ADDRESS>(found[i].end - 1);
                     }
                     *count = static_cast<DWORD>(found.size());
                     return kestrix::S_OK;
                 });
}

HRESULT CoverageAdapter::GetBitmap(const char* fileName, DWORD, DWORD start, DWORD end, DWORD size, BYTE* bitmap)
{
    return serve("OrbelCoverage::GetBitmap", fileName,
                 [&](services::CoverageService& coverage, const std::string& document) {
                     if (bitmap == nullptr) {
                         throw badArgument("no place for the bitmap");
                     }
                     if (end < start || std::uint64_t(end) - start + 1 != size) {
                         throw badArgument("a bitmap of " + std::to_string(start) + " to " + std::to_string(end)
                                           + " has " + std::to_string(std::uint64_t(end) - start + 1)
                                           + " bytes, not " + std::to_string(size));
                     }
                     const std::vector<std::uint8_t> bytes = coverage.bitmap(document, start, end);
                     std::copy(bytes.begin(), bytes.end(), bitmap);
                     return kestrix::S_OK;
                 });
}

HRESULT CoverageAdapter::GetStatistics(const char* fileName, DWORD type, DWORD start, DWORD end, DWORD* value)
{
    return serve("OrbelCoverage::GetStatistics", fileName,
                 [&](services::CoverageService& coverage, const std::string& document) {
                     if (value == nullptr) {
                         throw badArgument("no place for the statistic");
                     }
                     *value = coverage.statistic(document, type, start, end);
                     return kestrix::S_OK;
                 });
}

} // namespace quillon::com
