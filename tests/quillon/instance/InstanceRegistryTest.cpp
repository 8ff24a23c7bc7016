#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <tuple>

#include "TempDir.h"
#include "instance/InstanceRegistry.h"
#include "instance/WorkspaceError.h"

namespace quillon {
namespace {

using Registry = InstanceRegistry;
using Status = InstanceRegistry::Status;
using Listing = std::vector<std::tuple<std::string, std::string, std::uint16_t>>;

constexpr std::uint16_t kBase = 6100;

Registry::LaunchResult launch(Registry& registry, int mode, const std::string& id = "",
                              const std::string& workspace = "")
{
    Registry::LaunchRequest request;
    request.mode = mode;
    request.instanceId = id;
    request.workspace = workspace;
    return registry.launch(request);
}

Listing enumerate(Registry& registry)
{
    Listing listing;
    Registry::LaunchRequest request;
    request.mode = Registry::Enumerate;
    request.enumerator = [&](const std::string& id, const std::string& ws, std::uint16_t port) {
        listing.emplace_back(id, ws, port);
    };
    EXPECT_TRUE(registry.launch(request).ok());
    return listing;
}

class InstanceRegistryTest : public ::testing::Test {
protected:
    TempDir dir;
    Registry registry{kBase};
    const std::string ws1 = dir.write("a/ws1.yaml", "target:\n  cpu: cortex-m0\n").string();
    const std::string ws2 = dir.write("b/ws2.yaml", "").string();
};

TEST_F(InstanceRegistryTest, StartGivesEachInstanceItsOwnIdAndPort)
{
    const auto first = launch(registry, Registry::Start);
    const auto second = launch(registry, Registry::Start, "", ws1);
    const auto third = launch(registry, Registry::Start, "mine", ws1); // same workspace twice is fine

    for (const auto& result : {first, second, third}) {
        EXPECT_TRUE(result.ok()) << result.message;
        EXPECT_TRUE(result.started);
    }
    EXPECT_EQ("quillon-1", first.instanceId);
    EXPECT_EQ("quillon-2", second.instanceId);
    EXPECT_EQ("mine", third.instanceId);
    EXPECT_EQ(kBase, first.port);
    EXPECT_EQ(kBase + 1, second.port);
    EXPECT_EQ(kBase + 2, third.port);

    EXPECT_TRUE(registry.find("quillon-1")->workspace().file().empty());
    EXPECT_EQ(Workspace::Cpu::CortexM0, registry.find("quillon-2")->workspace().cpu());

    const auto taken = launch(registry, Registry::Start, "mine");
    EXPECT_EQ(Status::IdInUse, taken.status);
    EXPECT_EQ("a Quillon instance with id 'mine' already runs", taken.message);
    EXPECT_EQ(3u, registry.instances().size());
}

TEST_F(InstanceRegistryTest, FindMatchesByIdElseWorkspaceElseTakesTheFirst)
{
    launch(registry, Registry::Start);                 // quillon-1, no workspace
    launch(registry, Registry::Start, "", ws1);        // quillon-2
    launch(registry, Registry::Start, "x", ws2);       // x
    std::filesystem::create_symlink(dir.path() / "a", dir.path() / "link");
    std::filesystem::create_hard_link(ws1, dir.path() / "hard.yaml");

    struct Case { int mode; std::string id, workspace, expected; };
    const Case cases[] = {
        {Registry::Find, "x", "", "x"},
        {Registry::Find, "x", ws1, "x"},        // the id wins over the workspace
        {Registry::Find, "", ws1, "quillon-2"},
        {Registry::Find, "", (dir.path() / "b" / ".." / "a" / "ws1.yaml").string(), "quillon-2"},
        {Registry::Find, "", (dir.path() / "link" / "ws1.yaml").string(), "quillon-2"},
        {Registry::Find, "", (dir.path() / "hard.yaml").string(), "quillon-2"},
        {Registry::Find, "", ws2, "x"},
        {Registry::Find, "", "", "quillon-1"},
        {Registry::FindOrStart, "quillon-2", "", "quillon-2"},
        {Registry::FindOrStart, "", (dir.path() / "link" / "." / "ws1.yaml").string(), "quillon-2"},
        {Registry::FindOrStart, "", "", "quillon-1"},
    };
    for (const Case& c : cases) {
        const auto result = launch(registry, c.mode, c.id, c.workspace);
        EXPECT_TRUE(result.ok()) << c.workspace << ": " << result.message;
        EXPECT_FALSE(result.started) << c.workspace;
        EXPECT_EQ(c.expected, result.instanceId) << c.workspace;
        EXPECT_EQ(registry.find(c.expected)->port(), result.port) << c.workspace;
    }
    EXPECT_EQ(3u, registry.instances().size());
}

TEST_F(InstanceRegistryTest, FindWithNothingMatchingFails)
{
    const std::string other = dir.write("c/other.yaml", "").string();
    const auto nothing = launch(registry, Registry::Find);
    EXPECT_EQ(Status::NotFound, nothing.status);
    EXPECT_EQ("no Quillon instance is running", nothing.message);

    launch(registry, Registry::Start, "", ws1);
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"nobody", "", "no Quillon instance has id 'nobody'"},
        {"nobody", ws1, "no Quillon instance has id 'nobody'"},
        {"", other, "no Quillon instance has workspace '" + other + "'"},
        {"", "missing.yaml", "no Quillon instance has workspace 'missing.yaml'"},
    };
    for (const auto& [id, ws, message] : cases) {
        const auto result = launch(registry, Registry::Find, id, ws);
        EXPECT_EQ(Status::NotFound, result.status) << message;
        EXPECT_EQ(message, result.message);
        EXPECT_EQ(0, result.port);
    }
}

