// Parsing a large file of test specifications through CYAMLUtil::parseYAML, into section-like
// receivers and into CYAMLMap objects, against libyaml's parser pulling all events of the same
// text and doing nothing else. Prints the throughputs and their ratios.

#include <benchmark/benchmark.h>
#include <yaml.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "CYAMLMap.h"
#include "CYAMLMapReceiver.h"
#include "CYAMLUtil.h"

namespace {

[[noreturn]] kestrix::ITestParserEventReceiver* refuse()
{
    throw std::runtime_error("unexpected event");
}

const int TEST_COUNT = 10000;

/// A root sequence of flat test specifications.
std::string makeText()
{
    std::string text;
    for (int i = 0; i < TEST_COUNT; ++i) {
        const std::string n = std::to_string(i);
        text += "- id: test_" + n + "\n";
        text += "  func: func" + std::to_string(i % 97) + "\n";
        text += "  params: " + n + ", 0x" + std::to_string(i % 4096) + ", 'c'\n";
        text += "  expect: \"retVal == " + n + " && g_counter > 2\"\n";
        text += "  tags: unit/border\n";
        text += "  desc: 'Checks function " + n + ": border values'\n";
    }
    return text;
}

const std::string& text()
{
    static const std::string generated = makeText();
    return generated;
}

/// One test specification read the way the sections of a test file read theirs: a state
/// machine that stores each known key's value in its own scalar member.
class TestSection : public kestrix::ITestParserEventReceiver {
public:
    explicit TestSection(ITestParserEventReceiver* parent) : m_parent(parent) {}

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override
    {
        m_block = kestrix::CYAMLMap(event);
        return this;
    }
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override
    {
        const char* key = reinterpret_cast<const char*>(event.data.scalar.value);
        m_target = nullptr;
        for (size_t i = 0; i < KEY_COUNT; ++i) {
            if (std::strcmp(key, KEYS[i]) == 0) {
                m_target = &m_values[i];
            }
        }
        if (m_target == nullptr || !m_target->isEmpty()) {
            throw std::runtime_error(std::string("unknown or repeated key: ") + key);
        }
        return this;
    }
    ITestParserEventReceiver* mappingValue(const yaml_event_t& event) override
    {
        *m_target = kestrix::CYAMLScalar(event);
        return this;
    }
    ITestParserEventReceiver* mappingEnd() override { return m_parent; }
    ITestParserEventReceiver* sequenceStart(const yaml_event_t&) override { return refuse(); }
    ITestParserEventReceiver* sequenceValue(const yaml_event_t&) override { return refuse(); }
    ITestParserEventReceiver* sequenceEnd() override { return refuse(); }
    void serialize(std::shared_ptr<kestrix::IEmitter>) override {}

private:
    static constexpr size_t KEY_COUNT = 6;
    static constexpr const char* KEYS[KEY_COUNT] = {"id", "func", "params", "expect", "tags", "desc"};

    ITestParserEventReceiver* m_parent;
    kestrix::CYAMLMap m_block;
    kestrix::CYAMLScalar m_values[KEY_COUNT];
    kestrix::CYAMLScalar* m_target = nullptr;
};

/// The root sequence: one test specification per item, each held by a shared pointer like the
/// tests of a test bench, or each in a CYAMLMap filled by the generic map receiver.
template <bool USE_MAP_RECEIVER>
class TestListReceiver : public kestrix::ITestParserEventReceiver {
public:
    std::vector<std::shared_ptr<TestSection>> sections;
    std::vector<kestrix::CYAMLMap> maps;

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override
    {
        if (USE_MAP_RECEIVER) {
            maps.emplace_back();
            m_mapReceiver = std::make_unique<kestrix::CYAMLMapReceiver>(this, &maps.back());
            return m_mapReceiver->mappingStart(event);
        }
        sections.push_back(std::make_shared<TestSection>(this));
        return sections.back()->mappingStart(event);
    }
    ITestParserEventReceiver* mappingKey(const yaml_event_t&) override { return refuse(); }
    ITestParserEventReceiver* mappingValue(const yaml_event_t&) override { return refuse(); }
    ITestParserEventReceiver* mappingEnd() override { return refuse(); }
    ITestParserEventReceiver* sequenceStart(const yaml_event_t&) override { return this; }
    ITestParserEventReceiver* sequenceValue(const yaml_event_t&) override { return refuse(); }
    ITestParserEventReceiver* sequenceEnd() override { return nullptr; }
    void serialize(std::shared_ptr<kestrix::IEmitter>) override {}

