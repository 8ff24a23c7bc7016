// Target access: the data, execution, breakpoint, address and loader controllers, their
// facade, the CPU status, the download configuration and the records that these hand to the
// automation interface.

%{
#include "CPUStatus.h"
#include "CDataController.h"
#include "CExecutionController.h"
#include "CBreakpointController.h"
#include "CAddressController.h"
#include "CDownloadConfiguration.h"
#include "DownloadListMember.h"
#include "CLoaderController.h"
#include "CDebugFacade.h"
#include "OrbelIdentifiers.h"
#include "SLine_IN.h"
#include "SLine_OUT.h"
#include "SScan_IN.h"
#include "SScan_OUT.h"
#include "Scan.h"
%}

typedef int HRESULT;

// Records that the managed side only holds as pointers.
namespace kestrix {
struct SCPUStatus;
struct SDownload;
}

KX_AUTOMATION_RECORD(SBatchAccessHeader)
KX_AUTOMATION_RECORD(SBatchAccessItem)
KX_AUTOMATION_RECORD(SBatchAccessItemResult)

%include "SBatchAccessHeader.h"
%include "SBatchAccessItem.h"
%include "SBatchAccessItemResult.h"
%template(VectorBatchAccessItem) std::vector<kestrix::SBatchAccessItem>;
%template(VectorBatchAccessResult) std::vector<kestrix::SBatchAccessItemResult>;

// The JTAG service records; Scan only sizes the data bytes of a scan.
%ignore kestrix::DebugService_JTAG::SLine_IN::LINE_OCD_TRISTATE;
%include "SScan_IN.h"
%include "SScan_OUT.h"
%include "SLine_IN.h"
%include "SLine_OUT.h"
%nodefaultctor kestrix::DebugService_JTAG::Scan;
%nodefaultdtor kestrix::DebugService_JTAG::Scan;
%include "Scan.h"

// The identifiers of the JTAG services: each read gives a fresh copy, which the managed side keeps.
%typemap(out) kestrix::GUID * %{ $result = new kestrix::GUID(*$1); %}
%immutable;
namespace kestrix {
extern const GUID SERVICE_Line;
extern const GUID SERVICE_Scan;
}
%mutable;
%clear kestrix::GUID *;

%include "CPUStatus.h"

// The controllers' base is the library's own: the managed side sees each controller alone.
%warnfilter(401) kestrix::CDataController;
%warnfilter(401) kestrix::CExecutionController;
%warnfilter(401) kestrix::CBreakpointController;
%warnfilter(401) kestrix::CAddressController;
%warnfilter(401) kestrix::CLoaderController;

%ignore kestrix::CDataController::MAX_MODIFY_TEXT;
%include "CDataController.h"

%ignore kestrix::CExecutionController::waitBits;
%include "CExecutionController.h"

%include "CBreakpointController.h"

%ignore kestrix::CAddressController::MAX_LINE_ADDRESSES;
%include "CAddressController.h"

%ignore kestrix::CDownloadConfiguration::getSDownload() const;
%include "CDownloadConfiguration.h"

%include "DownloadListMember.h"
%template(DownloadListVector) std::vector<kestrix::DownloadListMember>;

%ignore kestrix::CLoaderController::LIST_BUFFER_SIZE;
%ignore kestrix::CLoaderController::MAX_LIST_MEMBERS;
%include "CLoaderController.h"

%include "CDebugFacade.h"