TEST_F(InstanceRegistryTest, FindOrStartStartsWhatItDoesNotFind)
{
    const auto started = launch(registry, Registry::FindOrStart, "", ws1);
    EXPECT_TRUE(started.started);
    EXPECT_FALSE(launch(registry, Registry::FindOrStart, "", ws1).started);

    // A new instance takes the id asked for; generated ids step over it.
    const auto named = launch(registry, Registry::FindOrStart, "quillon-2", ws2);
    EXPECT_TRUE(named.started);
    EXPECT_EQ("quillon-2", named.instanceId);
    EXPECT_EQ("quillon-3", launch(registry, Registry::Start).instanceId);
    EXPECT_FALSE(launch(registry, Registry::FindOrStart, "quillon-2", ws1).started);
    EXPECT_EQ(3u, registry.instances().size());
}

TEST_F(InstanceRegistryTest, AnUnusableWorkspaceStartsNothing)
{
    const std::string bad = dir.write("bad.yaml", "target:\n  clock: fast\n").string();
    const std::string missing = (dir.path() / "missing.yaml").string();
    for (const std::string& ws : {bad, missing}) {
        std::string expected;
        try {
            Workspace::load(ws);
        } catch (const WorkspaceError& error) {
            expected = error.what();
        }
        for (int mode : {Registry::Start, Registry::FindOrStart}) {
            const auto result = launch(registry, mode, "", ws);
            EXPECT_EQ(Status::BadWorkspace, result.status) << ws;
            EXPECT_EQ(expected, result.message);
            EXPECT_EQ(0, result.port);
        }
    }
    EXPECT_EQ(bad + ":2: bad number 'fast' for 'target.clock' (decimal or 0x hex)",
              launch(registry, Registry::Start, "", bad).message);
    EXPECT_TRUE(registry.instances().empty());
    // No port or id was used up.
    EXPECT_EQ(kBase, launch(registry, Registry::Start).port);
}

TEST_F(InstanceRegistryTest, EnumerateListsInStartOrder)
{
    EXPECT_TRUE(enumerate(registry).empty());

    launch(registry, Registry::Start, "z", ws2);
    launch(registry, Registry::Start);
    launch(registry, Registry::Start, "a", dir.path().string() + "/b/../a/ws1.yaml");
    const Listing expected = {
        {"z", ws2, kBase},
        {"quillon-1", "", kBase + 1},
        {"a", ws1, kBase + 2},
    };
    EXPECT_EQ(expected, enumerate(registry));

    const auto none = launch(registry, Registry::Enumerate);
    EXPECT_EQ(Status::NoEnumerator, none.status);
    EXPECT_EQ("enumeration needs an enumerator callback", none.message);

    for (int mode : {0, 5, -1}) {
        const auto bad = launch(registry, mode);
        EXPECT_EQ(Status::BadMode, bad.status);
        EXPECT_EQ("unknown launch mode " + std::to_string(mode) + " (1 to 4)", bad.message);
    }
}

