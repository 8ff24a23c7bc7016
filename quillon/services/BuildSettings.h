#pragma once

#include <map>
#include <string>
#include <vector>

namespace quillon::services {

/// What the build manager builds: the workspace's `build` section. Paths are as written, relative to the
/// workspace's folder unless absolute.
struct BuildSettings {
    /// A named command line that `customOperation` runs through the shell.
    struct CustomOperation {
        std::string name;
        std::string command;

        bool operator==(const CustomOperation& other) const
        {
            return name == other.name && command == other.command;
        }
    };

    /// What one source adds to the project's settings when it is compiled.
    struct FileSettings {
        std::vector<std::string> includes;
        std::vector<std::string> defines;
        std::vector<std::string> flags;

        bool empty() const { return includes.empty() && defines.empty() && flags.empty(); }
        bool operator==(const FileSettings& other) const
        {
            return includes == other.includes && defines == other.defines && flags == other.flags;
        }
    };

    static constexpr const char* kDefaultToolchain = "arm-none-eabi-gcc";

    /// The compiler driver, for compiling and linking; a name is looked up in PATH.
    std::string toolchain = kDefaultToolchain;
    std::vector<std::string> sources;
    std::vector<std::string> includes;
    /// NAME or NAME=VALUE, each passed as -D.
    std::vector<std::string> defines;
    /// Compile flags; they are passed to the link too.
    std::vector<std::string> flags;
    /// Passed behind the objects, so that libraries (-lgcc) may stand here.
    std::vector<std::string> linkFlags;
    /// None when empty.
    std::string linkerScript;
    /// The ELF; objects and dependency files go to "obj" beside it.
    std::string output;
    std::vector<CustomOperation> custom;
    /// Settings of single sources, by the source as written in `sources`.
    std::map<std::string, FileSettings> files;

    bool operator==(const BuildSettings& other) const
    {
        return toolchain == other.toolchain && sources == other.sources && includes == other.includes
               && defines == other.defines && flags == other.flags && linkFlags == other.linkFlags
               && linkerScript == other.linkerScript && output == other.output && custom == other.custom
               && files == other.files;
    }
};

} // namespace quillon::services
