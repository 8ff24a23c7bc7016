// Runs every input of the public YAML test suite through CYAMLUtil::parseYAML with a recording
// receiver: each must parse or fail with a ParserException naming a line and a column; nothing
// else may escape, nothing may crash. The receiver must get the projection of libyaml's events
// (no stream or document events, each scalar in its key, value or item role, aliases replaced by
// the anchored scalar's text) up to the handler's refusal, if any.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <regex>

#include "CYAMLUtil.h"
#include "Exceptions.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using kestrix_test::RecordingReceiver;
namespace fs = std::filesystem;

namespace {

typedef std::vector<std::string> Lines;

const char* const PARSED = "parsed";
const char* const STANDALONE = "standalone scalar";
const char* const UNDEFINED_ANCHOR = "undefined anchor";
const char* const SYNTAX_ERROR = "syntax error";

/// What a recording receiver sees of libyaml's reading of a text, in the suite's notation (up to
/// the handler's refusal, which `outcome` names).
struct Reading {
    Lines projected;
    std::string outcome = PARSED;
    bool failed = false; // libyaml did not read the whole stream
};

Reading readWithLibyaml(const std::string& text)
{
    Reading r;
    std::vector<std::pair<bool, size_t>> frames; // is a mapping, nodes seen
    std::map<std::string, std::string> scalarAnchors;
    // Projects a node line: scalars take the next key, value or item position.
    auto project = [&](const std::string& line) {
        if (line[0] == '-') {
            frames.pop_back();
            r.projected.push_back(line);
            return;
        }
        if (frames.empty() && line[0] == '=') {
            r.outcome = STANDALONE;
            return;
        }
        std::string role;
        if (!frames.empty()) {
            auto& top = frames.back();
            role = !top.first ? "item " : (top.second++ % 2 == 0 ? "key " : "value ");
        }
        if (line[0] == '+') {
            frames.emplace_back(line[1] == 'M', 0);
            r.projected.push_back(line);
        } else {
            r.projected.push_back(role + line);
        }
    };
    const kestrix_test::ParsedEvents parsed(text, true);
    r.failed = parsed.failed();
    for (const yaml_event_t& e : parsed.all()) {
        const std::string line = kestrix_test::eventLine(e);
        if (r.outcome != PARSED || line.empty()) {
            continue;
        }
        if (e.type == YAML_ALIAS_EVENT) {
            auto found = scalarAnchors.find(line.substr(6));
            if (found == scalarAnchors.end()) {
                r.outcome = UNDEFINED_ANCHOR;
            } else {
                project("=VAL :" + found->second);
            }
            continue;
        }
        const yaml_char_t* anchor = e.type == YAML_MAPPING_START_EVENT    ? e.data.mapping_start.anchor
                                    : e.type == YAML_SEQUENCE_START_EVENT ? e.data.sequence_start.anchor
                                    : e.type == YAML_SCALAR_EVENT         ? e.data.scalar.anchor
                                                                          : nullptr;
        if (anchor != nullptr) {
            // An anchor on a collection hides an earlier scalar of the same name.
            const std::string name = reinterpret_cast<const char*>(anchor);
            scalarAnchors.erase(name);
            if (e.type == YAML_SCALAR_EVENT) {
                scalarAnchors[name] = kestrix_test::escapeValue(e.data.scalar.value, e.data.scalar.length);
            }
        }
        project(line);
    }
    if (r.failed && r.outcome == PARSED) {
        r.outcome = SYNTAX_ERROR;
    }
    return r;
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
    size_t failedWithPosition = 0;
    for (const fs::path& dir : cases) {
        const std::string id = dir.lexically_relative(root).string();
        SCOPED_TRACE(id);
        std::ifstream in(dir / "in.yaml", std::ios::binary);
        const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        const Reading libyaml = readWithLibyaml(text);

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
        EXPECT_EQ(libyaml.outcome, outcome);
        EXPECT_EQ(libyaml.projected, receiver.events);
    }
    std::cout << cases.size() << " inputs, " << failedWithPosition << " refused with a position" << std::endl;
    EXPECT_GT(failedWithPosition, 50u);
}
