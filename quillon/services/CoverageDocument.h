#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "services/CodeMap.h"
#include "services/CoverageConfiguration.h"
#include "services/CoverageCounts.h"
#include "services/CoverageListing.h"
#include "services/CoverageMarks.h"
#include "services/CoverageRecorder.h"
#include "services/CoverageScope.h"
#include "services/Document.h"
#include "services/SymbolIndex.h"
#include "services/ThumbDecoder.h"

namespace quillon::services {

/// A coverage document: its configuration, and the coverage of the target's executable memory that its
/// recordings saw. Statistics, bitmaps and exports count only the addresses that the configuration measures
/// (its active ranges), so code outside them counts as no code at all.
///
/// Bitmap: one byte an address, the bits of CoverageMarks: 0x01 executed, 0x02 taken and 0x04 not taken (on the
/// first byte of a conditional branch), 0x08 a byte of an instruction, 0x10 the first byte of a conditional
/// branch; 0 outside the active ranges.
///
/// Export formats by number: 0 "HTML", 1 "Text", 2 "CSV", 3 "XML" (see CoverageReport); 4 "Review (HTML)",
/// 5 "Review (Text)" and 6 "XML2", the measured functions line by line (see CoverageReview), with the source files
/// found by the locator. The default format is "CSV".
///
/// Saved form, after the header (DocumentFileReader):
///
///     exportFormat <text>
///     scope <first step> <second step, 0 if none>
///     options <option word 1> <option word 2>
///     rangeset <name>                   then its items:
///     include <folder|module|function|item> <name>
///     exclude <folder|module|function|item> <name>
///     active <index of the active rangeset, or ->
///     executed 0x<first> 0x<last>       a run of executed bytes, the last included
///     taken 0x<address>                 a branch that branched
///     nottaken 0x<address>              a branch that went on
class CoverageDocument final : public Document {
public:
    static const std::vector<std::string>& formats();

    CoverageDocument(std::string name, target::Target& target, const SymbolIndex& symbols,
                     std::filesystem::path folder, CoverageListing::Locator locateSource = {});

    const CoverageConfiguration& configuration() const { return m_configuration; }
    /// For changes; the document counts as modified.
    CoverageConfiguration& changeConfiguration();

    SpanSet activeRanges();
    SpanSet resolve(CoverageConfiguration::ItemKind kind, const std::string& name);
    /// Counts over [first, last] within the active ranges.
    CoverageCounts counts(std::uint32_t first, std::uint32_t last);
    std::vector<std::uint8_t> bitmap(std::uint32_t first, std::uint32_t last);

    void setExportFormat(const std::string& format) override;
    const std::string& exportFormat() const { return m_exportFormat; }
    void exportTo(const std::filesystem::path& file, std::uint32_t option) override;

    void write(std::ostream& out) const override;
    void read(DocumentFileReader& in) override;

private:
    target::ExecutionObserver& observer() override { return m_recorder; }
    void prepare(bool fresh) override;
    void setRecording(bool on) override { m_recorder.setRecording(on); }
    void finish(std::optional<std::uint32_t> pc) override { m_recorder.finish(pc); }
    void clearRecording() override { m_marks.clear(CoverageMarks::Recorded); }
    void clearConfiguration() override;

    /// The code map and the static marks of the downloaded programs, made again after a download.
    void refreshCode();
    CoverageScope scope() const;
    CoverageCounts count(const SpanSet& spans);
    static SpanSet executableMemory(const target::Target& target);
    /// Writes a format of CoverageReport or CoverageReview.
    void writeExport(std::ostream& out, const std::string& format);

    const SymbolIndex& m_symbols;
    std::filesystem::path m_folder;
    CoverageListing::Locator m_locateSource;
    CoverageConfiguration m_configuration;
    CoverageMarks m_marks;
    CoverageRecorder m_recorder;
    ThumbDecoder m_decoder;
    CodeMap m_code;
    std::string m_codeKey; ///< the programs that m_code was made of
    std::string m_exportFormat = "CSV";
};

} // namespace quillon::services
