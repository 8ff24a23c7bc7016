// Judged results of a test and their list and map families.

%{
#include "CCoverageTestExpected.h"
#include "CCoverageTestResult.h"
#include "CProfilerTestResult.h"
#include "CTestResult.h"
#include "CTestReportConfig.h"
#include "CTestSpecification.h"
%}

// Comes after the bindings of the test specification and the report configuration, whose
// shared-pointer declarations it relies on.

// Helpers of the library's own writers.
%ignore kestrix::CProfilerTestResult::statusToString;
%ignore kestrix::CTestResult::REPORT_VERSION;

%include "CCoverageTestExpected.h"
%include "CCoverageTestResult.h"
%include "CProfilerTestResult.h"
%include "CTestResult.h"

%template(ProfilerTestResultsVector) std::vector<kestrix::CProfilerTestResult>;
%template(StrCoverageTestResultsMap) std::map<std::string, kestrix::CCoverageTestResult>;
%template(StrProfilerTestResultsMap) std::map<std::string, kestrix::CProfilerTestResult>;
%template(StrProfilerTestResultsVectorMap) std::map<std::string, std::vector<kestrix::CProfilerTestResult> >;
