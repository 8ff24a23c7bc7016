#include <gtest/gtest.h>

#include "CConnectionConfig.h"

using namespace kestrix;

TEST(CConnectionConfigTest, DefaultsPrintWithIPCDiscoveryOn)
{
    EXPECT_EQ("{workspace: '', udpDiscoveryPort: 0, instanceId: '', cmdLineParams: '', waitTime: 0, "
              "UseIPCDiscovery: 1, visibility: 0}",
              CConnectionConfig().toString());
}

TEST(CConnectionConfigTest, SettersChainOnTheSameObject)
{
    CConnectionConfig config;
    CConnectionConfig& last = config.workspace("ws.yaml")
                                  .udpDiscoveryPort(5000)
                                  .instanceId("core 1")
                                  .cmdLineParams("-x")
                                  .waitTime(0x20)
                                  .useIPCDiscovery(false)
                                  .visibility(0x200);
    EXPECT_EQ(&config, &last);
    EXPECT_EQ("{workspace: 'ws.yaml', udpDiscoveryPort: 5000, instanceId: 'core 1', cmdLineParams: '-x', "
              "waitTime: 32, UseIPCDiscovery: 0, visibility: 512}",
              config.toString());
}
