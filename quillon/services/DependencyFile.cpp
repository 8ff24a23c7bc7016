#include "services/DependencyFile.h"

#include <fstream>
#include <sstream>

namespace quillon::services {

namespace {

/// The words of `text` with continuations joined and escapes undone.
std::vector<std::string> words(const std::string& text)
{
    std::vector<std::string> result;
    std::string word;
    auto flush = [&] {
        if (!word.empty()) {
            result.push_back(word);
            word.clear();
        }
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\\' && i + 1 < text.size() && (text[i + 1] == '\n' || text[i + 1] == '\r')) {
            flush();
            ++i;
        } else if (c == '\\' && i + 1 < text.size() && text[i + 1] == ' ') {
            word += ' ';
            ++i;
        } else if (c == '$' && i + 1 < text.size() && text[i + 1] == '$') {
            word += '$';
            ++i;
        } else if (c == ' ' || c == '\t' || c == '\r') {
            flush();
        } else if (c == '\n') {
            flush();
            result.push_back("\n");
        } else {
            word += c;
        }
    }
    flush();
    return result;
}

} // namespace

std::vector<std::string> DependencyFile::parse(const std::string& text)
{
    std::vector<std::string> prerequisites;
    bool inRule = false;
    for (const std::string& word : words(text)) {
        if (word == "\n") {
            if (inRule) {
                break;
            }
            continue;
        }
        if (!inRule) {
            // The target ends in ':' or stands before a lone ':'.
            inRule = word.back() == ':';
            continue;
        }
        prerequisites.push_back(word);
    }
    return prerequisites;
}

bool DependencyFile::read(const std::filesystem::path& file, std::vector<std::string>& prerequisites)
{
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        return false;
    }
    std::ostringstream text;
    text << in.rdbuf();
    prerequisites = parse(text.str());
    return true;
}

} // namespace quillon::services
