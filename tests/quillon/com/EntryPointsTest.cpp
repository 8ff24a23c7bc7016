#include <gtest/gtest.h>

#include <dlfcn.h>

#include "IUnknown.h"
#include "Orbel.h"
#include "OrbelEntryPoints.h"
#include "OrbelIdentifiers.h"
#include "OrbelResults.h"

namespace {

using namespace kestrix;

/// liborbel.so as a client loads it.
class EntryPointsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        library = dlopen(ORBEL_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(nullptr, library) << dlerror();
        createObject = reinterpret_cast<PFN_ORBEL_CREATE_OBJECT>(dlsym(library, ORBEL_CREATE_OBJECT_NAME));
        getInfo = reinterpret_cast<PFN_ORBEL_GET_INFO>(dlsym(library, ORBEL_GET_INFO_NAME));
        ASSERT_NE(nullptr, createObject);
        ASSERT_NE(nullptr, getInfo);
    }
    void TearDown() override
    {
        if (library) {
            dlclose(library);
        }
    }

    void* library = nullptr;
    PFN_ORBEL_CREATE_OBJECT createObject = nullptr;
    PFN_ORBEL_GET_INFO getInfo = nullptr;
};

TEST_F(EntryPointsTest, InfoGivesAVersionThatPassesEveryCheck)
{
    SOrbelInfo info;
    ASSERT_EQ(S_OK, getInfo(&info));
    const DWORD v = info.m_dwVersion;
    EXPECT_EQ(9u, v >> 27);
    EXPECT_EQ(10u, (v >> 22) & 0x1F);
    EXPECT_GE((v >> 12) & 0x3FF, 98u);
    EXPECT_EQ(0u, v & 0x3) << "bits outside the fields stay clear";

    SOrbelInfo small;
    small.m_dwSize = 4;
    EXPECT_EQ(ORBEL_E_SIZE, getInfo(&small));
    EXPECT_EQ(0u, small.m_dwVersion);
    EXPECT_EQ(E_INVALIDARG, getInfo(nullptr));
}

TEST_F(EntryPointsTest, CreateObjectMakesOneObjectOfTheClass)
{
    IUnknown* object = reinterpret_cast<IUnknown*>(0x1);
    EXPECT_EQ(E_INVALIDARG, createObject(&IID_Orbel, &object));
    EXPECT_EQ(nullptr, object);
    object = reinterpret_cast<IUnknown*>(0x1);
    EXPECT_EQ(E_INVALIDARG, createObject(nullptr, &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(E_INVALIDARG, createObject(&CLSID_ORBEL, nullptr));

    ASSERT_EQ(S_OK, createObject(&CLSID_ORBEL, &object));
    ASSERT_NE(nullptr, object);
    void* pointer = nullptr;
    ASSERT_EQ(S_OK, object->QueryInterface(IID_Orbel, &pointer));
    auto* orbel = static_cast<Orbel*>(pointer);
    EXPECT_EQ(1u, object->Release()) << "the first reference goes, the interface's stays";
    SLaunchInfo info;
    EXPECT_EQ(ORBEL_E_BAD_ID, orbel->Launch(4, &info));
    char text[128];
    EXPECT_EQ(ORBEL_S_MSG_FAIL, orbel->GetLastError(0, text, sizeof text));
    EXPECT_STREQ("Orbel::Launch: enumeration needs m_pfnInstanceEnumerator", text);
    EXPECT_EQ(0u, orbel->Release());
}

} // namespace
