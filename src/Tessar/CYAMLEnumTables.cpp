#include "CYAMLEnumTables.h"

namespace kestrix {

const char* const CYAMLEnumTables::PROFILER_RUN_MODE[] = {"off", "start", nullptr};
const char* const CYAMLEnumTables::TRACE_RUN_MODE[] = {"off", "start", nullptr};
const char* const CYAMLEnumTables::COVERAGE_RUN_MODE[] = {"off", "start", "resume", nullptr};
const char* const CYAMLEnumTables::TRACE_EXPORT[] = {"Text", "CSV", "Binary", nullptr};
const char* const CYAMLEnumTables::COVERAGE_EXPORT[] = {
    "HTML", "Text", "CSV", "XML", "Review (HTML)", "Review (Text)", "XML2", nullptr};
const char* const CYAMLEnumTables::REPORT_CONTENTS[] = {"full", "errorsOnly", nullptr};
const char* const CYAMLEnumTables::OUTPUT_FORMAT[] = {"xml", "yaml", nullptr};

} // namespace kestrix
