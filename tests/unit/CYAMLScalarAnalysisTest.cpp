#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CYAMLScalarAnalysis.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using kestrix_test::ParsedEvents;

namespace {

/// `scalar` written by libyaml itself (no CYAMLEmitter) as the key or the value of a one-entry
/// mapping in block or flow style, and read back.
CYAMLScalar writtenByLibyaml(const CYAMLScalar& scalar, bool isFlow, bool isKey)
{
    std::string text;
    yaml_emitter_t emitter;
    yaml_emitter_initialize(&emitter);
    yaml_emitter_set_output(
        &emitter,
        [](void* out, unsigned char* buffer, size_t size) {
            static_cast<std::string*>(out)->append(reinterpret_cast<char*>(buffer), size);
            return 1;
        },
        &text);
    std::vector<yaml_event_t> events(8);
    yaml_stream_start_event_initialize(&events[0], YAML_UTF8_ENCODING);
    yaml_document_start_event_initialize(&events[1], nullptr, nullptr, nullptr, 1);
    yaml_mapping_start_event_initialize(&events[2], nullptr, nullptr, 1,
                                        isFlow ? YAML_FLOW_MAPPING_STYLE : YAML_BLOCK_MAPPING_STYLE);
    CYAMLScalar("o").initStartEvent(&events[isKey ? 4 : 3]);
    scalar.initStartEvent(&events[isKey ? 3 : 4]);
    yaml_mapping_end_event_initialize(&events[5]);
    yaml_document_end_event_initialize(&events[6], 1);
    yaml_stream_end_event_initialize(&events[7]);
    for (auto& event : events) {
        EXPECT_TRUE(yaml_emitter_emit(&emitter, &event)) << emitter.problem;
    }
    yaml_emitter_delete(&emitter);
    return CYAMLScalar(ParsedEvents(text).get(YAML_SCALAR_EVENT, isKey ? 0 : 1));
}

std::string describe(const CYAMLScalar& s)
{
    return "style " + std::to_string(s.getStyle()) + ", tag '" + s.getTag() + "', implicit " +
           std::to_string(s.getPlainImplicit()) + "/" + std::to_string(s.getQuotedImplicit()) + ", value '" +
           s.getValue() + "'";
}

} // namespace

TEST(CYAMLScalarAnalysisTest, StylesThatHoldATextUnchanged)
{
    // text, then flow plain, block plain, single quoted, block (literal or folded) allowed
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"abc", "1111"},   {"", "0110"},      {"-", "0011"},    {"-a", "1111"},   {"a: b", "0011"},
        {"a:b", "0111"},   {"a\tb", "0000"},  {" a", "0011"},   {"a ", "0010"},   {"a\nb", "0011"},
        {"a \nb", "0000"}, {"a\n b", "0001"}, {"\xc3\xa9", "0000"}, {"# x", "0011"}, {"a #b", "0011"},
        {"a#b", "1111"},   {"[a", "0011"},    {"a]", "0111"},   {"---", "0011"},  {"? a", "0011"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.first);
        const CYAMLScalarAnalysis analysis(row.first);
        EXPECT_EQ(row.second, std::string() + "01"[analysis.isFlowPlainAllowed()] +
                                  "01"[analysis.isBlockPlainAllowed()] + "01"[analysis.isSingleQuotedAllowed()] +
                                  "01"[analysis.isBlockAllowed()]);
    }
}

// The foreseen reading must be what libyaml writes and reads, for texts that hit each fallback
// in each place, in every style, with each combination of tag and implicit flags a parser makes.
TEST(CYAMLScalarAnalysisTest, ReadBackIsWhatLibyamlWritesAndReads)
{
    const std::vector<std::string> texts = {
        "abc", "", "-", "a: b", "a:b", "a\tb", " a", "a ", "a\nb", "a \nb", "a\n b", "\xc3\xa9", "# x", "'",
        "a\n", std::string(130, 'k'), std::string(127, 'k'),
    };
    struct Form {
        const char* tag;
        int plainImplicit;
        int quotedImplicit;
    };
    const Form forms[] = {{"", 1, 0}, {"", 0, 1}, {"!", 0, 0}, {"!", 1, 0}, {"!local", 0, 0}, {"tag:yaml.org,2002:str", 0, 0}};
    for (const auto& text : texts) {
        for (int style = 0; style <= 5; ++style) {
            for (const Form& form : forms) {
                yaml_event_t event;
                ASSERT_TRUE(yaml_scalar_event_initialize(
                    &event, nullptr, form.tag[0] != '\0' ? reinterpret_cast<yaml_char_t*>(const_cast<char*>(form.tag)) : nullptr,
                    reinterpret_cast<yaml_char_t*>(const_cast<char*>(text.c_str())), static_cast<int>(text.size()),
                    form.plainImplicit, form.quotedImplicit, static_cast<yaml_scalar_style_t>(style)));
                const CYAMLScalar scalar(event);
                yaml_event_delete(&event);
                for (int place = 0; place < 4; ++place) {
                    const bool isFlow = place & 1, isKey = place & 2;
                    SCOPED_TRACE(describe(scalar) + (isFlow ? " in flow" : " in block") + (isKey ? " key" : " value"));
                    EXPECT_EQ(describe(writtenByLibyaml(scalar, isFlow, isKey)),
                              describe(CYAMLScalarAnalysis::readBack(scalar, isFlow, isKey)));
                }
            }
        }
    }
}
