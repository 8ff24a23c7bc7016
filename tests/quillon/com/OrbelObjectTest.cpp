#include <gtest/gtest.h>

#include <vector>

#include "ComFixture.h"
#include "OrbelCoverage.h"
#include "OrbelDebug2.h"
#include "OrbelIDE3.h"
#include "OrbelProfiler2.h"
#include "OrbelTest.h"

namespace quillon::com::test {
namespace {

using namespace kestrix;

using OrbelObjectTest = ComFixture;

/// The identity of an object: its IUnknown pointer.
IUnknown* identity(IUnknown* from)
{
    void* pointer = nullptr;
    EXPECT_EQ(S_OK, from->QueryInterface(IID_IUnknown, &pointer));
    auto* unknown = static_cast<IUnknown*>(pointer);
    unknown->Release();
    return unknown;
}

TEST_F(OrbelObjectTest, EveryInterfaceIsFoundAndLeadsBackToTheSameObject)
{
    const GUID* iids[] = {&IID_IUnknown,      &IID_Orbel,       &IID_OrbelIDE,      &IID_OrbelIDE2,
                          &IID_OrbelIDE3,     &IID_OrbelDebug,  &IID_OrbelDebug2,   &IID_OrbelProfiler,
                          &IID_OrbelProfiler2, &IID_OrbelProject, &IID_OrbelCoverage, &IID_OrbelTest,
                          &IID_OrbelHIL,      &IID_OrbelEclipse, &IID_OrbelSink,     &IID_OrbelBetaExtra};
    IUnknown* const self = identity(object);
    for (const GUID* iid : iids) {
        SCOPED_TRACE(::testing::Message() << std::hex << iid->Data1);
        auto* unknown = query<IUnknown>(object, *iid);
        ASSERT_NE(nullptr, unknown);
        EXPECT_EQ(self, identity(unknown)) << "one object behind every interface";
        // Each interface finds every other one.
        auto* back = query<Orbel>(unknown, IID_Orbel);
        EXPECT_EQ(orbel, back);
        back->Release();
        unknown->Release();
    }
}

TEST_F(OrbelObjectTest, ExtendedInterfacesStartWithTheirBase)
{
    auto* ide = query<OrbelIDE>(object, IID_OrbelIDE);
    auto* ide2 = query<OrbelIDE2>(object, IID_OrbelIDE2);
    auto* ide3 = query<OrbelIDE3>(object, IID_OrbelIDE3);
    EXPECT_EQ(ide, static_cast<OrbelIDE*>(ide3));
    EXPECT_EQ(ide2, static_cast<OrbelIDE2*>(ide3));
    auto* debug = query<OrbelDebug>(object, IID_OrbelDebug);
    auto* debug2 = query<OrbelDebug2>(object, IID_OrbelDebug2);
    EXPECT_EQ(debug, static_cast<OrbelDebug*>(debug2));
    auto* profiler = query<OrbelProfiler>(object, IID_OrbelProfiler);
    auto* profiler2 = query<OrbelProfiler2>(object, IID_OrbelProfiler2);
    EXPECT_EQ(profiler, static_cast<OrbelProfiler*>(profiler2));
    for (IUnknown* unknown : std::vector<IUnknown*>{ide, ide2, ide3, debug, debug2, profiler, profiler2}) {
        unknown->Release();
    }
}

TEST_F(OrbelObjectTest, UnknownIdentifiersAreRefused)
{
    const GUID unknownIids[] = {
        IID_IDescriptor,
        CLSID_ORBEL,
        {0xB656A669, 0x522C, 0x480A, {0x92, 0xAE, 0x9B, 0xFB, 0x89, 0x99, 0x17, 0x28}}, // IID_Orbel, last byte off
        {},
    };
    for (const GUID& iid : unknownIids) {
        void* pointer = reinterpret_cast<void*>(0x1);
        EXPECT_EQ(E_NOINTERFACE, orbel->QueryInterface(iid, &pointer));
        EXPECT_EQ(nullptr, pointer);
    }
    EXPECT_EQ(E_INVALIDARG, orbel->QueryInterface(IID_Orbel, nullptr));
}

TEST_F(OrbelObjectTest, ReferencesAreCountedOverAllInterfaces)
{
    // The fixture holds two: the object's first and its Orbel interface.
    auto* test = query<OrbelTest>(object, IID_OrbelTest);
    EXPECT_EQ(4u, test->AddRef());
    EXPECT_EQ(3u, orbel->Release());
    EXPECT_EQ(2u, test->Release());
    EXPECT_EQ(1u, test->Release());
    orbel = nullptr; // given back above
}

TEST_F(OrbelObjectTest, TheLastReleaseEndsTheSession)
{
    WORD port = 0;
    ASSERT_EQ(S_OK, launch(OrbelFlags::lfStartNew, workspaceFile("ws.yaml"), &port));
    ASSERT_EQ(S_OK, attach(port));
    const auto instance = registry.instances().at(0);
    EXPECT_EQ(1, instance->clients());

    auto* coverage = query<OrbelCoverage>(object, IID_OrbelCoverage);
    orbel->Release();
    object->Release();
    EXPECT_EQ(1, instance->clients()) << "one reference is left";
    EXPECT_EQ(0u, coverage->Release());
    EXPECT_EQ(0, instance->clients()) << "the object is gone and detached";
    // The fixture's references are given back already.
    orbel = nullptr;
    object = OrbelObject::create(registry);
}

} // namespace
} // namespace quillon::com::test
