// The same ELF read by gdb-multiarch: addresses, types, layouts, breakpoints, locations of
// optimized code and lines must agree. Skipped where gdb-multiarch is not installed.
#include "DebugInfoFixture.h"

#include "debuginfo/TypeTable.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <regex>
#include <sstream>
#include <unistd.h>

namespace quillon::debuginfo::test {
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

std::string withoutSpaces(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    return text;
}

std::string baseName(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

std::uint32_t hexValue(const std::string& text)
{
    return static_cast<std::uint32_t>(std::stoul(text, nullptr, 16));
}

/// One gdb run over all queries; each answer is the text gdb printed for its command.
class GdbAnswers {
public:
    void ask(const std::string& key, const std::string& command) { m_queries.emplace_back(key, command); }

    void run(const std::string& elf)
    {
        std::string line = std::string(gdbProgram) + " -batch -nx";
        for (const auto& [key, command] : m_queries) {
            line += " -ex " + quoted("echo @@" + key + "\\n") + " -ex " + quoted(command);
        }
        line += " " + quoted(elf) + " 2>&1";
        FILE* pipe = popen(line.c_str(), "r");
        ASSERT_NE(pipe, nullptr);
        std::string key;
        char buffer[4096];
        while (std::fgets(buffer, sizeof buffer, pipe)) {
            std::string text(buffer);
            if (text.compare(0, 2, "@@") == 0) {
                key = text.substr(2, text.size() - 3);
            } else if (!key.empty()) {
                m_answers[key] += text;
            }
        }
        pclose(pipe);
    }

    /// The first group of `pattern` in the answer; empty if it does not match.
    std::string match(const std::string& key, const std::string& pattern) const
    {
        std::smatch found;
        const std::string& text = answer(key);
        return std::regex_search(text, found, std::regex(pattern)) ? found[1].str() : "";
    }

    const std::string& answer(const std::string& key) const
    {
        static const std::string none;
        auto found = m_answers.find(key);
        return found == m_answers.end() ? none : found->second;
    }

private:
    std::vector<std::pair<std::string, std::string>> m_queries;
    std::map<std::string, std::string> m_answers;
};

const char* const layouts[] = {"struct point", "struct segment", "struct shape", "union number",
                               "struct node", "struct message", "struct flags", "struct packed_bits"};
const char* const optimizedFunctions[] = {"checksum", "clamp_add", "window_average"};
const char* const markers[][2] = {{"functions.c", "@loop"},
                                  {"functions.c", "@accumulate"},
                                  {"optimized.c", "@checksum_step"},
                                  {"optimized.c", "@after_call"}};

// How gdb names a variable: statics by their file.
std::string gdbName(const Variable& variable)
{
    if (variable.isExternal) {
        return variable.name;
    }
    return "'" + baseName(firmware().units()[variable.unit].path) + "'::" + variable.name;
}

class GdbDifferential : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        if (access(gdbProgram, X_OK) != 0) {
            return;
        }
        s_gdb = new GdbAnswers;
        const DebugInfo& info = firmware();
        for (const Variable& global : info.globals()) {
            s_gdb->ask("type " + gdbName(global), "whatis " + gdbName(global));
        }
        for (const char* text : layouts) {
            s_gdb->ask(std::string("sizeof ") + text, std::string("print sizeof(") + text + ")");
            s_gdb->ask(std::string("layout ") + text, std::string("ptype/o ") + text);
            for (const Type::Member& member : info.findType(text)->members()) {
                if (!member.isBitField()) {
                    s_gdb->ask(std::string("offset ") + text + "." + member.name,
                               std::string("print (int)&((") + text + " *)0)->" + member.name);
                }
            }
        }
        for (const Function& function : info.functions()) {
            if (!function.declFile.empty()) {
                s_gdb->ask("break " + function.declFile + ":" + function.name,
                           "break " + baseName(function.declFile) + ":" + function.name);
                const std::uint32_t address = info.breakpointAddress(function);
                s_gdb->ask("line " + std::to_string(address), "info line *" + std::to_string(address));
            }
        }
        for (const char* function : optimizedFunctions) {
            s_gdb->ask(std::string("scope ") + function, std::string("info scope ") + function);
        }
        for (const auto& marker : markers) {
            const std::string where = std::string(marker[0]) + ":" + std::to_string(markerLine(marker[0], marker[1]));
            s_gdb->ask("where " + where, "info line " + where);
        }
        s_gdb->run(firmwarePath("debuginfo.elf"));
    }

    static void TearDownTestSuite()
    {
        delete s_gdb;
        s_gdb = nullptr;
    }

    void SetUp() override
    {
        if (s_gdb == nullptr) {
            GTEST_SKIP() << gdbProgram << " is not installed";
        }
    }

    static GdbAnswers* s_gdb;
};

GdbAnswers* GdbDifferential::s_gdb = nullptr;

TEST_F(GdbDifferential, TypeNamesOfGlobals)
{
    for (const Variable& global : firmware().globals()) {
        std::string gdbType = s_gdb->match("type " + gdbName(global), "type = (.*)\n");
        std::string ours = global.type->name();
        // gdb spells base types its own way ("unsigned long" for "long unsigned int").
        if (auto canonical = TypeTable::canonicalBaseName(gdbType)) {
            gdbType = *canonical;
            ours = TypeTable::canonicalBaseName(ours).value_or(ours);
        }
        EXPECT_EQ(withoutSpaces(ours), withoutSpaces(gdbType)) << gdbName(global);
    }
}

