#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "services/BreakpointLocation.h"
#include "services/BreakpointTable.h"
#include "services/CpuStatus.h"
#include "services/DataAccess.h"
#include "services/DownloadLists.h"
#include "services/ExpressionEngine.h"
#include "services/Loader.h"
#include "services/OptionTree.h"
#include "services/RunController.h"
#include "services/SymbolIndex.h"
#include "target/Target.h"

namespace quillon::services {

/// The debugger of one instance: download, memory and registers, expressions, run control, breakpoints, symbols
/// and source lines, over one target. Every failure is a ServiceError whose text names what is at fault.
///
/// Threads: stop(), status() and waitUntilStopped() may be called from any thread at any time and never wait for
/// another operation; the other operations are serialized. Runs return at once; steps return when done.
///
/// Download: each download (the configured list, a list, one file) replaces the programs that symbols and lines
/// come from by the files it loads, in their order; it stops a running core first and resets it afterwards.
/// Breakpoints stay at their addresses.
///
/// Options (setOptions), read when they apply: StopOnReset (0: a reset runs the core on), StopAtMain (a download
/// ends with the core run to `main`), SourcePaths (where sourceLineAt finds a source file that is not where the
/// debug information says). Without options the core stops on reset, a download at the reset handler.
class DebugService {
public:
    /// The address flags of findSymbol.
    enum AddressFlags : std::uint32_t { AnySymbol = 0, Variables = 0x1000, Labels = 0x2000, Functions = 0x4000 };

    /// `downloadFiles` is the workspace's download list, which becomes list 0. `expressions` may be null (set it
    /// later); it must outlive the service.
    DebugService(target::Target& target, const std::vector<std::string>& downloadFiles,
                 ExpressionEngine* expressions = nullptr);
    DebugService(const DebugService&) = delete;
    DebugService& operator=(const DebugService&) = delete;

    void setExpressionEngine(ExpressionEngine* expressions);
    /// The instance's options; null for the defaults. They must outlive the service.
    void setOptions(const OptionTree* options);

    // Download.
    /// The configured download: every file of list 0.
    void download();
    /// One file; `codeOffset` moves its segments.
    void downloadFile(const std::string& file, std::uint32_t codeOffset = 0);
    void downloadFromList(unsigned listType, std::size_t index);
    /// The list's entry of that file name; a ServiceError NotFound when the list has none.
    void downloadFromList(unsigned listType, const std::string& file);
    void addToDownloadList(unsigned listType, bool alternate, const std::string& file, const std::string& options);
    bool removeFromDownloadList(unsigned listType, std::size_t index);
    void clearDownloadList(unsigned listType);
    std::optional<DownloadLists::Entry> downloadListMember(unsigned listType, bool alternate, std::size_t index) const;
    /// Paths of the programs that symbols come from, in download order.
    std::vector<std::string> programs() const;

    // Memory, registers, values, expressions.
    std::vector<std::uint8_t> readMemory(std::uint8_t area, std::uint32_t address, std::uint32_t numMAUs,
                                         std::uint8_t bytesPerMAU) const;
    void writeMemory(std::uint8_t area, std::uint32_t address, std::uint32_t numMAUs, std::uint8_t bytesPerMAU,
                     const std::vector<std::uint8_t>& data);
    TypedBits readRegister(const std::string& name) const;
    void writeRegister(const std::string& name, const TypedBits& value);
    std::uint64_t readValue(std::uint8_t area, std::uint32_t address, const ScalarType& type) const;
    void writeValue(std::uint8_t area, std::uint32_t address, const TypedBits& value);
    std::vector<BatchResult> batchAccess(const std::vector<BatchItem>& items);
    ExpressionValue evaluate(const std::string& expression, std::uint32_t flags = 0);
    std::string modify(const std::string& expression, const ExpressionValue& value, std::uint32_t flags = 0);
    std::string modify(const std::string& expression, const std::string& value, std::uint32_t flags = 0);

    // Run control.
    void run();
    void resetAndRun();
    void runUntilAddress(std::uint8_t area, std::uint32_t address);
    void runUntilFunction(const std::string& function);
    void runUntilLine(const std::string& file, unsigned line);
    void runUntilReturn();
    void stop();
    void reset();
    void setExecutionPoint(std::uint8_t area, std::uint32_t address);
    void stepInstruction();
    void stepOverInstruction();
    void stepLine();
    void stepOverLine();
    CpuStatus status() const;
    bool waitUntilStopped(std::chrono::milliseconds timeout) const;

    // Breakpoints.
    /// Sets or replaces the breakpoint at the location's address; true when there was none. A location that does
    /// not resolve is a ServiceError NotFound; a condition needs the expression engine.
    bool setBreakpoint(const BreakpointLocation& location, std::uint32_t hitCount = 0, const std::string& condition = {},
                       bool hardware = false);
    void deleteBreakpoint(const BreakpointLocation& location);
    void deleteAllBreakpoints();
    void enableBreakpoint(const BreakpointLocation& location, bool enabled);
    void enableAllBreakpoints(bool hardware, bool enabled);
    std::optional<BreakpointTable::Entry> breakpoint(const BreakpointLocation& location) const;
    std::vector<BreakpointTable::Entry> breakpoints() const;

    // Symbols and lines.
    /// By AddressFlags: a function, a variable, a label, or (AnySymbol) any of them or a number.
    std::optional<SymbolInfo> findSymbol(std::uint32_t addressFlags, const std::string& name) const;
    /// SymbolIndex::SymbolKinds.
    std::optional<std::string> symbolAt(std::uint32_t symbolKinds, std::uint8_t area, std::uint32_t address) const;
    std::optional<std::string> functionAt(std::uint32_t address) const;
    std::optional<debuginfo::LineTable::SourceLine> sourceLineAt(std::uint32_t address) const;
    /// A source file as the debugger finds it: the file itself if it exists, else the first source path's file of
    /// that name; else the file. Any thread.
    std::string locateSource(const std::string& file) const;
    std::vector<std::uint32_t> addressesOfLine(const std::string& file, unsigned line) const;
    std::vector<std::string> sourceFiles() const;

    /// The downloaded programs, for the expression engine, which runs inside the service's operations.
    const SymbolIndex& symbols() const { return m_symbols; }

private:
    template <class F> auto serialized(const std::string& operation, F&& f) const;
    std::uint32_t resolve(const BreakpointLocation& location) const;
    std::function<bool()> compileCondition(const std::string& condition);
    ExpressionEngine& expressions(const std::string& operation);
    void load(const std::vector<std::string>& files, std::uint32_t codeOffset);
    void stopAtMain();

    target::Target& m_target;
    mutable std::mutex m_mutex; ///< serializes all but stop, status and waits
    ExpressionEngine* m_expressions;
    const OptionTree* m_options = nullptr;
    DownloadLists m_lists;
    SymbolIndex m_symbols;
    Loader m_loader;
    DataAccess m_data;
    RunController m_run;
    BreakpointTable m_breakpoints;
};

} // namespace quillon::services
