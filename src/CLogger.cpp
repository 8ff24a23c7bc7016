#include "CLogger.h"

#include <cstdint>
#include <sstream>

#include "CUtil.h"
#include "IOException.h"
#include "IllegalArgumentException.h"
#include "OrbelCoverageFlags.h"
#include "OrbelDebugFlags.h"
#include "OrbelProfilerFlags.h"
#include "Platform.h"

namespace kestrix {

namespace {

// Consumes the next argument of `logf`, which must be of one of the given kinds.
class ArgReader {
public:
    ArgReader(const char* format, const std::vector<CLogger::Arg>& args) : m_format(format), m_args(args) {}

    const CLogger::Arg& take(char letter, CLogger::Arg::Kind kind, CLogger::Arg::Kind other)
    {
        if (m_next >= m_args.size() || (m_args[m_next].kind() != kind && m_args[m_next].kind() != other)) {
            refuse(letter);
        }
        return m_args[m_next++];
    }

    const CLogger::Arg& take(char letter, CLogger::Arg::Kind kind) { return take(letter, kind, kind); }

    const CLogger::Arg& takeAny(char letter)
    {
        if (m_next >= m_args.size()) {
            refuse(letter);
        }
        return m_args[m_next++];
    }

    void checkAllTaken() const
    {
        if (m_next != m_args.size()) {
            throw IllegalArgumentException(KX_POS, "More log arguments than format letters: ", m_format)
                .add("arguments", static_cast<int>(m_args.size()));
        }
    }

private:
    [[noreturn]] void refuse(char letter) const
    {
        throw IllegalArgumentException(KX_POS, "Log format letter without a fitting argument: ", std::string(1, letter))
            .add("format", m_format)
            .add("argument", static_cast<int>(m_next));
    }

