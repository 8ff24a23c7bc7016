#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "ICPUSFR.h"
#include "IConfiguration.h"
#include "IDataDescriptor.h"
#include "IDescriptor.h"
#include "IDisassemblyBlock.h"
#include "IDisassemblyLine.h"
#include "IElementDescriptor.h"
#include "IEnumMap.h"
#include "IExpressionType.h"
#include "IFunction.h"
#include "IGlobals.h"
#include "IModule.h"
#include "IPartition.h"
#include "ISFR.h"
#include "ISFRValueMap.h"
#include "IStackFrame.h"
#include "IStackFrameInfo.h"
#include "IVariable.h"
#include "IVariableDescriptor.h"
#include "IVectorDisassemblyLines.h"
#include "IVectorElementDescriptors.h"
#include "IVectorEnumMaps.h"
#include "IVectorFunctions.h"
#include "IVectorModules.h"
#include "IVectorPartitions.h"
#include "IVectorSFRs.h"
#include "IVectorStackFrames.h"
#include "IVectorValueMap.h"
#include "IVectorVariableDescriptors.h"
#include "IVectorVariables.h"
#include "Orbel.h"
#include "OrbelBetaExtra.h"
#include "OrbelCoverage.h"
#include "OrbelDebug2.h"
#include "OrbelEclipse.h"
#include "OrbelEntryPoints.h"
#include "OrbelHIL.h"
#include "OrbelIDE3.h"
#include "OrbelIdentifiers.h"
#include "OrbelProfiler2.h"
#include "OrbelProject.h"
#include "OrbelResults.h"
#include "OrbelSink.h"
#include "OrbelTest.h"
#include "SLine_IN.h"
#include "SLine_OUT.h"
#include "SProfilerEncode.h"
#include "SScan_OUT.h"
#include "Scan.h"

using namespace kestrix;

