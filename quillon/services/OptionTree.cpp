#include "services/OptionTree.h"

#include <cerrno>
#include <cstdlib>
#include <sstream>

#include "services/ServiceError.h"

namespace quillon::services {

namespace {

ServiceError invalid(const std::string& message)
{
    return ServiceError(ServiceError::Kind::InvalidArgument, message);
}

ServiceError badValue(const std::string& text, const std::string& path, const char* takes)
{
    return invalid("bad value '" + text + "' for option '" + path + "' (" + takes + ")");
}

/// Decimal or 0x hex, 64 bits, nothing else around it.
bool parseNumber(const std::string& text, std::uint64_t& value)
{
    if (text.empty() || text[0] == '-' || text[0] == '+' || text[0] == ' ') {
        return false;
    }
    const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const char* digits = text.c_str() + (hex ? 2 : 0);
    if (*digits == ' ' || *digits == '+' || *digits == '-') {
        return false;
    }
    char* end = nullptr;
    errno = 0;
    const unsigned long long parsed = std::strtoull(digits, &end, hex ? 16 : 10);
    if (errno != 0 || end == digits || *end != '\0') {
        return false;
    }
    value = parsed;
    return true;
}

std::vector<std::string> lines(const std::string& text)
{
    std::vector<std::string> items;
    if (text.empty()) {
        return items;
    }
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        items.push_back(line);
    }
    return items;
}

} // namespace

const std::vector<OptionTree::Definition>& OptionTree::definitions()
{
    static const std::vector<Definition> all = {
        {kStopOnReset, Kind::Bool, "1"},
        {kStopAtMain, Kind::Bool, "0"},
        {kSourcePaths, Kind::List, ""},
        {kMaxInstructions, Kind::Integer, "100000000"},
    };
    return all;
}

OptionTree::OptionTree()
{
    for (const Definition& definition : definitions()) {
        Value value;
        value.kind = definition.kind;
        value.defaultValue = definition.defaultValue;
        assign(value, definition.path, value.defaultValue);
        m_values.emplace(definition.path, value);
    }
}

std::string OptionTree::path(const std::string& module, const std::string& scope, const std::string& name)
{
    return "/" + module + "/" + (scope.empty() ? name : scope + "/" + name);
}

OptionTree::Address OptionTree::address(const std::string& path)
{
    Address result{path};
    const size_t open = path.rfind('[');
    if (open == std::string::npos || path.back() != ']') {
        return result;
    }
    std::uint64_t index = 0;
    if (!parseNumber(path.substr(open + 1, path.size() - open - 2), index)) {
        throw ServiceError(ServiceError::Kind::NotFound, "unknown option '" + path + "'");
    }
    result.path = path.substr(0, open);
    result.isItem = true;
    result.index = std::size_t(index);
    return result;
}

OptionTree::Value& OptionTree::find(const std::string& path)
{
    const auto found = m_values.find(path);
    if (found == m_values.end()) {
        throw ServiceError(ServiceError::Kind::NotFound, "unknown option '" + path + "'");
    }
    return found->second;
}

const OptionTree::Value& OptionTree::find(const std::string& path) const
{
    return const_cast<OptionTree*>(this)->find(path);
}

OptionTree::Value& OptionTree::findList(const std::string& path)
{
    Value& value = find(path);
    if (value.kind != Kind::List) {
        throw invalid("option '" + path + "' is not a list");
    }
    return value;
}

void OptionTree::checkIndex(const Value& value, const std::string& path, std::size_t index, std::size_t limit)
{
    if (index >= limit) {
        throw invalid("index " + std::to_string(index) + " out of range for option '" + path + "' (" +
                      std::to_string(value.items.size()) + " items)");
    }
}

void OptionTree::assign(Value& value, const std::string& path, const std::string& text)
{
    std::uint64_t number = 0;
    switch (value.kind) {
    case Kind::Bool:
        if (text == "1" || text == "true") {
            value.number = 1;
        } else if (text == "0" || text == "false") {
            value.number = 0;
        } else {
            throw badValue(text, path, "0, 1, true or false");
        }
        break;
    case Kind::Integer:
        if (!parseNumber(text, number)) {
            throw badValue(text, path, "a number, decimal or 0x hex");
        }
        if (number == 0 && path == kMaxInstructions) {
            throw badValue(text, path, "not zero");
        }
        value.number = number;
        break;
    case Kind::List:
        value.items = lines(text);
        break;
    }
}

std::string OptionTree::text(const std::string& path) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const Address at = address(path);
    const Value& value = find(at.path);
    if (at.isItem) {
        if (value.kind != Kind::List) {
            throw invalid("option '" + at.path + "' is not a list");
        }
        checkIndex(value, at.path, at.index, value.items.size());
        return value.items[at.index];
    }
    if (value.kind != Kind::List) {
        return std::to_string(value.number);
    }
    std::string joined;
    for (size_t i = 0; i < value.items.size(); ++i) {
        joined += (i == 0 ? "" : "\n") + value.items[i];
    }
    return joined;
}

std::uint64_t OptionTree::integer(const std::string& path) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const Value& value = find(path);
    if (value.kind == Kind::List) {
        throw invalid("option '" + path + "' is a list, not a number");
    }
    return value.number;
}

std::vector<std::string> OptionTree::list(const std::string& path) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return const_cast<OptionTree*>(this)->findList(path).items;
}

void OptionTree::set(const std::string& path, const std::string& text)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const Address at = address(path);
    if (at.isItem) {
        Value& value = findList(at.path);
        checkIndex(value, at.path, at.index, value.items.size());
        if (text.find('\n') != std::string::npos) {
            throw badValue(text, path, "one line");
        }
        value.items[at.index] = text;
        return;
    }
    assign(find(path), path, text);
}

void OptionTree::setInteger(const std::string& path, std::uint64_t value)
{
    set(path, std::to_string(value));
}

void OptionTree::reset(const std::string& path)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    Value& value = find(path);
    assign(value, path, value.defaultValue);
}

void OptionTree::resetAll()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    for (auto& [path, value] : m_values) {
        assign(value, path, value.defaultValue);
    }
}

void OptionTree::setDefault(const std::string& path, const std::string& text)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    Value& value = find(path);
    assign(value, path, text);
    value.defaultValue = text;
}

bool OptionTree::isDefault(const std::string& path) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const Value& value = find(path);
    Value initial = value;
    assign(initial, path, value.defaultValue);
    return initial.number == value.number && initial.items == value.items;
}

std::size_t OptionTree::listSize(const std::string& path) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return const_cast<OptionTree*>(this)->findList(path).items.size();
}

void OptionTree::insertItem(const std::string& path, std::size_t index)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    Value& value = findList(path);
    checkIndex(value, path, index, value.items.size() + 1);
    value.items.insert(value.items.begin() + long(index), std::string());
}

void OptionTree::removeItem(const std::string& path, std::size_t index)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    Value& value = findList(path);
    checkIndex(value, path, index, value.items.size());
    value.items.erase(value.items.begin() + long(index));
}

} // namespace quillon::services
