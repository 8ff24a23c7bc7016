#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "services/BuildSettings.h"

namespace quillon {

/// The workspace of one Quillon instance: a YAML file that names the target, its memory and the
/// files to download. `load` reads and checks the whole file at once; a default-constructed
/// workspace has every default and no file. `WorkspaceWriter` writes one back in the same format,
/// so that what it writes loads again to an equal workspace.
///
/// An instance replaces its workspace as a whole (`Instance`): new, open, save, save as, close.
/// Opening checks the whole file and builds the new target before anything of the running
/// workspace changes, so a file that cannot be used leaves the instance as it was.
///
/// File (keys not given take the defaults shown):
///
///     target:
///       cpu: cortex-m3        # cortex-m0, cortex-m3, cortex-m4, cortex-m7
///       clock: 16000000       # Hz, not zero
///       memory:               # not given, null or []: derived from the download files
///         - name: flash       # required, unique
///           start: 0x0        # required, 32 bits, a multiple of 0x400
///           size: 0x40000     # required, 32 bits, not zero, a multiple of 0x400,
///                             # start + size <= 2^32
///           access: rx        # r, w, x, each at most once; default rwx
///     download:
///       - file: build/fw.elf  # relative to the workspace's folder
///     test:
///       maxInstructions: 100000000   # 64 bits, not zero
///     options:                # option path: value, set in file order (services/OptionTree.h
///       /IDE/Debug/StopOnReset: 0     # has the paths); a list option takes a YAML list. A save
///                             # writes the options the file set and every option changed
///                             # from its default, at their current values
///     terminal:
///       uart: 0x40011004      # required: the UART data register whose writes the terminal
///                             # shows; it must lie in a writable memory area
///     trace:
///       triggers:             # of analyzer documents, besides the built-in Trigger0 (which
///         - name: Trigger1    # records function entries from the start); name required, unique
///           start: classify   # the function whose first entry begins the recording; default: at once
///           instructions: no  # true/yes: every instruction too; default false
///     hil:                    # hardware-in-the-loop channels
///       - name: Setpoint      # required, unique
///         kind: integer       # digital, analog (IEEE single) or integer (32 bits); default integer
///         address: 0x40020000 # required, a multiple of 4; its 4 bytes lie in a writable memory area
///         initial: 10         # written when the instance starts; a value of the kind
///     build:                  # the build manager's project; none without this section
///       toolchain: arm-none-eabi-gcc  # the compiler driver, for compile and link
///       sources: [main.c, uart.c]     # relative to the workspace's folder
///       includes: [include]           # each passed as -I
///       defines: [NDEBUG, BAUD=9600]  # each passed as -D
///       flags: [-mcpu=cortex-m3, -mthumb, -O1, -g]    # compile flags, also given to the link
///       linkFlags: ["-Wl,--gc-sections", -lgcc]       # behind the objects; quote items with commas
///       linkerScript: firmware.ld     # passed as -T; default none
///       output: build/firmware.elf    # objects go beside it: build/obj/main.o
///       files:                        # settings of single sources, added to the project's
///         main.c: {defines: [TRACE], includes: [extra], flags: [-O0]}   # a source of 'sources'
///       custom:                       # named command lines run by /bin/sh -c in the folder
///         - name: size                # required, unique
///           command: arm-none-eabi-size build/firmware.elf   # required
///
/// A save writes every section in this order, what is empty left out, the download files relative
/// to the folder of the file it writes. Numbers are decimal or 0x hexadecimal. A key given with a null value (`target:`) is as if
/// it were not given; a null scalar value is a missing value. Keys are case-sensitive.
///
/// Errors (`WorkspaceError`) are one line: "<file>: <problem>" for a file that cannot be read,
/// else "<file>:<line>: <problem>" with the 1-based line of the offending node, where <file> is
/// the path as given to `load` and <problem> is one of
///     YAML error: <libyaml's problem> (<context>)
///     more than one YAML document
///     '<key>' must be a map | a list | a single value, not <what it is>
///     unknown key '<name>' in '<map key>'           ("at top level" for the root)
///     duplicate key '<name>' in '<map key>' (first on line <n>)
///     missing key '<name>' in '<map key>'
///     missing value for '<key>'
///     bad number '<text>' for '<key>' (decimal or 0x hex)
///     negative number '<text>' for '<key>'
///     number '<text>' for '<key>' does not fit in <32|64> bits
///     '<key>' must not be zero
///     '<key>' must be a multiple of 0x400, not <0x hex value>
///     unknown cpu '<text>' for 'target.cpu' (cortex-m0, cortex-m3, cortex-m4, cortex-m7)
///     bad access '<text>' for '<key>' (r, w, x, each at most once)
///     duplicate memory area name '<name>' in '<key>' (first on line <n>)
///     memory area '<name>' in '<key>' ends past 0xffffffff
///     memory area '<name>' in '<key>' overlaps '<other>' (line <n>)
///     unknown option '<path>'
///     bad value '<text>' for option '<path>' (<what it takes>)
///     bad value '<text>' for '<key>' (true or false)
///     '<key>' must be a multiple of 4, not <0x hex value>
///     duplicate trigger name '<name>' in '<key>' (first on line <n>)
///     trigger name 'Trigger0' in '<key>' is built in
///     duplicate HIL channel name '<name>' in '<key>' (first on line <n>)
///     unknown HIL channel kind '<text>' for '<key>' (digital, analog, integer)
///     bad value '<text>' for '<key>' (a value of kind '<kind>')
///     '<source>' in '<key>' is not one of 'build.sources'
///     duplicate custom operation name '<name>' in '<key>'
/// and, once the memory is known (TargetBuilder),
///     <what> at <0x hex address> in '<key>' lies in no writable memory area
/// for the terminal's UART and the HIL channels.
/// where <key> is the dotted path with 0-based list indices: 'target.memory[1].size'.
class Workspace {
public:
    enum class Cpu { CortexM0, CortexM3, CortexM4, CortexM7 };

