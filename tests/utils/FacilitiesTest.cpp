#include "support/TestSupport.h"

#include <orv/utils/Errors.h>
#include <orv/utils/Facilities.h>
#include <orv/utils/OstreamLogger.h>
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

TEST(Facilities, SingletonGuardsItsInstanceAndTheLoggerCanBeSwapped)
{
    ASSERT_FALSE(Facilities::isSet());
    {
        AssertionCapture capture;
        Facilities* missing = &Facilities::instance();
        (void)missing;
        EXPECT_EQ(capture.texts(), (Texts{"accessing uninitialized singleton"}));
        EXPECT_EQ(capture.files(), (Texts{"utils/Singleton.h"}));
    }

    Facilities::create();
    ASSERT_TRUE(Facilities::isSet());
    AbstractLogger& standard = Facilities::instance().getLogger();
    EXPECT_NE(dynamic_cast<OstreamLogger*>(&standard), nullptr);
    RecordingLogger mine;
    Facilities::instance().setLogger(mine);
    EXPECT_EQ(&Facilities::instance().getLogger(), &mine);
    Facilities::instance().clearLogger();
    EXPECT_EQ(&Facilities::instance().getLogger(), &standard);
    EXPECT_TRUE(mine.lines.empty());

    Facilities::destroy();
    EXPECT_FALSE(Facilities::isSet());
    Facilities::destroy();
}

TEST(Facilities, DefaultLoggerSendsErrorsToTheErrorStreamAndTheRestToTheOutput)
{
    Facilities::create();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    AbstractLogger& logger = Facilities::instance().getLogger();
    logger.logInfo("i", 1, "to out");
    logger.logTrace("t", 2, "to out as well");
    logger.logError(error::invalidData, "e", 3, "to err");
    const std::string out = testing::internal::GetCapturedStdout();
    const std::string err = testing::internal::GetCapturedStderr();
    Facilities::destroy();
    EXPECT_EQ(out, "i(1): [info] to out\nt(2): [trace] to out as well\n");
    EXPECT_EQ(err, "e(3): [invalid data] to err\n");
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

TEST(Facilities, OwnTheProcessWideStringTableAndRandomManager)
{
    Facilities::create();
    StringTable& table = Facilities::instance().getStringTable();
    // Seeded with 7687: the reference hash of "a" under that seed.
    EXPECT_EQ(table.hash("a", nullptr), 0x700eac21b70a5322ULL);
    const unsigned long long hash = table.add("shared text", nullptr);
    EXPECT_STREQ(table.retrieve(hash, nullptr), "shared text");
    EXPECT_EQ(Facilities::instance().getRandomNumberGenerator().getSeed(), 0x0FFFF000u);
    Facilities::destroy();
}
