#include "support/TestSupport.h"

#include <orv/utils/DynamicObject.h>
#include <orv/utils/c/DynamicObject.h>

#include <gtest/gtest.h>

extern "C" const char* orv_test_dynamicObjectFromC(orv_DynamicObject* shared);
extern "C" const char* orv_test_dynamicObjectMisuseFromC(void);

namespace orv {
namespace test {
namespace {

TEST(DynamicObjectC, ReadsAndWritesTheObjectItselfAndAnswersFailureValuesToWrongTextsAndHandles)
{
    utils::DynamicObject shared;
    const char* failed = orv_test_dynamicObjectFromC(&shared.getWrapper());
    EXPECT_EQ(failed, nullptr) << failed;
    EXPECT_EQ(shared.getInt("fromC", 0), 42);

    AssertionCapture capture;
    failed = orv_test_dynamicObjectMisuseFromC();
    EXPECT_EQ(failed, nullptr) << failed;
    EXPECT_EQ(capture.texts(),
        (Texts { "o", "o", "o", "Null string given as a key", "Null string given as a key",
            "Null string given as a key", "The given child key, x.y is invalid.", "The given child key,  is invalid.",
            "Block index out of range", "Invalid property" }));
}

} // namespace
} // namespace test
} // namespace orv
