#include "services/BuildOptions.h"

#include <algorithm>
#include <charconv>

#include "services/BuildError.h"

namespace quillon::services {

namespace {

using Kind = BuildError::Kind;

} // namespace

BuildOptions::Target BuildOptions::resolve(const std::string& scope, const std::string& option) const
{
    Target target;
    if (option == "toolchain") target.single = &BuildSettings::toolchain;
    else if (option == "linkerScript") target.single = &BuildSettings::linkerScript;
    else if (option == "output") target.single = &BuildSettings::output;
    else if (option == "sources") target.projectList = &BuildSettings::sources;
    else if (option == "linkFlags") target.projectList = &BuildSettings::linkFlags;
    else if (option == "includes") target.fileList = &BuildSettings::FileSettings::includes;
    else if (option == "defines") target.fileList = &BuildSettings::FileSettings::defines;
    else if (option == "flags") target.fileList = &BuildSettings::FileSettings::flags;
    else throw BuildError(Kind::BadOption, "unknown build option '" + option + "'");

    if (isProjectScope(scope)) {
        if (target.fileList == &BuildSettings::FileSettings::includes) target.projectList = &BuildSettings::includes;
        if (target.fileList == &BuildSettings::FileSettings::defines) target.projectList = &BuildSettings::defines;
        if (target.fileList == &BuildSettings::FileSettings::flags) target.projectList = &BuildSettings::flags;
        target.fileList = nullptr;
        return target;
    }
    const List& sources = m_settings.sources;
    if (std::find(sources.begin(), sources.end(), scope) == sources.end()) {
        throw BuildError(Kind::BadScope, "'" + scope + "' is neither the project ('' or '/') nor one of its sources");
    }
    if (!target.fileList) {
        throw BuildError(Kind::NotAvailable,
                         "'" + option + "' is an option of the project, not of the source '" + scope + "'");
    }
    return target;
}

BuildOptions::List BuildOptions::items(const std::string& scope, const Target& target) const
{
    if (target.projectList) {
        return m_settings.*target.projectList;
    }
    const auto file = m_settings.files.find(scope);
    return file == m_settings.files.end() ? List() : file->second.*target.fileList;
}

BuildOptions::List* BuildOptions::writable(const std::string& scope, const Target& target)
{
    if (target.projectList) {
        return &(m_settings.*target.projectList);
    }
    if (target.fileList) {
        return &(m_settings.files[scope].*target.fileList);
    }
    return nullptr;
}

std::string BuildOptions::get(const std::string& scope, const std::string& option) const
{
    const Target target = resolve(scope, option);
    return target.single ? m_settings.*target.single : joinLines(items(scope, target));
}

std::optional<std::string> BuildOptions::getAt(const std::string& scope, const std::string& option,
                                               std::size_t index) const
{
    const Target target = resolve(scope, option);
    if (target.single) {
        throw BuildError(Kind::NotAvailable, "'" + option + "' is a single value, not a list");
    }
    const List list = items(scope, target);
    if (index >= list.size()) {
        return std::nullopt;
    }
    return list[index];
}

void BuildOptions::set(const std::string& scope, const std::string& option, const std::string& value)
{
    change(scope, option, value, &BuildOptions::setNow);
}

void BuildOptions::setNow(const std::string& scope, const std::string& option, const std::string& value)
{
    const Target target = resolve(scope, option);
    if (target.single) {
        checkSingle(option, value);
        m_settings.*target.single = value;
        return;
    }
    *writable(scope, target) = splitLines(value);
}

void BuildOptions::add(const std::string& scope, const std::string& option, const std::string& value)
{
    change(scope, option, value, &BuildOptions::addNow);
}

void BuildOptions::addNow(const std::string& scope, const std::string& option, const std::string& value)
{
    List& items = writableList(scope, option, "add");
    if (value.empty() || value.find('\n') != std::string::npos) {
        throw BuildError(Kind::BadOption, "'" + value + "' is no single item for '" + option + "'");
    }
    items.push_back(value);
}

void BuildOptions::remove(const std::string& scope, const std::string& option, const std::string& value)
{
    change(scope, option, value, &BuildOptions::removeNow);
}

void BuildOptions::removeNow(const std::string& scope, const std::string& option, const std::string& value)
{
    const Target target = resolve(scope, option);
    if (target.single) {
        if (!value.empty()) {
            throw BuildError(Kind::NotAvailable, "'" + option + "' is a single value: it has no items to remove");
        }
        m_settings.*target.single = option == "toolchain" ? BuildSettings::kDefaultToolchain : "";
        return;
    }
    List* items = writable(scope, target);
    if (value.empty()) {
        items->clear();
        return;
    }
    const auto found = std::find(items->begin(), items->end(), value);
    if (found == items->end()) {
        throw BuildError(Kind::BadOption, "'" + option + "' has no item '" + value + "'");
    }
    items->erase(found);
}

void BuildOptions::move(const std::string& scope, const std::string& option, const std::string& value)
{
    change(scope, option, value, &BuildOptions::moveNow);
}

void BuildOptions::moveNow(const std::string& scope, const std::string& option, const std::string& value)
{
    List& items = writableList(scope, option, "move");
    const std::size_t comma = value.find(',');
    if (comma == std::string::npos) {
        throw BuildError(Kind::BadOption, "move of '" + option + "' takes '<from>,<to>', not '" + value + "'");
    }
    const std::size_t from = index(value.substr(0, comma), items.size(), option);
    const std::size_t to = index(value.substr(comma + 1), items.size(), option);
    std::string item = items[from];
    items.erase(items.begin() + std::ptrdiff_t(from));
    items.insert(items.begin() + std::ptrdiff_t(to), std::move(item));
}

void BuildOptions::change(const std::string& scope, const std::string& option, const std::string& value,
                          Operation operation)
{
    (this->*operation)(scope, option, value);
    tidy();
}

void BuildOptions::tidy()
{
    for (auto file = m_settings.files.begin(); file != m_settings.files.end();) {
        const List& sources = m_settings.sources;
        const bool isSource = std::find(sources.begin(), sources.end(), file->first) != sources.end();
        file = file->second.empty() || !isSource ? m_settings.files.erase(file) : std::next(file);
    }
}

BuildOptions::List& BuildOptions::writableList(const std::string& scope, const std::string& option,
                                               const char* operation)
{
    List* items = writable(scope, resolve(scope, option));
    if (items == nullptr) {
        throw BuildError(Kind::NotAvailable,
                         std::string("'") + option + "' is a single value: " + operation + " applies to lists only");
    }
    return *items;
}

void BuildOptions::checkSingle(const std::string& option, const std::string& value)
{
    if (value.find('\n') != std::string::npos) {
        throw BuildError(Kind::BadOption, "'" + option + "' takes a single line");
    }
    if (value.empty() && option != "linkerScript") {
        throw BuildError(Kind::BadOption, "'" + option + "' must not be empty");
    }
}

std::size_t BuildOptions::index(const std::string& text, std::size_t count, const std::string& option)
{
    std::size_t result = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, result);
    if (text.empty() || error != std::errc() || stop != end || result >= count) {
        throw BuildError(Kind::BadOption, "'" + text + "' is no index of '" + option + "' (it has "
                                              + std::to_string(count) + " items)");
    }
    return result;
}

BuildOptions::List BuildOptions::splitLines(const std::string& value)
{
    List items;
    std::size_t start = 0;
    while (start <= value.size()) {
        std::size_t end = value.find('\n', start);
        if (end == std::string::npos) {
            end = value.size();
        }
        std::string item = value.substr(start, end - start);
        if (!item.empty() && item.back() == '\r') {
            item.pop_back();
        }
        if (!item.empty()) {
            items.push_back(std::move(item));
        }
        start = end + 1;
    }
    return items;
}

std::string BuildOptions::joinLines(const List& items)
{
    std::string text;
    for (std::size_t i = 0; i < items.size(); ++i) {
        text += (i == 0 ? "" : "\n") + items[i];
    }
    return text;
}

} // namespace quillon::services
