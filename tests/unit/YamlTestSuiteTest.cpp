// Runs every input of the public YAML test suite through CYAMLUtil::parseYAML with a
// recording receiver. Each input must either parse or fail with a ParserException that names a
// line and a column; nothing else may escape, nothing may crash.
//
// What the receiver sees is a projection of the event stream: no stream or document events,
// each scalar with the role that the handler gave it (key, value or item), and aliases replaced
// by the anchored scalar's text. A model below computes that projection, and the error the
// handler must raise (a root scalar, an alias of a collection), from a list of events in the
// suite's notation. Two comparisons use it:
//  - for every input, the receiver against the model of libyaml's own events for that input
//    (the parser sees exactly these), up to the first error;
//  - for the valid inputs (no "error" file) that libyaml accepts with the events that the suite
//    expects, the receiver against the model of the suite's test.event. Valid inputs where
//    libyaml's events differ from the suite's are libyaml's deviations; they are listed and
//    compared with libyaml's events only.

#include <gtest/gtest.h>

#include <algorithm>
#include <dirent.h>
#include <fstream>
#include <iostream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "CYAMLUtil.h"
#include "Exceptions.h"
#include "RecordingReceiver.h"

using namespace kestrix;
using kestrix::testing::RecordingReceiver;

namespace {

typedef std::vector<std::string> Lines;

enum class Outcome { Parsed, StandaloneScalar, UndefinedAnchor, SyntaxError };

const char* name(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Parsed: return "parsed";
    case Outcome::StandaloneScalar: return "standalone scalar";
    case Outcome::UndefinedAnchor: return "undefined anchor";
    case Outcome::SyntaxError: return "syntax error";
    }
    return "?";
}

struct Expected {
    Lines events;
    Outcome outcome = Outcome::Parsed;
};

bool startsWith(const std::string& text, const char* prefix)
{
    return text.rfind(prefix, 0) == 0;
}

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
    struct Frame {
        bool isMap;
        size_t nodes;
    };
    Expected expected;
    std::vector<Frame> frames;
    std::map<std::string, std::string> scalarAnchors;
    // The role of the next node, which takes the next key, value or item position.
    auto role = [&frames]() -> std::string {
        Frame& top = frames.back();
        return !top.isMap ? "item " : (top.nodes++ % 2 == 0 ? "key " : "value ");
    };
    for (const std::string& line : suiteEvents) {
        if (startsWith(line, "+MAP") || startsWith(line, "+SEQ")) {
            std::string anchor = anchorOf(line);
            if (!anchor.empty()) {
                scalarAnchors.erase(anchor);
            }
            if (!frames.empty()) {
                role();
            }
            frames.push_back({startsWith(line, "+MAP"), 0});
            expected.events.push_back(line);
        } else if (startsWith(line, "-MAP") || startsWith(line, "-SEQ")) {
            frames.pop_back();
            expected.events.push_back(line);
        } else if (startsWith(line, "=VAL") || startsWith(line, "=ALI")) {
            std::string scalar = line;
            if (startsWith(line, "=ALI")) {
                auto found = scalarAnchors.find(line.substr(6));
                if (found == scalarAnchors.end()) {
                    expected.outcome = Outcome::UndefinedAnchor;
                    return expected;
                }
                scalar = "=VAL :" + found->second;
            } else {
                std::string anchor = anchorOf(line);
                if (!anchor.empty()) {
                    scalarAnchors[anchor] = line.substr(valueStart(line) + 1);
                }
            }
            if (frames.empty()) {
                expected.outcome = Outcome::StandaloneScalar;
                return expected;
            }
            expected.events.push_back(role() + scalar);
        }
    }
    expected.outcome = streamFailed ? Outcome::SyntaxError : Outcome::Parsed;
    return expected;
}

/// libyaml's events for `text` in the suite's notation, and whether it read the whole stream.
Lines libyamlEvents(const std::string& text, bool& failed)
{
    Lines lines;
    yaml_parser_t parser;
    yaml_parser_initialize(&parser);
    yaml_parser_set_input_string(&parser, reinterpret_cast<const unsigned char*>(text.data()), text.size());
    failed = false;
    for (bool done = false; !done;) {
        yaml_event_t event;
        if (yaml_parser_parse(&parser, &event) == 0) {
            failed = true;
            break;
        }
        switch (event.type) {
        case YAML_MAPPING_START_EVENT: lines.push_back(kestrix::testing::mappingStartLine(event)); break;
        case YAML_SEQUENCE_START_EVENT: lines.push_back(kestrix::testing::sequenceStartLine(event)); break;
        case YAML_MAPPING_END_EVENT: lines.push_back("-MAP"); break;
        case YAML_SEQUENCE_END_EVENT: lines.push_back("-SEQ"); break;
        case YAML_SCALAR_EVENT: lines.push_back(kestrix::testing::scalarLine(event)); break;
        case YAML_ALIAS_EVENT:
            lines.push_back(std::string("=ALI *") + reinterpret_cast<const char*>(event.data.alias.anchor));
            break;
        case YAML_STREAM_END_EVENT: done = true; break;
        default: break;
        }
        yaml_event_delete(&event);
    }
    yaml_parser_delete(&parser);
    return lines;
}

