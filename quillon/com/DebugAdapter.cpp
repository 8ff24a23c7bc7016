#include "com/DebugAdapter.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <optional>

#include "OrbelDebugFlags.h"
#include "com/DebugRecords.h"
#include "services/ServiceError.h"

namespace quillon::com {

using kestrix::OrbelDebugFlags;
using services::BreakpointLocation;
using services::DebugService;
using services::ServiceError;

namespace {

std::string textOf(const char* text)
{
    return text == nullptr ? std::string() : std::string(text);
}

/// How long a command with these wait bits waits for the stop; nothing: no wait.
std::optional<std::chrono::milliseconds> waitTime(DWORD command)
{
    switch (command & OrbelDebugFlags::wbMask) {
    case OrbelDebugFlags::wmWait2:
        return std::chrono::seconds(10);
    case OrbelDebugFlags::wmWait1:
        return std::chrono::seconds(1);
    case OrbelDebugFlags::wmWait3:
        return std::chrono::seconds(60);
    case OrbelDebugFlags::wmWait4:
        return std::chrono::hours(24);
    default:
        return std::nullopt;
    }
}

BreakpointLocation locationOf(DWORD kind, DWORD memArea, ADDRESS address, const char* symbolOrFile, DWORD line)
{
    switch (kind) {
    case OrbelDebugFlags::bpAddress:
    case OrbelDebugFlags::bpHWAddress:
        return BreakpointLocation::at(address, static_cast<std::uint8_t>(memArea));
    case OrbelDebugFlags::bpSymbol:
    case OrbelDebugFlags::bpHWSymbol:
        if (symbolOrFile == nullptr || *symbolOrFile == '\0') {
            throw ServiceError(ServiceError::Kind::InvalidArgument, "no function name given");
        }
        return BreakpointLocation::function(symbolOrFile);
    case OrbelDebugFlags::bpLine:
        if (symbolOrFile == nullptr || *symbolOrFile == '\0') {
            throw ServiceError(ServiceError::Kind::InvalidArgument, "no source file given");
        }
        return BreakpointLocation::sourceLine(symbolOrFile, line);
    default:
        throw ServiceError(ServiceError::Kind::InvalidArgument,
                           "unknown breakpoint location kind " + std::to_string(kind));
    }
}

} // namespace

template <class F>
HRESULT DebugAdapter::serve(const char* name, F&& operation, char* reason, DWORD reasonSize)
{
    return call(name, [&]() -> HRESULT {
        const auto instance = m_session.instance();
        if (!instance) {
            return fail(kestrix::ORBEL_E_NOT_CONNECTED, std::string(name) + ": not attached to a Quillon instance");
        }
        try {
            return operation(instance->workbench()->debug());
        } catch (const ServiceError& error) {
            DebugRecords::copyTextCut(error.what(), reason, reasonSize);
            return fail(DebugRecords::codeOf(error.kind()), std::string(name) + ": " + error.what());
        }
    });
}

HRESULT DebugAdapter::invalid(const char* name, const std::string& what)
{
    return fail(kestrix::E_INVALIDARG, std::string(name) + ": " + what);
}

HRESULT DebugAdapter::GetCPUInfo(kestrix::CCPUInfo* info)
{
    return call("OrbelDebug::GetCPUInfo", [&] {
        if (info == nullptr) {
            return invalid("OrbelDebug::GetCPUInfo", "no CCPUInfo given");
        }
        info->m_wCPU = DebugRecords::kCpuCode;
        info->m_wVariant = 0;
        return kestrix::S_OK;
    });
}

HRESULT DebugAdapter::GetAddress(DWORD flags, const char* name, BYTE* memArea, ADDRESS* address, DWORD* sizeMAUs,
                                 kestrix::SType* type)
{
    const char* op = "OrbelDebug::GetAddress";
    return serve(op, [&](DebugService& debug) {
        if (name == nullptr) {
            return invalid(op, "no name given");
        }
        const auto symbol = debug.findSymbol(flags & 0xF000u, name);
        if (!symbol) {
            return kestrix::S_FALSE;
        }
        if (memArea != nullptr) {
            *memArea = 0;
        }
        if (address != nullptr) {
            *address = symbol->address;
        }
        if (sizeMAUs != nullptr) {
            *sizeMAUs = symbol->size;
        }
        if (type != nullptr) {
            *type = DebugRecords::toSType(symbol->type);
        }
        return kestrix::S_OK;
    });
}

HRESULT DebugAdapter::GetSymbolAtAddress(DWORD symbolFlags, BYTE memArea, ADDRESS address, char* buffer, DWORD size)
{
    const char* op = "OrbelDebug::GetSymbolAtAddress";
    return serve(op, [&](DebugService& debug) {
        if (buffer == nullptr || size == 0) {
            return invalid(op, "no buffer given");
        }
        const auto symbol = debug.symbolAt(symbolFlags & 0x1Fu, memArea, address);
        if (!symbol) {
            buffer[0] = '\0';
            return kestrix::S_FALSE;
        }
        if (!DebugRecords::copyText(*symbol, buffer, size)) {
            buffer[0] = '\0';
            return fail(kestrix::ORBEL_E_SIZE, std::string(op) + ": the name '" + *symbol + "' needs "
                                                   + std::to_string(symbol->size() + 1) + " bytes");
        }
        return kestrix::S_OK;
    });
}

HRESULT DebugAdapter::GetAddressOfSourceLine(DWORD, const char* fileName, int line, ADDRESS* addresses, DWORD* count)
{
    const char* op = "OrbelDebug::GetAddressOfSourceLine";
    return serve(op, [&](DebugService& debug) {
        if (fileName == nullptr || count == nullptr || (addresses == nullptr && *count != 0) || line < 0) {
            return invalid(op, "needs a file name, a line and room for addresses");
        }
        const auto found = debug.addressesOfLine(fileName, unsigned(line));
        if (found.empty()) {
            *count = 0;
            return kestrix::S_FALSE;
        }
        if (found.size() > *count) {
            const DWORD room = *count;
            *count = DWORD(found.size());
            return fail(kestrix::ORBEL_E_SIZE, std::string(op) + ": line " + std::to_string(line) + " of '" + fileName
                                                   + "' has " + std::to_string(found.size())
                                                   + " addresses, room was given for " + std::to_string(room));
        }
        std::copy(found.begin(), found.end(), addresses);
        *count = DWORD(found.size());
        return kestrix::S_OK;
    });
}

HRESULT DebugAdapter::GetSourceLineAtAddress(DWORD, ADDRESS address, char* fileName, DWORD size, DWORD* line)
{
    const char* op = "OrbelDebug::GetSourceLineAtAddress";
    return serve(op, [&](DebugService& debug) {
        if (fileName == nullptr || size == 0 || line == nullptr) {
            return invalid(op, "needs a file name buffer and a line");
        }
        const auto found = debug.sourceLineAt(address);
        if (!found) {
            fileName[0] = '\0';
            *line = 0;
            return kestrix::S_FALSE;
        }
        if (!DebugRecords::copyText(found->file, fileName, size)) {
            fileName[0] = '\0';
            return fail(kestrix::ORBEL_E_SIZE,
                        std::string(op) + ": the file name '" + found->file + "' does not fit the buffer");
        }
        *line = found->line;
        return kestrix::S_OK;
    });
}

HRESULT DebugAdapter::ReadMemory(DWORD, BYTE memArea, ADDRESS address, DWORD numMAUs, BYTE* data, BYTE bytesPerMAU,
                                 BYTE* accessResults)
{
    const char* op = "OrbelDebug::ReadMemory";
    return serve(op, [&](DebugService& debug) {
        if (data == nullptr && numMAUs != 0) {
            return invalid(op, "no data buffer given");
        }
        if (accessResults != nullptr) {
            std::memset(accessResults, 1, numMAUs);
        }
        const auto bytes = debug.readMemory(memArea, address, numMAUs, bytesPerMAU);
        std::copy(bytes.begin(), bytes.end(), data);
        if (accessResults != nullptr) {
            std::memset(accessResults, 0, numMAUs);
        }
        return kestrix::S_OK;
    });
}

HRESULT DebugAdapter::WriteMemory(DWORD, BYTE memArea, ADDRESS address, DWORD numMAUs, BYTE* data, BYTE bytesPerMAU,
                                  BYTE* accessResults)
{
    const char* op = "OrbelDebug::WriteMemory";
    return serve(op, [&](DebugService& debug) {
        if (data == nullptr && numMAUs != 0) {
            return invalid(op, "no data given");
        }
        if (accessResults != nullptr) {
            std::memset(accessResults, 1, numMAUs);
        }
        const std::size_t length = std::size_t(numMAUs) * bytesPerMAU;
        debug.writeMemory(memArea, address, numMAUs, bytesPerMAU, std::vector<std::uint8_t>(data, data + length));
        if (accessResults != nullptr) {
            std::memset(accessResults, 0, numMAUs);
        }
        return kestrix::S_OK;
    });
}

HRESULT DebugAdapter::ReadRegister(DWORD, const char* name, kestrix::SValue* value, kestrix::SType* type)
{
    const char* op = "OrbelDebug::ReadRegister";
    return serve(op, [&](DebugService& debug) {
        if (name == nullptr || value == nullptr || type == nullptr) {
            return invalid(op, "needs a register name, a value and a type");
        }
        const services::TypedBits bits = debug.readRegister(name);
        value->m_qwValue = bits.bits;
        *type = DebugRecords::toSType(bits.type);
        return kestrix::S_OK;
    });
}

HRESULT DebugAdapter::WriteRegister(DWORD, const char* name, const kestrix::SValue* value, const kestrix::SType* type)
{
    const char* op = "OrbelDebug::WriteRegister";
    return serve(op, [&](DebugService& debug) {
        if (name == nullptr || value == nullptr || type == nullptr) {
            return invalid(op, "needs a register name, a value and a type");
        }
        try {
            debug.writeRegister(name, DebugRecords::toTypedBits(*value, *type));
        } catch (const ServiceError& error) {
            if (error.kind() != ServiceError::Kind::BadSize) {
                throw;
            }
            return fail(kestrix::ORBEL_S_SIZE, std::string(op) + ": " + error.what());
        }
        return kestrix::S_OK;
    });
}

HRESULT DebugAdapter::ReadValue(DWORD, BYTE memArea, ADDRESS address, kestrix::SValue* value,
                                const kestrix::SType* type)
{
    const char* op = "OrbelDebug::ReadValue";
    return serve(op, [&](DebugService& debug) {
        if (value == nullptr || type == nullptr) {
            return invalid(op, "needs a value and a type");
        }
        value->m_qwValue = debug.readValue(memArea, address, DebugRecords::toScalarType(*type));
        return kestrix::S_OK;
    });
}

HRESULT DebugAdapter::WriteValue(DWORD, BYTE memArea, ADDRESS address, const kestrix::SValue* value,
                                 const kestrix::SType* type)
{
    const char* op = "OrbelDebug::WriteValue";
    return serve(op, [&](DebugService& debug) {
        if (value == nullptr || type == nullptr) {
            return invalid(op, "needs a value and a type");
        }
        debug.writeValue(memArea, address, DebugRecords::toTypedBits(*value, *type));
        return kestrix::S_OK;
    });
}

HRESULT DebugAdapter::Evaluate(DWORD flags, const char* expression, char* buffer, DWORD size, kestrix::SValue* value,
                               kestrix::SType* type)
{
    const char* op = "OrbelDebug::Evaluate";
    return serve(
        op,
        [&](DebugService& debug) {
            if (expression == nullptr) {
                DebugRecords::copyTextCut("no expression given", buffer, size);
                return invalid(op, "no expression given");
            }
            const services::ExpressionValue result = debug.evaluate(expression, flags);
            DebugRecords::copyTextCut(result.text, buffer, size);
            if (value != nullptr) {
                value->m_qwValue = result.bits;
            }
            if (type != nullptr) {
                *type = DebugRecords::toSType(result.type);
            }
            return kestrix::S_OK;
        },
        buffer, size);
}

HRESULT DebugAdapter::Modify(DWORD flags, const char* expression, char* buffer, DWORD size,
                             const kestrix::SValue* value, const kestrix::SType* type)
{
    const char* op = "OrbelDebug::Modify";
    return serve(
        op,
        [&](DebugService& debug) {
            const bool asText = (flags & OrbelDebugFlags::efValueAsText) == OrbelDebugFlags::efValueAsText;
            if (expression == nullptr || (asText && buffer == nullptr) || (!asText && (value == nullptr || type == nullptr))) {
                DebugRecords::copyTextCut("needs an expression and a value", buffer, size);
                return invalid(op, "needs an expression and a value");
            }
            const std::string text = asText ? debug.modify(expression, std::string(buffer), flags)
                                            : debug.modify(expression, DebugRecords::toExpressionValue(*value, *type),
                                                           flags);
            DebugRecords::copyTextCut(text, buffer, size);
            return kestrix::S_OK;
        },
        buffer, size);
}

HRESULT DebugAdapter::GetCPUStatus(DWORD flags, kestrix::SCPUStatus* status)
{
    const char* op = "OrbelDebug::GetCPUStatus";
    return serve(op, [&](DebugService& debug) {
        if (status == nullptr) {
            return invalid(op, "no status record given");
        }
        *status = DebugRecords::toCpuStatus(debug.status(), (flags & OrbelDebugFlags::csfStopReason) != 0);
        return kestrix::S_OK;
    });
}

HRESULT DebugAdapter::Breakpoint(DWORD command, DWORD memArea, ADDRESS address, const char* symbolOrFile,
                                 DWORD lineOrData)
{
    return serve("OrbelDebug::Breakpoint", [&](DebugService& debug) {
        return breakpointCommand(debug, command, memArea, address, symbolOrFile, lineOrData);
    });
}

HRESULT DebugAdapter::breakpointCommand(DebugService& debug, DWORD command, DWORD memArea, ADDRESS address,
                                        const char* symbolOrFile, DWORD line)
{
    const char* op = "OrbelDebug::Breakpoint";
    const DWORD kind = command & OrbelDebugFlags::bpLocationMask;
    const DWORD operation = command & OrbelDebugFlags::bpOperationMask;
    const bool hardware = (kind & OrbelDebugFlags::bpHWAddress) != 0;
    switch (operation) {
    case OrbelDebugFlags::bpSet:
        if (!hardware) {
            return invalid(op, "software breakpoints are set by SetBP");
        }
        return debug.setBreakpoint(locationOf(kind, memArea, address, symbolOrFile, line), 0, {}, true)
                   ? kestrix::S_OK
                   : kestrix::S_FALSE;
    case OrbelDebugFlags::bpDelete:
        debug.deleteBreakpoint(locationOf(kind, memArea, address, symbolOrFile, line));
        return kestrix::S_OK;
    case OrbelDebugFlags::bpEnable:
    case OrbelDebugFlags::bpDisable:
        debug.enableBreakpoint(locationOf(kind, memArea, address, symbolOrFile, line),
                               operation == OrbelDebugFlags::bpEnable);
        return kestrix::S_OK;
    case OrbelDebugFlags::bpAllSoftware | OrbelDebugFlags::bpEnable:
    case OrbelDebugFlags::bpAllSoftware | OrbelDebugFlags::bpDisable:
        debug.enableAllBreakpoints(hardware, operation == (OrbelDebugFlags::bpAllSoftware | OrbelDebugFlags::bpEnable));
        return kestrix::S_OK;
    case OrbelDebugFlags::bpDeleteAll:
        debug.deleteAllBreakpoints();
        return kestrix::S_OK;
    default:
        return invalid(op, "unknown breakpoint command " + std::to_string(command));
    }
}

HRESULT DebugAdapter::SetBP(DWORD kind, DWORD memArea, ADDRESS address, const char* symbolOrFile, DWORD line,
                            int hitCount, const char* condition)
{
    const char* op = "OrbelDebug2::SetBP";
    return serve(op, [&](DebugService& debug) {
        if (hitCount < 0) {
            return invalid(op, "the hit count " + std::to_string(hitCount) + " is negative");
        }
        if (kind > OrbelDebugFlags::sbpLine) {
            return invalid(op, "unknown breakpoint kind " + std::to_string(kind));
        }
        const bool added = debug.setBreakpoint(locationOf(kind, memArea, address, symbolOrFile, line),
                                               std::uint32_t(hitCount), textOf(condition), false);
        return added ? kestrix::S_OK : kestrix::S_FALSE;
    });
}

HRESULT DebugAdapter::RunControl(DWORD command, DWORD second, DWORD third)
{
    return serve("OrbelDebug::RunControl",
                 [&](DebugService& debug) { return runCommand(debug, command, second, third); });
}

HRESULT DebugAdapter::runCommand(DebugService& debug, DWORD command, DWORD second, DWORD third)
{
    const char* op = "OrbelDebug::RunControl";
    const DWORD value = command & OrbelDebugFlags::rcCommandMask;
    const auto wait = waitTime(command);
    bool starts = true;
    switch (value) {
    case OrbelDebugFlags::rcRun:
        debug.run();
        break;
    case OrbelDebugFlags::rcResetAndRun:
        debug.resetAndRun();
        break;
    case OrbelDebugFlags::rcRunUntilAddress:
        debug.runUntilAddress(static_cast<std::uint8_t>(second), third);
        break;
    case OrbelDebugFlags::rcRunUntilReturn:
        debug.runUntilReturn();
        break;
    default:
        starts = false;
        break;
    }
    if (starts) {
        if (wait && !debug.waitUntilStopped(*wait)) {
            return fail(kestrix::ORBEL_E_STILL_RUNNING, std::string(op) + ": the target still runs");
        }
        return kestrix::S_OK;
    }
    if (command & OrbelDebugFlags::wbMask) {
        return invalid(op, "the command " + std::to_string(value) + " takes no wait bits");
    }
    switch (value) {
    case OrbelDebugFlags::rcReset:
        debug.reset();
        return kestrix::S_OK;
    case OrbelDebugFlags::rcDownload:
        debug.download();
        return kestrix::S_OK;
    case OrbelDebugFlags::rcStop:
        debug.stop();
        if (!debug.waitUntilStopped(std::chrono::seconds(5))) {
            return fail(kestrix::ORBEL_E_ERROR, std::string(op) + ": the target did not stop");
        }
        return kestrix::S_OK;
    case OrbelDebugFlags::rcStepInst:
        debug.stepInstruction();
        return kestrix::S_OK;
    case OrbelDebugFlags::rcStepOverInst:
        debug.stepOverInstruction();
        return kestrix::S_OK;
    case OrbelDebugFlags::rcStepHigh:
        debug.stepLine();
        return kestrix::S_OK;
    case OrbelDebugFlags::rcStepOverHigh:
        debug.stepOverLine();
        return kestrix::S_OK;
    case OrbelDebugFlags::rcSetExecutionPoint:
        debug.setExecutionPoint(static_cast<std::uint8_t>(second), third);
        return kestrix::S_OK;
    case OrbelDebugFlags::rcPollingOff:
    case OrbelDebugFlags::rcPollingOn:
        return kestrix::S_OK; // the status is never polled from the target: nothing to switch
    default:
        return invalid(op, "unknown command " + std::to_string(command));
    }
}

HRESULT DebugAdapter::Reserved17()
{
    return notImplemented("OrbelDebug2::Reserved17");
}

HRESULT DebugAdapter::BatchAccess(DWORD, const kestrix::SBatchAccessHeader* header,
                                  const kestrix::SBatchAccessItem* items, kestrix::SBatchAccessItemResult* results)
{
    const char* op = "OrbelDebug2::BatchAccess";
    return serve(op, [&](DebugService& debug) {
        if (header == nullptr || (header->m_dwNumItems != 0 && (items == nullptr || results == nullptr))) {
            return invalid(op, "needs a header, items and room for their results");
        }
        if (header->m_dwNumRuns > 1 || header->m_qwStartAtTime != 0 || header->m_qwRunInterval != 0) {
            return fail(kestrix::ORBEL_E_NOT_AVAILABLE, std::string(op) + ": timed and repeated runs are not available");
        }
        std::vector<services::BatchItem> batch;
        for (DWORD i = 0; i < header->m_dwNumItems; ++i) {
            services::BatchItem item;
            item.write = (items[i].m_byFlags & 0x01) != 0;
            item.size = items[i].m_bySize;
            item.area = items[i].m_byMemArea;
            item.address = items[i].m_aAddress;
            std::copy(std::begin(items[i].m_abyData), std::end(items[i].m_abyData), item.data.begin());
            batch.push_back(item);
        }
        const auto done = debug.batchAccess(batch);
        bool allDone = true;
        for (std::size_t i = 0; i < done.size(); ++i) {
            results[i].m_byResult = done[i].ok ? 0 : 1;
            std::copy(done[i].data.begin(), done[i].data.end(), results[i].m_abyData);
            results[i].m_qwTimeStamp = done[i].timeStamp;
            allDone = allDone && done[i].ok;
        }
        if (!allDone) {
            return fail(kestrix::E_FAIL, std::string(op) + ": one of the accesses failed");
        }
        return kestrix::S_OK;
    });
}

HRESULT DebugAdapter::Reserved19()
{
    return notImplemented("OrbelDebug2::Reserved19");
}

HRESULT DebugAdapter::Download(DWORD command, char* fileName, DWORD fileNameSize, void* download, char* options,
                               DWORD optionsSize)
{
    const char* op = "OrbelDebug2::Download";
    return serve(op, [&](DebugService& debug) {
        const auto* record = static_cast<const kestrix::SDownload*>(download);
        if (record != nullptr && record->m_dwSize != sizeof(kestrix::SDownload)) {
            return invalid(op, "the SDownload record says it has " + std::to_string(record->m_dwSize)
                                   + " bytes, not " + std::to_string(sizeof(kestrix::SDownload)));
        }
        return downloadCommand(debug, command, fileName, fileNameSize, record, options, optionsSize);
    });
}

HRESULT DebugAdapter::downloadCommand(DebugService& debug, DWORD command, char* fileName, DWORD fileNameSize,
                                      const kestrix::SDownload* download, char* options, DWORD optionsSize)
{
    const char* op = "OrbelDebug2::Download";
    const unsigned list = (command & OrbelDebugFlags::dlList1) ? 1 : 0;
    const std::size_t index = command & OrbelDebugFlags::dlIndexMask;
    const bool alternate = (command & OrbelDebugFlags::dlAlternate) != 0;
    const std::string file =
        fileName == nullptr ? std::string() : std::string(fileName, strnlen(fileName, fileNameSize));
    switch (command & OrbelDebugFlags::dlOperationMask) {
    case OrbelDebugFlags::dlFile:
        if (file.empty()) {
            return invalid(op, "no file given");
        }
        return downloadFile(debug, file, download);
    case OrbelDebugFlags::dlFromList:
        if (file.empty()) {
            debug.downloadFromList(list, index);
        } else {
            debug.downloadFromList(list, file);
        }
        return kestrix::S_OK;
    case OrbelDebugFlags::dlAddToList:
        if (file.empty()) {
            return invalid(op, "no file given");
        }
        debug.addToDownloadList(list, alternate, file,
                                options == nullptr ? std::string() : std::string(options, strnlen(options, optionsSize)));
        return kestrix::S_OK;
    case OrbelDebugFlags::dlGetMember:
        return listMember(debug, list, alternate, index, fileName, fileNameSize, options, optionsSize);
    case OrbelDebugFlags::dlRemoveFromList:
        return debug.removeFromDownloadList(list, index) ? kestrix::S_OK : kestrix::S_FALSE;
    case OrbelDebugFlags::dlClearList:
        debug.clearDownloadList(list);
        return kestrix::S_OK;
    default:
        return invalid(op, "unknown download command " + std::to_string(command));
    }
}

HRESULT DebugAdapter::downloadFile(DebugService& debug, const std::string& file, const kestrix::SDownload* download)
{
    const char* op = "OrbelDebug2::Download";
    std::uint32_t codeOffset = 0;
    if (download != nullptr) {
        if ((download->m_dwFlags & OrbelDebugFlags::dcSymbolsOffsetValid) && download->m_aSymbolsOffset != 0) {
            return fail(kestrix::ORBEL_E_NOT_AVAILABLE,
                        std::string(op) + ": symbols cannot be moved apart from the code (symbols offset "
                            + std::to_string(download->m_aSymbolsOffset) + ") of '" + file + "'");
        }
        if ((download->m_dwFlags & OrbelDebugFlags::dcMemAreaValid) && download->m_byMemArea != 0) {
            return invalid(op, "the target has no memory area " + std::to_string(download->m_byMemArea));
        }
        if (download->m_dwFlags & OrbelDebugFlags::dcCodeOffsetValid) {
            codeOffset = download->m_aCodeOffset;
        }
    }
    debug.downloadFile(file, codeOffset);
    return kestrix::S_OK;
}

HRESULT DebugAdapter::listMember(DebugService& debug, unsigned list, bool alternate, std::size_t index,
                                 char* fileName, DWORD fileNameSize, char* options, DWORD optionsSize)
{
    const char* op = "OrbelDebug2::Download";
    const auto entry = debug.downloadListMember(list, alternate, index);
    if (!entry) {
        DebugRecords::copyTextCut("", fileName, fileNameSize);
        DebugRecords::copyTextCut("", options, optionsSize);
        return kestrix::S_FALSE;
    }
    if (!DebugRecords::copyText(entry->file, fileName, fileNameSize)
        || !DebugRecords::copyText(entry->options, options, optionsSize)) {
        return fail(kestrix::ORBEL_E_SIZE,
                    std::string(op) + ": the list member '" + entry->file + "' does not fit the buffers");
    }
    return kestrix::S_OK;
}

HRESULT DebugAdapter::LaunchCore(DWORD kind, DWORD index, char* buffer, DWORD size)
{
    const char* op = "OrbelDebug2::LaunchCore";
    return serve(op, [&](DebugService&) {
        DebugRecords::copyTextCut("", buffer, size);
        return fail(kestrix::ORBEL_E_NOT_AVAILABLE, std::string(op) + ": the target has one core; no core "
                                                        + std::to_string(index) + " of kind " + std::to_string(kind)
                                                        + " can be launched");
    });
}

} // namespace quillon::com
