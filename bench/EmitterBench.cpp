// Writing a large document of test-specification-like entries through CYAMLEmitter, against
// libyaml's emitter fed with the same events directly. Prints both throughputs and their ratio.

#include <benchmark/benchmark.h>
#include <yaml.h>

#include <cstdio>
#include <map>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CYAMLEmitter.h"

namespace {

const int ENTRY_COUNT = 10000;

struct Entry {
    std::string id;
    std::string func;
    std::vector<std::string> params;
    std::string expect;
    std::string desc;
};

std::vector<Entry> makeEntries()
{
    std::vector<Entry> entries;
    entries.reserve(ENTRY_COUNT);
    for (int i = 0; i < ENTRY_COUNT; ++i) {
        const std::string n = std::to_string(i);
        entries.push_back({"test_" + n, "func" + std::to_string(i % 97),
                           {n, "0x" + std::to_string(i % 4096), "'c'"},
                           "retVal == " + n + " && g_counter > 2",
                           "Checks function " + n + ": border values"});
    }
    return entries;
}

const std::vector<Entry>& entries()
{
    static const std::vector<Entry> generated = makeEntries();
    return generated;
}

/// A sink that only counts bytes, so that both sides pay the same for output.
class CountingBuffer : public std::streambuf {
public:
    size_t count() const { return m_count; }

protected:
    std::streamsize xsputn(const char*, std::streamsize size) override
    {
        m_count += static_cast<size_t>(size);
        return size;
    }
    int_type overflow(int_type c) override
    {
        ++m_count;
        return c;
    }

private:
    size_t m_count = 0;
};

void writeThroughEmitter(std::ostream& out)
{
    kestrix::CYAMLEmitter emitter(&out);
    emitter.startStream();
    emitter.startDocument(true);
    emitter.mapStart();
    for (const auto& entry : entries()) {
        emitter.write(entry.id);
        emitter.mapStart();
        emitter.writeMappingPair("func", entry.func);
        emitter.write("params");
        emitter.sequenceStart(kestrix::IEmitter::STYLE_FLOW);
        for (const auto& param : entry.params) {
            emitter.write(param);
        }
        emitter.sequenceEnd();
        emitter.writeMappingPair("expect", entry.expect);
        emitter.writeMappingPair("desc", entry.desc);
        emitter.mapEnd();
    }
    emitter.mapEnd();
    emitter.endDocument(true);
    emitter.endStream();
}

/// libyaml's emitter on the same events, with nothing in between.
class RawEmitter {
public:
    explicit RawEmitter(std::ostream& out)
    {
        yaml_emitter_initialize(&m_emitter);
        yaml_emitter_set_output(&m_emitter, &RawEmitter::output, &out);
    }
    ~RawEmitter() { yaml_emitter_delete(&m_emitter); }

    void emit(yaml_event_t& event)
    {
        if (!yaml_emitter_emit(&m_emitter, &event)) {
            throw std::runtime_error(m_emitter.problem != nullptr ? m_emitter.problem : "emit failed");
        }
    }
    void scalar(const std::string& value)
    {
        yaml_event_t event;
        yaml_scalar_event_initialize(&event, nullptr, nullptr,
                                     reinterpret_cast<yaml_char_t*>(const_cast<char*>(value.c_str())),
                                     static_cast<int>(value.size()), 1, 0, YAML_ANY_SCALAR_STYLE);
        emit(event);
    }
    void mappingStart(yaml_mapping_style_t style)
    {
        yaml_event_t event;
        yaml_mapping_start_event_initialize(&event, nullptr, nullptr, 0, style);
        emit(event);
    }
    void mappingEnd()
    {
        yaml_event_t event;
        yaml_mapping_end_event_initialize(&event);
        emit(event);
    }