/// The node events of a test.event file; stream and document lines are not node events.
Lines suiteEvents(const std::string& path)
{
    Lines lines;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        if (startsWith(line, "+MAP") || startsWith(line, "+SEQ") || startsWith(line, "-MAP") ||
            startsWith(line, "-SEQ") || startsWith(line, "=VAL") || startsWith(line, "=ALI")) {
            lines.push_back(line);
        }
    }
    return lines;
}

bool exists(const std::string& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

/// Case folders: each folder with an in.yaml, and the numbered sub-cases of the others.
Lines caseFolders(const std::string& root)
{
    Lines found;
    std::vector<std::string> pending{root};
    while (!pending.empty()) {
        std::string dir = pending.back();
        pending.pop_back();
        if (exists(dir + "/in.yaml")) {
            found.push_back(dir);
            continue;
        }
        if (DIR* handle = opendir(dir.c_str())) {
            while (dirent* entry = readdir(handle)) {
                std::string child = entry->d_name;
                struct stat info;
                if (child[0] != '.' && stat((dir + "/" + child).c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
                    pending.push_back(dir + "/" + child);
                }
            }
            closedir(handle);
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

/// The handler's refusal that an error text names, or a syntax error.
Outcome outcomeOf(const ParserException& e)
{
    if (e.getDesc() == "YAML syntax error") {
        return Outcome::SyntaxError;
    }
    if (e.getData().find("Error: Standalone scalar not allowed.") != std::string::npos) {
        return Outcome::StandaloneScalar;
    }
    if (e.getData().find("Error: Undefined anchor: ") != std::string::npos) {
        return Outcome::UndefinedAnchor;
    }
    return Outcome::Parsed;
}

} // namespace

TEST(YamlTestSuite, EveryInputParsesAsExpectedOrFailsWithItsPosition)
{
    const std::string root = std::string(KESTRIX_SHARED_DIR) + "/yaml-test-suite";
    const Lines cases = caseFolders(root);
    ASSERT_GT(cases.size(), 300u) << "test suite not found under " << root;

    const std::regex position(R"(\[Line: [0-9]+  Col: [0-9]+\]\n)");
    size_t comparedWithSuite = 0, failedWithPosition = 0, libyamlAcceptsInvalid = 0;
    Lines libyamlDeviations;
    for (const std::string& dir : cases) {
        const std::string id = dir.substr(root.size() + 1);
        SCOPED_TRACE(id);
        const std::string text = readFile(dir + "/in.yaml");
        const bool invalid = exists(dir + "/error");

        bool libyamlFailed = false;
        const Lines libyaml = libyamlEvents(text, libyamlFailed);
        const Expected fromLibyaml = project(libyaml, libyamlFailed);
        libyamlAcceptsInvalid += invalid && !libyamlFailed;

        RecordingReceiver receiver;
        Outcome outcome = Outcome::Parsed;
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
        EXPECT_EQ(name(fromLibyaml.outcome), name(outcome));
        EXPECT_EQ(fromLibyaml.events, receiver.events) << "against libyaml's events";

        if (!invalid && !libyamlFailed) {
            if (suiteEvents(dir + "/test.event") != libyaml) {
                libyamlDeviations.push_back(id);
                continue;
            }
            const Expected fromSuite = project(suiteEvents(dir + "/test.event"), false);
            EXPECT_EQ(name(fromSuite.outcome), name(outcome)) << "against the suite";
            EXPECT_EQ(fromSuite.events, receiver.events) << "against the suite";
            ++comparedWithSuite;
        }
    }
    std::cout << cases.size() << " inputs: " << comparedWithSuite << " valid ones compared with the suite's events, "
              << failedWithPosition << " refused with a position, " << libyamlAcceptsInvalid
              << " invalid ones that libyaml accepts; libyaml's events differ from the suite's in "
              << libyamlDeviations.size() << ":";
    for (const std::string& id : libyamlDeviations) {
        std::cout << " " << id;
    }
    std::cout << std::endl;
    EXPECT_GT(comparedWithSuite, 200u);
}
