// Documents of Quillon: plain, analyzer and coverage documents with the ranges of coverage,
// and the terminal.

%{
#include "CDocumentController.h"
#include "CAnalyzerDocController.h"
#include "CCoverageController.h"
#include "CTerminalDocController.h"
#include "SCoverageRange.h"
%}

%shared_ptr(kestrix::CDocumentController)
%shared_ptr(kestrix::CAnalyzerDocController)
%shared_ptr(kestrix::CCoverageController)

KX_AUTOMATION_RECORD(SCoverageRange)
%include "SCoverageRange.h"
%template(CoverageRangeVector) std::vector<kestrix::SCoverageRange>;

// The controller's base is the library's own: the managed side sees the documents alone.
%warnfilter(401) kestrix::CDocumentController;
%include "CDocumentController.h"
%include "CAnalyzerDocController.h"
%include "CCoverageController.h"
%include "CTerminalDocController.h"
