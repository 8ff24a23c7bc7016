#pragma once

#include <unicorn/unicorn.h>

#include <cstdint>
#include <string>
#include <vector>

namespace quillon::target {

/// Owner of one Unicorn engine in Thumb mode: the calls the target makes, with errors as TargetError.
/// Not thread safe; the target serialises every call except those made from its hooks.
class Engine {
public:
    /// Opens the engine and sets the CPU model before anything else (unicorn 2.0.1 ignores it later).
    explicit Engine(int cpuModel);
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    uint32_t pageSize() const;
    /// Maps host memory; `access` holds MemoryArea::Access bits.
    void map(uint32_t start, uint32_t size, unsigned access, void* host);

    uint32_t readRegister(int id) const;
    void writeRegister(int id, uint32_t value);

    /// A code hook for [begin, end]; begin 1, end 0 means every address.
    uc_hook addCodeHook(uc_cb_hookcode_t callback, void* user, uint64_t begin, uint64_t end);
    uc_hook addHook(int type, void* callback, void* user);
    void removeHook(uc_hook hook);
    /// Drops translated code of [begin, end), so that changed code or hooks there take effect.
    void dropTranslations(uint64_t begin, uint64_t end);
    /// Addresses where execution ends before their instruction.
    void setExits(const std::vector<uint64_t>& exits);

    /// Runs from `pc` (Thumb) until a hook stops the engine, an exit is reached, or an error.
    uc_err start(uint32_t pc);
    /// Ends the current start(); for hooks on the engine's thread.
    void stopFromHook();

private:
    void check(uc_err err, const char* what) const;

    uc_engine* m_uc = nullptr;
};

} // namespace quillon::target
