// The YAML value helpers. An input whose first byte is even is a fragment for CYAMLUtil's
// parsers, as a managed caller passes it to a setter. An odd first byte builds a scalar from the
// next two bytes (style; implicit flags, tag and anchor) and the rest (its text).
//
// Each scalar is then written in four places (block or flow, key or not): written by libyaml as
// it is, it must read back as CYAMLScalarAnalysis::readBack foresees; written by CYAMLEmitter,
// it must read back with the same text, expression text and quoted text.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <sstream>
#include <string>

#include "CYAMLEmitter.h"
#include "CYAMLScalarAnalysis.h"
#include "CYAMLUtil.h"
#include "FuzzCheck.h"
#include "IException.h"

using namespace kestrix;
using namespace kestrix_fuzz;

namespace {

const char* const TAGS[] = {"", "!", "!local", "tag:yaml.org,2002:str", "x:y"};

std::string describe(const CYAMLScalar& s)
{
    std::ostringstream out;
    out << "value [" << s.getValue() << "] style " << s.getStyle() << " tag [" << s.getTag() << "] anchor ["
        << s.getAnchor() << "] implicit " << s.getPlainImplicit() << "/" << s.getQuotedImplicit();
    return out.str();
}

/// Writes a one-entry document with `scalar` in the given place through `write`, which gets the
/// scalar's turn; returns the text, or an empty text when the writer refuses.
std::string document(bool isFlow, bool isKey, const std::function<void(yaml_emitter_t&)>& write)
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
    yaml_event_t event;
    bool ok = yaml_stream_start_event_initialize(&event, YAML_UTF8_ENCODING) && yaml_emitter_emit(&emitter, &event);
    ok = ok && yaml_document_start_event_initialize(&event, nullptr, nullptr, nullptr, 1) &&
         yaml_emitter_emit(&emitter, &event);
    const auto style = isFlow ? YAML_FLOW_MAPPING_STYLE : YAML_BLOCK_MAPPING_STYLE;
    ok = ok && yaml_mapping_start_event_initialize(&event, nullptr, nullptr, 1, style) &&
         yaml_emitter_emit(&emitter, &event);
    const auto other = [&] {
        yaml_scalar_event_initialize(&event, nullptr, nullptr, reinterpret_cast<yaml_char_t*>(const_cast<char*>("o")),
                                     1, 1, 0, YAML_ANY_SCALAR_STYLE);
        return yaml_emitter_emit(&emitter, &event) != 0;
    };
    ok = ok && (isKey || other());
    if (ok) {
        try {
            write(emitter);
        } catch (const IException&) {
            ok = false;
        }
    }
    ok = ok && (!isKey || other());
    ok = ok && yaml_mapping_end_event_initialize(&event) && yaml_emitter_emit(&emitter, &event);
    ok = ok && yaml_document_end_event_initialize(&event, 1) && yaml_emitter_emit(&emitter, &event);
    ok = ok && yaml_stream_end_event_initialize(&event) && yaml_emitter_emit(&emitter, &event);
    yaml_emitter_delete(&emitter);
    return ok ? text : std::string();
}

/// The scalar in the key (or value) place of the one-entry document `text`.
CYAMLScalar readScalar(const std::string& text, bool isKey)
{
    yaml_parser_t parser;
    yaml_parser_initialize(&parser);
    yaml_parser_set_input_string(&parser, reinterpret_cast<const unsigned char*>(text.data()), text.size());
    int scalars = 0;
    CYAMLScalar found;
    bool isFound = false;
    for (yaml_event_t event; !isFound;) {
        if (!yaml_parser_parse(&parser, &event)) {
            yaml_parser_delete(&parser);
            fail("written scalar does not read back", text, parser.problem != nullptr ? parser.problem : "");
        }
        const bool isEnd = event.type == YAML_STREAM_END_EVENT;
        if (event.type == YAML_SCALAR_EVENT && scalars++ == (isKey ? 0 : 1)) {
            found = CYAMLScalar(event);
            isFound = true;
        }
        yaml_event_delete(&event);
        if (isEnd && !isFound) {
            yaml_parser_delete(&parser);
            fail("written scalar is missing", text, "");
        }
    }
    yaml_parser_delete(&parser);
    return found;
}

/// Whether `text` is UTF-8 of Unicode scalar values only, as every text that libyaml's parser
/// gives is (libyaml's writer takes surrogates and code points above 0x10FFFF, and escapes them
/// in a form its reader refuses).
bool isUnicode(const std::string& text)
{
    for (size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const size_t width = lead < 0x80 ? 1 : (lead & 0xE0) == 0xC0 ? 2 : (lead & 0xF0) == 0xE0 ? 3 : (lead & 0xF8) == 0xF0 ? 4 : 0;
        if (width == 0 || i + width > text.size()) {
            return false;
        }
        unsigned long code = width == 1 ? lead : lead & (0x7F >> width);
        for (size_t k = 1; k < width; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0) != 0x80) {
                return false;
            }
            code = (code << 6) | (next & 0x3F);
        }
        const unsigned long least[] = {0, 0, 0x80, 0x800, 0x10000};
        if (code < least[width] || (code >= 0xD800 && code <= 0xDFFF) || code > 0x10FFFF) {
            return false;
        }
        i += width;
    }
    return true;
}

