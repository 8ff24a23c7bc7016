#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "services/Document.h"
#include "services/SymbolIndex.h"
#include "services/TraceRecorder.h"
#include "services/TraceTrigger.h"

namespace quillon::services {

/// An analyzer document: a trace of the functions that the target enters while it records (TraceRecorder), with
/// a trigger chosen from "Trigger0" and those of the workspace, and markers. Export formats by number: 0 "Text",
/// 1 "CSV", 2 "Binary" (see TraceWriter); the default is "CSV".
///
/// Saved form, after the header (DocumentFileReader):
///
///     trigger <name>
///     exportFormat <Text|CSV|Binary>
///     clock <Hz>
///     full <0|1>
///     function <name>                                     the names, numbered from 0 in this order
///     event <cycle> <entry|instruction|marker> 0x<address> <name number or -> <value>
class TraceDocument final : public Document {
public:
    static const std::vector<std::string>& formats();

    TraceDocument(std::string name, target::Target& target, const SymbolIndex& symbols,
                  std::vector<TraceTrigger> triggers);

    const TraceRecorder& recording() const { return m_recorder; }
    const std::string& trigger() const { return m_trigger.name; }
    const std::string& exportFormat() const { return m_exportFormat; }

    void selectTrigger(const std::string& trigger) override;
    void setExportFormat(const std::string& format) override;
    void exportTo(const std::filesystem::path& file, std::uint32_t option) override;
    void setMarker(std::uint32_t value) override;
    void clearMarkers() override;

    void write(std::ostream& out) const override;
    void read(DocumentFileReader& in) override;

private:
    target::ExecutionObserver& observer() override { return m_recorder; }
    void prepare(bool fresh) override;
    void setRecording(bool on) override { m_recorder.setRecording(on); }
    void clearRecording() override { m_recorder.clear(); }
    void clearConfiguration() override;

    std::vector<TraceFunction> functions() const;
    std::string triggerNames() const;

    const SymbolIndex& m_symbols;
    std::vector<TraceTrigger> m_triggers; ///< Trigger0 first
    TraceTrigger m_trigger;
    std::string m_exportFormat = "CSV";
    std::uint64_t m_clockHz;
    TraceRecorder m_recorder;
};

} // namespace quillon::services
