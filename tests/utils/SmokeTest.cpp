#include <orv/utils/System.h>
#include <gtest/gtest.h>
TEST(Smoke, InitializesAndTerminates)
{
    EXPECT_TRUE(orv::utils::initialize(nullptr));
    EXPECT_TRUE(orv::utils::isInitialized());
    EXPECT_TRUE(orv::utils::terminate(nullptr));
    EXPECT_FALSE(orv::utils::isInitialized());
}
