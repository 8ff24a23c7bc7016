#include "services/CoverageConfiguration.h"

#include <algorithm>

#include "services/AnalyzerError.h"

namespace quillon::services {

namespace {

AnalyzerError badValue(const std::string& message)
{
    return AnalyzerError(AnalyzerError::Kind::InvalidArgument, message);
}

} // namespace

void CoverageConfiguration::setScope(std::uint32_t step)
{
    switch (step) {
    case 1:
        m_base = Base::DownloadedCode;
        m_selection = Selection::All;
        break;
    case 2:
        m_base = Base::EntireMemory;
        m_selection = Selection::All;
        break;
    case 3:
        m_selection = Selection::IncludesOnly;
        break;
    default:
        throw badValue("bad coverage scope " + std::to_string(step)
                       + " (1 downloaded code, 2 entire memory, 3 by rangeset)");
    }
    m_step1 = step;
    m_step2 = 0;
}

void CoverageConfiguration::setRangesetScope(std::uint32_t step)
{
    switch (step) {
    case 1:
        m_base = Base::DownloadedCode;
        m_selection = Selection::MinusExcludes;
        break;
    case 2:
        m_base = Base::EntireMemory;
        m_selection = Selection::MinusExcludes;
        break;
    case 3:
        m_selection = Selection::IncludesOnly;
        break;
    default:
        throw badValue("bad rangeset scope " + std::to_string(step)
                       + " (1 downloaded code minus excludes, 2 entire memory minus excludes, 3 includes only)");
    }
    m_step2 = step;
}

bool CoverageConfiguration::createRangeset(const std::string& name)
{
    if (name.empty()) {
        throw badValue("a rangeset needs a name");
    }
    auto it = std::find_if(m_rangesets.begin(), m_rangesets.end(),
                           [&](const Rangeset& r) { return r.name == name; });
    const bool existed = it != m_rangesets.end();
    if (!existed) {
        m_rangesets.push_back(Rangeset{name, {}, {}});
        it = std::prev(m_rangesets.end());
    }
    m_active = static_cast<std::size_t>(it - m_rangesets.begin());
    return existed;
}

void CoverageConfiguration::activate(const std::string& name)
{
    auto it = std::find_if(m_rangesets.begin(), m_rangesets.end(),
                           [&](const Rangeset& r) { return r.name == name; });
    if (it == m_rangesets.end()) {
        throw AnalyzerError(AnalyzerError::Kind::NotFound, "no rangeset '" + name + "'");
    }
    m_active = static_cast<std::size_t>(it - m_rangesets.begin());
}

void CoverageConfiguration::activate(std::uint32_t index)
{
    if (index >= m_rangesets.size()) {
        throw AnalyzerError(AnalyzerError::Kind::NotFound, "no rangeset number " + std::to_string(index) + " (there are "
                                                               + std::to_string(m_rangesets.size()) + ")");
    }
    m_active = index;
}

void CoverageConfiguration::addInclude(ItemKind kind, const std::string& name)
{
    Rangeset& rangeset = activeForChange("include");
    const Item item{kind, name};
    if (std::find(rangeset.includes.begin(), rangeset.includes.end(), item) == rangeset.includes.end()) {
        rangeset.includes.push_back(item);
    }
}

void CoverageConfiguration::addExclude(ItemKind kind, const std::string& name)
{
    Rangeset& rangeset = activeForChange("exclude");
    const Item item{kind, name};
    if (std::find(rangeset.excludes.begin(), rangeset.excludes.end(), item) == rangeset.excludes.end()) {
        rangeset.excludes.push_back(item);
    }
}

const CoverageConfiguration::Rangeset* CoverageConfiguration::active() const
{
    return m_active ? &m_rangesets[*m_active] : nullptr;
}

CoverageConfiguration::Rangeset& CoverageConfiguration::activeForChange(const char* what)
{
    if (!m_active) {
        throw AnalyzerError(AnalyzerError::Kind::IllegalState,
                            std::string("no active rangeset to ") + what + " an item in; create a rangeset first");
    }
    return m_rangesets[*m_active];
}

void CoverageConfiguration::clear()
{
    *this = CoverageConfiguration();
}

CoverageConfiguration::ItemKind CoverageConfiguration::itemKind(std::uint32_t number)
{
    if (number > 3) {
        throw badValue("bad range item kind " + std::to_string(number) + " (0 folder, 1 module, 2 function, 3 item)");
    }
    return static_cast<ItemKind>(number);
}

const char* CoverageConfiguration::itemKindName(ItemKind kind)
{
    switch (kind) {
    case ItemKind::Folder:
        return "folder";
    case ItemKind::Module:
        return "module";
    case ItemKind::Function:
        return "function";
    case ItemKind::Item:
        return "item";
    }
    return "item";
}

std::optional<CoverageConfiguration::ItemKind> CoverageConfiguration::itemKindNamed(const std::string& name)
{
    for (std::uint32_t i = 0; i <= 3; ++i) {
        if (name == itemKindName(static_cast<ItemKind>(i))) {
            return static_cast<ItemKind>(i);
        }
    }
    return std::nullopt;
}

} // namespace quillon::services
