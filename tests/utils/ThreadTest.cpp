#include "support/TestSupport.h"

#include <orv/utils/Condition.h>
#include <orv/utils/Errors.h>
#include <orv/utils/Mutex.h>
#include <orv/utils/ScopedMutex.h>
#include <orv/utils/Thread.h>

#include <gtest/gtest.h>

using orv::test::RecordingLogger;
using orv::test::Texts;
using namespace orv::utils;

namespace {

struct Shared {
    Mutex mutex;
    Condition condition;
    bool ready = false;
    bool release = false;
    bool tryResult = true;
    RecordingLogger logger;
};

void* tryFromAnotherThread(void* argument)
{
    Shared& shared = *static_cast<Shared*>(argument);
    shared.tryResult = shared.mutex.trylock(&shared.logger);
    // Silent when no logger is given.
    shared.mutex.trylock(nullptr);
    return nullptr;
}

void* holdUntilReleased(void* argument)
{
    Shared& shared = *static_cast<Shared*>(argument);
    ScopedMutex lock(shared.mutex);
    shared.ready = true;
    shared.condition.broadcast();
    while (!shared.release) {
        shared.condition.wait(shared.mutex);
    }
    return argument;
}

} // namespace

TEST(Mutex, TrylockOnAMutexHeldElsewhereLogsTheBusySentence)
{
    Shared shared;
    ASSERT_TRUE(shared.mutex.lock(nullptr));
    Thread thread(&tryFromAnotherThread, &shared);
    ASSERT_TRUE(thread.join(nullptr));
    EXPECT_TRUE(shared.mutex.unlock(nullptr));
    EXPECT_FALSE(shared.tryResult);
    EXPECT_EQ(shared.logger.lines, (Texts{"error|thread problem|[EBUSY] The mutex it already locked."}));
}

TEST(Mutex, RecursiveMutexLocksAgainAndErrorCheckingReportsTheMisuse)
{
    Mutex recursive(Mutex::Recursive);
    RecordingLogger logger;
    EXPECT_TRUE(recursive.lock(&logger));
    EXPECT_TRUE(recursive.lock(&logger));
    EXPECT_TRUE(recursive.trylock(&logger));
    EXPECT_TRUE(recursive.unlock(&logger));
    EXPECT_TRUE(recursive.unlock(&logger));
    EXPECT_TRUE(recursive.unlock(&logger));
    if (orv::test::underThreadSanitizer) {
        GTEST_SKIP() << "the deliberate unlock of an unlocked mutex is reported by the sanitizer";
    }
    // One unlock too many: the recursive kind checks its owner.
    EXPECT_FALSE(recursive.unlock(&logger));
    EXPECT_EQ(logger.lines, (Texts{"error|thread problem|[EPERM] The current thread does not own the mutex."}));
    EXPECT_TRUE(logger.hasErrors());
}

TEST(Thread, RunsAtOnceJoinsOnceAndHandsBackItsResult)
{
    Shared shared;
    Thread thread(&holdUntilReleased, &shared);
    {
        ScopedMutex lock(shared.mutex);
        while (!shared.ready) {
            shared.condition.wait(shared.mutex);
        }
        shared.release = true;
        EXPECT_TRUE(shared.condition.signal());
    }
    void* result = nullptr;
    EXPECT_TRUE(thread.join(&result));
    EXPECT_EQ(result, &shared);
    EXPECT_FALSE(thread.join(&result));
}
