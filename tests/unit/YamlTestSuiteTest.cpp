// Runs every input of the public YAML test suite through CYAMLUtil::parseYAML with a
// recording receiver. Each input must either parse or fail with a ParserException that names a
// line and a column; nothing else may escape, nothing may crash.
//
// The receiver sees a projection of the event stream: no stream or document events, each scalar
// with the role the handler gave it (key, value or item), aliases replaced by the anchored
// scalar's text. `project` computes it, and the refusal the handler must raise (a root scalar,
// an alias of a collection), from events in the suite's notation. For every input the receiver
// is compared with the projection of libyaml's own events (what the parser sees), up to the
// first error. For the valid inputs, libyaml's events are compared with the suite's test.event,
// which checks the notation; inputs where they differ are libyaml's deviations, listed.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <regex>

#include "CYAMLUtil.h"
#include "Exceptions.h"
#include "RecordingReceiver.h"

using namespace kestrix;
using kestrix::testing::RecordingReceiver;
namespace fs = std::filesystem;

namespace {

typedef std::vector<std::string> Lines;

const char* const PARSED = "parsed";
const char* const STANDALONE = "standalone scalar";
const char* const UNDEFINED_ANCHOR = "undefined anchor";
const char* const SYNTAX_ERROR = "syntax error";

struct Expected {
    Lines events;
    std::string outcome = PARSED;
};

bool startsWith(const std::string& text, const char* prefix) { return text.rfind(prefix, 0) == 0; }

/// Position of the value's style indicator behind the anchor and tag of an "=VAL" line.
size_t valueStart(const std::string& line)
{
    size_t pos = 4;
    while (pos + 1 < line.size() && line[pos] == ' ' && (line[pos + 1] == '&' || line[pos + 1] == '<')) {
        pos = line.find(' ', pos + 1);
    }
    return pos + 1;
}

/// The anchor of a node line ("+MAP &a", "=VAL &a :x"), or "".
std::string anchorOf(const std::string& line)
{
    size_t at = line.find(" &");
    if (at == std::string::npos || (startsWith(line, "=VAL") && at >= valueStart(line) - 1)) {
        return "";
    }
    size_t end = line.find(' ', at + 2);
    return line.substr(at + 2, end == std::string::npos ? std::string::npos : end - at - 2);
}

/// What a recording receiver sees of an event stream in the suite's notation.
Expected project(const Lines& suiteEvents, bool streamFailed)
{
    Expected expected;
    std::vector<std::pair<bool, size_t>> frames; // is a mapping, nodes seen
    std::map<std::string, std::string> scalarAnchors;
    // The role of the next node, which takes the next key, value or item position.
    auto role = [&frames]() -> std::string {
        auto& top = frames.back();
        return !top.first ? "item " : (top.second++ % 2 == 0 ? "key " : "value ");
    };
    for (const std::string& line : suiteEvents) {
        const std::string anchor = anchorOf(line);
        if (startsWith(line, "+")) {
            scalarAnchors.erase(anchor);
            if (!frames.empty()) {
                role();
            }
            frames.emplace_back(startsWith(line, "+MAP"), 0);
            expected.events.push_back(line);
        } else if (startsWith(line, "-")) {
            frames.pop_back();
            expected.events.push_back(line);
        } else {
            std::string scalar = line;
            if (startsWith(line, "=ALI")) {
                auto found = scalarAnchors.find(line.substr(6));
                if (found == scalarAnchors.end()) {
                    expected.outcome = UNDEFINED_ANCHOR;
                    return expected;
                }
                scalar = "=VAL :" + found->second;
            } else if (!anchor.empty()) {
                scalarAnchors[anchor] = line.substr(valueStart(line) + 1);
            }
            if (frames.empty()) {
                expected.outcome = STANDALONE;
                return expected;
            }
            expected.events.push_back(role() + scalar);
        }
    }
    expected.outcome = streamFailed ? SYNTAX_ERROR : PARSED;
    return expected;
}

/// libyaml's node events for `text` in the suite's notation, and whether it read the whole stream.
Lines libyamlEvents(const std::string& text, bool& failed)
{
    using namespace kestrix::testing;
    Lines lines;
    yaml_parser_t parser;
    yaml_parser_initialize(&parser);
    yaml_parser_set_input_string(&parser, reinterpret_cast<const unsigned char*>(text.data()), text.size());
    for (bool done = false; !done;) {
        yaml_event_t event;
        if ((failed = yaml_parser_parse(&parser, &event) == 0)) {
            break;
        }
        switch (event.type) {
        case YAML_MAPPING_START_EVENT: lines.push_back(mappingStartLine(event)); break;
        case YAML_SEQUENCE_START_EVENT: lines.push_back(sequenceStartLine(event)); break;
        case YAML_MAPPING_END_EVENT: lines.push_back("-MAP"); break;
        case YAML_SEQUENCE_END_EVENT: lines.push_back("-SEQ"); break;
        case YAML_SCALAR_EVENT: lines.push_back(scalarLine(event)); break;
        case YAML_ALIAS_EVENT: lines.push_back(std::string("=ALI *") + (const char*)event.data.alias.anchor); break;
        default: done = event.type == YAML_STREAM_END_EVENT;
        }
        yaml_event_delete(&event);
    }
    yaml_parser_delete(&parser);
    return lines;
}

/// The node events of a test.event file; stream and document lines are not node events.
Lines suiteEvents(const fs::path& path)
{
    Lines lines;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        for (const char* prefix : {"+MAP", "+SEQ", "-MAP", "-SEQ", "=VAL", "=ALI"}) {
            if (startsWith(line, prefix)) {
                lines.push_back(line);
            }
        }
    }
    return lines;
}