    /// Bits of `MemoryArea::access`.
    enum Access : unsigned { Read = 1, Write = 2, Execute = 4 };

    struct MemoryArea {
        std::string name;
        std::uint32_t start = 0;
        std::uint32_t size = 0;
        unsigned access = Read | Write | Execute;
        int line = 0; ///< line of the area in the file, for later messages

        /// One past the last byte; may be 2^32.
        std::uint64_t end() const { return std::uint64_t(start) + size; }
    };

    /// One entry of `options:`; the value is checked against the option's kind, a list's
    /// items one a line.
    struct OptionSetting {
        std::string path;
        std::string value;
        int line = 0;
    };

    /// `terminal:`: the UART whose data register the terminal shows.
    struct Terminal {
        std::uint32_t uart = 0;
        int line = 0;
    };

    /// One entry of `trace.triggers`.
    struct TraceTrigger {
        std::string name;
        std::string start;
        bool instructions = false;
        int line = 0;
    };

    /// One entry of `hil`.
    struct HilChannel {
        std::string name;
        std::string kind = "integer";
        std::uint32_t address = 0;
        std::optional<std::string> initial;
        int line = 0;
    };

    struct DownloadFile {
        std::filesystem::path file; ///< resolved against `folder()`, links resolved as far as it exists
        int line = 0;
    };

    static constexpr Cpu kDefaultCpu = Cpu::CortexM3;
    static constexpr std::uint32_t kDefaultClock = 16000000;
    static constexpr std::uint64_t kDefaultMaxInstructions = 100000000;
    /// Memory areas start and end on the target's 1 KiB page.
    static constexpr std::uint32_t kPageSize = 0x400;

    /// The workspace of an instance launched without a workspace file.
    Workspace() = default;

    /// Reads and checks the file; throws `WorkspaceError` with the message described above.
    static Workspace load(const std::filesystem::path& file);

    /// The same workspace as the file `file` (made canonical). Download paths are kept absolute,
    /// so they name the same files from the new folder; `WorkspaceWriter` writes them relative to it.
    void setFile(const std::filesystem::path& file) { m_file = canonicalPath(file); }
    /// Replaces the option settings, as a save does with the current values of the options.
    void setOptions(std::vector<OptionSetting> options) { m_options = std::move(options); }
    /// The build settings as the build manager has them now.
    void setBuild(std::optional<services::BuildSettings> build) { m_build = std::move(build); }

    /// Canonical path of the file (absolute, links resolved); empty for the default workspace.
    const std::filesystem::path& file() const { return m_file; }
    /// The folder that relative paths in the file are resolved against; empty without a file.
    std::filesystem::path folder() const { return m_file.parent_path(); }

    Cpu cpu() const { return m_cpu; }
    std::uint32_t clock() const { return m_clock; }
    /// The areas as given, in file order; empty when `memoryFromDownload()`.
    const std::vector<MemoryArea>& memory() const { return m_memory; }
    /// No memory was given: the areas are to be derived from the download files.
    bool memoryFromDownload() const { return m_memory.empty(); }
    const std::vector<DownloadFile>& downloads() const { return m_downloads; }
    std::uint64_t maxInstructions() const { return m_maxInstructions; }
    /// The options the file sets, in file order.
    const std::vector<OptionSetting>& options() const { return m_options; }
    /// No terminal when not given.
    const std::optional<Terminal>& terminal() const { return m_terminal; }
    const std::vector<TraceTrigger>& traceTriggers() const { return m_traceTriggers; }
    const std::vector<HilChannel>& hilChannels() const { return m_hilChannels; }
    /// The `build` section; none when not given.
    const std::optional<services::BuildSettings>& build() const { return m_build; }

    /// `path` made absolute with symbolic links, "." and ".." resolved as far as it exists: the
    /// form of `file()` and of the download paths, so paths written differently compare equal.
    static std::filesystem::path canonicalPath(const std::filesystem::path& path);

    /// "cortex-m3" and so on: the name the file uses.
    static const char* cpuName(Cpu cpu);

private:
    friend class WorkspaceParser;

    std::filesystem::path m_file;
    Cpu m_cpu = kDefaultCpu;
    std::uint32_t m_clock = kDefaultClock;
    std::vector<MemoryArea> m_memory;
    std::vector<DownloadFile> m_downloads;
    std::uint64_t m_maxInstructions = kDefaultMaxInstructions;
    std::vector<OptionSetting> m_options;
    std::optional<Terminal> m_terminal;
    std::vector<TraceTrigger> m_traceTriggers;
    std::vector<HilChannel> m_hilChannels;
    std::optional<services::BuildSettings> m_build;
};

} // namespace quillon