    yaml_emitter_t m_emitter;

private:
    static int output(void* data, unsigned char* buffer, size_t size)
    {
        static_cast<std::ostream*>(data)->write(reinterpret_cast<const char*>(buffer),
                                                static_cast<std::streamsize>(size));
        return 1;
    }
};

void writeThroughLibyaml(std::ostream& out)
{
    RawEmitter raw(out);
    yaml_event_t event;
    yaml_stream_start_event_initialize(&event, YAML_UTF8_ENCODING);
    raw.emit(event);
    yaml_document_start_event_initialize(&event, nullptr, nullptr, nullptr, 1);
    raw.emit(event);
    raw.mappingStart(YAML_ANY_MAPPING_STYLE);
    for (const auto& entry : entries()) {
        raw.scalar(entry.id);
        raw.mappingStart(YAML_ANY_MAPPING_STYLE);
        raw.scalar("func");
        raw.scalar(entry.func);
        raw.scalar("params");
        yaml_sequence_start_event_initialize(&event, nullptr, nullptr, 0, YAML_FLOW_SEQUENCE_STYLE);
        raw.emit(event);
        for (const auto& param : entry.params) {
            raw.scalar(param);
        }
        yaml_sequence_end_event_initialize(&event);
        raw.emit(event);
        raw.scalar("expect");
        raw.scalar(entry.expect);
        raw.scalar("desc");
        raw.scalar(entry.desc);
        raw.mappingEnd();
    }
    raw.mappingEnd();
    yaml_document_end_event_initialize(&event, 1);
    raw.emit(event);
    yaml_stream_end_event_initialize(&event);
    raw.emit(event);
}

void run(benchmark::State& state, void (*write)(std::ostream&))
{
    size_t bytes = 0;
    for (auto _ : state) {
        CountingBuffer buffer;
        std::ostream out(&buffer);
        write(out);
        bytes = buffer.count();
        benchmark::DoNotOptimize(bytes);
    }
    state.SetItemsProcessed(state.iterations() * ENTRY_COUNT);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
}

void BM_CYAMLEmitter(benchmark::State& state)
{
    run(state, &writeThroughEmitter);
}

void BM_RawLibyaml(benchmark::State& state)
{
    run(state, &writeThroughLibyaml);
}

BENCHMARK(BM_CYAMLEmitter)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RawLibyaml)->Unit(benchmark::kMillisecond);

/// Console output, and the entries per second of each run kept for the ratio.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const auto& run : runs) {
            const double seconds = run.real_accumulated_time;
            if (run.run_type == Run::RT_Iteration && seconds > 0) {
                m_entriesPerSecond[run.run_name.function_name] =
                    static_cast<double>(run.iterations) * ENTRY_COUNT / seconds;
            }
        }
    }

    void printRatio() const
    {
        const auto emitter = m_entriesPerSecond.find("BM_CYAMLEmitter");
        const auto raw = m_entriesPerSecond.find("BM_RawLibyaml");
        if (emitter == m_entriesPerSecond.end() || raw == m_entriesPerSecond.end()) {
            return;
        }
        std::printf("\nCYAMLEmitter: %.0f entries/s\nraw libyaml:  %.0f entries/s\n"
                    "ratio: %.2f of raw libyaml's speed (goal: at least 0.50)\n",
                    emitter->second, raw->second, emitter->second / raw->second);
    }

private:
    std::map<std::string, double> m_entriesPerSecond;
};

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    // Both sides must write the same document for the comparison to mean anything.
    std::ostringstream viaEmitter;
    std::ostringstream viaLibyaml;
    writeThroughEmitter(viaEmitter);
    writeThroughLibyaml(viaLibyaml);
    if (viaEmitter.str() != viaLibyaml.str()) {
        std::fprintf(stderr, "The two writers give different documents; the comparison is void.\n");
        return 1;
    }
    std::printf("Document: %d entries, %zu bytes\n", ENTRY_COUNT, viaEmitter.str().size());

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio();
    benchmark::Shutdown();
    return 0;
}
