#include "target/Engine.h"

#include "target/MemoryArea.h"
#include "target/TargetError.h"

namespace quillon::target {

Engine::Engine(int cpuModel)
{
    // UC_MODE_MCLASS would force a Cortex-M33; plain Thumb with an M-profile model gives the chosen core.
    check(uc_open(UC_ARCH_ARM, UC_MODE_THUMB, &m_uc), "open the emulator");
    try {
        check(uc_ctl_set_cpu_model(m_uc, cpuModel), "set the CPU model");
        check(uc_ctl_exits_enable(m_uc), "enable exits");
    } catch (...) {
        uc_close(m_uc);
        throw;
    }
}

Engine::~Engine()
{
    uc_close(m_uc);
}

void Engine::check(uc_err err, const char* what) const
{
    if (err != UC_ERR_OK) {
        throw TargetError(TargetError::Kind::Engine, std::string("cannot ") + what + ": " + uc_strerror(err));
    }
}

uint32_t Engine::pageSize() const
{
    uint32_t size = 0;
    check(uc_ctl_get_page_size(m_uc, &size), "read the page size");
    return size;
}

void Engine::map(uint32_t start, uint32_t size, unsigned access, void* host)
{
    uint32_t perms = UC_PROT_NONE;
    perms |= (access & MemoryArea::Read) ? UC_PROT_READ : 0;
    perms |= (access & MemoryArea::Write) ? UC_PROT_WRITE : 0;
    perms |= (access & MemoryArea::Execute) ? UC_PROT_EXEC : 0;
    check(uc_mem_map_ptr(m_uc, start, size, perms, host), "map memory");
}

uint32_t Engine::readRegister(int id) const
{
    uint32_t value = 0;
    check(uc_reg_read(m_uc, id, &value), "read a register");
    return value;
}

void Engine::writeRegister(int id, uint32_t value)
{
    check(uc_reg_write(m_uc, id, &value), "write a register");
}

uc_hook Engine::addCodeHook(uc_cb_hookcode_t callback, void* user, uint64_t begin, uint64_t end)
{
    uc_hook hook = 0;
    check(uc_hook_add(m_uc, &hook, UC_HOOK_CODE, reinterpret_cast<void*>(callback), user, begin, end),
          "add a code hook");
    return hook;
}

uc_hook Engine::addHook(int type, void* callback, void* user)
{
    uc_hook hook = 0;
    check(uc_hook_add(m_uc, &hook, type, callback, user, 1, 0), "add a hook");
    return hook;
}

void Engine::removeHook(uc_hook hook)
{
    check(uc_hook_del(m_uc, hook), "remove a hook");
}

void Engine::dropTranslations(uint64_t begin, uint64_t end)
{
    check(uc_ctl_remove_cache(m_uc, begin, end), "drop translated code");
}

void Engine::setExits(const std::vector<uint64_t>& exits)
{
    uint64_t none = 0;
    check(uc_ctl_set_exits(m_uc, exits.empty() ? &none : const_cast<uint64_t*>(exits.data()), exits.size()),
          "set the exits");
}

uc_err Engine::start(uint32_t pc)
{
    return uc_emu_start(m_uc, pc | 1u, 0, 0, 0);
}

void Engine::stopFromHook()
{
    uc_emu_stop(m_uc);
}

} // namespace quillon::target