TEST_F(GdbDifferential, LayoutsOfStructsAndUnions)
{
    // Bit fields from ptype/o: "/*  offset: bit  |  size */  type name : width;".
    const std::regex bitField(R"(/\*\s+(\d+):\s*(\d+)\s*\|\s*\d+ \*/\s+.*[ *](\w+) : \d+;)");
    for (const char* text : layouts) {
        const Type* type = firmware().findType(text);
        ASSERT_NE(type, nullptr) << text;
        EXPECT_EQ(std::to_string(type->size()), s_gdb->match(std::string("sizeof ") + text, R"(= (\d+))")) << text;
        std::map<std::string, std::pair<std::string, std::string>> bits;
        const std::string layout = s_gdb->answer(std::string("layout ") + text);
        for (std::sregex_iterator it(layout.begin(), layout.end(), bitField), end; it != end; ++it) {
            bits[(*it)[3].str()] = {(*it)[1].str(), (*it)[2].str()};
        }
        for (const Type::Member& member : type->members()) {
            const std::string where = std::string(text) + "." + member.name;
            if (member.isBitField()) {
                ASSERT_EQ(bits.count(member.name), 1u) << where << ": " << layout;
                EXPECT_EQ(std::to_string(member.offset), bits[member.name].first) << where;
                EXPECT_EQ(std::to_string(member.bitOffset), bits[member.name].second) << where;
            } else {
                EXPECT_EQ(std::to_string(member.offset), s_gdb->match("offset " + where, R"(= (\d+))")) << where;
            }
        }
    }
}

TEST_F(GdbDifferential, BreakpointsOnFunctionsAndTheirLines)
{
    for (const Function& function : firmware().functions()) {
        if (function.declFile.empty()) {
            continue;
        }
        const std::string key = "break " + function.declFile + ":" + function.name;
        const std::string address = s_gdb->match(key, R"(Breakpoint \d+ at (0x[0-9a-f]+))");
        ASSERT_FALSE(address.empty()) << key << ": " << s_gdb->answer(key);
        EXPECT_EQ(hexValue(address), firmware().breakpointAddress(function)) << function.name;
        const std::string line = "line " + std::to_string(firmware().breakpointAddress(function));
        const auto ours = firmware().lines().find(firmware().breakpointAddress(function));
        ASSERT_TRUE(ours.has_value()) << function.name;
        EXPECT_EQ(s_gdb->match(line, R"(Line (\d+) of)"), std::to_string(ours->line)) << function.name;
        EXPECT_EQ(s_gdb->match(line, R"(of \"([^\"]+)\")"), ours->file) << function.name;
    }
}

TEST_F(GdbDifferential, AddressesOfLines)
{
    for (const auto& marker : markers) {
        const unsigned line = markerLine(marker[0], marker[1]);
        const std::string where = std::string(marker[0]) + ":" + std::to_string(line);
        const std::string start = s_gdb->match("where " + where, R"(starts at address (0x[0-9a-f]+))");
        ASSERT_FALSE(start.empty()) << where << ": " << s_gdb->answer("where " + where);
        const std::vector<std::uint32_t> ours = firmware().lines().addresses(marker[0], line);
        EXPECT_NE(std::find(ours.begin(), ours.end(), hexValue(start)), ours.end()) << where;
    }
}

// gdb's "info scope": per symbol either one register, or ranges of registers, constants and
// entry values. Ours must say the same at the start of each range.
TEST_F(GdbDifferential, LocationsInOptimizedCode)
{
    const std::regex symbol(R"(Symbol (\w+) is (multi-location:|a variable in \$r(\d+)))");
    const std::regex range(R"(Range (0x[0-9a-f]+)-0x[0-9a-f]+: (a variable in \$r(\d+)|the constant (\d+)|a complex DWARF expression:\s+0: DW_OP_GNU_entry_value))");
    int checked = 0;
    for (const char* name : optimizedFunctions) {
        const Function* function = firmware().findFunction(name);
        const std::string scope = s_gdb->answer(std::string("scope ") + name);
        // Split the answer into one piece per symbol.
        std::vector<std::pair<std::string, std::string>> symbols;
        for (std::sregex_iterator it(scope.begin(), scope.end(), symbol), end; it != end; ++it) {
            symbols.emplace_back((*it)[1].str(), scope.substr(static_cast<size_t>(it->position())));
        }
        for (auto& [variableName, text] : symbols) {
            const std::string own = text.substr(0, text.find("Symbol", 1));
            const Variable* variable = function->findVisible(variableName, function->entry);
            ASSERT_NE(variable, nullptr) << name << " " << variableName;
            std::smatch single;
            if (std::regex_search(own, single, symbol) && single[3].matched) {
                const Location location = firmware().locate(*variable, function, function->entry, FakeFrame());
                ASSERT_EQ(location.kind(), Location::Kind::Register) << name << " " << variableName;
                EXPECT_EQ(std::to_string(location.dwarfRegister()), single[3].str());
                ++checked;
                continue;
            }
            for (std::sregex_iterator it(own.begin(), own.end(), range), end; it != end; ++it) {
                const std::smatch& m = *it;
                const std::uint32_t pc = hexValue(m[1].str());
                const Location location = firmware().locate(*variable, function, pc, FakeFrame());
                const std::string at = std::string(name) + " " + variableName + " at " + m[1].str();
                if (m[3].matched) {
                    ASSERT_EQ(location.kind(), Location::Kind::Register) << at;
                    EXPECT_EQ(std::to_string(location.dwarfRegister()), m[3].str()) << at;
                } else if (m[4].matched) {
                    ASSERT_EQ(location.kind(), Location::Kind::Value) << at;
                    EXPECT_EQ(std::to_string(location.bytes().at(0)), m[4].str()) << at;
                } else {
                    EXPECT_EQ(location.kind(), Location::Kind::OptimizedOut) << at;
                }
                ++checked;
            }
        }
    }
    EXPECT_GE(checked, 20);
}

} // namespace
} // namespace quillon::debuginfo::test
