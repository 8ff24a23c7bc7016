// What the coverage and profiler analyzers measured, with their list and map families.

%{
#include "SProfilerHistory.h"
#include "CCoverageStatistic.h"
#include "CProfilerStatistic.h"
#include "CProfilerHistory.h"
%}

// The field-wise constructor is for the library's own readers of measurements.
%ignore kestrix::CProfilerStatistic::CProfilerStatistic(DWORD, DWORD, long long, long long, long long, DWORD);
%ignore kestrix::CProfilerStatistic::operator=;

%include "SProfilerHistory.h"
%include "CCoverageStatistic.h"
%include "CProfilerStatistic.h"
%include "CProfilerHistory.h"

%template(ProfilerHistoryVector) std::vector<kestrix::CProfilerHistory>;
%template(ProfilerStatisticVector) std::vector<kestrix::CProfilerStatistic>;
%template(StrCoverageStatisticMap) std::map<std::string, kestrix::CCoverageStatistic>;
%template(StrProfilerStatisticMap) std::map<std::string, kestrix::CProfilerStatistic>;
%template(StrProfilerStatisticVectorMap) std::map<std::string, std::vector<kestrix::CProfilerStatistic> >;
