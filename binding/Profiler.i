// The profiler: its controller, what it answers (capabilities, status, area properties) and the
// records of its starting point.

%{
#include "SStartingPoint.h"
#include "SProfilerStartingPoint.h"
#include "SProfilerEncode.h"
#include "CProfilerCapabilities.h"
#include "CProfilerStatus.h"
#include "CAreaProperties.h"
#include "CProfilerController.h"
%}

%shared_ptr(kestrix::CProfilerController)

// Records that the managed side only holds as pointers.
namespace kestrix {
struct SProfilerCapabilities;
struct SProfilerStatus;
}

KX_AUTOMATION_RECORD(SStartingPoint)
KX_AUTOMATION_RECORD(SProfilerStartingPoint)

// The event values are plain numbers on the managed side.
%ignore kestrix::SStartingPoint::EEvent;
%ignore kestrix::SStartingPoint::eventNone;
%ignore kestrix::SStartingPoint::eventAddress;
%include "SStartingPoint.h"
%include "SProfilerStartingPoint.h"
%include "SProfilerEncode.h"

%include "CProfilerCapabilities.h"
%include "CProfilerStatus.h"
%include "CAreaProperties.h"

// The controller's base is the library's own: the managed side sees the controller alone.
%warnfilter(401) kestrix::CProfilerController;
%include "CProfilerController.h"
