#pragma once

// Fixture of the tests that drive the client against the recording double of the automation
// library: the double's state reached through its own library handle, the environment of the
// client set for the test and restored after it.

#include <dlfcn.h>
#include <unistd.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "FakeOrbel.h"
#include "IException.h"
#include "ScopedEnvironment.h"

class FakeOrbelTest : public ::testing::Test {
protected:
    /// Folder of one build of the double: "whole", "noinfo" or "nocreate".
    static std::string folder(const std::string& variant) { return std::string(FAKE_ORBEL_DIR) + "/fakeorbel-" + variant; }
    static std::string library(const std::string& variant) { return folder(variant) + "/liborbel.so"; }

    void SetUp() override
    {
        m_handle = dlopen(library("whole").c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(nullptr, m_handle) << dlerror();
        auto stateOf = reinterpret_cast<fakeorbel::StateFunction>(dlsym(m_handle, "fakeorbel_state"));
        ASSERT_NE(nullptr, stateOf);
        m_fake = stateOf();
        *m_fake = fakeorbel::State();
        env.set("ORBEL_PATH", folder("whole") + "/");
        env.unset("ORBEL_SHAREDMEM_PID");
        env.unset("ORBEL_TCP_PORT");
    }

    void TearDown() override
    {
        if (m_handle != nullptr) {
            dlclose(m_handle);
        }
    }

    /// Forgets the script and the record.
    void resetFake() { *m_fake = fakeorbel::State(); }
    fakeorbel::Script& script() { return m_fake->script; }
    const fakeorbel::Record& seen() const { return m_fake->record; }
    std::vector<std::string> calls(const std::string& prefix) const { return m_fake->callsStartingWith(prefix); }

    /// A fresh folder under the test's temporary folder, one per process: ctest runs tests in parallel.
    static std::string tempFolder(const std::string& name)
    {
        const std::string path = ::testing::TempDir() + "kx_" + std::to_string(getpid()) + "_" + name;
        std::filesystem::remove_all(path);
        std::filesystem::create_directories(path);
        return path;
    }
    static void writeFile(const std::string& path, const std::string& text)
    {
        std::ofstream(path, std::ios::binary) << text;
    }

    /// The exception of type `E` that `action` throws.
    template <class E, class F>
    static E thrownBy(F action)
    {
        try {
            action();
        } catch (const E& e) {
            return e;
        }
        ADD_FAILURE() << "nothing of the expected type was thrown";
        return E("", 0, "nothing thrown");
    }

    ScopedEnvironment env;

private:
    void* m_handle = nullptr;
    fakeorbel::State* m_fake = nullptr;
};
