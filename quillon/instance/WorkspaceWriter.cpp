#include "instance/WorkspaceWriter.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <new>
#include <system_error>

#include "instance/WorkspaceError.h"
#include "services/OptionTree.h"

namespace quillon {

namespace fs = std::filesystem;

namespace {

/// What the parser takes for a null value.
bool readsAsNull(const std::string& text)
{
    return text.empty() || text == "~" || text == "null" || text == "Null" || text == "NULL";
}

/// `file` relative to `folder`; absolute when the two have nothing but the root in common, so
/// that system files stay where they are when the workspace moves.
std::string relativeTo(const fs::path& file, const fs::path& folder)
{
    const auto [inFile, inFolder] = std::mismatch(file.begin(), file.end(), folder.begin(), folder.end());
    const auto common = std::distance(file.begin(), inFile);
    const fs::path relative = file.lexically_relative(folder);
    if (common <= 1 || relative.empty()) {
        return file.generic_string();
    }
    return relative.generic_string();
}

bool isListOption(const std::string& path)
{
    for (const services::OptionTree::Definition& definition : services::OptionTree::definitions()) {
        if (path == definition.path) {
            return definition.kind == services::OptionTree::Kind::List;
        }
    }
    return false;
}

} // namespace

void WorkspaceWriter::write(const Workspace& workspace)
{
    const fs::path& file = workspace.file();
    const std::string content = text(workspace);
    auto cannotWrite = [&](const std::string& why) {
        throw WorkspaceError(file.string() + ": cannot write workspace file: " + why);
    };
    if (file.empty()) {
        cannotWrite("no file name");
    }
    std::error_code error;
    fs::create_directories(file.parent_path(), error);
    if (error) {
        cannotWrite(error.message());
    }
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    if (!out) {
        cannotWrite(std::strerror(errno));
    }
    out << content;
    out.flush();
    if (!out) {
        cannotWrite(std::strerror(errno));
    }
}

std::string WorkspaceWriter::text(const Workspace& workspace)
{
    return WorkspaceWriter(workspace).run();
}

WorkspaceWriter::WorkspaceWriter(const Workspace& workspace) : m_workspace(workspace)
{
    if (!yaml_emitter_initialize(&m_emitter)) {
        throw std::bad_alloc();
    }
    yaml_emitter_set_output(&m_emitter, &WorkspaceWriter::append, this);
}

WorkspaceWriter::~WorkspaceWriter()
{
    yaml_emitter_delete(&m_emitter);
}

int WorkspaceWriter::append(void* data, unsigned char* buffer, size_t size)
{
    static_cast<WorkspaceWriter*>(data)->m_output.append(reinterpret_cast<const char*>(buffer), size);
    return 1;
}

std::string WorkspaceWriter::run()
{
    yaml_event_t event;
    yaml_stream_start_event_initialize(&event, YAML_UTF8_ENCODING);
    emit(event);
    yaml_document_start_event_initialize(&event, nullptr, nullptr, nullptr, 1);
    emit(event);
    writeDocument();
    yaml_document_end_event_initialize(&event, 1);
    emit(event);
    yaml_stream_end_event_initialize(&event);
    emit(event);
    return m_output;
}

void WorkspaceWriter::writeDocument()
{
    beginMap();
    writeTarget();
    writeDownload();
    writeTest();
    writeOptions();
    writeTerminal();
    writeTrace();
    writeHil();
    writeBuild();
    endMap();
}

// Sections

void WorkspaceWriter::writeTarget()
{
    scalar("target");
    beginMap();
    field("cpu", Workspace::cpuName(m_workspace.cpu()));
    numberField("clock", m_workspace.clock());
    if (!m_workspace.memoryFromDownload()) {
        scalar("memory");
        beginList();
        for (const Workspace::MemoryArea& area : m_workspace.memory()) {
            writeMemoryArea(area);
        }
        endList();
    }
    endMap();
}

void WorkspaceWriter::writeMemoryArea(const Workspace::MemoryArea& area)
{
    beginMap();
    field("name", area.name);
    hexField("start", area.start);
    hexField("size", area.size);
    field("access", accessText(area.access));
    endMap();
}

void WorkspaceWriter::writeDownload()
{
    if (m_workspace.downloads().empty()) {
        return;
    }
    scalar("download");
    beginList();
    for (const Workspace::DownloadFile& download : m_workspace.downloads()) {
        beginMap();
        field("file", relativeTo(download.file, m_workspace.folder()));
        endMap();
    }
    endList();
}

void WorkspaceWriter::writeTest()
{
    scalar("test");
    beginMap();
    numberField("maxInstructions", m_workspace.maxInstructions());
    endMap();
}

void WorkspaceWriter::writeOptions()
{
    if (m_workspace.options().empty()) {
        return;
    }
    scalar("options");
    beginMap();
    for (const Workspace::OptionSetting& option : m_workspace.options()) {
        // A list option's value has an item a line; those are written as a YAML list.
        const std::string& value = option.value;
        scalar(option.path);
        if (!isListOption(option.path)) {
            scalar(value);
            continue;
        }
        beginList();
        std::size_t start = 0;
        while (start < value.size()) {
            std::size_t end = value.find('\n', start);
            if (end == std::string::npos) {
                end = value.size();
            }
            // An empty item names nothing; the file has no way to say it.
            if (end > start) {
                scalar(value.substr(start, end - start));
            }
            start = end + 1;
        }
        endList();
    }
    endMap();
}

void WorkspaceWriter::writeTerminal()
{
    if (!m_workspace.terminal()) {
        return;
    }
    scalar("terminal");
    beginMap();
    hexField("uart", m_workspace.terminal()->uart);
    endMap();
}

void WorkspaceWriter::writeTrace()
{
    if (m_workspace.traceTriggers().empty()) {
        return;
    }
    scalar("trace");
    beginMap();
    scalar("triggers");
    beginList();
    for (const Workspace::TraceTrigger& trigger : m_workspace.traceTriggers()) {
        beginMap();
        field("name", trigger.name);
        if (!trigger.start.empty()) {
            field("start", trigger.start);
        }
        if (trigger.instructions) {
            field("instructions", "true");
        }
        endMap();
    }
    endList();
    endMap();
}

void WorkspaceWriter::writeHil()
{
    if (m_workspace.hilChannels().empty()) {
        return;
    }
    scalar("hil");
    beginList();
    for (const Workspace::HilChannel& channel : m_workspace.hilChannels()) {
        beginMap();
        field("name", channel.name);
        field("kind", channel.kind);
        hexField("address", channel.address);
        if (channel.initial) {
            field("initial", *channel.initial);
        }
        endMap();
    }
    endList();
}

void WorkspaceWriter::writeBuild()
{
    if (!m_workspace.build()) {
        return;
    }
    const services::BuildSettings& build = *m_workspace.build();
    scalar("build");
    beginMap();
    field("toolchain", build.toolchain);
    listField("sources", build.sources);
    listField("includes", build.includes);
    listField("defines", build.defines);
    listField("flags", build.flags);
    listField("linkFlags", build.linkFlags);
    if (!build.linkerScript.empty()) {
        field("linkerScript", build.linkerScript);
    }
    if (!build.output.empty()) {
        field("output", build.output);
    }
    writeBuildFiles(build.files);
    if (!build.custom.empty()) {
        scalar("custom");
        beginList();
        for (const services::BuildSettings::CustomOperation& operation : build.custom) {
            beginMap();
            field("name", operation.name);
            field("command", operation.command);
            endMap();
        }
        endList();
    }
    endMap();
}

void WorkspaceWriter::writeBuildFiles(const std::map<std::string, services::BuildSettings::FileSettings>& files)
{
    if (files.empty()) {
        return;
    }
    scalar("files");
    beginMap();
    for (const auto& [source, file] : files) {
        scalar(source);
        beginMap();
        listField("includes", file.includes);
        listField("defines", file.defines);
        listField("flags", file.flags);
        endMap();
    }
    endMap();
}

// Events

void WorkspaceWriter::beginMap()
{
    yaml_event_t event;
    yaml_mapping_start_event_initialize(&event, nullptr, nullptr, 1, YAML_BLOCK_MAPPING_STYLE);
    emit(event);
}

void WorkspaceWriter::endMap()
{
    yaml_event_t event;
    yaml_mapping_end_event_initialize(&event);
    emit(event);
}

void WorkspaceWriter::beginList()
{
    yaml_event_t event;
    yaml_sequence_start_event_initialize(&event, nullptr, nullptr, 1, YAML_BLOCK_SEQUENCE_STYLE);
    emit(event);
}

void WorkspaceWriter::endList()
{
    yaml_event_t event;
    yaml_sequence_end_event_initialize(&event);
    emit(event);
}

void WorkspaceWriter::field(const char* key, const std::string& value)
{
    scalar(key);
    scalar(value);
}

void WorkspaceWriter::listField(const char* key, const std::vector<std::string>& values)
{
    if (values.empty()) {
        return;
    }
    scalar(key);
    beginList();
    for (const std::string& value : values) {
        scalar(value);
    }
    endList();
}

void WorkspaceWriter::hexField(const char* key, std::uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", value);
    field(key, text);
}

void WorkspaceWriter::numberField(const char* key, std::uint64_t value)
{
    field(key, std::to_string(value));
}

void WorkspaceWriter::scalar(const std::string& value)
{
    const yaml_scalar_style_t style = readsAsNull(value) ? YAML_DOUBLE_QUOTED_SCALAR_STYLE : YAML_ANY_SCALAR_STYLE;
    yaml_event_t event;
    yaml_scalar_event_initialize(&event, nullptr, nullptr,
                                 reinterpret_cast<yaml_char_t*>(const_cast<char*>(value.c_str())), int(value.size()),
                                 1, 1, style);
    emit(event);
}

void WorkspaceWriter::emit(yaml_event_t& event)
{
    // The emitter takes the event over, failing or not.
    if (!yaml_emitter_emit(&m_emitter, &event)) {
        throw WorkspaceError(m_workspace.file().string() + ": cannot write workspace file: "
                             + (m_emitter.problem != nullptr ? m_emitter.problem : "YAML emitter failed"));
    }
}

std::string WorkspaceWriter::accessText(unsigned access)
{
    std::string text;
    text += (access & Workspace::Read) ? "r" : "";
    text += (access & Workspace::Write) ? "w" : "";
    text += (access & Workspace::Execute) ? "x" : "";
    return text;
}

} // namespace quillon
