#pragma once

namespace kestrix {

/// The words of the enumerations that specification sections hold in `CYAMLEnum`. Each table
/// is null-terminated; the index of a word is the enumerator's number.
struct CYAMLEnumTables {
    static const char* const PROFILER_RUN_MODE[];       // CTestProfiler::ERunMode
    static const char* const TRACE_RUN_MODE[];          // CTestTrace::ERunMode
    static const char* const COVERAGE_RUN_MODE[];       // CTestCoverage::ERunMode
    static const char* const TRACE_EXPORT[];            // CTestTrace::EExport
    static const char* const COVERAGE_EXPORT[];         // CTestCoverage::EExport
    static const char* const REPORT_CONTENTS[];         // CTestReportConfig::EReportContents
    static const char* const OUTPUT_FORMAT[];           // CTestReportConfig::EOutputFormat
};

/// Table of words of an enumeration used with `CYAMLEnum<E>`; specialised for each one with
/// KX_YAML_ENUM_TABLE behind the definition of the enumeration's class.
template <typename E>
struct YAMLEnumTable;

} // namespace kestrix

/// Binds an enumeration to its table, at namespace scope inside `namespace kestrix`:
/// `KX_YAML_ENUM_TABLE(CTestTrace::ERunMode, CYAMLEnumTables::TRACE_RUN_MODE)`.
#define KX_YAML_ENUM_TABLE(ENUM_TYPE, TABLE)                                   \
    template <>                                                                \
    struct YAMLEnumTable<ENUM_TYPE> {                                          \
        static const char* const* strings() { return TABLE; }                  \
    };
