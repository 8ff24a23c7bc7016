#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "services/CoverageConfiguration.h"
#include "services/SpanSet.h"
#include "services/SymbolIndex.h"

namespace quillon::services {

/// Turns what a coverage configuration names into addresses, over the downloaded programs:
///
/// - folder: the compile units whose source file lies in the folder (relative to the workspace's folder);
/// - module: the compile unit of a source file, by its full path or its trailing components ("filter.c");
/// - function: every function of the name (DWARF, else the ELF symbol table);
/// - item: a symbol of the ELF symbol table that has a size, or a range "0x<first>-0x<last>".
///
/// A name that resolves to nothing is an AnalyzerError NotFound that names it.
class CoverageScope {
public:
    /// A function and its code, for reports.
    struct Function {
        std::string name;
        SpanSet code;
    };

    /// `memory`: the target's executable memory; `downloaded`: the programs' executable sections.
    CoverageScope(const SymbolIndex& symbols, SpanSet memory, SpanSet downloaded, std::filesystem::path folder);

    /// The addresses that the configuration measures.
    SpanSet active(const CoverageConfiguration& configuration) const;
    SpanSet resolve(CoverageConfiguration::ItemKind kind, const std::string& name) const;
    /// The functions whose code lies in the spans, by address.
    std::vector<Function> functionsIn(const SpanSet& spans) const;

private:
    SpanSet items(const std::vector<CoverageConfiguration::Item>& items) const;
    SpanSet folder(const std::string& name) const;
    SpanSet module(const std::string& name) const;
    SpanSet function(const std::string& name) const;
    SpanSet item(const std::string& name) const;

    const SymbolIndex& m_symbols;
    SpanSet m_memory;
    SpanSet m_downloaded;
    std::filesystem::path m_folder;
};

} // namespace quillon::services