bool isSame(const CYAMLScalar& a, const CYAMLScalar& b)
{
    return a.getValue() == b.getValue() && a.getStyle() == b.getStyle() && a.getTag() == b.getTag() &&
           a.getAnchor() == b.getAnchor() && a.getPlainImplicit() == b.getPlainImplicit() &&
           a.getQuotedImplicit() == b.getQuotedImplicit();
}

void checkScalar(const CYAMLScalar& scalar)
{
    // libyaml writes no single quotes around a text that needs escapes: a longer text is then
    // written as plain text, and a character literal (a tab) has no form that keeps it.
    const std::string expression = toExpressionText(scalar);
    std::string quoted = toQuotedText(scalar);
    if (!scalar.isPlainText() && scalar.getStyle() == YAML_SINGLE_QUOTED_SCALAR_STYLE &&
        !CYAMLScalarAnalysis(scalar.getValue()).isSingleQuotedAllowed()) {
        quoted = scalar.getValue();
    }
    const bool isKeepable = quoted != scalar.getValue() || expression == scalar.getValue();
    for (int place = 0; place < 4; ++place) {
        const bool isFlow = place & 1, isKey = place & 2;
        const std::string raw = document(isFlow, isKey, [&](yaml_emitter_t& emitter) {
            yaml_event_t event;
            scalar.initStartEvent(&event);
            if (!yaml_emitter_emit(&emitter, &event)) {
                throw IException(KX_POS, "refused");
            }
        });
        if (!raw.empty()) {
            const CYAMLScalar foreseen = CYAMLScalarAnalysis::readBack(scalar, isFlow, isKey);
            const CYAMLScalar read = readScalar(raw, isKey);
            if (!isSame(foreseen, read)) {
                fail("libyaml's form was not foreseen", describe(scalar) + "\n" + raw,
                     "foreseen: " + describe(foreseen) + "\nread:     " + describe(read));
            }
        }
        std::ostringstream out;
        {
            CYAMLEmitter emitter(&out);
            try {
                emitter.startStream(), emitter.startDocument(true);
                emitter.mapStart(isFlow ? IEmitter::STYLE_FLOW : IEmitter::STYLE_BLOCK);
                isKey ? (emitter.write(scalar), emitter.write("o")) : (emitter.write("o"), emitter.write(scalar));
                emitter.mapEnd(), emitter.endDocument(true), emitter.endStream();
            } catch (const IException&) {
                continue;
            }
        }
        const CYAMLScalar read = readScalar(out.str(), isKey);
        const bool isSameText = read.getValue() == scalar.getValue() && toExpressionText(read) == expression &&
                                toQuotedText(read) == quoted;
        if (!isSameText && isKeepable) {
            fail("written scalar reads back with another text", describe(scalar), out.str() + "\n" + describe(read));
        }
    }
}

void checkFragment(const std::string& text)
{
    try {
        CYAMLScalar scalar;
        CYAMLUtil::parseScalar(scalar, text);
        checkScalar(scalar);
    } catch (const IException&) {
    }
    StrVector keys, values;
    StrStrMap map;
    const std::function<void()> helpers[] = {
        [&] { CYAMLUtil::verifyScalar(text); },
        [&] { CYAMLUtil::verifyLimitedScalar(text, "fuzz"); },
        [&] { CYAMLUtil::parseYAMLList(values, text), CYAMLUtil::strVector2Str(values); },
        [&] { CYAMLUtil::parseYAMLMap(map, text); },
        [&] { CYAMLUtil::parseYAMLMap(keys, values, text); },
        [&] { CYAMLUtil::verifyList(text); },
        [&] { CYAMLUtil::verifyMap(text); },
    };
    for (const auto& helper : helpers) {
        try {
            helper();
        } catch (const IException&) {
        }
    }
}

void checkBuiltScalar(const uint8_t* data, size_t size)
{
    if (size < 3) {
        return;
    }
    const int style = data[1] % 6;
    const int plainImplicit = data[2] & 1, quotedImplicit = (data[2] >> 1) & 1;
    const std::string tag = TAGS[(data[2] >> 2) % 5];
    const std::string anchor = (data[2] & 0x80) != 0 ? "a1" : "";
    if (tag.empty() && plainImplicit == 0 && quotedImplicit == 0) {
        return; // libyaml writes no such scalar, and its parser makes none
    }
    const std::string value(reinterpret_cast<const char*>(data + 3), size - 3);
    if (!isUnicode(value)) {
        return;
    }
    const auto text = [](const std::string& s) {
        return s.empty() ? nullptr : reinterpret_cast<yaml_char_t*>(const_cast<char*>(s.c_str()));
    };
    yaml_event_t event;
    if (!yaml_scalar_event_initialize(&event, text(anchor), text(tag),
                                      reinterpret_cast<yaml_char_t*>(const_cast<char*>(value.data())),
                                      static_cast<int>(value.size()), plainImplicit, quotedImplicit,
                                      static_cast<yaml_scalar_style_t>(style))) {
        return;
    }
    const CYAMLScalar scalar(event);
    yaml_event_delete(&event);
    checkScalar(scalar);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0) {
        return 0;
    }
    if (data[0] % 2 == 0) {
        checkFragment(std::string(reinterpret_cast<const char*>(data + 1), size - 1));
    } else {
        checkBuiltScalar(data, size);
    }
    return 0;
}
