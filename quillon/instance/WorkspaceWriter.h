#pragma once

#include <yaml.h>

#include <cstdint>
#include <map>
#include <vector>
#include <string>

#include "instance/Workspace.h"

namespace quillon {

/// Writes a `Workspace` as the YAML file that `WorkspaceParser` reads, through libyaml's
/// emitter, so that the file loads again to an equal workspace: target (cpu, clock, memory as
/// given), download list (paths relative to the workspace's folder, absolute when they have
/// nothing but the root in common with it), test, options, terminal,
/// trace triggers, HIL channels, build settings (with the settings of single sources and the
/// custom operations). What is empty is not written; numbers that are addresses or
/// sizes are written in 0x hex.
///
/// One function per section: a new section of the file is one more function, called in
/// `writeDocument` in the order the file is to show it.
class WorkspaceWriter {
public:
    /// Writes the workspace to its file, making missing folders; throws `WorkspaceError`
    /// "<file>: cannot write workspace file: <why>".
    static void write(const Workspace& workspace);
    /// The text of the file.
    static std::string text(const Workspace& workspace);

private:
    explicit WorkspaceWriter(const Workspace& workspace);
    ~WorkspaceWriter();
    WorkspaceWriter(const WorkspaceWriter&) = delete;
    WorkspaceWriter& operator=(const WorkspaceWriter&) = delete;

    std::string run();
    void writeDocument();

    void writeTarget();
    void writeMemoryArea(const Workspace::MemoryArea& area);
    void writeDownload();
    void writeTest();
    void writeOptions();
    void writeTerminal();
    void writeTrace();
    void writeHil();
    void writeBuild();
    void writeBuildFiles(const std::map<std::string, services::BuildSettings::FileSettings>& files);
    /// A key with a list of texts; nothing when the list is empty.
    void listField(const char* key, const std::vector<std::string>& values);

    void beginMap();
    void endMap();
    void beginList();
    void endList();
    /// A key with a text value; texts that would read as null are quoted.
    void field(const char* key, const std::string& value);
    void hexField(const char* key, std::uint32_t value);
    void numberField(const char* key, std::uint64_t value);
    void scalar(const std::string& value);
    void emit(yaml_event_t& event);

    static std::string accessText(unsigned access);
    static int append(void* data, unsigned char* buffer, size_t size);

    const Workspace& m_workspace;
    yaml_emitter_t m_emitter{};
    std::string m_output;
};

} // namespace quillon
