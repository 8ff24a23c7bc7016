#pragma once

#include <gtest/gtest.h>

#include "instance/Workspace.h"

namespace quillon {

/// Expects `actual` to hold what `expected` holds, section by section; lines and the file are not compared.
inline void expectSameWorkspace(const Workspace& expected, const Workspace& actual)
{
    EXPECT_EQ(expected.cpu(), actual.cpu());
    EXPECT_EQ(expected.clock(), actual.clock());
    ASSERT_EQ(expected.memory().size(), actual.memory().size());
    for (std::size_t i = 0; i < expected.memory().size(); ++i) {
        const auto& e = expected.memory()[i];
        const auto& a = actual.memory()[i];
        EXPECT_EQ(e.name, a.name) << "memory " << i;
        EXPECT_EQ(e.start, a.start) << e.name;
        EXPECT_EQ(e.size, a.size) << e.name;
        EXPECT_EQ(e.access, a.access) << e.name;
    }
    ASSERT_EQ(expected.downloads().size(), actual.downloads().size());
    for (std::size_t i = 0; i < expected.downloads().size(); ++i) {
        EXPECT_EQ(expected.downloads()[i].file, actual.downloads()[i].file) << "download " << i;
    }
    EXPECT_EQ(expected.maxInstructions(), actual.maxInstructions());
    ASSERT_EQ(expected.options().size(), actual.options().size());
    for (std::size_t i = 0; i < expected.options().size(); ++i) {
        EXPECT_EQ(expected.options()[i].path, actual.options()[i].path) << "option " << i;
        EXPECT_EQ(expected.options()[i].value, actual.options()[i].value) << expected.options()[i].path;
    }
    ASSERT_EQ(expected.terminal().has_value(), actual.terminal().has_value());
    if (expected.terminal()) {
        EXPECT_EQ(expected.terminal()->uart, actual.terminal()->uart);
    }
    ASSERT_EQ(expected.traceTriggers().size(), actual.traceTriggers().size());
    for (std::size_t i = 0; i < expected.traceTriggers().size(); ++i) {
        const auto& e = expected.traceTriggers()[i];
        const auto& a = actual.traceTriggers()[i];
        EXPECT_EQ(e.name, a.name);
        EXPECT_EQ(e.start, a.start) << e.name;
        EXPECT_EQ(e.instructions, a.instructions) << e.name;
    }
    ASSERT_EQ(expected.hilChannels().size(), actual.hilChannels().size());
    for (std::size_t i = 0; i < expected.hilChannels().size(); ++i) {
        const auto& e = expected.hilChannels()[i];
        const auto& a = actual.hilChannels()[i];
        EXPECT_EQ(e.name, a.name);
        EXPECT_EQ(e.kind, a.kind) << e.name;
        EXPECT_EQ(e.address, a.address) << e.name;
        EXPECT_EQ(e.initial, a.initial) << e.name;
    }
    EXPECT_TRUE(expected.build() == actual.build()) << "build settings";
}

} // namespace quillon
