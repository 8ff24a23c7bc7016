#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "CValueType.h"
#include "Containers.h"
#include "SType.h"

namespace kestrix {

/// Records calls as a Python or Java script that replays them. Pauses between timed lines
/// longer than the ignorable difference become calls of the script's wait function.
class CLogger {
public:
    enum ELanguage { JAVA = 0, PYTHON = 1 };

    /// Text of an enumeration value for the script, as given by the printers below.
    typedef std::string (*Printer)(int);
    /// Source of the millisecond tick count of the wait lines.
    typedef std::function<uint32_t()> TickSource;

#ifndef SWIG
    /// One argument of `logf`; the format letter decides how it is written.
    class Arg {
    public:
        enum Kind { kInteger, kReal, kText, kPrinter, kPointer };

        template <typename T, std::enable_if_t<std::is_integral<T>::value || std::is_enum<T>::value, int> = 0>
        Arg(T value) : m_kind(kInteger), m_integer(static_cast<long long>(value))
        {
        }
        Arg(double value) : m_kind(kReal), m_real(value) {}
        Arg(const std::string& text) : m_kind(kText), m_text(text) {}
        Arg(const char* text) : m_kind(kText), m_text(text != nullptr ? text : "") {}
        Arg(Printer printer) : m_kind(kPrinter), m_printer(printer) {}
        Arg(std::nullptr_t) : m_kind(kPointer) {}
        template <typename T, std::enable_if_t<std::is_object<T>::value && !std::is_same<T, char>::value, int> = 0>
        Arg(const T*) : m_kind(kPointer)
        {
        }

        Kind kind() const { return m_kind; }
        long long integer() const { return m_integer; }
        double real() const { return m_real; }
        const std::string& text() const { return m_text; }
        Printer printer() const { return m_printer; }

    private:
        Kind m_kind;
        long long m_integer = 0;
        double m_real = 0.0;
        std::string m_text;
        Printer m_printer = nullptr;
    };

    CLogger(const std::string& fileName, ELanguage language);
    /// The same, with the ignorable pause and a header line written after the checks.
    CLogger(const std::string& fileName, ELanguage language, double ignorableTimeDiff, const std::string& header);
#endif
    ~CLogger();

    CLogger(const CLogger&) = delete;
    CLogger& operator=(const CLogger&) = delete;

    /// Writes `text` unindented, whatever the switch says; false if the stream has failed.
    bool writeHeader(const std::string& text);

    void log(const std::string& text);
    void log(const std::string& var, const std::string& method);
    void log(const std::string& var, const std::string& method, DWORD value);
    void log(const std::string& var, const std::string& method, const std::string& value);

#ifndef SWIG
    /// Writes `var.method(...)` with one item per letter of `format`:
    /// i int, D and u unsigned, b bool, l 64-bit, d double, s quoted text, v bare text,
    /// E value and printer, a1 array pointer and count (written as nothing).
    /// A letter without a fitting argument, or arguments left over, raise
    /// IllegalArgumentException before anything is written.
    template <typename... Args>
    void logf(const std::string& var, const std::string& method, const char* format, const Args&... args)
    {
        logArgs(var, method, format, std::vector<Arg>{Arg(args)...});
    }
    void logArgs(const std::string& var, const std::string& method, const char* format, const std::vector<Arg>& args);
#endif

    /// A comment line; written only while logging is on, but not timed.
    void logc(const std::string& text);

    void createVar(const std::string& var, const std::string& type);
    void fillVectorBYTE(const std::string& var, const VectorBYTE& bytes);
    void createSType(const std::string& var, const SType& type);
    void createCValueType(const std::string& var, const CValueType& value);

    void setIndent(int count);
    void setIgnorableTimeDiff(double seconds);
    /// The next timed line starts the clock anew.
    void resetStartTime();
    void loggingOn();
    void loggingOff();
    /// Writes `footer` as it stands and closes the script; later calls write nothing.
    void closeLog(const std::string& footer);

#ifndef SWIG
    /// Replaces the system tick count, so that the wait lines can be driven by a test clock.
    void setTickSource(TickSource source);
#endif

    static std::string lang2str(ELanguage language);
    static std::string obDebugAccessFlags2str(int flags);
    static std::string obDebugSymbolFlags2str(int flags);
    static std::string obDebugAddressFlags2str(int flags);
    static std::string obDebugEvaluateFlags2str(int flags);
    static std::string obSTypeType2str(int type);
    static std::string obCoverageRangeItem2str(int item);
    static std::string obCoverageRangesTypes2str(int type);
    static std::string obCoverageStatisticsFlags2str(int flags);
    static std::string obProfilerConfigFlags2str(int flags);
    static std::string obProfilerStatusFlags2str(int flags);

private:
    void open(const std::string& fileName, ELanguage language);
    void logTimed(const std::string& text);
    void clockStep();
    void writeLine(const std::string& text);
    static std::string shortMethod(const std::string& method);
#ifndef SWIG
    static std::string formatCall(const std::string& var, const std::string& method, const char* format,
                                  const std::vector<Arg>& args);
#endif

    bool m_isLoggingOn = true;
    bool m_isClosed = false;
    std::ofstream m_file;
    double m_ignorableTimeDiff = 1.0;
    double m_lastTime = -1.0;
    double m_startTime = 0.0;
    std::string m_commentPrefix;
    std::string m_waitFunction;
    double m_timeFactor = 1.0;
    ELanguage m_language = PYTHON;
    std::string m_indent;
    // Injectable so that tests control the pauses; the system tick count by default.
    TickSource m_tickSource;
};

} // namespace kestrix
