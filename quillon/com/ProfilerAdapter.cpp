#include "com/ProfilerAdapter.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "OrbelProfilerFlags.h"
#include "services/ServiceError.h"
#include "target/Hex.h"

namespace quillon::com {

namespace {

using Flags = kestrix::OrbelProfilerFlags;
using services::ProfilerService;
using services::ServiceError;

ServiceError invalid(const std::string& message)
{
    return ServiceError(ServiceError::Kind::InvalidArgument, message);
}

void requireAreaZero(DWORD memArea)
{
    if (memArea != 0) {
        throw invalid("no memory area " + std::to_string(memArea) + ": the core has memory area 0 only");
    }
}

std::string hexText(DWORD value)
{
    return target::hex32(value);
}

} // namespace

template <class F> HRESULT ProfilerAdapter::serve(const char* name, Answers answers, F&& operation) noexcept
{
    return call(name, [&]() -> HRESULT {
        const std::shared_ptr<Instance> instance = m_session.instance();
        if (!instance) {
            return fail(kestrix::ORBEL_E_NOT_CONNECTED, std::string(name) + ": not attached to a Quillon instance");
        }
        try {
            return operation(instance->workbench()->profiler());
        } catch (const ServiceError& error) {
            return fail(codeOf(error, answers), std::string(name) + ": " + error.what());
        }
    });
}

HRESULT ProfilerAdapter::codeOf(const ServiceError& error, Answers answers)
{
    const ServiceError::Kind kind = error.kind();
    if (answers == Answers::Recording || kind == ServiceError::Kind::Failed || kind == ServiceError::Kind::Running) {
        return kestrix::ORBEL_E_ERROR;
    }
    if (answers == Answers::AreaAdd || kind == ServiceError::Kind::NotFound) {
        return kestrix::ORBEL_E_BAD_ID;
    }
    if (kind == ServiceError::Kind::NotAvailable) {
        return kestrix::ORBEL_E_NOT_AVAILABLE;
    }
    return kestrix::E_INVALIDARG;
}

HRESULT ProfilerAdapter::GetCapabilities(DWORD size, kestrix::SProfilerCapabilities* capabilities)
{
    return serve("OrbelProfiler2::GetCapabilities", Answers::ByKind, [&](ProfilerService&) {
        if (capabilities == nullptr || size < sizeof(kestrix::SProfilerCapabilities)) {
            throw invalid("no capabilities record of " + std::to_string(sizeof(kestrix::SProfilerCapabilities)) +
                          " bytes given (size " + std::to_string(size) + ")");
        }
        if (capabilities->m_dwVersion != kestrix::SProfilerCapabilities::VERSION) {
            throw invalid("capabilities record version " + std::to_string(capabilities->m_dwVersion) +
                          "; this profiler knows version 1");
        }
        *capabilities = kestrix::SProfilerCapabilities();
        capabilities->m_dwVersion = kestrix::SProfilerCapabilities::VERSION;
        capabilities->m_dwCapabilities =
            Flags::capAvailable | Flags::capStartingPoint | Flags::capProfileExec | Flags::capProfileData;
        capabilities->m_dwNumExecAreas = ProfilerService::kCapabilities.maxCodeAreas;
        capabilities->m_dwNumDataAreas = ProfilerService::kCapabilities.maxDataAreas;
        return kestrix::S_OK;
    });
}

HRESULT ProfilerAdapter::StartConfiguration(DWORD flags, kestrix::SProfilerStartingPoint* startingPoint)
{
    return serve("OrbelProfiler2::StartConfiguration", Answers::ByKind, [&](ProfilerService& profiler) {
        ProfilerService::TimeBase timeBase = ProfilerService::TimeBase::Cycles;
        if (flags == Flags::cfTimeStampTime) {
            timeBase = ProfilerService::TimeBase::Nanoseconds;
        } else if (flags >= Flags::cfTimeStampM0 && flags <= Flags::cfTimeStampM9) {
            throw ServiceError(ServiceError::Kind::NotAvailable,
                               "time stamp source M" + std::to_string(flags - Flags::cfTimeStampM0) +
                                   " is not available: the simulated core stamps cycles (0) or time (1)");
        } else if (flags != Flags::cfTimeStampCycles) {
            throw invalid("unknown configuration flags " + hexText(flags));
        }
        std::optional<std::uint32_t> startAddress;
        if (startingPoint != nullptr && startingPoint->m_byEvent != kestrix::SStartingPoint::eventNone) {
            if (startingPoint->m_byEvent != kestrix::SStartingPoint::eventAddress) {
                throw invalid("unknown starting point event " + std::to_string(startingPoint->m_byEvent) +
                              ": 0 none, 1 an address");
            }
            requireAreaZero(startingPoint->m_byMemArea);
            startAddress = startingPoint->m_aAddress;
        }
        profiler.startConfiguration(timeBase, startAddress);
        return kestrix::S_OK;
    });
}

HRESULT ProfilerAdapter::AddArea(DWORD flags, kestrix::SProfilerArea* area, const char* name, DWORD memArea,
                                 DWORD start, DWORD extent, DWORD exitCount, const DWORD* exits)
{
    return serve("OrbelProfiler2::AddArea", Answers::AreaAdd, [&](ProfilerService& profiler) {
        if ((flags & ~(Flags::areaKindMask | Flags::areaBit8 | Flags::areaBit9)) != 0) {
            throw invalid("unknown area flags " + hexText(flags));
        }
        if (name == nullptr) {
            throw invalid("no area name given");
        }
        const unsigned extraBits = (flags & (Flags::areaBit8 | Flags::areaBit9)) >> 8;
        services::ProfilerArea added;
        switch (flags & Flags::areaKindMask) {
        case Flags::areaFunction:
            added = profiler.addFunction(name, extraBits);
            break;
        case Flags::areaVariable:
            added = profiler.addVariable(name, extraBits);
            break;
        case Flags::areaRegion:
            requireAreaZero(memArea);
            added = profiler.addRegion(name, start, extent, extraBits);
            break;
        case Flags::areaRoutine:
            requireAreaZero(memArea);
            if (exitCount > 0 && exits == nullptr) {
                throw invalid("routine '" + std::string(name) + "' has " + std::to_string(exitCount) +
                              " exits, but no list of them");
            }
            added = profiler.addRoutine(name, start, extent,
                                        exitCount > 0 ? std::vector<std::uint32_t>(exits, exits + exitCount)
                                                      : std::vector<std::uint32_t>(),
                                        extraBits);
            break;
        default:
            throw invalid("unknown area kind " + hexText(flags & Flags::areaKindMask) +
                          ": 0x10 function, 0x20 routine, 0x30 variable, 0x40 region");
        }
        if (area != nullptr) {
            fill(added, *area);
        }
        return kestrix::S_OK;
    });
}

HRESULT ProfilerAdapter::Control(DWORD what)
{
    return serve("OrbelProfiler2::Control", Answers::Recording, [&](ProfilerService& profiler) {
        switch (what) {
        case Flags::ctrlStart:
            profiler.start();
            return kestrix::S_OK;
        case Flags::ctrlStop:
            return profiler.stop() ? kestrix::S_OK : kestrix::S_FALSE;
        default:
            return fail(kestrix::E_INVALIDARG, "OrbelProfiler2::Control: unknown command " + std::to_string(what) +
                                                   ": 1 start, 2 stop");
        }
    });
}

HRESULT ProfilerAdapter::GetStatus(DWORD flags, kestrix::SProfilerStatus* status)
{
    return serve("OrbelProfiler2::GetStatus", Answers::ByKind, [&](ProfilerService& profiler) {
        if (status == nullptr) {
            throw invalid("no status record given");
        }
        if (flags != Flags::gsfNumRecorded && flags != Flags::gsfNumAnalyzed) {
            throw invalid("unknown status flags " + std::to_string(flags) + ": 0 recorded, 1 analyzed samples");
        }
        const ProfilerService::Status now = profiler.status();
        *status = kestrix::SProfilerStatus();
        status->m_byState = static_cast<BYTE>(now.state);
        status->m_byFlags = static_cast<BYTE>((now.isLoading ? Flags::sbLoading : 0) |
                                              (now.hasOverrun ? Flags::sbBufferOverrun : 0) |
                                              (now.hasFailed ? Flags::sbRecordingError : 0));
        const std::size_t samples = flags == Flags::gsfNumRecorded ? now.recordedEvents : now.analyzedEvents;
        status->m_dwNumSamples = static_cast<DWORD>(std::min<std::size_t>(samples, 0xFFFFFFFFu));
        return kestrix::S_OK;
    });
}

ProfilerService::Selection ProfilerAdapter::selection(DWORD kind, DWORD handle, DWORD task, DWORD value)
{
    ProfilerService::Selection selection;
    switch (kind) {
    case Flags::selAll:
        break;
    case Flags::selHandle:
        selection.handle = handle;
        break;
    case Flags::selTask:
    case Flags::selTaskOnly:
        selection.task = task;
        break;
    case Flags::selHandleAndTask:
        selection.handle = handle;
        selection.task = task;
        break;
    case Flags::selHandleAndValue:
        selection.handle = handle;
        selection.value = value;
        break;
    default:
        throw invalid("unknown selector " + hexText(kind) +
                      ": 0x02 all, 0x01 handle, 0x10 or 0x12 task, 0x11 handle and task, 0x21 handle and value");
    }
    return selection;
}

HRESULT ProfilerAdapter::GetStatistics(DWORD kind, DWORD handle, DWORD task, DWORD value, DWORD* count,
                                       kestrix::SProfilerStatistic* records)
{
    return serve("OrbelProfiler2::GetStatistics", Answers::ByKind, [&](ProfilerService& profiler) {
        if (count == nullptr || (*count > 0 && records == nullptr)) {
            throw invalid("no room for the statistics given");
        }
        const std::vector<ProfilerService::Statistic> found = profiler.statistics(selection(kind, handle, task, value));
        const DWORD filled = static_cast<DWORD>(std::min<std::size_t>(found.size(), *count));
        for (DWORD i = 0; i < filled; ++i) {
            records[i] = kestrix::SProfilerStatistic();
            records[i].m_dwHandle = found[i].handle;
            records[i].m_dwValue = found[i].value;
            records[i].m_llTotalTime = found[i].total;
            records[i].m_llMaxTime = found[i].max;
            records[i].m_llMinTime = found[i].min;
            records[i].m_dwNumHits = found[i].hits;
        }
        *count = filled;
        return kestrix::S_OK;
    });
}

HRESULT ProfilerAdapter::GetHistory(DWORD kind, DWORD handle, DWORD task, DWORD value, DWORD startIndex,
                                    DWORD* count, kestrix::SProfilerHistory* records)
{
    return serve("OrbelProfiler2::GetHistory", Answers::ByKind, [&](ProfilerService& profiler) {
        if (count == nullptr || (*count > 0 && records == nullptr)) {
            throw invalid("no room for the history given");
        }
        const std::vector<ProfilerService::Event> found =
            profiler.history(selection(kind, handle, task, value), startIndex, *count);
        for (std::size_t i = 0; i < found.size(); ++i) {
            records[i] = kestrix::SProfilerHistory();
            records[i].m_dwHandle = found[i].handle;
            records[i].m_dwValue = found[i].value;
            records[i].m_qwTime = found[i].time;
        }
        *count = static_cast<DWORD>(found.size());
        return kestrix::S_OK;
    });
}

HRESULT ProfilerAdapter::GetAreaInfo(DWORD what, DWORD size, DWORD* value)
{
    return serve("OrbelProfiler2::GetAreaInfo", Answers::ByKind, [&](ProfilerService& profiler) {
        if (what != Flags::aiNumAreas) {
            throw invalid("unknown area information " + std::to_string(what) + ": 0 the number of areas");
        }
        if (value == nullptr || size < sizeof(DWORD)) {
            throw invalid("no room of 4 bytes for the number of areas");
        }
        *value = static_cast<DWORD>(profiler.areaCount());
        return kestrix::S_OK;
    });
}

HRESULT ProfilerAdapter::GetArea(DWORD key, DWORD size, kestrix::SProfilerArea* area)
{
    return serve("OrbelProfiler2::GetArea", Answers::ByKind, [&](ProfilerService& profiler) {
        if (area == nullptr || size < sizeof(kestrix::SProfilerArea)) {
            throw invalid("no area record of " + std::to_string(sizeof(kestrix::SProfilerArea)) + " bytes given");
        }
        services::ProfilerArea found;
        if (key == Flags::keyHandle) {
            found = profiler.area(area->m_dwHandle);
        } else if (key == Flags::keyName) {
            if (strnlen(area->m_szName, sizeof(area->m_szName)) == sizeof(area->m_szName)) {
                throw invalid("the area name in the record has no terminator");
            }
            found = profiler.area(std::string(area->m_szName));
        } else if ((key & Flags::keyAddress) != 0) {
            found = profiler.areaAt(area->m_aAddress);
        } else {
            throw invalid("unknown area key " + std::to_string(key) + ": 0 handle, 1 name, 2 address");
        }
        fill(found, *area);
        return kestrix::S_OK;
    });
}

void ProfilerAdapter::fill(const services::ProfilerArea& from, kestrix::SProfilerArea& to)
{
    std::memset(to.m_szName, 0, sizeof(to.m_szName));
    std::memcpy(to.m_szName, from.name.data(), std::min<std::size_t>(from.name.size(), kestrix::SProfilerArea::MAX_NAME));
    to.m_dwHandle = from.handle;
    to.m_aAddress = from.address;
}

} // namespace quillon::com
