#pragma once

#include "OrbelTypes.h"

namespace kestrix {

/// Flag words of the debug interface. Kept apart from the interface itself so that value
/// classes and the logger can name them without it.
struct OrbelDebugFlags {
    /// Access flags, the first argument of most memory operations.
    enum EAccessFlags {
        fMonitor = 0x00,
        fRealTime = 0x01,
        fSFR = 0x04,
        fCacheDefault = 0x10,
        fCacheStop = 0x20,
        fCacheCode = 0x30,
        fCacheMask = 0x30,
        fNoRefresh = 0x40
    };

    enum ESymbolFlags {
        sVariables = 0x01,
        sLabels = 0x02,
        sFunctions = 0x04,
        sLines = 0x08,
        sConstants = 0x10
    };

    enum EGetAddressFlags {
        gafExpression = 0x0000,
        gafVariables = 0x1000,
        gafLabels = 0x2000,
        gafFunctions = 0x4000
    };

    /// Evaluate flags; they share one word with the access flags.
    enum EEvaluate {
        efDefaultMemAreaDisplay = 0x00000000,
        efNoMemAreaDisplay = 0x01000100,
        efValueAsText = 0x01000000
    };

    /// Flag word of GetCPUStatus.
    enum ECPUStatusFlags : DWORD {
        csfNone = 0x000,
        /// Report the stop reason in SCPUStatus::m_byStatus.
        csfStopReason = 0x100
    };

    /// CPU state, bits 0 to 2 of SCPUStatus::m_byStatus.
    enum ECPUState : BYTE {
        cpuMustInit = 0,
        cpuStopped = 1,
        cpuRunning = 2,
        cpuReset = 3,
        cpuHalted = 4,
        cpuWaiting = 5,
        cpuAttach = 6,
        cpuIdle = 7,
        cpuStateMask = 0x07
    };

    /// Stop reason, bits 4 to 6 of SCPUStatus::m_byStatus; meaningful in the stopped state only.
    enum EStopReason : BYTE {
        srNone = 0x00,
        srExplicit = 0x10,
        srBreakpoint = 0x20,
        srStep = 0x30,
        srHardware = 0x40,
        srMask = 0x70
    };

    /// Command of RunControl, its second and third arguments 0 unless told.
    enum ERunControl : DWORD {
        rcReset = 1,
        /// Takes wait bits.
        rcResetAndRun = 2,
        /// Starts the download configured in Quillon; S_FALSE and other successes count as 1.
        rcDownload = 3,
        rcStop = 4,
        /// Takes wait bits.
        rcRun = 5,
        rcStepInst = 8,
        rcStepOverInst = 9,
        rcStepHigh = 10,
        rcStepOverHigh = 11,
        /// Second: memory area, third: address. Takes wait bits.
        rcRunUntilAddress = 12,
        /// Takes wait bits.
        rcRunUntilReturn = 13,
        /// Second: memory area, third: address.
        rcSetExecutionPoint = 14,
        rcPollingOff = 0x100,
        rcPollingOn = 0x200,
        rcCommandMask = 0x30F
    };

    /// Wait bits ORed into a RunControl command that sets the target going; the combinations
    /// are wmWait1 to wmWait4 of the caller's wait modes 1 to 4. A wait may end with
    /// ORBEL_E_STILL_RUNNING.
    enum EWaitBits : DWORD {
        wbWait = 0x080,
        wbWait400 = 0x400,
        wbWait800 = 0x800,
        wbMask = 0xC80,
        wmWait1 = 0x480,
        wmWait2 = 0x080,
        wmWait3 = 0x880,
        wmWait4 = 0xC80
    };

    /// Command word of Breakpoint: a location kind in the low nibble, an operation in the next.
    enum EBreakpoint : DWORD {
        /// Memory area and address.
        bpAddress = 0x00,
        /// Symbol (function) in the name argument.
        bpSymbol = 0x01,
        /// Source file in the name argument, line in the last.
        bpLine = 0x02,
        bpHWAddress = 0x08,
        bpHWSymbol = 0x09,
        bpLocationMask = 0x0F,
        /// Set; hardware breakpoints only (SetBP sets the others).
        bpSet = 0x00,
        bpDelete = 0x10,
        bpEnable = 0x20,
        bpDisable = 0x30,
        /// All software breakpoints, with enable or disable.
        bpAllSoftware = 0x40,
        /// All hardware breakpoints, with enable or disable.
        bpAllHardware = 0x48,
        bpDeleteAll = 0x50,
        bpOperationMask = 0x70,
        /// isOption of a hardware symbol breakpoint.
        bpHWOption = 0x80000
    };

    /// Kind of SetBP.
    enum ESetBPKind : DWORD {
        sbpAddress = 0,
        sbpSymbol = 1,
        sbpLine = 2
    };

    /// Command word of Download.
    enum EDownloadCommand : DWORD {
        /// Index of a file in a download list.
        dlIndexMask = 0x000000FF,
        dlFile = 0x00000100,
        dlFromList = 0x00000200,
        dlAddToList = 0x00000300,
        /// S_FALSE past the last member.
        dlGetMember = 0x00000400,
        dlRemoveFromList = 0x00000500,
        dlClearList = 0x00000600,
        dlOperationMask = 0x00000F00,
        /// Set for list 1, clear for list 0.
        dlList1 = 0x00001000,
        dlRealTime = 0x00010000,
        dlAlternate = 0x00020000
    };

    /// Bits of SDownload::m_dwFlags beside the file format bits.
    enum EDownloadConfigFlags : DWORD {
        dcMemAreaValid = 0x0400,
        dcCodeOffsetValid = 0x1000,
        dcSymbolsOffsetValid = 0x2000,
        /// The flags of a record that adds a file to a download list.
        dcAddToList = 0x3116
    };

    /// Kind of LaunchCore.
    enum ELaunchCoreKind : DWORD {
        lckCore = 1
    };
};

} // namespace kestrix
