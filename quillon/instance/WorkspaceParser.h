#pragma once

#include <yaml.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <string>

#include "instance/Workspace.h"

namespace quillon {

/// Reads one workspace file into a `Workspace` through libyaml's document API. Each map of the
/// file is one small function with a table of its keys; a new section is a function and a row
/// in `parseRoot`. Every error throws `WorkspaceError` in the format that `Workspace` documents.
class WorkspaceParser {
public:
    explicit WorkspaceParser(std::filesystem::path file);
    ~WorkspaceParser();
    WorkspaceParser(const WorkspaceParser&) = delete;
    WorkspaceParser& operator=(const WorkspaceParser&) = delete;

    Workspace parse();

private:
    using Node = yaml_node_t;
    /// Reads the value of a key; gets the value's node (never null) and its dotted key path.
    using Reader = std::function<void(Node* value, const std::string& key)>;

    struct Key {
        const char* name;
        bool required;
        Reader read;
    };

    std::string readFile() const;
    void loadDocument(const std::string& text);
    void checkSingleDocument(yaml_parser_t& parser, const std::string& text);
    [[noreturn]] void failYaml(const yaml_parser_t& parser, const std::string& text) const;

    void parseRoot(Node* root);
    void parseTarget(Node* map, const std::string& key);
    void parseMemory(Node* list, const std::string& key);
    void parseMemoryArea(Node* map, const std::string& key);
    void parseDownload(Node* list, const std::string& key);
    void parseDownloadFile(Node* map, const std::string& key);
    void parseTest(Node* map, const std::string& key);
    void parseOptions(Node* map, const std::string& key);
    void parseTerminal(Node* map, const std::string& key);
    void parseTrace(Node* map, const std::string& key);
    void parseTrigger(Node* map, const std::string& key);
    void parseHil(Node* list, const std::string& key);
    void parseHilChannel(Node* map, const std::string& key);
    void parseBuild(Node* map, const std::string& key);
    void parseBuildFiles(Node* map, const std::string& key, services::BuildSettings& build);
    void parseCustomOperation(Node* map, const std::string& key, services::BuildSettings& build);
    /// A list of single values.
    std::vector<std::string> texts(Node* list, const std::string& key);
    /// The value of an option: a single value, or a list's items one a line.
    std::string optionValue(Node* value, const std::string& key);

    void readMap(Node* map, const std::string& key, std::initializer_list<Key> keys);
    void readList(Node* list, const std::string& key, const Reader& readItem);
    /// False for a null value (the key counts as not given); fails for another kind of node.
    bool expect(Node* node, yaml_node_type_t type, const std::string& key) const;
    std::string text(Node* node, const std::string& key) const;
    std::uint64_t number(Node* node, const std::string& key, unsigned bits) const;
    std::uint64_t nonZero(Node* node, const std::string& key, unsigned bits) const;
    /// `value` of `key`, checked to be a multiple of the target's page.
    std::uint32_t pageMultiple(Node* node, const std::string& key, std::uint64_t value) const;
    Workspace::Cpu cpu(Node* node, const std::string& key) const;
    bool boolean(Node* node, const std::string& key) const;
    std::uint32_t wordAddress(Node* node, const std::string& key) const;
    unsigned access(Node* node, const std::string& key) const;
    void checkArea(const Workspace::MemoryArea& area, const std::string& key) const;

    Node* node(int index);
    static bool isNull(const Node* node);
    static std::string scalarText(const Node* node);
    static int lineOf(const Node* node) { return int(node->start_mark.line) + 1; }
    [[noreturn]] void fail(int line, const std::string& problem) const;
    [[noreturn]] void fail(const Node* at, const std::string& problem) const { fail(lineOf(at), problem); }

    std::filesystem::path m_given;
    Workspace m_workspace;
    yaml_document_t m_document{};
    bool m_loaded = false;
};

} // namespace quillon
