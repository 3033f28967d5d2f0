#include "support/TestSupport.h"

#include <orv/utils/Errors.h>
#include <orv/utils/Facilities.h>
#include <orv/utils/Platforms.h>
#include <orv/utils/RandomManager.h>
#include <orv/utils/StringTable.h>
#include <orv/utils/ScopedPtr.h>
#include <orv/utils/c/System.h>

#include <gtest/gtest.h>

using orv::test::AssertionCapture;
using orv::test::RecordingLogger;
using orv::test::Texts;
using namespace orv::utils;

TEST(Facilities, GuardTheirInstanceAndOwnTheLoggerStringTableAndRandomManager)
{
    ASSERT_FALSE(Facilities::isSet());
    {
        AssertionCapture capture;
        Facilities* missing = &Facilities::instance();
        (void)missing;
        EXPECT_EQ(capture.texts(), (Texts { "accessing uninitialized singleton" }));
        EXPECT_EQ(capture.files(), (Texts { "utils/Singleton.h" }));
    }

    Facilities::create();
    ASSERT_TRUE(Facilities::isSet());
    AbstractLogger& standard = Facilities::instance().getLogger();
    RecordingLogger mine;
    Facilities::instance().setLogger(mine);
    EXPECT_EQ(&Facilities::instance().getLogger(), &mine);
    Facilities::instance().clearLogger();
    EXPECT_EQ(&Facilities::instance().getLogger(), &standard);

    // The default logger sends errors to the error stream and the rest to the output.
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    standard.logInfo("i", 1, "to out");
    standard.logTrace("t", 2, "to out as well");
    standard.logError(error::invalidData, "e", 3, "to err");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "i(1): [info] to out\nt(2): [trace] to out as well\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "e(3): [invalid data] to err\n");
    EXPECT_TRUE(mine.lines.empty());

    // The string table is seeded with 7687: the reference hash of "a" under that seed.
    StringTable& table = Facilities::instance().getStringTable();
    EXPECT_EQ(table.hash("a", nullptr), 0x700eac21b70a5322ULL);
    EXPECT_STREQ(table.retrieve(table.add("shared text", nullptr), nullptr), "shared text");
    EXPECT_EQ(Facilities::instance().getRandomNumberGenerator().getSeed(), 0x0FFFF000u);

    Facilities::destroy();
    EXPECT_FALSE(Facilities::isSet());
    Facilities::destroy();
}

namespace {

struct Probe {
    explicit Probe(int& destroyed) : destroyed_(destroyed) {}
    ~Probe() { ++destroyed_; }
    int value = 7;
    int& destroyed_;
};

} // namespace

TEST(ScopedPtr, OwnsReleasesAndGuardsNullAccess)
{
    int destroyed = 0;
    {
        ScopedPtr<Probe> pointer(ORV_NEW(Probe)(destroyed));
        EXPECT_EQ(pointer->value, 7);
        pointer.reset(ORV_NEW(Probe)(destroyed));
        EXPECT_EQ(destroyed, 1);

        AssertionCapture capture;
        Probe* same = pointer.get();
        pointer.reset(same);
        EXPECT_EQ(capture.texts(), (Texts{"resetting a scoped ptr to itself!"}));
        EXPECT_EQ(destroyed, 1);
    }
    EXPECT_EQ(destroyed, 2);

    AssertionCapture capture;
    ScopedPtr<Probe> empty;
    EXPECT_EQ(empty.operator->(), nullptr);
    EXPECT_EQ(capture.texts(), (Texts{"accessing a null scoped ptr"}));
}

TEST(Platforms, NamesTheTableAndRefusesOtherValues)
{
    EXPECT_STREQ(platform::toString(platform::win_vc100_x86), "win_vc100_x86");
    EXPECT_STREQ(orv_utils_platform_toString(7), "mac_clang51_x64");
    EXPECT_EQ(getCurrentPlatform() % 2, 1);
    EXPECT_NE(orv_utils_platform_toString(orv_utils_getCurrentPlatform()), nullptr);
    EXPECT_STREQ(orv_utils_getVersionStr(), "0.4.0");

    AssertionCapture capture;
    EXPECT_EQ(orv_utils_platform_toString(2), nullptr);
    EXPECT_EQ(capture.texts(), (Texts{"Unknown platform"}));
}
