#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quillon::services {

/// The two download lists of an instance (0 and 1), each with an alternate variant. List 0 starts with the
/// workspace's download files; it is the download that is configured.
class DownloadLists {
public:
    struct Entry {
        std::string file;
        std::string options;
    };

    /// At most this many files a list.
    static constexpr std::size_t capacity = 256;

    explicit DownloadLists(const std::vector<std::string>& configured = {});

    /// A ServiceError InvalidArgument for a list other than 0 and 1.
    const std::vector<Entry>& list(unsigned listType, bool alternate = false) const;
    /// Appends; a full list is a ServiceError Failed.
    void add(unsigned listType, bool alternate, Entry entry);
    /// False when the list has no such index.
    bool remove(unsigned listType, std::size_t index);
    /// Empties the list and its alternate.
    void clear(unsigned listType);
    std::optional<Entry> member(unsigned listType, bool alternate, std::size_t index) const;

private:
    std::vector<Entry>& mutableList(unsigned listType, bool alternate);

    std::array<std::vector<Entry>, 4> m_lists; ///< list 0, list 0 alternate, list 1, list 1 alternate
};

} // namespace quillon::services