TEST_F(InstanceRegistryTest, EnumeratorMayLaunchFromItsCallback)
{
    launch(registry, Registry::Start);
    Registry::LaunchRequest request;
    request.mode = Registry::Enumerate;
    request.enumerator = [&](const std::string&, const std::string&, std::uint16_t) {
        launch(registry, Registry::Start); // would deadlock if called under the lock
    };
    EXPECT_TRUE(registry.launch(request).ok());
    EXPECT_EQ(2u, registry.instances().size());
}

TEST_F(InstanceRegistryTest, AttachByPortCountsClients)
{
    const auto started = launch(registry, Registry::Start, "", ws1);
    auto first = registry.attach(started.port);
    auto second = registry.attach(started.port);
    ASSERT_TRUE(first.instance);
    EXPECT_EQ(first.instance, second.instance);
    EXPECT_EQ(started.instanceId, first.instance->id());
    EXPECT_EQ(2, first.instance->clients());
    EXPECT_TRUE(registry.detach(*first.instance));
    EXPECT_TRUE(registry.detach(*first.instance));
    EXPECT_FALSE(registry.detach(*first.instance));
    EXPECT_EQ(0, first.instance->clients());

    for (std::uint32_t port : {std::uint32_t(kBase + 1), 0u, 70000u}) {
        const auto unknown = registry.attach(port);
        EXPECT_FALSE(unknown.instance);
        EXPECT_EQ("no Quillon instance listens on port " + std::to_string(port), unknown.message);
    }
}

TEST_F(InstanceRegistryTest, ShutdownEndsAnInstanceButNotItsSessions)
{
    const auto a = launch(registry, Registry::Start);
    const auto b = launch(registry, Registry::Start);
    auto session = registry.attach(a.port).instance;

    EXPECT_TRUE(registry.shutdown(a.instanceId));
    EXPECT_FALSE(registry.shutdown(a.instanceId));
    EXPECT_FALSE(registry.attach(a.port).instance);
    EXPECT_FALSE(registry.find(a.instanceId));
    EXPECT_EQ(a.instanceId, session->id()); // still alive for its session
    EXPECT_EQ(b.instanceId, launch(registry, Registry::Find).instanceId);

    // Ports go on counting rather than reuse the freed one at once.
    EXPECT_EQ(kBase + 2, launch(registry, Registry::Start).port);
    registry.clear();
    EXPECT_TRUE(registry.instances().empty());
}

TEST(InstanceRegistry, PortsWrapToTheBaseAndSkipThoseInUse)
{
    Registry registry(65534);
    const auto a = launch(registry, Registry::Start);
    const auto b = launch(registry, Registry::Start);
    EXPECT_EQ(65534, a.port);
    EXPECT_EQ(65535, b.port);
    const auto full = launch(registry, Registry::Start);
    EXPECT_EQ(Status::NoFreePort, full.status);
    EXPECT_EQ("no free TCP port for a new Quillon instance", full.message);

    registry.shutdown(a.instanceId);
    EXPECT_EQ(65534, launch(registry, Registry::Start).port);
}

TEST(InstanceRegistry, ConcurrentLaunchesShareOneInstancePerWorkspace)
{
    TempDir dir;
    const std::string ws = dir.write("ws.yaml", "").string();
    Registry registry(kBase);
    constexpr int kPerThread = 50;
    std::vector<Registry::LaunchResult> results[2];
    auto run = [&](int t) {
        for (int i = 0; i < kPerThread; ++i) {
            results[t].push_back(launch(registry, Registry::FindOrStart, "", ws));
            results[t].push_back(launch(registry, Registry::Start));
        }
    };
    std::thread other(run, 1);
    run(0);
    other.join();

    std::set<std::uint16_t> ports;
    std::set<std::string> ids;
    std::set<std::string> shared;
    for (const auto& list : results) {
        for (std::size_t i = 0; i < list.size(); ++i) {
            ASSERT_TRUE(list[i].ok()) << list[i].message;
            (i % 2 == 0 ? shared : ids).insert(list[i].instanceId);
            if (i % 2 == 1) {
                ports.insert(list[i].port);
            }
        }
    }
    EXPECT_EQ(1u, shared.size());
    EXPECT_EQ(2u * kPerThread, ids.size());
    EXPECT_EQ(2u * kPerThread, ports.size());
    EXPECT_EQ(2u * kPerThread + 1, registry.instances().size());
}

} // namespace
} // namespace quillon
