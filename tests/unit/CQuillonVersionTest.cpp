#include <gtest/gtest.h>

#include "CQuillonVersion.h"

using namespace kestrix;

TEST(CQuillonVersionTest, SubbuildIsPrintedUnlessNone)
{
    EXPECT_EQ("9.10.15", CQuillonVersion(9, 10, 15).toString());
    EXPECT_EQ(0xFFFF, CQuillonVersion(9, 10, 15).getSubbuild());
    EXPECT_EQ("9.10.15.0", CQuillonVersion(9, 10, 15, 0).toString());
    EXPECT_EQ("9.10.15", CQuillonVersion(9, 10, 15, 0xFFFF).toString());
    // Fields are numbers, not characters.
    EXPECT_EQ("255.0.65535.65534", CQuillonVersion(255, 0, 65535, 65534).toString());
}
