#!/usr/bin/env bash
# Compares the dynamic symbols of libOrbelCS.so with the export catalogue: no name beyond the
# catalogue (but the allowance below), and every name of each finished class present.
set -euo pipefail
lib=$1
catalogue=$2

# Classes whose exports are complete; grows with each finished area.
finished=(
  CUtil StrVector VectorBYTE VectorDWORD StrStrMap StrStrMapIterator ucharArray
  IStream CFileStream CStringStream
  SType SType2 SValue CAddress CCPUInfo CMMUInfo SInfo SRegisterInfo SProcessID SProcessMappingItem
  CValueType CMemAddress CSymbolInfo CLineLocation CLogger
  CCoverageStatistic CProfilerStatistic SProfilerHistory CProfilerHistory
  ProfilerHistoryVector ProfilerStatisticVector
  StrCoverageStatisticMap StrProfilerStatisticMap StrProfilerStatisticVectorMap
  CTestTrace CTestCoverage CTestCoverageStatistics
  IEmitter EmitterFactory CIntervalValidator
  CYAMLUtil
  CTestFunction CTestStub CTestHIL StubsVector
  MinMaxLimits CProfilerArea CTestProfiler CTestEnvironmentConfig CTestReportConfig
  CTestSpecification CTestBench
  CCoverageTestExpected CCoverageTestResult CProfilerTestResult CTestResult
  ProfilerTestResultsVector StrCoverageTestResultsMap StrProfilerTestResultsMap StrProfilerTestResultsVectorMap
  ConnectionMgr CConnectionConfig QuillonInstanceInfo VectorQuillonInstanceInfo CQuillonVersion SPtrFactory
  SOrbelInfo IID CLSID
  Orbel OrbelCoverage OrbelDebug OrbelDebug2 OrbelEclipse OrbelHIL OrbelIDE OrbelIDE2 OrbelIDE3
  OrbelProfiler OrbelProfiler2 OrbelProject OrbelSink OrbelTest
  CPUStatus CDataController CExecutionController CBreakpointController CAddressController
  CDownloadConfiguration DownloadListMember DownloadListVector CLoaderController CDebugFacade
  SBatchAccessHeader SBatchAccessItem SBatchAccessItemResult VectorBatchAccessItem VectorBatchAccessResult
  SScan_IN SScan_OUT SLine_IN SLine_OUT Scan
  CTestCaseController CTestVariableController CTestStubController ICustomFunctions
  CIDEController CIDEData COptionValue SOptionValue CWorkspaceController
  CDocumentController CAnalyzerDocController CTerminalDocController CCoverageController
  SCoverageRange CoverageRangeVector CHILController
  IDescriptor IVectorVariableDescriptors IItemDescriptor IVariableDescriptor IElementDescriptor
  IDataDescriptor IVectorElementDescriptors IEnumMap IVectorEnumMaps
  SStartingPoint SProfilerStartingPoint SProfilerEncode CProfilerCapabilities CProfilerStatus CAreaProperties
  CProfilerController
)
# Free functions and registration exports, named whole.
finished_names=(
  CSharp_getModuleVersion CSharp_putStrStrMap
  SWIGRegisterExceptionCallbacks_kestrixOrbel SWIGRegisterExceptionArgumentCallbacks_kestrixOrbel
  SWIGRegisterStringCallback_kestrixOrbel
  CSharp_new_SPtrFactoryConnectionMgr
  CSharp_SERVICE_Scan_get
  CSharp_PathSeparator CSharp_ValueSeparator CSharp_OptionSeparator
  CSharp_new_CWorkspaceControllerWS
)
# Names SWIG's own C# proxies call; the catalogue's names for them are shims beside them.
allowed=(
  CSharp_CFileStream_SWIGSmartPtrUpcast
  CSharp_CStringStream_SWIGSmartPtrUpcast
  CSharp_CAnalyzerDocController_SWIGSmartPtrUpcast
  CSharp_CCoverageController_SWIGSmartPtrUpcast
  CSharp_SType2_SWIGUpcast
  CSharp_IVariableDescriptor_SWIGUpcast
  CSharp_IElementDescriptor_SWIGUpcast
  CSharp_OrbelDebug2_SWIGUpcast
  CSharp_OrbelIDE2_SWIGUpcast
  CSharp_OrbelIDE3_SWIGUpcast
  CSharp_OrbelProfiler2_SWIGUpcast
  CSharp_SProfilerStartingPoint_SWIGUpcast
  # Directors: a managed class that implements the script functions is built through these.
  CSharp_new_ICustomFunctions
  CSharp_ICustomFunctions_director_connect
)

have=$(nm -D --defined-only "$lib" | awk '{print $3}' | sort -u)
want=$(sort -u "$catalogue")
status=0

stray=$(comm -23 <(echo "$have") <(echo "$want") | grep -vxF -f <(printf '%s\n' "${allowed[@]}") || true)
if [ -n "$stray" ]; then
  echo "exported but not in the catalogue:"
  echo "$stray" | sed 's/^/  /'
  status=1
fi

# The catalogue's names of one class: methods, fields, constructors, destructor, upcast.
names_of() {
  local c=$1
  echo "$want" | grep -E "^CSharp_(${c}_|new_${c}$|new_${c}__SWIG_|delete_${c}$|${c}Upcast$)" || true
}

missing=$( { for c in "${finished[@]}"; do names_of "$c"; done; printf '%s\n' "${finished_names[@]}"; } \
  | sort -u | comm -23 - <(echo "$have") )
if [ -n "$missing" ]; then
  echo "missing names of finished classes:"
  echo "$missing" | sed 's/^/  /'
  status=1
fi

present=$(comm -12 <(echo "$have") <(echo "$want") | wc -l)
echo "exports present: $present of $(echo "$want" | wc -l)"
exit $status
