#include "services/DebugService.h"

#include <cstdio>
#include <filesystem>

#include "services/ServiceError.h"
#include "target/TargetError.h"

namespace quillon::services {

namespace {

// How long a download waits for the startup code to reach main.
constexpr std::chrono::seconds kStopAtMainTimeout{5};

ServiceError::Kind kindOf(target::TargetError::Kind kind)
{
    switch (kind) {
    case target::TargetError::Kind::InvalidArgument:
        return ServiceError::Kind::InvalidArgument;
    case target::TargetError::Kind::BadAddress:
        return ServiceError::Kind::CannotAccess;
    case target::TargetError::Kind::Running:
        return ServiceError::Kind::Running;
    case target::TargetError::Kind::Engine:
        break;
    }
    return ServiceError::Kind::Failed;
}

std::string hex(std::uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", static_cast<unsigned>(value));
    return text;
}

} // namespace

DebugService::DebugService(target::Target& target, const std::vector<std::string>& downloadFiles,
                           ExpressionEngine* expressions)
    : m_target(target), m_expressions(expressions), m_lists(downloadFiles), m_loader(target), m_data(target),
      m_run(target, m_symbols), m_breakpoints(target)
{
}

// Runs f under the service's lock; failures of the layers below become ServiceErrors that name the operation.
template <class F> auto DebugService::serialized(const std::string& operation, F&& f) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    try {
        return f();
    } catch (const ServiceError&) {
        throw;
    } catch (const target::TargetError& e) {
        throw ServiceError(kindOf(e.kind()), operation + ": " + e.what());
    } catch (const std::exception& e) {
        throw ServiceError(ServiceError::Kind::Failed, operation + ": " + e.what());
    }
}

void DebugService::setExpressionEngine(ExpressionEngine* expressions)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_expressions = expressions;
}

ExpressionEngine& DebugService::expressions(const std::string& operation)
{
    if (!m_expressions) {
        throw ServiceError(ServiceError::Kind::NotAvailable, operation + ": expressions are not available");
    }
    return *m_expressions;
}

// ---- download

void DebugService::load(const std::vector<std::string>& files, std::uint32_t codeOffset)
{
    m_run.stop();
    m_target.waitUntilStopped();
    m_symbols.setPrograms(m_loader.download(files, codeOffset));
    m_run.clearCause();
    if (m_options != nullptr && m_options->flag(OptionTree::kStopAtMain)) {
        stopAtMain();
    }
}

// A program without `main`, or startup code that never reaches it within the time, leaves the core where it is.
void DebugService::stopAtMain()
{
    std::uint32_t main = 0;
    try {
        main = m_symbols.functionBreakpointAddress("main");
    } catch (const ServiceError&) {
        return;
    }
    m_run.runUntil(main);
    if (!m_run.waitUntilStopped(kStopAtMainTimeout)) {
        m_run.stop();
        m_run.waitUntilStopped(kStopAtMainTimeout);
    }
}

void DebugService::setOptions(const OptionTree* options)
{
    std::lock_guard lock(m_mutex);
    m_options = options;
}

void DebugService::download()
{
    serialized("download", [&] {
        std::vector<std::string> files;
        for (const auto& entry : m_lists.list(0)) {
            files.push_back(entry.file);
        }
        load(files, 0);
    });
}

void DebugService::downloadFile(const std::string& file, std::uint32_t codeOffset)
{
    serialized("download", [&] { load({file}, codeOffset); });
}

void DebugService::downloadFromList(unsigned listType, std::size_t index)
{
    serialized("download", [&] {
        auto entry = m_lists.member(listType, false, index);
        if (!entry) {
            throw ServiceError(ServiceError::Kind::NotFound, "download list " + std::to_string(listType) +
                                                                 " has no file " + std::to_string(index));
        }
        load({entry->file}, 0);
    });
}

void DebugService::downloadFromList(unsigned listType, const std::string& file)
{
    serialized("download", [&] {
        for (const auto& entry : m_lists.list(listType)) {
            if (entry.file == file) {
                load({file}, 0);
                return;
            }
        }
        throw ServiceError(ServiceError::Kind::NotFound,
                           "download list " + std::to_string(listType) + " has no file '" + file + "'");
    });
}

