#include <gtest/gtest.h>
#include "CUtil.h"
TEST(CUtilSmoke, I2a) { EXPECT_EQ("1", kestrix::CUtil::i2a(1)); }
