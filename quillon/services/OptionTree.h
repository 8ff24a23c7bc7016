#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace quillon::services {

/// The options of one simulated Quillon. An option is addressed by its path
/// "/<module>/<scope>/<name>" (module IDE, Document, VALKE, Plugin or HIL); the set of paths is
/// fixed, and each has a kind and a default:
///
///     path                          kind     default  meaning
///     /IDE/Debug/StopOnReset        bool     1        a reset leaves the core at the reset handler;
///                                                     0: the core runs on after the reset
///     /IDE/Debug/StopAtMain         bool     0        a download ends with the core run to `main`
///                                                     and stopped there, not at the reset handler
///     /IDE/Debug/SourcePaths        list     empty    folders searched for source files, in order
///     /IDE/Test/MaxInstructions     integer  100000000  instructions a test (or a call made by an
///                                                     expression) may run before it ends as an
///                                                     unexpected stop; not zero. The workspace's
///                                                     test.maxInstructions sets its default.
///
/// A bool is written 0, 1, true or false and read as 0 or 1; an integer is decimal or 0x hex,
/// 64 bits; a list is a sequence of texts, read as one text with an item per line, and its items
/// are addressed as "<path>[<index>]" from 0. Every failure is a `ServiceError` that names the
/// path: "unknown option '<path>'" (NotFound), "bad value '<text>' for option '<path>'
/// (<what it takes>)", "option '<path>' is not a list", "index <i> out of range for option
/// '<path>' (<n> items)" (InvalidArgument). Thread safe: the run thread may read while the
/// automation interface writes.
class OptionTree {
public:
    enum class Kind { Bool, Integer, List };

    struct Definition {
        const char* path;
        Kind kind;
        const char* defaultValue;
    };

    static constexpr const char* kStopOnReset = "/IDE/Debug/StopOnReset";
    static constexpr const char* kStopAtMain = "/IDE/Debug/StopAtMain";
    static constexpr const char* kSourcePaths = "/IDE/Debug/SourcePaths";
    static constexpr const char* kMaxInstructions = "/IDE/Test/MaxInstructions";

    /// Every option at its default.
    OptionTree();

    /// The documented options, in the order above.
    static const std::vector<Definition>& definitions();
    /// "/<module>/<scope>/<name>", or "/<module>/<name>" with an empty scope.
    static std::string path(const std::string& module, const std::string& scope, const std::string& name);

    /// The value as text: 0 or 1, a decimal number, or the items of a list one a line.
    std::string text(const std::string& path) const;
    std::uint64_t integer(const std::string& path) const;
    bool flag(const std::string& path) const { return integer(path) != 0; }
    std::vector<std::string> list(const std::string& path) const;

    /// Parses `text` by the option's kind; a list takes its items one a line.
    void set(const std::string& path, const std::string& text);
    void setInteger(const std::string& path, std::uint64_t value);
    /// The option back to its default; all of them without a path.
    void reset(const std::string& path);
    void resetAll();
    /// Changes the default of `path` as well as its value.
    void setDefault(const std::string& path, const std::string& text);
    /// The value equals the default (as parsed: "true" equals 1).
    bool isDefault(const std::string& path) const;

    std::size_t listSize(const std::string& path) const;
    /// An empty item at `index` (0 to the size).
    void insertItem(const std::string& path, std::size_t index);
    void removeItem(const std::string& path, std::size_t index);

private:
    struct Value {
        Kind kind;
        std::string defaultValue;
        std::uint64_t number = 0;
        std::vector<std::string> items;
    };

    /// The option and, for "<path>[<i>]", the index of its item.
    struct Address {
        std::string path;
        bool isItem = false;
        std::size_t index = 0;
    };

    static Address address(const std::string& path);
    Value& find(const std::string& path);
    const Value& find(const std::string& path) const;
    Value& findList(const std::string& path);
    static void assign(Value& value, const std::string& path, const std::string& text);
    static void checkIndex(const Value& value, const std::string& path, std::size_t index, std::size_t limit);

    mutable std::mutex m_mutex;
    std::map<std::string, Value> m_values;
};

} // namespace quillon::services
