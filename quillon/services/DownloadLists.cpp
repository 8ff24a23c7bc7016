#include "services/DownloadLists.h"

#include "services/ServiceError.h"

namespace quillon::services {

DownloadLists::DownloadLists(const std::vector<std::string>& configured)
{
    for (const std::string& file : configured) {
        m_lists[0].push_back(Entry{file, ""});
    }
}

const std::vector<DownloadLists::Entry>& DownloadLists::list(unsigned listType, bool alternate) const
{
    if (listType > 1) {
        throw ServiceError(ServiceError::Kind::InvalidArgument,
                           "no download list " + std::to_string(listType) + " (lists are 0 and 1)");
    }
    return m_lists[listType * 2 + (alternate ? 1 : 0)];
}

std::vector<DownloadLists::Entry>& DownloadLists::mutableList(unsigned listType, bool alternate)
{
    return const_cast<std::vector<Entry>&>(list(listType, alternate));
}

void DownloadLists::add(unsigned listType, bool alternate, Entry entry)
{
    std::vector<Entry>& entries = mutableList(listType, alternate);
    if (entries.size() >= capacity) {
        throw ServiceError(ServiceError::Kind::Failed, "download list " + std::to_string(listType) + " is full (" +
                                                           std::to_string(capacity) + " files)");
    }
    entries.push_back(std::move(entry));
}

bool DownloadLists::remove(unsigned listType, std::size_t index)
{
    std::vector<Entry>& entries = mutableList(listType, false);
    if (index >= entries.size()) {
        return false;
    }
    entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

void DownloadLists::clear(unsigned listType)
{
    mutableList(listType, false).clear();
    mutableList(listType, true).clear();
}

std::optional<DownloadLists::Entry> DownloadLists::member(unsigned listType, bool alternate, std::size_t index) const
{
    const std::vector<Entry>& entries = list(listType, alternate);
    if (index >= entries.size()) {
        return std::nullopt;
    }
    return entries[index];
}

} // namespace quillon::services