    size_t count() const { return sections.size() + maps.size(); }

private:
    std::unique_ptr<kestrix::CYAMLMapReceiver> m_mapReceiver;
};

template <bool USE_MAP_RECEIVER>
size_t parseWithReceiver()
{
    TestListReceiver<USE_MAP_RECEIVER> receiver;
    receiver.maps.reserve(USE_MAP_RECEIVER ? TEST_COUNT : 0);
    kestrix::CYAMLUtil::parseYAML(receiver, text());
    return receiver.count();
}

/// All events of the text from libyaml's parser, counting the mapping starts.
size_t parseRaw()
{
    yaml_parser_t parser;
    yaml_parser_initialize(&parser);
    yaml_parser_set_input_string(&parser, reinterpret_cast<const unsigned char*>(text().data()), text().size());
    size_t mappings = 0;
    for (bool done = false; !done;) {
        yaml_event_t event;
        if (yaml_parser_parse(&parser, &event) == 0) {
            yaml_parser_delete(&parser);
            throw std::runtime_error("libyaml refused the text");
        }
        mappings += event.type == YAML_MAPPING_START_EVENT;
        done = event.type == YAML_STREAM_END_EVENT;
        yaml_event_delete(&event);
    }
    yaml_parser_delete(&parser);
    return mappings;
}

void run(benchmark::State& state, size_t (*parse)())
{
    for (auto _ : state) {
        size_t tests = parse();
        benchmark::DoNotOptimize(tests);
    }
    state.SetItemsProcessed(state.iterations() * TEST_COUNT);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text().size()));
}

void BM_ParseYAMLIntoSections(benchmark::State& state)
{
    run(state, &parseWithReceiver<false>);
}

void BM_ParseYAMLIntoMaps(benchmark::State& state)
{
    run(state, &parseWithReceiver<true>);
}

void BM_RawLibyamlParse(benchmark::State& state)
{
    run(state, &parseRaw);
}

BENCHMARK(BM_ParseYAMLIntoSections)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ParseYAMLIntoMaps)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RawLibyamlParse)->Unit(benchmark::kMillisecond);

/// Console output, and the bytes per CPU second of each run kept for the ratio (CPU time,
/// since the machine may be shared).
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const auto& run : runs) {
            const double seconds = run.cpu_accumulated_time;
            if (run.run_type == Run::RT_Iteration && seconds > 0) {
                m_bytesPerSecond[run.run_name.function_name] =
                    static_cast<double>(run.iterations) * static_cast<double>(text().size()) / seconds;
            }
        }
    }

    void printRatio() const
    {
        const auto raw = m_bytesPerSecond.find("BM_RawLibyamlParse");
        if (raw == m_bytesPerSecond.end()) {
            return;
        }
        std::printf("\nraw yaml_parser_parse:                %6.1f MB/s\n", raw->second / 1e6);
        printOne("BM_ParseYAMLIntoSections", "parseYAML into test sections:", raw->second);
        printOne("BM_ParseYAMLIntoMaps", "parseYAML into CYAMLMapReceiver:", raw->second);
        std::printf("(goal: at least 0.50 of raw libyaml's speed)\n");
    }

private:
    void printOne(const char* name, const char* label, double raw) const
    {
        const auto found = m_bytesPerSecond.find(name);
        if (found != m_bytesPerSecond.end()) {
            std::printf("%-37s %6.1f MB/s, ratio %.2f\n", label, found->second / 1e6, found->second / raw);
        }
    }

    std::map<std::string, double> m_bytesPerSecond;
};

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    // Both sides must read the same test specifications for the comparison to mean anything.
    const size_t viaSections = parseWithReceiver<false>();
    const size_t viaMaps = parseWithReceiver<true>();
    const size_t viaLibyaml = parseRaw();
    if (viaSections != TEST_COUNT || viaMaps != TEST_COUNT || viaLibyaml != TEST_COUNT) {
        std::fprintf(stderr, "Tests read: %zu into sections, %zu into maps, %zu by libyaml, %d written.\n",
                     viaSections, viaMaps, viaLibyaml, TEST_COUNT);
        return 1;
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio();
    benchmark::Shutdown();
    return 0;
}