void DebugService::addToDownloadList(unsigned listType, bool alternate, const std::string& file,
                                     const std::string& options)
{
    serialized("add to download list", [&] { m_lists.add(listType, alternate, DownloadLists::Entry{file, options}); });
}

bool DebugService::removeFromDownloadList(unsigned listType, std::size_t index)
{
    return serialized("remove from download list", [&] { return m_lists.remove(listType, index); });
}

void DebugService::clearDownloadList(unsigned listType)
{
    serialized("clear download list", [&] { m_lists.clear(listType); });
}

std::optional<DownloadLists::Entry> DebugService::downloadListMember(unsigned listType, bool alternate,
                                                                    std::size_t index) const
{
    return serialized("get download list", [&] { return m_lists.member(listType, alternate, index); });
}

std::vector<std::string> DebugService::programs() const
{
    return serialized("programs", [&] {
        std::vector<std::string> paths;
        for (const Program& program : m_symbols.programs()) {
            paths.push_back(program.path());
        }
        return paths;
    });
}

// ---- memory, registers, values, expressions

std::vector<std::uint8_t> DebugService::readMemory(std::uint8_t area, std::uint32_t address, std::uint32_t numMAUs,
                                                   std::uint8_t bytesPerMAU) const
{
    return serialized("read memory", [&] { return m_data.readMemory(area, address, numMAUs, bytesPerMAU); });
}

void DebugService::writeMemory(std::uint8_t area, std::uint32_t address, std::uint32_t numMAUs,
                               std::uint8_t bytesPerMAU, const std::vector<std::uint8_t>& data)
{
    serialized("write memory", [&] { m_data.writeMemory(area, address, numMAUs, bytesPerMAU, data); });
}

TypedBits DebugService::readRegister(const std::string& name) const
{
    return serialized("read register", [&] { return m_data.readRegister(name); });
}

void DebugService::writeRegister(const std::string& name, const TypedBits& value)
{
    serialized("write register", [&] { m_data.writeRegister(name, value); });
}

std::uint64_t DebugService::readValue(std::uint8_t area, std::uint32_t address, const ScalarType& type) const
{
    return serialized("read value", [&] { return m_data.readValue(area, address, type); });
}

void DebugService::writeValue(std::uint8_t area, std::uint32_t address, const TypedBits& value)
{
    serialized("write value", [&] { m_data.writeValue(area, address, value); });
}

std::vector<BatchResult> DebugService::batchAccess(const std::vector<BatchItem>& items)
{
    return serialized("batch access", [&] { return m_data.batch(items); });
}

ExpressionValue DebugService::evaluate(const std::string& expression, std::uint32_t flags)
{
    return serialized("evaluate '" + expression + "'", [&] {
        ExpressionEngine& engine = expressions("evaluate '" + expression + "'");
        try {
            return engine.evaluate(expression, flags);
        } catch (const ServiceError&) {
            throw;
        } catch (const std::exception& e) {
            throw ServiceError(ServiceError::Kind::Expression, e.what());
        }
    });
}

std::string DebugService::modify(const std::string& expression, const ExpressionValue& value, std::uint32_t flags)
{
    return serialized("modify '" + expression + "'", [&] {
        ExpressionEngine& engine = expressions("modify '" + expression + "'");
        try {
            return engine.modify(expression, value, flags);
        } catch (const ServiceError&) {
            throw;
        } catch (const std::exception& e) {
            throw ServiceError(ServiceError::Kind::Expression, e.what());
        }
    });
}

std::string DebugService::modify(const std::string& expression, const std::string& value, std::uint32_t flags)
{
    return serialized("modify '" + expression + "'", [&] {
        ExpressionEngine& engine = expressions("modify '" + expression + "'");
        try {
            return engine.modify(expression, value, flags);
        } catch (const ServiceError&) {
            throw;
        } catch (const std::exception& e) {
            throw ServiceError(ServiceError::Kind::Expression, e.what());
        }
    });
}