/// The handler's refusal that an error names, or a syntax error.
std::string outcomeOf(const ParserException& e)
{
    if (e.getDesc() == "YAML syntax error") {
        return SYNTAX_ERROR;
    }
    if (e.getData().find("Error: Standalone scalar not allowed.") != std::string::npos) {
        return STANDALONE;
    }
    return e.getData().find("Error: Undefined anchor: ") != std::string::npos ? UNDEFINED_ANCHOR : PARSED;
}

} // namespace

TEST(YamlTestSuite, EveryInputParsesAsExpectedOrFailsWithItsPosition)
{
    const fs::path root = fs::path(KESTRIX_SHARED_DIR) / "yaml-test-suite";
    std::vector<fs::path> cases; // each folder with an in.yaml (numbered sub-cases included)
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (entry.path().filename() == "in.yaml") {
            cases.push_back(entry.path().parent_path());
        }
    }
    std::sort(cases.begin(), cases.end());
    ASSERT_GT(cases.size(), 300u) << "test suite not found under " << root;

    const std::regex position(R"(\[Line: [0-9]+  Col: [0-9]+\]\n)");
    size_t comparedWithSuite = 0, failedWithPosition = 0, libyamlAcceptsInvalid = 0;
    std::string libyamlDeviations;
    for (const fs::path& dir : cases) {
        const std::string id = dir.lexically_relative(root).string();
        SCOPED_TRACE(id);
        std::ifstream in(dir / "in.yaml", std::ios::binary);
        const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        const bool invalid = fs::exists(dir / "error");

        bool libyamlFailed = false;
        const Lines libyaml = libyamlEvents(text, libyamlFailed);
        const Expected fromLibyaml = project(libyaml, libyamlFailed);
        libyamlAcceptsInvalid += invalid && !libyamlFailed;

        RecordingReceiver receiver;
        std::string outcome = PARSED;
        try {
            CYAMLUtil::parseYAML(receiver, text);
        } catch (const ParserException& e) {
            outcome = outcomeOf(e);
            EXPECT_TRUE(std::regex_search(e.getData(), position)) << "no position in: " << e.what();
            ++failedWithPosition;
        } catch (const std::exception& e) {
            ADD_FAILURE() << "exception of another type: " << e.what();
            continue;
        }
        EXPECT_EQ(fromLibyaml.outcome, outcome);
        EXPECT_EQ(fromLibyaml.events, receiver.events) << "against libyaml's events";

        if (!invalid && !libyamlFailed) {
            if (suiteEvents(dir / "test.event") == libyaml) {
                ++comparedWithSuite;
            } else {
                libyamlDeviations += " " + id;
            }
        }
    }
    std::cout << cases.size() << " inputs: " << comparedWithSuite << " valid ones compared with the suite's events, "
              << failedWithPosition << " refused with a position, " << libyamlAcceptsInvalid
              << " invalid ones that libyaml accepts; libyaml's events differ from the suite's in:" << libyamlDeviations
              << std::endl;
    EXPECT_GT(comparedWithSuite, 200u);
}
