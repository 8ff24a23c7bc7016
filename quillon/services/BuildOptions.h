#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "services/BuildSettings.h"

namespace quillon::services {

/// The build settings read and changed option by option. Failures are `BuildError`s that name what is wrong.
///
/// Scope: "" or "/" is the project; any other scope is one of the project's sources, named as in `sources`
/// (another scope is BadScope). Options of the project: "toolchain", "linkerScript", "output" (single values)
/// and "sources", "includes", "defines", "flags", "linkFlags" (lists). Options of a source: "includes",
/// "defines", "flags" (lists, added to the project's when the source is compiled); the project's other
/// options in a source's scope are NotAvailable; an unknown name is BadOption.
///
/// A list reads as its items one a line ("\n" apart) and is set whole in the same form (empty lines are
/// dropped). `getAt` reads one item. `add` appends one item. `remove` with an empty value returns the
/// option to its default (empty lists, no linker script, no output, the default toolchain); with a value it
/// removes that item of a list. `move` takes "<from>,<to>": the item at index <from> goes to index <to>.
/// Single values take `set` and `remove` only; "toolchain" and "output" must not be set empty.
class BuildOptions {
public:
    explicit BuildOptions(BuildSettings& settings) : m_settings(settings) {}

    std::string get(const std::string& scope, const std::string& option) const;
    /// nullopt past the last item.
    std::optional<std::string> getAt(const std::string& scope, const std::string& option, std::size_t index) const;
    void set(const std::string& scope, const std::string& option, const std::string& value);
    void add(const std::string& scope, const std::string& option, const std::string& value);
    void remove(const std::string& scope, const std::string& option, const std::string& value);
    void move(const std::string& scope, const std::string& option, const std::string& value);

    static bool isProjectScope(const std::string& scope) { return scope.empty() || scope == "/"; }

private:
    using List = std::vector<std::string>;

    /// What an option names: one of the three members, the others null.
    struct Target {
        List BuildSettings::*projectList = nullptr;
        List BuildSettings::FileSettings::*fileList = nullptr;
        std::string BuildSettings::*single = nullptr;
    };

    using Operation = void (BuildOptions::*)(const std::string&, const std::string&, const std::string&);
    void change(const std::string& scope, const std::string& option, const std::string& value, Operation operation);
    void setNow(const std::string& scope, const std::string& option, const std::string& value);
    void addNow(const std::string& scope, const std::string& option, const std::string& value);
    void removeNow(const std::string& scope, const std::string& option, const std::string& value);
    void moveNow(const std::string& scope, const std::string& option, const std::string& value);

    /// Checks scope and option and finds what they name.
    Target resolve(const std::string& scope, const std::string& option) const;
    /// The items of a list option (a copy: a source without own settings has none).
    List items(const std::string& scope, const Target& target) const;
    /// The list to change; made for a source without own settings. Null for a single value.
    List* writable(const std::string& scope, const Target& target);
    List& writableList(const std::string& scope, const std::string& option, const char* operation);
    static List splitLines(const std::string& value);
    static std::string joinLines(const List& items);
    static std::size_t index(const std::string& text, std::size_t count, const std::string& option);
    static void checkSingle(const std::string& option, const std::string& value);
    /// Drops the settings of sources that have none left or are no longer sources.
    void tidy();

    BuildSettings& m_settings;
};

} // namespace quillon::services