// ---- run control

void DebugService::run()
{
    serialized("run", [&] { m_run.run(); });
}

void DebugService::resetAndRun()
{
    serialized("reset and run", [&] {
        m_run.reset();
        m_run.run();
    });
}

void DebugService::runUntilAddress(std::uint8_t area, std::uint32_t address)
{
    serialized("run until " + hex(address), [&] {
        if (area != 0) {
            throw ServiceError(ServiceError::Kind::NotFound, "no memory area " + std::to_string(area));
        }
        m_run.runUntil(address);
    });
}

void DebugService::runUntilFunction(const std::string& function)
{
    serialized("run until '" + function + "'", [&] { m_run.runUntil(m_symbols.functionBreakpointAddress(function)); });
}

void DebugService::runUntilLine(const std::string& file, unsigned line)
{
    serialized("run until " + file + ":" + std::to_string(line),
               [&] { m_run.runUntil(m_symbols.lineBreakpointAddress(file, line)); });
}

void DebugService::runUntilReturn()
{
    serialized("run until return", [&] { m_run.runUntilReturn(); });
}

void DebugService::stop()
{
    m_run.stop();
}

void DebugService::reset()
{
    m_run.stop(); // a step in progress ends before the lock is free
    serialized("reset", [&] {
        m_run.reset();
        if (m_options != nullptr && !m_options->flag(OptionTree::kStopOnReset)) {
            m_run.run();
        }
    });
}

void DebugService::setExecutionPoint(std::uint8_t area, std::uint32_t address)
{
    serialized("set execution point", [&] {
        if (area != 0) {
            throw ServiceError(ServiceError::Kind::NotFound, "no memory area " + std::to_string(area));
        }
        m_run.setExecutionPoint(address);
    });
}

void DebugService::stepInstruction()
{
    serialized("step", [&] { m_run.stepInstruction(); });
}

void DebugService::stepOverInstruction()
{
    serialized("step over", [&] { m_run.stepOverInstruction(); });
}

void DebugService::stepLine()
{
    serialized("step", [&] { m_run.stepLine(); });
}

void DebugService::stepOverLine()
{
    serialized("step over", [&] { m_run.stepOverLine(); });
}

CpuStatus DebugService::status() const
{
    return m_run.status();
}

bool DebugService::waitUntilStopped(std::chrono::milliseconds timeout) const
{
    return m_run.waitUntilStopped(timeout);
}

// ---- breakpoints

std::uint32_t DebugService::resolve(const BreakpointLocation& location) const
{
    switch (location.kind) {
    case BreakpointLocation::Kind::Function:
        return m_symbols.functionBreakpointAddress(location.name);
    case BreakpointLocation::Kind::Line:
        return m_symbols.lineBreakpointAddress(location.name, location.line);
    case BreakpointLocation::Kind::Address:
        break;
    }
    if (location.area != 0) {
        throw ServiceError(ServiceError::Kind::NotFound, "no memory area " + std::to_string(location.area));
    }
    if (!m_target.memory().isMapped(location.address, 2)) {
        throw ServiceError(ServiceError::Kind::NotFound, "address " + hex(location.address) +
                                                             " is outside the target's memory");
    }
    return location.address & ~1u;
}

std::function<bool()> DebugService::compileCondition(const std::string& condition)
{
    if (condition.empty()) {
        return {};
    }
    ExpressionEngine& engine = expressions("breakpoint condition '" + condition + "'");
    try {
        return engine.compileCondition(condition);
    } catch (const ServiceError&) {
        throw;
    } catch (const std::exception& e) {
        throw ServiceError(ServiceError::Kind::Expression, "breakpoint condition '" + condition + "': " + e.what());
    }
}

bool DebugService::setBreakpoint(const BreakpointLocation& location, std::uint32_t hitCount,
                                 const std::string& condition, bool hardware)
{
    return serialized("set breakpoint", [&] {
        BreakpointTable::Settings settings;
        settings.kind = static_cast<BreakpointTable::Kind>(location.kind);
        settings.address = resolve(location);
        settings.name = location.name;
        settings.line = location.line;
        settings.hardware = hardware;
        settings.hitCount = hitCount;
        settings.condition = condition;
        return m_breakpoints.set(std::move(settings), compileCondition(condition));
    });
}

