#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillon::services {

/// What a coverage document measures: the scope, two option words and named rangesets of included and excluded
/// items. The scope is set in one or two steps: the first gives all downloaded code, all executable memory, or
/// "by rangeset"; the second refines "by rangeset" into downloaded code minus the excludes, memory minus the
/// excludes, or the includes only. Items are added to the active rangeset, which a new rangeset becomes.
///
/// Option word 1: bit 0 measures executed code, bit 1 also the outcomes of conditional branches (decision
/// coverage). Option word 2 is kept and has no effect. Failures are AnalyzerError.
class CoverageConfiguration {
public:
    enum class Base { DownloadedCode, EntireMemory };
    enum class Selection { All, MinusExcludes, IncludesOnly };
    /// Kinds of items, in the order of their numbers: folder 0, module 1, function 2, item 3.
    enum class ItemKind { Folder, Module, Function, Item };

    static constexpr std::uint32_t kMeasureCode = 0x1;
    static constexpr std::uint32_t kMeasureBranches = 0x2;

    struct Item {
        ItemKind kind = ItemKind::Function;
        std::string name;
        bool operator==(const Item& other) const { return kind == other.kind && name == other.name; }
    };

    struct Rangeset {
        std::string name;
        std::vector<Item> includes;
        std::vector<Item> excludes;
    };

    /// First step: 1 downloaded code, 2 entire memory, 3 by rangeset (includes only until the second step).
    void setScope(std::uint32_t step);
    /// Second step: 1 downloaded code minus excludes, 2 entire memory minus excludes, 3 includes only.
    void setRangesetScope(std::uint32_t step);
    Base base() const { return m_base; }
    Selection selection() const { return m_selection; }
    /// The numbers of the two steps as last set (0: second step not given).
    std::uint32_t scopeStep() const { return m_step1; }
    std::uint32_t rangesetScopeStep() const { return m_step2; }

    void setOption1(std::uint32_t value) { m_option1 = value; }
    void setOption2(std::uint32_t value) { m_option2 = value; }
    std::uint32_t option1() const { return m_option1; }
    std::uint32_t option2() const { return m_option2; }
    bool measuresBranches() const { return (m_option1 & kMeasureBranches) != 0; }

    /// Makes the rangeset (if new) the active one; true when it existed already.
    bool createRangeset(const std::string& name);
    void activate(const std::string& name);
    /// By its place in the order of creation, from 0.
    void activate(std::uint32_t index);
    /// No rangeset is active.
    void deactivate() { m_active.reset(); }
    /// Adds to the active rangeset; an item already there is not added twice.
    void addInclude(ItemKind kind, const std::string& name);
    void addExclude(ItemKind kind, const std::string& name);
    const std::vector<Rangeset>& rangesets() const { return m_rangesets; }
    /// Null when no rangeset is active.
    const Rangeset* active() const;

    /// Back to the defaults: all downloaded code, both measures, no rangesets.
    void clear();

    /// 0..3 as an item kind; InvalidArgument otherwise.
    static ItemKind itemKind(std::uint32_t number);
    /// "folder", "module", "function", "item".
    static const char* itemKindName(ItemKind kind);
    /// The kind of an item kind's name; nothing for another text.
    static std::optional<ItemKind> itemKindNamed(const std::string& name);

private:
    Rangeset& activeForChange(const char* what);

    Base m_base = Base::DownloadedCode;
    Selection m_selection = Selection::All;
    std::uint32_t m_step1 = 1;
    std::uint32_t m_step2 = 0;
    std::uint32_t m_option1 = kMeasureCode | kMeasureBranches;
    std::uint32_t m_option2 = 0;
    std::vector<Rangeset> m_rangesets;
    std::optional<std::size_t> m_active;
};

} // namespace quillon::services