namespace {

// --- identifiers -----------------------------------------------------------------------------

struct NamedGuid {
    const char* name;
    GUID value;
};

const std::vector<NamedGuid>& allIdentifiers()
{
    static const std::vector<NamedGuid> ids = {
        {"IID_IUnknown", IID_IUnknown},         {"CLSID_ORBEL", CLSID_ORBEL},
        {"IID_Orbel", IID_Orbel},               {"IID_OrbelIDE", IID_OrbelIDE},
        {"IID_OrbelDebug", IID_OrbelDebug},     {"IID_OrbelProfiler2", IID_OrbelProfiler2},
        {"IID_OrbelProject", IID_OrbelProject}, {"IID_OrbelDebug2", IID_OrbelDebug2},
        {"IID_OrbelIDE2", IID_OrbelIDE2},       {"IID_OrbelIDE3", IID_OrbelIDE3},
        {"IID_OrbelCoverage", IID_OrbelCoverage}, {"IID_OrbelTest", IID_OrbelTest},
        {"IID_OrbelHIL", IID_OrbelHIL},         {"IID_OrbelBetaExtra", IID_OrbelBetaExtra},
        {"IID_OrbelEclipse", IID_OrbelEclipse}, {"IID_OrbelProfiler", IID_OrbelProfiler},
        {"IID_OrbelSink", IID_OrbelSink},       {"IID_IDescriptor", IID_IDescriptor},
        {"SERVICE_Line", SERVICE_Line},         {"SERVICE_Scan", SERVICE_Scan},
        {"SERVICE_Flash", SERVICE_Flash},
    };
    return ids;
}

TEST(OrbelContractTest, EveryIdentifierIsDistinct)
{
    const auto& ids = allIdentifiers();
    for (size_t i = 0; i < ids.size(); ++i) {
        for (size_t j = i + 1; j < ids.size(); ++j) {
            EXPECT_TRUE(ids[i].value != ids[j].value) << ids[i].name << " == " << ids[j].name;
        }
    }
}

TEST(OrbelContractTest, GuidEqualityLooksAtEveryByte)
{
    // The two debug interfaces differ in one byte of Data4 only.
    EXPECT_FALSE(IID_OrbelDebug == IID_OrbelDebug2);
    for (int i = 0; i < 8; ++i) {
        GUID changed = CLSID_ORBEL;
        changed.Data4[i] ^= 1;
        EXPECT_FALSE(changed == CLSID_ORBEL) << "Data4[" << i << "]";
    }
    GUID changed = CLSID_ORBEL;
    changed.Data3 ^= 1;
    EXPECT_FALSE(changed == CLSID_ORBEL);
}

TEST(OrbelContractTest, IdentifiersKeepTheirTextualForm)
{
    // {DF120538-0B0C-4DDA-B462-17564D4A069B}: the byte order of each group as written.
    EXPECT_EQ(IID_OrbelDebug.Data1, 0xDF120538u);
    EXPECT_EQ(IID_OrbelDebug.Data2, 0x0B0Cu);
    EXPECT_EQ(IID_OrbelDebug.Data3, 0x4DDAu);
    const BYTE tail[8] = {0xB4, 0x62, 0x17, 0x56, 0x4D, 0x4A, 0x06, 0x9B};
    EXPECT_EQ(std::memcmp(IID_OrbelDebug.Data4, tail, 8), 0);
}

// --- result codes ----------------------------------------------------------------------------

TEST(OrbelContractTest, FailureCodesAreNegativeAndSuccessCodesAreNot)
{
    const HRESULT successes[] = {S_OK, S_FALSE, ORBEL_S_MSG_FAIL, ORBEL_S_WARNING, ORBEL_S_SIZE};
    for (HRESULT hr : successes) {
        EXPECT_GE(hr, 0) << std::hex << hr;
    }
    const HRESULT failures[] = {E_NOTIMPL, E_NOINTERFACE, E_FAIL, ORBEL_E_CONNECT_FAILED,
                                ORBEL_E_VERSION_CONFLICT, ORBEL_E_ALREADY_CONNECTED,
                                ORBEL_E_NOT_CONNECTED, ORBEL_E_FILE_NOT_FOUND, ORBEL_E_CAN_NOT_ACCESS,
                                ORBEL_E_BAD_ID, ORBEL_E_NOT_SIMPLE_TYPE, ORBEL_E_ERROR,
                                ORBEL_E_NO_BREAKPOINT, ORBEL_E_NOT_AVAILABLE, ORBEL_E_SIZE,
                                ORBEL_E_ALREADY_EXISTS, ORBEL_E_STILL_RUNNING, E_INVALIDARG};
    for (HRESULT hr : failures) {
        EXPECT_LT(hr, 0) << std::hex << hr;
    }
    // The text of an unknown code is its signed decimal value.
    EXPECT_EQ(std::to_string(ORBEL_E_STILL_RUNNING), "-2147221491");
}

// --- slot order ------------------------------------------------------------------------------

// The vtable index of a virtual member function, read from the Itanium C++ ABI's representation
// of a member pointer: 1 + the byte offset of the slot. Slot 0 is QueryInterface, so the n-th
// operation behind IUnknown sits at index n + 2.
template <typename M>
long vtableIndex(M member)
{
    struct Representation {
        std::uintptr_t ptr;
        std::ptrdiff_t adj;
    };
    static_assert(sizeof(M) == sizeof(Representation), "Itanium member pointer");
    Representation rep;
    std::memcpy(&rep, &member, sizeof rep);
    if ((rep.ptr & 1) == 0) {
        return -1;  // not virtual
    }
    return static_cast<long>((rep.ptr - 1) / sizeof(void*));
}

#define KX_SLOT(Interface, Operation, Place) {#Interface "::" #Operation, vtableIndex(&Interface::Operation), Place}

// Place n of an interface is vtable index n + 2: IUnknown's three operations sit at places -2 to 0.
// Operations reached through a derived interface keep the places of their base.
TEST(OrbelContractTest, EveryOperationSitsAtItsPlace)
{
#if defined(__x86_64__) || defined(__i386__)
    const struct {
        const char* name;
        long index;
        int place;
    } slots[] = {
        KX_SLOT(IUnknown, QueryInterface, -2), KX_SLOT(IUnknown, AddRef, -1), KX_SLOT(IUnknown, Release, 0),
        KX_SLOT(Orbel, Attach, 1), KX_SLOT(Orbel, Detach, 2), KX_SLOT(Orbel, Launch, 3), KX_SLOT(Orbel, GetLastError, 4),
        KX_SLOT(OrbelIDE, Document, 1), KX_SLOT(OrbelIDE, Workspace, 2), KX_SLOT(OrbelIDE, Application, 3),
        KX_SLOT(OrbelIDE2, ServiceCall, 4), KX_SLOT(OrbelIDE3, GetQuillonVersion, 5), KX_SLOT(OrbelIDE3, Reserved6, 6),
        KX_SLOT(OrbelIDE3, Reserved7, 7), KX_SLOT(OrbelIDE3, Reserved8, 8), KX_SLOT(OrbelIDE3, Option, 9),
        KX_SLOT(OrbelIDE3, ServiceCallData, 10), KX_SLOT(OrbelIDE3, Document, 1), KX_SLOT(OrbelIDE3, ServiceCall, 4),
        KX_SLOT(OrbelDebug, GetCPUInfo, 1), KX_SLOT(OrbelDebug, GetAddress, 2), KX_SLOT(OrbelDebug, GetSymbolAtAddress, 3),
        KX_SLOT(OrbelDebug, GetAddressOfSourceLine, 4), KX_SLOT(OrbelDebug, GetSourceLineAtAddress, 5),
        KX_SLOT(OrbelDebug, ReadMemory, 6), KX_SLOT(OrbelDebug, WriteMemory, 7), KX_SLOT(OrbelDebug, ReadRegister, 8),
        KX_SLOT(OrbelDebug, WriteRegister, 9), KX_SLOT(OrbelDebug, ReadValue, 10), KX_SLOT(OrbelDebug, WriteValue, 11),
        KX_SLOT(OrbelDebug, Evaluate, 12), KX_SLOT(OrbelDebug, Modify, 13), KX_SLOT(OrbelDebug, GetCPUStatus, 14),
        KX_SLOT(OrbelDebug, Breakpoint, 15), KX_SLOT(OrbelDebug, RunControl, 16), KX_SLOT(OrbelDebug2, Reserved17, 17),
        KX_SLOT(OrbelDebug2, BatchAccess, 18), KX_SLOT(OrbelDebug2, Reserved19, 19), KX_SLOT(OrbelDebug2, Download, 20),
        KX_SLOT(OrbelDebug2, LaunchCore, 21), KX_SLOT(OrbelDebug2, SetBP, 22), KX_SLOT(OrbelDebug2, Breakpoint, 15),
        // The base profiler interface has no operation of its own.
        KX_SLOT(OrbelProfiler2, GetCapabilities, 1), KX_SLOT(OrbelProfiler2, StartConfiguration, 2),
        KX_SLOT(OrbelProfiler2, AddArea, 3), KX_SLOT(OrbelProfiler2, Control, 4), KX_SLOT(OrbelProfiler2, GetStatus, 5),
        KX_SLOT(OrbelProfiler2, GetStatistics, 6), KX_SLOT(OrbelProfiler2, GetHistory, 7),
        KX_SLOT(OrbelProfiler2, GetAreaInfo, 8), KX_SLOT(OrbelProfiler2, GetArea, 9),
        KX_SLOT(OrbelCoverage, GetLastError, 1), KX_SLOT(OrbelCoverage, GetInfo, 2),
        KX_SLOT(OrbelCoverage, SetConfiguration, 3), KX_SLOT(OrbelCoverage, Reserved4, 4),
        KX_SLOT(OrbelCoverage, Reserved5, 5), KX_SLOT(OrbelCoverage, GetRanges, 6), KX_SLOT(OrbelCoverage, GetBitmap, 7),
        KX_SLOT(OrbelCoverage, GetStatistics, 8), KX_SLOT(OrbelProject, Reserved1, 1),
        KX_SLOT(OrbelProject, ProjectCommand, 2), KX_SLOT(OrbelProject, GetBuildStatus, 3),
        KX_SLOT(OrbelProject, BuildOption, 4), KX_SLOT(OrbelHIL, Read, 1), KX_SLOT(OrbelHIL, Write, 2),
        KX_SLOT(OrbelHIL, GetInfo, 3), KX_SLOT(OrbelTest, GetLastError, 1), KX_SLOT(OrbelTest, CreateTest, 2),
        KX_SLOT(OrbelTest, DestroyTest, 3), KX_SLOT(OrbelTest, CreateParameter, 4),
        KX_SLOT(OrbelTest, CreateReturnValue, 5), KX_SLOT(OrbelTest, CreateVariable, 6),
        KX_SLOT(OrbelTest, DestroyVariable, 7), KX_SLOT(OrbelTest, CreateStub, 8), KX_SLOT(OrbelTest, DestroyStub, 9),
        KX_SLOT(OrbelTest, CreateStubParameter, 10), KX_SLOT(OrbelTest, CreateStubReturnValue, 11),
        KX_SLOT(OrbelTest, Evaluate, 12), KX_SLOT(OrbelTest, Modify, 13), KX_SLOT(OrbelTest, Control, 14),
        KX_SLOT(OrbelTest, GetStatus, 15),
    };
    for (const auto& slot : slots) {
        EXPECT_EQ(slot.index, slot.place + 2) << slot.name;
    }
#else
    GTEST_SKIP() << "slot check reads the x86 Itanium member pointer";
#endif
}

// Place n of an interface not based on IUnknown is vtable index n - 1; a derived one goes on
// behind its base's members.
#define KX_MEMBER(Interface, Operation, Place) {#Interface "::" #Operation, vtableIndex(&Interface::Operation), Place - 1}

TEST(OrbelContractTest, DescriptorMembersSitAtTheirPlaces)
{
#if defined(__x86_64__) || defined(__i386__)
    const struct {
        const char* name;
        long index;
        long expected;
    } slots[] = {
        {"IDescriptor::VariableDescriptors", vtableIndex(&IDescriptor::VariableDescriptors), 1 + 2},
        KX_MEMBER(IVectorVariableDescriptors, size, 1), KX_MEMBER(IVectorVariableDescriptors, at, 2),
        KX_MEMBER(IVectorElementDescriptors, size, 1), KX_MEMBER(IVectorElementDescriptors, at, 2),
        KX_MEMBER(IVectorEnumMaps, size, 1), KX_MEMBER(IVectorEnumMaps, at, 2),
        KX_MEMBER(IItemDescriptor, Name, 1), KX_MEMBER(IItemDescriptor, DataDescriptor, 2),
        KX_MEMBER(IItemDescriptor, Dimension, 3), KX_MEMBER(IItemDescriptor, ArrayIndex, 4),
        KX_MEMBER(IItemDescriptor, Info, 5), KX_MEMBER(IItemDescriptor, Options, 6),
        KX_MEMBER(IVariableDescriptor, Data, 7), KX_MEMBER(IElementDescriptor, Offset, 7),
        KX_MEMBER(IDataDescriptor, Type, 1), KX_MEMBER(IDataDescriptor, Size, 2), KX_MEMBER(IDataDescriptor, Struct, 3),
        KX_MEMBER(IDataDescriptor, Enum, 4), KX_MEMBER(IDataDescriptor, Container, 5),
        KX_MEMBER(IEnumMap, Value, 1), KX_MEMBER(IEnumMap, Name, 2), KX_MEMBER(IEnumMap, Info, 3),
        KX_MEMBER(IEnumMap, Options, 4),
    };
    for (const auto& slot : slots) {
        EXPECT_EQ(slot.expected, slot.index) << slot.name;
    }
#else
    GTEST_SKIP() << "slot check reads the x86 Itanium member pointer";
#endif
}

TEST(OrbelContractTest, ObjectMembersSitAtTheirPlaces)
{
#if defined(__x86_64__) || defined(__i386__)
    const struct {
        const char* name;
        long index;
        long expected;
    } slots[] = {
        KX_MEMBER(IVariable, Name, 1), KX_MEMBER(IVariable, QualifiedName, 2), KX_MEMBER(IVariable, TypeName, 3),
        KX_MEMBER(IVariable, NumBytes, 4), KX_MEMBER(IVariable, Type, 5), KX_MEMBER(IVariable, ArrayDimension, 6),
        KX_MEMBER(IVariable, Module, 7),
        KX_MEMBER(IFunction, Name, 1), KX_MEMBER(IFunction, QualifiedName, 2), KX_MEMBER(IFunction, TypeName, 3),
        KX_MEMBER(IFunction, Module, 4), KX_MEMBER(IFunction, Parameters, 5),
        KX_MEMBER(IModule, Name, 1), KX_MEMBER(IModule, Path, 2),
        KX_MEMBER(IPartition, Name, 1), KX_MEMBER(IPartition, Path, 2),
        KX_MEMBER(IStackFrame, Address, 1), KX_MEMBER(IStackFrame, MemoryArea, 2), KX_MEMBER(IStackFrame, FileName, 3),
        KX_MEMBER(IStackFrame, LineNumber, 4), KX_MEMBER(IStackFrame, FunctionName, 5),
        KX_MEMBER(IStackFrame, Variables, 6), KX_MEMBER(IStackFrame, Arguments, 7),
        KX_MEMBER(IDisassemblyLine, Address, 1), KX_MEMBER(IDisassemblyLine, OpCode, 2),
        KX_MEMBER(IDisassemblyLine, OpCodeArgs, 3), KX_MEMBER(IDisassemblyLine, FileName, 4),
        KX_MEMBER(IDisassemblyLine, LineNumber, 5), KX_MEMBER(IDisassemblyLine, FunctionName, 6),
        KX_MEMBER(IDisassemblyLine, FunctionOffset, 7),
        KX_MEMBER(ISFR, Handle, 1), KX_MEMBER(ISFR, HasValue, 2), KX_MEMBER(ISFR, Name, 3), KX_MEMBER(ISFR, BitSize, 4),
        KX_MEMBER(ISFR, Properties, 5), KX_MEMBER(ISFR, ValueMaps, 6), KX_MEMBER(ISFR, SFRs, 7),
        KX_MEMBER(ISFRValueMap, String, 1), KX_MEMBER(ISFRValueMap, Value, 2),
        // Based on IUnknown: behind its three.
        KX_MEMBER(IGlobals, Variables, 4), KX_MEMBER(IGlobals, Labels, 5), KX_MEMBER(IGlobals, Modules, 6),
        KX_MEMBER(IGlobals, Functions, 7), KX_MEMBER(IStackFrameInfo, StackFrames, 4),
        KX_MEMBER(IDisassemblyBlock, Lines, 4), KX_MEMBER(ICPUSFR, CPUName, 4), KX_MEMBER(ICPUSFR, SFRs, 5),
        KX_MEMBER(IConfiguration, Partitions, 4), KX_MEMBER(IExpressionType, Expression, 4),
        KX_MEMBER(IExpressionType, Children, 5),
        KX_MEMBER(IVectorDisassemblyLines, size, 1), KX_MEMBER(IVectorDisassemblyLines, at, 2),
        KX_MEMBER(IVectorFunctions, size, 1), KX_MEMBER(IVectorFunctions, at, 2),
        KX_MEMBER(IVectorModules, size, 1), KX_MEMBER(IVectorModules, at, 2),
        KX_MEMBER(IVectorPartitions, size, 1), KX_MEMBER(IVectorPartitions, at, 2),
        KX_MEMBER(IVectorSFRs, size, 1), KX_MEMBER(IVectorSFRs, at, 2),
        KX_MEMBER(IVectorStackFrames, size, 1), KX_MEMBER(IVectorStackFrames, at, 2),
        KX_MEMBER(IVectorValueMap, size, 1), KX_MEMBER(IVectorValueMap, at, 2),
        KX_MEMBER(IVectorVariables, size, 1), KX_MEMBER(IVectorVariables, at, 2),
    };
    for (const auto& slot : slots) {
        EXPECT_EQ(slot.expected, slot.index) << slot.name;
    }
#else
    GTEST_SKIP() << "slot check reads the x86 Itanium member pointer";
#endif
}

// Interfaces without a known operation are IUnknown and nothing more.
static_assert(sizeof(OrbelProfiler) == sizeof(void*) && sizeof(OrbelEclipse) == sizeof(void*)
                  && sizeof(OrbelSink) == sizeof(void*) && sizeof(OrbelBetaExtra) == sizeof(void*),
              "one vtable pointer each");

// --- records ---------------------------------------------------------------------------------

// The bytes of a default-constructed T placed over memory full of 0xAA.
template <typename T>
std::vector<BYTE> bytesOfNew()
{
    alignas(T) BYTE storage[sizeof(T)];
    std::memset(storage, 0xAA, sizeof storage);
    T* record = new (storage) T;
    std::vector<BYTE> bytes(storage, storage + sizeof(T));
    record->~T();
    return bytes;
}

// Every byte zero but the four of a size field at sizeOffset (if any), which hold sizeof(T).
template <typename T>
void expectZeroButSize(const char* name, long sizeOffset = -1)
{
    std::vector<BYTE> expected(sizeof(T), 0);
    if (sizeOffset >= 0) {
        const DWORD size = sizeof(T);
        std::memcpy(&expected[static_cast<size_t>(sizeOffset)], &size, sizeof size);
    }
    EXPECT_EQ(bytesOfNew<T>(), expected) << name;
}

TEST(OrbelContractTest, NewRecordsWithoutPaddingAreAllZero)
{
    expectZeroButSize<SAttachInfo>("SAttachInfo");
    expectZeroButSize<SQuillonVersionInfo>("SQuillonVersionInfo");
    expectZeroButSize<SApplicationData>("SApplicationData");
    expectZeroButSize<SCPUStatus>("SCPUStatus");
    expectZeroButSize<SBatchAccessItem>("SBatchAccessItem");
    expectZeroButSize<SOrbelInfo>("SOrbelInfo", offsetof(SOrbelInfo, m_dwSize));
    expectZeroButSize<SStartingPoint>("SStartingPoint");
    expectZeroButSize<SProfilerStartingPoint>("SProfilerStartingPoint");
    expectZeroButSize<SProfilerCapabilities>("SProfilerCapabilities");
    expectZeroButSize<SProfilerStatus>("SProfilerStatus");
    expectZeroButSize<SProfilerStatistic>("SProfilerStatistic");
    expectZeroButSize<SProfilerArea>("SProfilerArea");
    expectZeroButSize<SProfilerEncode>("SProfilerEncode");
    expectZeroButSize<SCoverageRange>("SCoverageRange");
    expectZeroButSize<CBuildStatus>("CBuildStatus");
    expectZeroButSize<DebugService_JTAG::SScan_IN>("SScan_IN");
    expectZeroButSize<DebugService_JTAG::SScan_OUT>("SScan_OUT");
    expectZeroButSize<DebugService_JTAG::SLine_IN>("SLine_IN");
    expectZeroButSize<DebugService_JTAG::SLine_OUT>("SLine_OUT");
}

TEST(OrbelContractTest, NewRecordsWithPointersOrPaddingAreZeroFieldByField)
{
    SLaunchInfo launch;
    EXPECT_TRUE(launch.m_pszAddress == nullptr && launch.m_pszInstanceId == nullptr && launch.m_pszWorkspace == nullptr
                && launch.m_pszCmdLineParams == nullptr && launch.m_pfnInstanceEnumerator == nullptr
                && launch.m_pContext == nullptr);
    EXPECT_EQ(launch.m_wUdpDiscoveryPort | launch.m_wTcpPort | launch.m_dwProcessId, 0u);

    SOptionValue option;
    EXPECT_EQ(option.m_dwSize, sizeof(SOptionValue));
    EXPECT_TRUE(option.m_pszStringIn == nullptr && option.m_pszStringOut == nullptr && option.m_pIDescriptor == nullptr);
    EXPECT_EQ(option.m_cPathSeparator | option.m_dwStringOutSize | option.m_dwInteger, 0u);
    EXPECT_EQ(option.m_dFloat, 0.0);

    SDownload download;
    EXPECT_EQ(download.m_dwSize, 20u);
    EXPECT_EQ(download.m_dwFlags | download.m_aCodeOffset | download.m_aSymbolsOffset | download.m_byMemArea, 0u);

    SHILInfo hil;
    EXPECT_EQ(hil.m_dwFlags, 0u);
    EXPECT_EQ(hil.m_pIDescriptor, nullptr);

    SBatchAccessHeader header;
    EXPECT_EQ(header.m_dwFlags | header.m_dwNumItems | header.m_dwNumRuns, 0u);
    EXPECT_EQ(header.m_qwStartAtTime | header.m_qwRunInterval, 0u);
}

TEST(OrbelContractTest, ScanDataSizesFollowTheBitCountAndTheFlags)
{
    using namespace DebugService_JTAG;
    struct Case {
        DWORD scanFlags;
        DWORD numBits;
        DWORD inSize;
        DWORD outSize;
    };
    const Case cases[] = {
        {0, 0, 0, 0},
        {0, 1, 1, 1},
        {0, 8, 1, 1},
        {0, 13, 2, 2},
        {Scan::scanNoTDI, 13, 0, 2},
        {Scan::scanNoTDO, 13, 2, 0},
        {Scan::scanNoTDI | Scan::scanNoTDO, 13, 0, 0},
        {0, 0xFFFFFFFF, 0x20000000, 0x20000000},
    };
    for (const Case& c : cases) {
        SScan_IN scan;
        scan.m_dwScanFlags = c.scanFlags;
        scan.m_dwNumBits = c.numBits;
        EXPECT_EQ(Scan::IN_Size(scan), c.inSize) << c.scanFlags << "/" << c.numBits;
        EXPECT_EQ(Scan::OUT_Size(scan), c.outSize) << c.scanFlags << "/" << c.numBits;
    }
}

TEST(OrbelContractTest, CommandWordsComposeAsTheClientSendsThem)
{
    // Words quoted from the client's calls; each is built here from the named parts.
    EXPECT_EQ(OrbelFlags::lfFindOrStart | OrbelFlags::lfIPCDiscovery | OrbelFlags::lfVisibility1, 0x181u);
    EXPECT_EQ(OrbelDebugFlags::rcRun | OrbelDebugFlags::wmWait4, 0xC85u);
    EXPECT_EQ(OrbelDebugFlags::rcRunUntilAddress | OrbelDebugFlags::wmWait2, 0x8Cu);
    EXPECT_EQ(OrbelDebugFlags::bpDisable | OrbelDebugFlags::bpAllHardware, 0x78u);
    EXPECT_EQ(1u | 2u | 4u | OrbelDebugFlags::bpHWSymbol | OrbelDebugFlags::bpHWOption, 0x8000Fu);
    EXPECT_EQ(OrbelDebugFlags::dlList1 | OrbelDebugFlags::dlFromList | 3u | OrbelDebugFlags::dlRealTime, 0x11203u);
    EXPECT_EQ(OrbelIDEFlags::dfReset | OrbelIDEFlags::dfTypeCoverage | OrbelIDEFlags::dfOpenNewFile, 0xA200000Du);
    EXPECT_EQ(OrbelIDEFlags::dfStart | OrbelIDEFlags::dfTerminal, 0x11080000u);
    EXPECT_EQ(OrbelIDEFlags::ofRead | OrbelIDEFlags::ofModuleHIL | OrbelIDEFlags::ofFloat, 0x80000043u);
    EXPECT_EQ(OrbelIDEFlags::ofModuleDocument | OrbelIDEFlags::ofNameValue, 0x1Eu);
    EXPECT_EQ(OrbelProfilerFlags::areaRegion | OrbelProfilerFlags::areaBit8 | OrbelProfilerFlags::areaBit9, 0x340u);
    EXPECT_EQ(OrbelProjectFlags::boGetByIndex | 2u, 0x20002u);
    EXPECT_EQ(OrbelProjectFlags::pcLink | OrbelProjectFlags::pcFlag, 0x13u);
}

TEST(OrbelContractTest, OptionSeparatorsDefaultForZero)
{
    EXPECT_EQ(PathSeparator(0), '.');
    EXPECT_EQ(ValueSeparator(0), ':');
    EXPECT_EQ(OptionSeparator(0), '\n');
    EXPECT_EQ(PathSeparator('/'), '/');
    EXPECT_EQ(ValueSeparator('='), '=');
    EXPECT_EQ(OptionSeparator(';'), ';');
}

static_assert(std::is_same_v<PFN_ORBEL_CREATE_OBJECT, HRESULT (*)(const GUID*, IUnknown**)>,
              "orbel_CreateObject as the client calls it");
static_assert(std::is_same_v<PFN_ORBEL_GET_INFO, HRESULT (*)(SOrbelInfo*)>, "orbel_GetInfo as the client calls it");

} // namespace
