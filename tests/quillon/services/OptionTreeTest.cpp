#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "services/OptionTree.h"
#include "services/ServiceError.h"

namespace quillon::services {
namespace {

using Kind = ServiceError::Kind;

/// Kind and message of the error that `action` throws.
template <class F>
std::pair<Kind, std::string> errorOf(F action)
{
    try {
        action();
    } catch (const ServiceError& error) {
        return {error.kind(), error.what()};
    }
    ADD_FAILURE() << "no ServiceError";
    return {Kind::Failed, ""};
}

TEST(OptionTree, EveryDocumentedOptionStartsAtItsDefault)
{
    OptionTree tree;
    ASSERT_EQ(4u, OptionTree::definitions().size());
    EXPECT_TRUE(tree.flag(OptionTree::kStopOnReset));
    EXPECT_FALSE(tree.flag(OptionTree::kStopAtMain));
    EXPECT_EQ(100000000u, tree.integer(OptionTree::kMaxInstructions));
    EXPECT_EQ(0u, tree.listSize(OptionTree::kSourcePaths));
}

TEST(OptionTree, PathsWithAndWithoutScope)
{
    EXPECT_EQ("/IDE/Debug/StopOnReset", OptionTree::path("IDE", "Debug", "StopOnReset"));
    EXPECT_EQ("/HIL/o", OptionTree::path("HIL", "", "o"));
}

TEST(OptionTree, ValuesAreParsedByKind)
{
    struct Case {
        const char* path;
        const char* text;
        const char* readBack;
    };
    const Case cases[] = {
        {OptionTree::kStopOnReset, "0", "0"},           {OptionTree::kStopOnReset, "true", "1"},
        {OptionTree::kStopAtMain, "false", "0"},        {OptionTree::kStopAtMain, "1", "1"},
        {OptionTree::kMaxInstructions, "0x10", "16"},   {OptionTree::kMaxInstructions, "18446744073709551615", "18446744073709551615"},
        {OptionTree::kSourcePaths, "src\nlib", "src\nlib"}, {OptionTree::kSourcePaths, "", ""},
    };
    for (const Case& c : cases) {
        OptionTree tree;
        tree.set(c.path, c.text);
        EXPECT_EQ(c.readBack, tree.text(c.path)) << c.path << " = " << c.text;
    }
}

TEST(OptionTree, BadValuesNameThePathAndWhatItTakes)
{
    struct Case {
        const char* path;
        const char* text;
        const char* message;
    };
    const Case cases[] = {
        {OptionTree::kStopOnReset, "2", "bad value '2' for option '/IDE/Debug/StopOnReset' (0, 1, true or false)"},
        {OptionTree::kStopOnReset, "yes", "bad value 'yes' for option '/IDE/Debug/StopOnReset' (0, 1, true or false)"},
        {OptionTree::kMaxInstructions, "-1", "bad value '-1' for option '/IDE/Test/MaxInstructions' (a number, decimal or 0x hex)"},
        {OptionTree::kMaxInstructions, "12x", "bad value '12x' for option '/IDE/Test/MaxInstructions' (a number, decimal or 0x hex)"},
        {OptionTree::kMaxInstructions, "18446744073709551616", "bad value '18446744073709551616' for option '/IDE/Test/MaxInstructions' (a number, decimal or 0x hex)"},
        {OptionTree::kMaxInstructions, "0", "bad value '0' for option '/IDE/Test/MaxInstructions' (not zero)"},
        {OptionTree::kMaxInstructions, "", "bad value '' for option '/IDE/Test/MaxInstructions' (a number, decimal or 0x hex)"},
    };
    for (const Case& c : cases) {
        OptionTree tree;
        const auto [kind, message] = errorOf([&] { tree.set(c.path, c.text); });
        EXPECT_EQ(Kind::InvalidArgument, kind);
        EXPECT_EQ(c.message, message);
        tree.reset(c.path);
        EXPECT_EQ(OptionTree().text(c.path), tree.text(c.path)) << "a failed set leaves the value";
    }
}

TEST(OptionTree, UnknownPathsAreNamed)
{
    OptionTree tree;
    for (const char* path : {"/IDE/Debug/stoponreset", "/IDE/Debug", "", "/IDE/Debug/StopOnReset/x"}) {
        const auto [kind, message] = errorOf([&] { tree.set(path, "1"); });
        EXPECT_EQ(Kind::NotFound, kind);
        EXPECT_EQ(std::string("unknown option '") + path + "'", message);
        EXPECT_EQ(Kind::NotFound, errorOf([&] { tree.text(path); }).first);
    }
}

TEST(OptionTree, ResetAndDefaults)
{
    OptionTree tree;
    tree.set(OptionTree::kStopOnReset, "0");
    tree.set(OptionTree::kMaxInstructions, "5");
    tree.reset(OptionTree::kStopOnReset);
    EXPECT_TRUE(tree.flag(OptionTree::kStopOnReset));
    EXPECT_EQ(5u, tree.integer(OptionTree::kMaxInstructions));
    tree.setDefault(OptionTree::kMaxInstructions, "1000");
    tree.set(OptionTree::kMaxInstructions, "7");
    tree.resetAll();
    EXPECT_EQ(1000u, tree.integer(OptionTree::kMaxInstructions));
    EXPECT_THROW(tree.setDefault(OptionTree::kMaxInstructions, "0"), ServiceError);
    EXPECT_EQ(1000u, tree.integer(OptionTree::kMaxInstructions));
}

TEST(OptionTree, ListItemsAreInsertedRemovedAndAddressedByIndex)
{
    OptionTree tree;
    const std::string list = OptionTree::kSourcePaths;
    tree.insertItem(list, 0);
    tree.set(list + "[0]", "b");
    tree.insertItem(list, 0);
    tree.set(list + "[0]", "a");
    tree.insertItem(list, 2);
    tree.set(list + "[2]", "c");
    EXPECT_EQ((std::vector<std::string>{"a", "b", "c"}), tree.list(list));
    EXPECT_EQ("b", tree.text(list + "[1]"));
    tree.removeItem(list, 1);
    EXPECT_EQ("a\nc", tree.text(list));
    EXPECT_EQ(2u, tree.listSize(list));

    EXPECT_EQ("index 3 out of range for option '/IDE/Debug/SourcePaths' (2 items)",
              errorOf([&] { tree.insertItem(list, 3); }).second);
    EXPECT_EQ("index 2 out of range for option '/IDE/Debug/SourcePaths' (2 items)",
              errorOf([&] { tree.removeItem(list, 2); }).second);
    EXPECT_EQ("index 2 out of range for option '/IDE/Debug/SourcePaths' (2 items)",
              errorOf([&] { tree.text(list + "[2]"); }).second);
    EXPECT_EQ("bad value 'x\ny' for option '/IDE/Debug/SourcePaths[0]' (one line)",
              errorOf([&] { tree.set(list + "[0]", "x\ny"); }).second);
    EXPECT_EQ("option '/IDE/Debug/StopOnReset' is not a list",
              errorOf([&] { tree.insertItem(OptionTree::kStopOnReset, 0); }).second);
    EXPECT_EQ("option '/IDE/Debug/StopOnReset' is not a list",
              errorOf([&] { tree.text(std::string(OptionTree::kStopOnReset) + "[0]"); }).second);
    EXPECT_EQ(Kind::NotFound, errorOf([&] { tree.text(list + "[x]"); }).first);
    EXPECT_EQ(Kind::InvalidArgument, errorOf([&] { tree.integer(list); }).first);
}

TEST(OptionTree, ReadersSeeWholeValuesWhileAWriterChangesThem)
{
    OptionTree tree;
    std::thread writer([&] {
        for (int i = 0; i < 2000; ++i) {
            tree.set(OptionTree::kSourcePaths, i % 2 ? "a\nb" : "c\nd\ne");
        }
    });
    for (int i = 0; i < 2000; ++i) {
        const std::size_t size = tree.list(OptionTree::kSourcePaths).size();
        EXPECT_TRUE(size == 0 || size == 2 || size == 3) << size;
    }
    writer.join();
}

} // namespace
} // namespace quillon::services
