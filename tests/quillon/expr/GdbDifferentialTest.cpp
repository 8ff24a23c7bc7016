// Values of static expressions against what gdb-multiarch prints for the same ELF. Skipped where
// gdb-multiarch is not installed.
#include "ExprFixture.h"

#include <cstdio>
#include <map>
#include <regex>
#include <unistd.h>

namespace quillon::expr::test {
namespace {

constexpr const char* gdbProgram = "/usr/bin/gdb-multiarch";

std::string quoted(const std::string& text)
{
    std::string result = "'";
    for (char c : text) {
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return result + "'";
}

/// What gdb prints for each command, its "$n = " and a leading "(type) " of pointers removed.
std::map<std::string, std::string> askGdb(const std::vector<std::string>& commands, const std::string& elf)
{
    std::string line = std::string(gdbProgram) + " -batch -nx";
    for (std::size_t i = 0; i < commands.size(); ++i) {
        line += " -ex " + quoted("echo @@" + std::to_string(i) + "\\n") + " -ex " + quoted(commands[i]);
    }
    line += " " + quoted(elf) + " 2>&1";
    std::map<std::string, std::string> answers;
    FILE* pipe = popen(line.c_str(), "r");
    if (pipe == nullptr) {
        return answers;
    }
    std::string key;
    char buffer[4096];
    while (std::fgets(buffer, sizeof buffer, pipe)) {
        std::string text(buffer);
        if (text.compare(0, 2, "@@") == 0) {
            key = commands[std::stoul(text.substr(2))];
        } else if (!key.empty()) {
            answers[key] += text;
        }
    }
    pclose(pipe);
    const std::regex value(R"(^\$\d+ = (\([^)]*\) )?(.*)\n$)");
    for (auto& [command, answer] : answers) {
        std::smatch found;
        answer = std::regex_match(answer, found, value) ? found[2].str() : "unexpected: " + answer;
    }
    return answers;
}

using GdbDifferential = ExprFixture;

TEST_F(GdbDifferential, StaticExpressionsHaveTheValuesGdbPrints)
{
    if (access(gdbProgram, X_OK) != 0) {
        GTEST_SKIP() << gdbProgram << " is not installed";
    }
    // Expressions whose text both sides write alike (gdb writes bools as true/false and char arrays
    // with their trailing zeros, so those stay out). gdb names the symbol a data pointer points
    // into ("0x20000074 <g_point>"); that part is left out here.
    const std::vector<std::string> expressions = {
        "g_s8", "g_u8", "g_s16", "g_u16", "g_s32", "g_u32", "g_s64", "g_u64", "g_char", "g_float", "g_double",
        "g_color", "g_mode", "g_point", "g_array", "g_matrix", "g_point.x + g_point.y", "g_array[2] * 3",
        "g_records[0].corners[1].y", "g_records[1].values[2] * 2", "g_records[0].values", "g_records[0].bits.delta",
        "g_records[0].bits.wide", "g_records[0].bits.level", "g_records[1].bits", "g_records[0].tint",
        "sizeof(struct record)", "sizeof g_matrix[0]", "g_u8 + 1", "g_s32 < g_u32", "-7 / 2", "-7 % 2",
        "(char)321", "(unsigned char)-1", "(short)70000", "g_float * 2", "g_double + g_float", "0.1", "0.1f",
        "(float)1 / 3", "g_number.real", "g_number", "g_number.bytes[3]", "g_ring.head", "g_u16 * g_u16", "g_s64 / 1000",
        "g_u64 % 7", "~0u", "*g_int_ptr", "g_int_ptr - g_array", "&g_array[4] - &g_array[1]", "g_text[1]",
        "g_point_ptr", "g_point_ptr->y", "g_null", "g_message", "g_fn", "g_int_ptr", "&g_point", "g_records[0].next",
        "(g_s32 >> 4) & 0xff", "g_s16 * g_s8", "1.5 * g_s32", "g_u32 / 3u", "!g_null", "BLUE + 1",
    };
    const std::vector<std::pair<std::string, std::string>> formatted = {
        {"g_s8", "x"}, {"g_array", "x"}, {"-1", "x"}, {"g_s64", "x"}, {"g_point", "x"},
        {"g_u8", "d"}, {"g_u32", "d"}, {"g_s32", "u"}, {"10", "o"}, {"65", "c"},
    };
    std::vector<std::string> commands;
    for (const std::string& expression : expressions) {
        commands.push_back("print " + expression);
    }
    for (const auto& [expression, format] : formatted) {
        commands.push_back("print/" + format + " " + expression);
    }
    const std::map<std::string, std::string> gdb = askGdb(commands, std::string(FIRMWARE_DIR) + "/expr.elf");
    ASSERT_EQ(gdb.size(), commands.size());
    const std::regex dataSymbol(R"(^(0x[0-9a-f]+) <[^>]*>$)");
    for (const std::string& expression : expressions) {
        std::string expected = gdb.at("print " + expression);
        const std::string ours = text(expression);
        if (ours.find(" <") == std::string::npos) {
            expected = std::regex_replace(expected, dataSymbol, "$1");
        }
        EXPECT_EQ(ours, expected) << expression;
    }
    for (const auto& [expression, format] : formatted) {
        EXPECT_EQ(text(expression + "," + format), gdb.at("print/" + format + " " + expression))
            << expression << "," << format;
    }
}

} // namespace
} // namespace quillon::expr::test