    std::string m_format;
    const std::vector<CLogger::Arg>& m_args;
    size_t m_next = 0;
};

std::string joinFlags(const std::vector<const char*>& names)
{
    std::string text;
    for (const char* name : names) {
        if (!text.empty()) {
            text += " | ";
        }
        text += name;
    }
    return text;
}

} // namespace

CLogger::CLogger(const std::string& fileName, ELanguage language)
{
    open(fileName, language);
}

CLogger::CLogger(const std::string& fileName, ELanguage language, double ignorableTimeDiff,
                 const std::string& header)
{
    open(fileName, language);
    m_ignorableTimeDiff = ignorableTimeDiff;
    writeHeader(header);
}

CLogger::~CLogger()
{
    closeLog("");
}

void CLogger::open(const std::string& fileName, ELanguage language)
{
    m_tickSource = &platform::getTickCount;
    m_file.open(fileName, std::ios::out | std::ios::trunc);
    if (!m_file.is_open()) {
        throw IOException(KX_POS, "Can not open log file: ", fileName);
    }
    switch (language) {
    case PYTHON:
        m_commentPrefix = "# ";
        m_waitFunction = "waitUntil";
        m_timeFactor = 1.0;
        break;
    case JAVA:
        m_commentPrefix = "// ";
        m_waitFunction = "OBUtil.waitUntil";
        m_timeFactor = 1000.0;
        break;
    default:
        throw IOException(KX_POS, "Invalid output language selected for log file: ", static_cast<int>(language));
    }
    m_language = language;
}

bool CLogger::writeHeader(const std::string& text)
{
    writeLine(text);
    return m_file.good();
}

void CLogger::log(const std::string& text)
{
    logTimed(text);
}

void CLogger::log(const std::string& var, const std::string& method)
{
    logTimed(var + "." + shortMethod(method) + "();");
}

void CLogger::log(const std::string& var, const std::string& method, DWORD value)
{
    logTimed(var + "." + shortMethod(method) + "(" + CUtil::i2a(value) + ");");
}

void CLogger::log(const std::string& var, const std::string& method, const std::string& value)
{
    logTimed(var + "." + shortMethod(method) + "(\"" + value + "\");");
}

void CLogger::logArgs(const std::string& var, const std::string& method, const char* format,
                      const std::vector<Arg>& args)
{
    if (!m_isLoggingOn) {
        return;
    }
    logTimed(formatCall(var, method, format, args));
}

std::string CLogger::formatCall(const std::string& var, const std::string& method, const char* format,
                                const std::vector<Arg>& args)
{
    const std::string letters = format != nullptr ? format : "";
    ArgReader reader(letters.c_str(), args);
    std::ostringstream line;
    line << var << "." << shortMethod(method) << "(";
    for (size_t i = 0; i < letters.size(); ++i) {
        const char letter = letters[i];
        switch (letter) {
        case 'i': line << static_cast<int32_t>(reader.take(letter, Arg::kInteger).integer()); break;
        case 'D':
        case 'u': line << static_cast<uint32_t>(reader.take(letter, Arg::kInteger).integer()); break;
        case 'b': line << (reader.take(letter, Arg::kInteger).integer() != 0 ? 1 : 0); break;
        case 'l': line << reader.take(letter, Arg::kInteger).integer(); break;
        case 'd': {
            const Arg& arg = reader.take(letter, Arg::kReal, Arg::kInteger);
            line << (arg.kind() == Arg::kReal ? arg.real() : static_cast<double>(arg.integer()));
            break;
        }
        case 's': line << "\"" << reader.take(letter, Arg::kText).text() << "\""; break;
        case 'v': line << reader.take(letter, Arg::kText).text(); break;
        case 'E': {
            const int value = static_cast<int>(reader.take(letter, Arg::kInteger).integer());
            const Printer printer = reader.take(letter, Arg::kPrinter, Arg::kPointer).printer();
            if (printer != nullptr) {
                line << printer(value);
            } else {
                line << value;
            }
            break;
        }
        case 'a': {
            // The element size stands behind the letter; only bytes are supported, and they are
            // written as nothing.
            const char size = i + 1 < letters.size() ? letters[++i] : '\0';
            if (size == '1') {
                reader.takeAny(letter);
                reader.takeAny(letter);
            } else {
                line << "\nCLogger ERROR: Unsupported array element size: ";
                if (size != '\0') {
                    line << size;
                }
                line << "\n";
            }
            break;
        }
        default:
            break;
        }
        if (i + 1 < letters.size()) {
            line << ", ";
        }
    }
    line << ");";
    reader.checkAllTaken();
    return line.str();
}

void CLogger::logc(const std::string& text)
{
    if (m_isLoggingOn) {
        writeLine(m_indent + m_commentPrefix + text);
    }
}

void CLogger::createVar(const std::string& var, const std::string& type)
{
    if (m_language == PYTHON) {
        writeLine(m_indent + var + " = " + type + "()");
    } else {
        writeLine(m_indent + type + " " + var + " = new " + type + "()");
    }
}

void CLogger::fillVectorBYTE(const std::string& var, const VectorBYTE& bytes)
{
    m_file << m_indent << var << " = kestrix.orbel.VectorBYTE([";
    for (size_t i = 0; i < bytes.size(); ++i) {
        m_file << static_cast<int>(bytes[i]) << ", ";
        if (i % 25 == 0) {
            m_file << '\n' << std::flush;
        }
    }
    writeLine("])");
}

void CLogger::createSType(const std::string& var, const SType& type)
{
    writeLine(m_indent + var + " = kestrix.orbel.SType()");
    writeLine(m_indent + var + ".m_byBitSize = " + CUtil::i2a(static_cast<int>(type.m_byBitSize)));
    writeLine(m_indent + var + ".m_byType = " + obSTypeType2str(type.m_byType));
}

void CLogger::createCValueType(const std::string& var, const CValueType& value)
{
    createSType("__sType", value.getType());
    writeLine(m_indent + var + " = kestrix.orbel.CValueType(__sType, \"" + value.getResult() + "\")");
}

void CLogger::setIndent(int count)
{
    if (count < 0) {
        throw IllegalArgumentException(KX_POS, "Indent must not be negative: ", count);
    }
    m_indent.assign(static_cast<size_t>(count), ' ');
}

void CLogger::setIgnorableTimeDiff(double seconds)
{
    m_ignorableTimeDiff = seconds;
}

void CLogger::resetStartTime()
{
    m_lastTime = -1.0;
}

void CLogger::loggingOn()
{
    m_isLoggingOn = true;
}

void CLogger::loggingOff()
{
    m_isLoggingOn = false;
}

void CLogger::closeLog(const std::string& footer)
{
    if (!m_isClosed) {
        m_file << footer;
        m_file.close();
        m_isClosed = true;
    }
    m_isLoggingOn = false;
}

void CLogger::setTickSource(TickSource source)
{
    if (!source) {
        throw IllegalArgumentException(KX_POS, "The tick source of the logger must not be empty!");
    }
    m_tickSource = std::move(source);
}

void CLogger::logTimed(const std::string& text)
{
    if (!m_isLoggingOn) {
        return;
    }
    clockStep();
    writeLine(m_indent + text);
}

// The first timed line starts the clock; a later one that comes more than the ignorable
// difference after its predecessor is preceded by a wait until its time since the start.
void CLogger::clockStep()
{
    const double now = m_tickSource() / 1000.0;
    if (m_lastTime < 0.0) {
        m_startTime = now;
        m_lastTime = now;
        return;
    }
    if (now - m_lastTime > m_ignorableTimeDiff) {
        std::ostringstream wait;
        wait << m_indent << m_waitFunction << "(" << (now - m_startTime) * m_timeFactor << ");";
        writeLine(wait.str());
    }
    m_lastTime = now;
}

void CLogger::writeLine(const std::string& text)
{
    m_file << text << '\n' << std::flush;
}

std::string CLogger::shortMethod(const std::string& method)
{
    const size_t colon = method.rfind(':');
    return colon == std::string::npos ? method : method.substr(colon + 1);
}

std::string CLogger::lang2str(ELanguage language)
{
    switch (language) {
    case PYTHON: return "CLogger.PYTHON";
    case JAVA: return "CLogger.JAVA";
    default: return CUtil::i2a(static_cast<int>(language));
    }
}

std::string CLogger::obDebugAccessFlags2str(int flags)
{
    using F = OrbelDebugFlags;
    if (flags == F::fMonitor) {
        return "OrbelDebug.fMonitor";
    }
    std::vector<const char*> names;
    if ((flags & F::fRealTime) != 0) {
        names.push_back("OrbelDebug.fRealTime");
    }
    if ((flags & F::fSFR) != 0) {
        names.push_back("OrbelDebug.fSFR");
    }
    // The cache bits form one field of three values.
    switch (flags & F::fCacheMask) {
    case F::fCacheDefault: names.push_back("OrbelDebug.fCacheDefault"); break;
    case F::fCacheStop: names.push_back("OrbelDebug.fCacheStop"); break;
    case F::fCacheCode: names.push_back("OrbelDebug.fCacheCode"); break;
    default: break;
    }
    if ((flags & F::fNoRefresh) != 0) {
        names.push_back("OrbelDebug.fNoRefresh");
    }
    return joinFlags(names);
}

std::string CLogger::obDebugSymbolFlags2str(int flags)
{
    switch (flags) {
    case OrbelDebugFlags::sVariables: return "OrbelDebug.sVariables";
    case OrbelDebugFlags::sLabels: return "OrbelDebug.sLabels";
    case OrbelDebugFlags::sFunctions: return "OrbelDebug.sFunctions";
    case OrbelDebugFlags::sLines: return "OrbelDebug.sLines";
    case OrbelDebugFlags::sConstants: return "OrbelDebug.sConstants";
    default: return "OrbelDebug.ESymbolFlags = " + CUtil::i2a(flags);
    }
}

std::string CLogger::obDebugAddressFlags2str(int flags)
{
    switch (flags) {
    case OrbelDebugFlags::gafExpression: return "OrbelDebug.gafExpression";
    case OrbelDebugFlags::gafVariables: return "OrbelDebug.gafVariables";
    case OrbelDebugFlags::gafLabels: return "OrbelDebug.gafLabels";
    case OrbelDebugFlags::gafFunctions: return "OrbelDebug.gafFunctions";
    default: return "OrbelDebug.EGetAddressFlags = " + CUtil::i2a(flags);
    }
}

std::string CLogger::obDebugEvaluateFlags2str(int flags)
{
    switch (flags) {
    case OrbelDebugFlags::efDefaultMemAreaDisplay: return "OrbelDebug.efDefaultMemAreaDisplay";
    case OrbelDebugFlags::efNoMemAreaDisplay: return "OrbelDebug.efNoMemAreaDisplay";
    default: return "OrbelDebug.EEvaluate = " + CUtil::i2a(flags);
    }
}

std::string CLogger::obSTypeType2str(int type)
{
    switch (type) {
    case SType::tUndefined: return "kestrix.orbel.SType.tUndefined";
    case SType::tUnsigned: return "kestrix.orbel.SType.tUnsigned";
    case SType::tSigned: return "kestrix.orbel.SType.tSigned";
    case SType::tFloat: return "kestrix.orbel.SType.tFloat";
    case SType::tAddress: return "kestrix.orbel.SType.tAddress";
    case SType::tCompound: return "kestrix.orbel.SType.tCompound";
    default: return "kestrix.orbel.SType.m_byType = " + CUtil::i2a(type);
    }
}

std::string CLogger::obCoverageRangeItem2str(int item)
{
    switch (item) {
    case 0: return "CCoverageController.rsFolder";
    case 1: return "CCoverageController.rsModule";
    case 2: return "CCoverageController.rsFunction";
    case 3: return "CCoverageController.rsItem";
    default: return CUtil::i2a(item);
    }
}

std::string CLogger::obCoverageRangesTypes2str(int type)
{
    switch (type) {
    case OrbelCoverageFlags::crtFolder: return "OrbelCoverage.crtFolder";
    case OrbelCoverageFlags::crtModule: return "OrbelCoverage.crtModule";
    case OrbelCoverageFlags::crtFunction: return "OrbelCoverage.crtFunction";
    case OrbelCoverageFlags::crtItem: return "OrbelCoverage.crtItem";
    default: return CUtil::i2a(type);
    }
}

std::string CLogger::obCoverageStatisticsFlags2str(int flags)
{
    switch (flags) {
    case OrbelCoverageFlags::csftBytes: return "OrbelCoverage.csftBytes";
    case OrbelCoverageFlags::csftBytesExec: return "OrbelCoverage.csftBytesExec";
    case OrbelCoverageFlags::csftBranches: return "OrbelCoverage.csftBranches";
    case OrbelCoverageFlags::csftBranchesExec: return "OrbelCoverage.csftBranchesExec";
    case OrbelCoverageFlags::csftBranchesTaken: return "OrbelCoverage.csftBranchesTaken";
    case OrbelCoverageFlags::csftBranchesNotTaken: return "OrbelCoverage.csftBranchesNotTaken";
    case OrbelCoverageFlags::csftBranchesBoth: return "OrbelCoverage.csftBranchesBoth";
    default: return CUtil::i2a(flags);
    }
}

std::string CLogger::obProfilerConfigFlags2str(int flags)
{
    using F = OrbelProfilerFlags;
    if (flags == F::cfTimeStampCycles) {
        return "OrbelProfiler.cfTimeStampCycles";
    }
    if (flags == F::cfTimeStampTime) {
        return "OrbelProfiler.cfTimeStampTime";
    }
    if (flags >= F::cfTimeStampM0 && flags <= F::cfTimeStampM9) {
        return "OrbelProfiler.cfTimeStampM" + CUtil::i2a(flags - F::cfTimeStampM0);
    }
    return CUtil::i2a(flags);
}

std::string CLogger::obProfilerStatusFlags2str(int flags)
{
    switch (flags) {
    case OrbelProfilerFlags::gsfNumRecorded: return "OrbelProfiler.gsfNumRecorded";
    case OrbelProfilerFlags::gsfNumAnalyzed: return "OrbelProfiler.gsfNumAnalyzed";
    default: return CUtil::i2a(flags);
    }
}

} // namespace kestrix