void DebugService::deleteBreakpoint(const BreakpointLocation& location)
{
    serialized("delete breakpoint", [&] { m_breakpoints.remove(resolve(location)); });
}

void DebugService::deleteAllBreakpoints()
{
    serialized("delete all breakpoints", [&] { m_breakpoints.removeAll(); });
}

void DebugService::enableBreakpoint(const BreakpointLocation& location, bool enabled)
{
    serialized(enabled ? "enable breakpoint" : "disable breakpoint",
               [&] { m_breakpoints.enable(resolve(location), enabled); });
}

void DebugService::enableAllBreakpoints(bool hardware, bool enabled)
{
    serialized(enabled ? "enable breakpoints" : "disable breakpoints",
               [&] { m_breakpoints.enableAll(hardware, enabled); });
}

std::optional<BreakpointTable::Entry> DebugService::breakpoint(const BreakpointLocation& location) const
{
    return serialized("breakpoint", [&] { return m_breakpoints.at(resolve(location)); });
}

std::vector<BreakpointTable::Entry> DebugService::breakpoints() const
{
    return serialized("list breakpoints", [&] { return m_breakpoints.list(); });
}

// ---- symbols and lines

std::optional<SymbolInfo> DebugService::findSymbol(std::uint32_t addressFlags, const std::string& name) const
{
    return serialized("find symbol '" + name + "'", [&]() -> std::optional<SymbolInfo> {
        if (addressFlags & Functions) {
            return m_symbols.function(name);
        }
        if (addressFlags & Variables) {
            return m_symbols.variable(name);
        }
        if (addressFlags & Labels) {
            return m_symbols.label(name);
        }
        if (auto symbol = m_symbols.any(name)) {
            return symbol;
        }
        try {
            std::size_t used = 0;
            unsigned long long value = std::stoull(name, &used, 0);
            if (used == name.size() && value <= 0xFFFFFFFFull) {
                return SymbolInfo{name, static_cast<std::uint32_t>(value), 1, ScalarType{ScalarType::Address, 32}};
            }
        } catch (const std::logic_error&) {
            // not a number either
        }
        return std::nullopt;
    });
}

std::optional<std::string> DebugService::symbolAt(std::uint32_t symbolKinds, std::uint8_t area,
                                                  std::uint32_t address) const
{
    return serialized("symbol at " + hex(address), [&]() -> std::optional<std::string> {
        if (area != 0) {
            return std::nullopt;
        }
        return m_symbols.symbolAt(symbolKinds, address);
    });
}

std::optional<std::string> DebugService::functionAt(std::uint32_t address) const
{
    return serialized("function at " + hex(address), [&] { return m_symbols.functionAt(address); });
}

std::optional<debuginfo::LineTable::SourceLine> DebugService::sourceLineAt(std::uint32_t address) const
{
    return serialized("source line at " + hex(address), [&] {
        auto line = m_symbols.lineAt(address);
        if (line) {
            line->file = locateSource(line->file);
        }
        return line;
    });
}

std::string DebugService::locateSource(const std::string& file) const
{
    namespace fs = std::filesystem;
    std::error_code error;
    if (m_options == nullptr || fs::exists(file, error)) {
        return file;
    }
    const fs::path name = fs::path(file).filename();
    for (const std::string& folder : m_options->list(OptionTree::kSourcePaths)) {
        const fs::path candidate = fs::path(folder) / name;
        if (fs::exists(candidate, error)) {
            return candidate.string();
        }
    }
    return file;
}

std::vector<std::uint32_t> DebugService::addressesOfLine(const std::string& file, unsigned line) const
{
    return serialized("addresses of line", [&] { return m_symbols.addressesOfLine(file, line); });
}

std::vector<std::string> DebugService::sourceFiles() const
{
    return serialized("source files", [&] { return m_symbols.sourceFiles(); });
}

} // namespace quillon::services
