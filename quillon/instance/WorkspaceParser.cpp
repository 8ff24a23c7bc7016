#include "instance/WorkspaceParser.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <new>
#include <utility>

#include "instance/WorkspaceError.h"
#include "services/HilChannel.h"
#include "services/OptionTree.h"
#include "services/ServiceError.h"

namespace quillon {

namespace fs = std::filesystem;

namespace {

std::string join(const std::string& parent, const std::string& name)
{
    return parent.empty() ? name : parent + "." + name;
}

std::string indexed(const std::string& list, std::size_t index)
{
    return list + "[" + std::to_string(index) + "]";
}

/// "in 'target'", or "at top level" for the root map.
std::string inMap(const std::string& key)
{
    return key.empty() ? "at top level" : "in '" + key + "'";
}

const char* kindName(yaml_node_type_t type)
{
    switch (type) {
    case YAML_MAPPING_NODE: return "a map";
    case YAML_SEQUENCE_NODE: return "a list";
    default: return "a single value";
    }
}

} // namespace

WorkspaceParser::WorkspaceParser(fs::path file) : m_given(std::move(file)) {}

WorkspaceParser::~WorkspaceParser()
{
    if (m_loaded) {
        yaml_document_delete(&m_document);
    }
}

Workspace WorkspaceParser::parse()
{
    const std::string text = readFile();
    m_workspace.m_file = Workspace::canonicalPath(m_given);
    loadDocument(text);
    parseRoot(yaml_document_get_root_node(&m_document));
    return std::move(m_workspace);
}

std::string WorkspaceParser::readFile() const
{
    const std::string name = m_given.string();
    auto cannotRead = [&](int error) {
        throw WorkspaceError(name + ": cannot read workspace file: " + std::strerror(error));
    };
    if (name.empty()) {
        cannotRead(ENOENT);
    }
    std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(name.c_str(), "rb"), &std::fclose);
    if (!file) {
        cannotRead(errno);
    }
    std::string text;
    char buffer[4096];
    std::size_t count;
    while ((count = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) {
        text.append(buffer, count);
    }
    if (std::ferror(file.get())) {
        cannotRead(errno);
    }
    return text;
}

void WorkspaceParser::loadDocument(const std::string& text)
{
    yaml_parser_t parser;
    if (!yaml_parser_initialize(&parser)) {
        throw std::bad_alloc();
    }
    std::unique_ptr<yaml_parser_t, void (*)(yaml_parser_t*)> guard(&parser, &yaml_parser_delete);
    yaml_parser_set_input_string(&parser, reinterpret_cast<const unsigned char*>(text.data()),
                                 text.size());
    // A failed load leaves nothing to delete.
    if (!yaml_parser_load(&parser, &m_document)) {
        failYaml(parser, text);
    }
    m_loaded = true;
    checkSingleDocument(parser, text);
}

void WorkspaceParser::checkSingleDocument(yaml_parser_t& parser, const std::string& text)
{
    yaml_document_t next;
    if (!yaml_parser_load(&parser, &next)) {
        failYaml(parser, text);
    }
    const Node* root = yaml_document_get_root_node(&next);
    const int line = root ? lineOf(root) : 0;
    yaml_document_delete(&next);
    if (root) {
        fail(line, "more than one YAML document");
    }
}

void WorkspaceParser::failYaml(const yaml_parser_t& parser, const std::string& text) const
{
    int line = int(parser.problem_mark.line) + 1;
    if (parser.error == YAML_READER_ERROR) {
        // The reader reports a byte offset only.
        const std::size_t end = std::min(parser.problem_offset, text.size());
        line = 1 + int(std::count(text.begin(), text.begin() + std::ptrdiff_t(end), '\n'));
    }
    std::string problem = "YAML error: ";
    problem += parser.problem ? parser.problem : "unknown problem";
    if (parser.context) {
        problem += std::string(" (") + parser.context + ")";
    }
    fail(line, problem);
}

// Sections. Each reads one map or list; `key` is the dotted path of the node.

void WorkspaceParser::parseRoot(Node* root)
{
    if (!root) {
        return; // empty file
    }
    readMap(root, "", {
        {"target", false, [this](Node* n, const std::string& k) { parseTarget(n, k); }},
        {"download", false, [this](Node* n, const std::string& k) { parseDownload(n, k); }},
        {"test", false, [this](Node* n, const std::string& k) { parseTest(n, k); }},
        {"options", false, [this](Node* n, const std::string& k) { parseOptions(n, k); }},
        {"terminal", false, [this](Node* n, const std::string& k) { parseTerminal(n, k); }},
        {"trace", false, [this](Node* n, const std::string& k) { parseTrace(n, k); }},
        {"hil", false, [this](Node* n, const std::string& k) { parseHil(n, k); }},
        {"build", false, [this](Node* n, const std::string& k) { parseBuild(n, k); }},
    });
}

void WorkspaceParser::parseTarget(Node* map, const std::string& key)
{
    Workspace& ws = m_workspace;
    readMap(map, key, {
        {"cpu", false, [&](Node* n, const std::string& k) { ws.m_cpu = cpu(n, k); }},
        {"clock", false,
         [&](Node* n, const std::string& k) { ws.m_clock = std::uint32_t(nonZero(n, k, 32)); }},
        {"memory", false, [this](Node* n, const std::string& k) { parseMemory(n, k); }},
    });
}

void WorkspaceParser::parseMemory(Node* list, const std::string& key)
{
    readList(list, key, [this](Node* n, const std::string& k) { parseMemoryArea(n, k); });
}

void WorkspaceParser::parseMemoryArea(Node* map, const std::string& key)
{
    Workspace::MemoryArea area;
    area.line = lineOf(map);
    readMap(map, key, {
        {"name", true, [&](Node* n, const std::string& k) { area.name = text(n, k); }},
        {"start", true,
         [&](Node* n, const std::string& k) { area.start = pageMultiple(n, k, number(n, k, 32)); }},
        {"size", true,
         [&](Node* n, const std::string& k) { area.size = pageMultiple(n, k, nonZero(n, k, 32)); }},
        {"access", false, [&](Node* n, const std::string& k) { area.access = access(n, k); }},
    });
    checkArea(area, key);
    m_workspace.m_memory.push_back(std::move(area));
}

void WorkspaceParser::checkArea(const Workspace::MemoryArea& area, const std::string& key) const
{
    const std::string what = "memory area '" + area.name + "' in '" + key + "'";
    if (area.end() > (std::uint64_t(1) << 32)) {
        fail(area.line, what + " ends past 0xffffffff");
    }
    for (const Workspace::MemoryArea& other : m_workspace.m_memory) {
        if (other.name == area.name) {
            fail(area.line, "duplicate memory area name '" + area.name + "' in '" + key
                                + "' (first on line " + std::to_string(other.line) + ")");
        }
        if (area.start < other.end() && other.start < area.end()) {
            fail(area.line, what + " overlaps '" + other.name + "' (line "
                                + std::to_string(other.line) + ")");
        }
    }
}

void WorkspaceParser::parseDownload(Node* list, const std::string& key)
{
    readList(list, key, [this](Node* n, const std::string& k) { parseDownloadFile(n, k); });
}

void WorkspaceParser::parseDownloadFile(Node* map, const std::string& key)
{
    Workspace::DownloadFile download;
    download.line = lineOf(map);
    readMap(map, key, {
        {"file", true,
         [&](Node* n, const std::string& k) {
             download.file = Workspace::canonicalPath(m_workspace.folder() / text(n, k));
         }},
    });
    m_workspace.m_downloads.push_back(std::move(download));
}

void WorkspaceParser::parseTest(Node* map, const std::string& key)
{
    readMap(map, key, {
        {"maxInstructions", false,
         [this](Node* n, const std::string& k) { m_workspace.m_maxInstructions = nonZero(n, k, 64); }},
    });
}

void WorkspaceParser::parseOptions(Node* map, const std::string& key)
{
    if (!expect(map, YAML_MAPPING_NODE, key)) {
        return;
    }
    services::OptionTree check;
    std::map<std::string, int> seen; // path -> line
    for (yaml_node_pair_t* pair = map->data.mapping.pairs.start; pair < map->data.mapping.pairs.top; ++pair) {
        Node* name = node(pair->key);
        if (name->type != YAML_SCALAR_NODE) {
            fail(name, std::string("a key ") + inMap(key) + " must be a single value, not " + kindName(name->type));
        }
        const std::string path = scalarText(name);
        const auto [first, added] = seen.emplace(path, lineOf(name));
        if (!added) {
            fail(name, "duplicate key '" + path + "' " + inMap(key) + " (first on line "
                           + std::to_string(first->second) + ")");
        }
        Node* valueNode = node(pair->value);
        const std::string value = optionValue(valueNode, join(key, path));
        try {
            check.set(path, value);
        } catch (const services::ServiceError& error) {
            fail(error.kind() == services::ServiceError::Kind::NotFound ? name : valueNode, error.what());
        }
        m_workspace.m_options.push_back(Workspace::OptionSetting{path, value, lineOf(name)});
    }
}

void WorkspaceParser::parseTerminal(Node* map, const std::string& key)
{
    Workspace::Terminal terminal;
    terminal.line = lineOf(map);
    bool given = false;
    readMap(map, key, {
        {"uart", true,
         [&](Node* n, const std::string& k) {
             terminal.uart = std::uint32_t(number(n, k, 32));
             terminal.line = lineOf(n);
             given = true;
         }},
    });
    if (given) {
        m_workspace.m_terminal = terminal;
    }
}

void WorkspaceParser::parseTrace(Node* map, const std::string& key)
{
    readMap(map, key, {
        {"triggers", false,
         [this](Node* n, const std::string& k) {
             readList(n, k, [this](Node* item, const std::string& itemKey) { parseTrigger(item, itemKey); });
         }},
    });
}

void WorkspaceParser::parseTrigger(Node* map, const std::string& key)
{
    Workspace::TraceTrigger trigger;
    trigger.line = lineOf(map);
    Node* nameNode = nullptr;
    readMap(map, key, {
        {"name", true,
         [&](Node* n, const std::string& k) {
             trigger.name = text(n, k);
             nameNode = n;
         }},
        {"start", false, [&](Node* n, const std::string& k) { trigger.start = text(n, k); }},
        {"instructions", false, [&](Node* n, const std::string& k) { trigger.instructions = boolean(n, k); }},
    });
    if (nameNode == nullptr) {
        return; // a null entry
    }
    const std::string nameKey = join(key, "name");
    if (trigger.name == "Trigger0") {
        fail(nameNode, "trigger name 'Trigger0' in '" + nameKey + "' is built in");
    }
    for (const Workspace::TraceTrigger& other : m_workspace.m_traceTriggers) {
        if (other.name == trigger.name) {
            fail(nameNode, "duplicate trigger name '" + trigger.name + "' in '" + nameKey + "' (first on line "
                               + std::to_string(other.line) + ")");
        }
    }
    m_workspace.m_traceTriggers.push_back(std::move(trigger));
}

void WorkspaceParser::parseHil(Node* list, const std::string& key)
{
    readList(list, key, [this](Node* n, const std::string& k) { parseHilChannel(n, k); });
}

void WorkspaceParser::parseHilChannel(Node* map, const std::string& key)
{
    Workspace::HilChannel channel;
    channel.line = lineOf(map);
    Node* nameNode = nullptr;
    Node* initialNode = nullptr;
    readMap(map, key, {
        {"name", true,
         [&](Node* n, const std::string& k) {
             channel.name = text(n, k);
             nameNode = n;
         }},
        {"kind", false,
         [&](Node* n, const std::string& k) {
             channel.kind = text(n, k);
             if (!services::HilChannel::kindNamed(channel.kind)) {
                 fail(n, "unknown HIL channel kind '" + channel.kind + "' for '" + k
                             + "' (digital, analog, integer)");
             }
         }},
        {"address", true, [&](Node* n, const std::string& k) { channel.address = wordAddress(n, k); }},
        {"initial", false,
         [&](Node* n, const std::string& k) {
             channel.initial = text(n, k);
             initialNode = n;
         }},
    });
    if (nameNode == nullptr) {
        return; // a null entry
    }
    for (const Workspace::HilChannel& other : m_workspace.m_hilChannels) {
        if (other.name == channel.name) {
            fail(nameNode, "duplicate HIL channel name '" + channel.name + "' in '" + join(key, "name")
                               + "' (first on line " + std::to_string(other.line) + ")");
        }
    }
    const auto kind = *services::HilChannel::kindNamed(channel.kind);
    if (channel.initial && !services::HilChannel::parse(kind, *channel.initial)) {
        fail(initialNode, "bad value '" + *channel.initial + "' for '" + join(key, "initial") + "' (a value of kind '"
                              + channel.kind + "')");
    }
    m_workspace.m_hilChannels.push_back(std::move(channel));
}

void WorkspaceParser::parseBuild(Node* map, const std::string& key)
{
    if (!expect(map, YAML_MAPPING_NODE, key)) {
        return;
    }
    services::BuildSettings build;
    Node* filesNode = nullptr;
    std::string filesKey;
    auto list = [this](std::vector<std::string>& to) {
        return [this, &to](Node* n, const std::string& k) { to = texts(n, k); };
    };
    auto single = [this](std::string& to) { return [this, &to](Node* n, const std::string& k) { to = text(n, k); }; };
    readMap(map, key, {
        {"toolchain", false, single(build.toolchain)},
        {"sources", false, list(build.sources)},
        {"includes", false, list(build.includes)},
        {"defines", false, list(build.defines)},
        {"flags", false, list(build.flags)},
        {"linkFlags", false, list(build.linkFlags)},
        {"linkerScript", false, single(build.linkerScript)},
        {"output", false, single(build.output)},
        {"files", false,
         [&](Node* n, const std::string& k) {
             filesNode = n;
             filesKey = k;
         }},
        {"custom", false,
         [&](Node* n, const std::string& k) {
             readList(n, k, [&](Node* item, const std::string& itemKey) { parseCustomOperation(item, itemKey, build); });
         }},
    });
    if (filesNode != nullptr) {
        parseBuildFiles(filesNode, filesKey, build); // after 'sources', wherever it stands
    }
    m_workspace.m_build = std::move(build);
}

void WorkspaceParser::parseBuildFiles(Node* map, const std::string& key, services::BuildSettings& build)
{
    if (!expect(map, YAML_MAPPING_NODE, key)) {
        return;
    }
    std::map<std::string, int> seen; // source -> line
    for (yaml_node_pair_t* pair = map->data.mapping.pairs.start; pair < map->data.mapping.pairs.top; ++pair) {
        Node* name = node(pair->key);
        if (name->type != YAML_SCALAR_NODE) {
            fail(name, std::string("a key ") + inMap(key) + " must be a single value, not " + kindName(name->type));
        }
        const std::string source = scalarText(name);
        const auto [first, added] = seen.emplace(source, lineOf(name));
        if (!added) {
            fail(name, "duplicate key '" + source + "' " + inMap(key) + " (first on line "
                           + std::to_string(first->second) + ")");
        }
        if (std::find(build.sources.begin(), build.sources.end(), source) == build.sources.end()) {
            fail(name, "'" + source + "' in '" + key + "' is not one of 'build.sources'");
        }
        services::BuildSettings::FileSettings file;
        readMap(node(pair->value), join(key, source), {
            {"includes", false, [&](Node* n, const std::string& k) { file.includes = texts(n, k); }},
            {"defines", false, [&](Node* n, const std::string& k) { file.defines = texts(n, k); }},
            {"flags", false, [&](Node* n, const std::string& k) { file.flags = texts(n, k); }},
        });
        if (!file.empty()) {
            build.files[source] = std::move(file);
        }
    }
}

void WorkspaceParser::parseCustomOperation(Node* map, const std::string& key, services::BuildSettings& build)
{
    services::BuildSettings::CustomOperation operation;
    Node* nameNode = nullptr;
    readMap(map, key, {
        {"name", true,
         [&](Node* n, const std::string& k) {
             operation.name = text(n, k);
             nameNode = n;
         }},
        {"command", true, [&](Node* n, const std::string& k) { operation.command = text(n, k); }},
    });
    if (nameNode == nullptr) {
        return; // a null entry
    }
    for (std::size_t i = 0; i < build.custom.size(); ++i) {
        if (build.custom[i].name == operation.name) {
            fail(nameNode, "duplicate custom operation name '" + operation.name + "' in '" + join(key, "name") + "'");
        }
    }
    build.custom.push_back(std::move(operation));
}

std::vector<std::string> WorkspaceParser::texts(Node* list, const std::string& key)
{
    std::vector<std::string> items;
    readList(list, key, [&](Node* n, const std::string& k) { items.push_back(text(n, k)); });
    return items;
}

std::string WorkspaceParser::optionValue(Node* value, const std::string& key)
{
    if (value->type != YAML_SEQUENCE_NODE) {
        return text(value, key);
    }
    std::string items;
    const yaml_node_item_t* item = value->data.sequence.items.start;
    for (std::size_t i = 0; item + i < value->data.sequence.items.top; ++i) {
        items += (i == 0 ? "" : "\n") + text(node(item[i]), indexed(key, i));
    }
    return items;
}

// Structure

void WorkspaceParser::readMap(Node* map, const std::string& key, std::initializer_list<Key> keys)
{
    if (!expect(map, YAML_MAPPING_NODE, key)) {
        return;
    }
    std::map<std::string, int> seen; // name -> line
    for (yaml_node_pair_t* pair = map->data.mapping.pairs.start; pair < map->data.mapping.pairs.top;
         ++pair) {
        Node* name = node(pair->key);
        if (name->type != YAML_SCALAR_NODE) {
            fail(name, std::string("a key ") + inMap(key) + " must be a single value, not "
                           + kindName(name->type));
        }
        const std::string text = scalarText(name);
        const auto known = std::find_if(keys.begin(), keys.end(),
                                        [&](const Key& k) { return text == k.name; });
        if (known == keys.end()) {
            fail(name, "unknown key '" + text + "' " + inMap(key));
        }
        const auto [first, added] = seen.emplace(text, lineOf(name));
        if (!added) {
            fail(name, "duplicate key '" + text + "' " + inMap(key) + " (first on line "
                           + std::to_string(first->second) + ")");
        }
        known->read(node(pair->value), join(key, text));
    }
    for (const Key& k : keys) {
        if (k.required && !seen.count(k.name)) {
            fail(map, std::string("missing key '") + k.name + "' " + inMap(key));
        }
    }
}

void WorkspaceParser::readList(Node* list, const std::string& key, const Reader& readItem)
{
    if (!expect(list, YAML_SEQUENCE_NODE, key)) {
        return;
    }
    const yaml_node_item_t* items = list->data.sequence.items.start;
    const std::size_t count = std::size_t(list->data.sequence.items.top - items);
    for (std::size_t i = 0; i < count; ++i) {
        readItem(node(items[i]), indexed(key, i));
    }
}

bool WorkspaceParser::expect(Node* node, yaml_node_type_t type, const std::string& key) const
{
    if (node->type == type) {
        return true;
    }
    if (isNull(node)) {
        return false;
    }
    const std::string where = key.empty() ? "the top level" : "'" + key + "'";
    fail(node, where + " must be " + kindName(type) + ", not " + kindName(node->type));
}

// Values

std::string WorkspaceParser::text(Node* node, const std::string& key) const
{
    if (node->type != YAML_SCALAR_NODE) {
        fail(node, "'" + key + "' must be a single value, not " + kindName(node->type));
    }
    std::string value = scalarText(node);
    if (isNull(node) || value.empty()) {
        fail(node, "missing value for '" + key + "'");
    }
    return value;
}

std::uint64_t WorkspaceParser::number(Node* node, const std::string& key, unsigned bits) const
{
    const std::string value = text(node, key);
    if (value.size() > 1 && value[0] == '-' && value[1] >= '0' && value[1] <= '9') {
        fail(node, "negative number '" + value + "' for '" + key + "'");
    }
    const bool isHex = value.size() > 2 && value[0] == '0' && (value[1] == 'x' || value[1] == 'X');
    const char* begin = value.data() + (isHex ? 2 : 0);
    const char* end = value.data() + value.size();
    std::uint64_t result = 0;
    const auto [stop, error] = std::from_chars(begin, end, result, isHex ? 16 : 10);
    if (error == std::errc::invalid_argument || stop != end) {
        fail(node, "bad number '" + value + "' for '" + key + "' (decimal or 0x hex)");
    }
    if (error == std::errc::result_out_of_range || (bits < 64 && result >> bits != 0)) {
        fail(node, "number '" + value + "' for '" + key + "' does not fit in "
                       + std::to_string(bits) + " bits");
    }
    return result;
}

std::uint64_t WorkspaceParser::nonZero(Node* node, const std::string& key, unsigned bits) const
{
    const std::uint64_t value = number(node, key, bits);
    if (value == 0) {
        fail(node, "'" + key + "' must not be zero");
    }
    return value;
}

std::uint32_t WorkspaceParser::pageMultiple(Node* node, const std::string& key,
                                            std::uint64_t value) const
{
    if (value % Workspace::kPageSize != 0) {
        char text[64];
        std::snprintf(text, sizeof text, "must be a multiple of 0x%x, not 0x%llx",
                      unsigned(Workspace::kPageSize), static_cast<unsigned long long>(value));
        fail(node, "'" + key + "' " + text);
    }
    return std::uint32_t(value);
}

bool WorkspaceParser::boolean(Node* node, const std::string& key) const
{
    const std::string value = text(node, key);
    if (value == "true" || value == "yes") {
        return true;
    }
    if (value == "false" || value == "no") {
        return false;
    }
    fail(node, "bad value '" + value + "' for '" + key + "' (true or false)");
}

std::uint32_t WorkspaceParser::wordAddress(Node* node, const std::string& key) const
{
    const std::uint64_t value = number(node, key, 32);
    if (value % 4 != 0) {
        char text[64];
        std::snprintf(text, sizeof text, "must be a multiple of 4, not 0x%llx", static_cast<unsigned long long>(value));
        fail(node, "'" + key + "' " + text);
    }
    return std::uint32_t(value);
}

Workspace::Cpu WorkspaceParser::cpu(Node* node, const std::string& key) const
{
    const std::string value = text(node, key);
    for (Workspace::Cpu cpu : {Workspace::Cpu::CortexM0, Workspace::Cpu::CortexM3,
                               Workspace::Cpu::CortexM4, Workspace::Cpu::CortexM7}) {
        if (value == Workspace::cpuName(cpu)) {
            return cpu;
        }
    }
    fail(node, "unknown cpu '" + value + "' for '" + key
                   + "' (cortex-m0, cortex-m3, cortex-m4, cortex-m7)");
}

unsigned WorkspaceParser::access(Node* node, const std::string& key) const
{
    const std::string value = text(node, key);
    unsigned bits = 0;
    for (char c : value) {
        const unsigned bit = c == 'r'   ? unsigned(Workspace::Read)
                             : c == 'w' ? unsigned(Workspace::Write)
                             : c == 'x' ? unsigned(Workspace::Execute)
                                        : 0u;
        if (bit == 0 || (bits & bit)) {
            fail(node, "bad access '" + value + "' for '" + key + "' (r, w, x, each at most once)");
        }
        bits |= bit;
    }
    return bits;
}

// Nodes

WorkspaceParser::Node* WorkspaceParser::node(int index)
{
    return yaml_document_get_node(&m_document, index);
}

bool WorkspaceParser::isNull(const Node* node)
{
    if (node->type != YAML_SCALAR_NODE || node->data.scalar.style != YAML_PLAIN_SCALAR_STYLE) {
        return false;
    }
    const std::string value = scalarText(node);
    return value.empty() || value == "~" || value == "null" || value == "Null" || value == "NULL";
}

std::string WorkspaceParser::scalarText(const Node* node)
{
    return std::string(reinterpret_cast<const char*>(node->data.scalar.value),
                       node->data.scalar.length);
}

void WorkspaceParser::fail(int line, const std::string& problem) const
{
    throw WorkspaceError(m_given.string() + ":" + std::to_string(line) + ": " + problem);
}

} // namespace quillon
