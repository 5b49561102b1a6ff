#include "base/OrderedPipeline.h"

#include <atomic>
#include <condition_variable>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>

namespace {

/// A gate that tasks wait at until the test opens it. Not an atomic's own wait, which can miss its wake-up
/// in the standard library of the Windows builds.
class CGate {
public:
    void Open()
    {
        {
            const std::lock_guard lock(m_oMutex);
            m_bOpen = true;
        }
        m_oOpened.notify_all();
    }
    void Wait()
    {
        std::unique_lock lock(m_oMutex);
        m_oOpened.wait(lock, [this] { return m_bOpen; });
    }

private:
    std::mutex m_oMutex;
    std::condition_variable m_oOpened;
    bool m_bOpen = false;
};

void SpinUntil(const std::atomic<int>& number, int value)
{
    while (number.load() != value)
        std::this_thread::yield();
}

}  // namespace

TEST(OrderedPipeline, GivesResultsBackInTheOrderOfTheTasksWhicheverIsDoneFirst)
{
    COrderedPipeline<int> pipeline(2);
    CGate gate;
    std::atomic<int> done = 0;
    pipeline.Give([&gate] {
        gate.Wait();
        return 1;
    });
    pipeline.Give([&done] { return ++done, 2; });
    pipeline.Give([&done] { return ++done, 3; });
    SpinUntil(done, 2);
    gate.Open();
    EXPECT_EQ(pipeline.Pending(), 3U);
    EXPECT_EQ(pipeline.Take(), 1);
    EXPECT_EQ(pipeline.Take(), 2);
    EXPECT_EQ(pipeline.Take(), 3);
    EXPECT_EQ(pipeline.Pending(), 0U);
}

TEST(OrderedPipeline, RunsAsManyTasksAtOnceAsItHasThreads)
{
    COrderedPipeline<int> pipeline(3);
    std::atomic<int> running = 0;
    for (int i = 0; i < 3; ++i)
        pipeline.Give([&running] {
            ++running;
            SpinUntil(running, 3);  // would wait for ever with fewer threads
            return 0;
        });
    for (int i = 0; i < 3; ++i)
        pipeline.Take();
    EXPECT_EQ(running, 3);
}

TEST(OrderedPipeline, KeepsTheOrderOfThousandsOfSmallTasks)
{
    COrderedPipeline<int> pipeline(4);
    int given = 0;
    for (int expected = 0; expected < 5000; ++expected) {
        while (given < 5000 && pipeline.Pending() < 8)
            pipeline.Give([number = given++] { return number; });
        ASSERT_EQ(pipeline.Take(), expected);
    }
}

TEST(OrderedPipeline, HandsOverResultsThatCanOnlyBeMoved)
{
    COrderedPipeline<std::unique_ptr<int>> pipeline(1);
    pipeline.Give([] { return std::make_unique<int>(7); });
    EXPECT_EQ(*pipeline.Take(), 7);
}

TEST(OrderedPipeline, ThrowsWhatATaskThrewWhenItsTurnComes)
{
    COrderedPipeline<int> pipeline(1);
    pipeline.Give([]() -> int { throw std::runtime_error("damaged"); });
    pipeline.Give([] { return 2; });
    try {
        pipeline.Take();
        ADD_FAILURE() << "it did not throw";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "damaged");
    }
    EXPECT_EQ(pipeline.Take(), 2);
}

TEST(OrderedPipeline, DoesTheWorkOnTheCallingThreadWithoutThreads)
{
    COrderedPipeline<std::thread::id> pipeline(0);
    pipeline.Give([] { return std::this_thread::get_id(); });
    EXPECT_EQ(pipeline.Take(), std::this_thread::get_id());
}

TEST(OrderedPipeline, NeverBeginsATaskThatWasDroppedInTime)
{
    std::atomic<int> begun = 0;
    CGate gate;
    {
        COrderedPipeline<int> pipeline(1);
        pipeline.Give([&begun, &gate] {
            ++begun;
            gate.Wait();
            return 1;
        });
        pipeline.Give([&begun] { return ++begun; });
        pipeline.Give([] { return 3; });
        SpinUntil(begun, 1);
        pipeline.Drop();  // at work: it goes on, and nobody waits for it
        pipeline.Drop();
        gate.Open();
        EXPECT_EQ(pipeline.Take(), 3);
    }
    EXPECT_EQ(begun, 1);
}

TEST(OrderedPipeline, CanEndWithTasksOfEveryKindPending)
{
    std::atomic<int> begun = 0;
    std::atomic<int> ended = 0;
    {
        COrderedPipeline<int> pipeline(2);
        for (int i = 0; i < 100; ++i)
            pipeline.Give([&] {
                ++begun;
                std::this_thread::yield();
                return ++ended;
            });
        pipeline.Take();
        pipeline.Drop();
    }
    EXPECT_GE(begun, 1);
    EXPECT_EQ(ended, begun) << "a task was still at work";
}

TEST(OrderedPipeline, CallsTheIdleFunctionWhileItWaits)
{
    COrderedPipeline<int> pipeline(1);
    CGate gate;
    pipeline.Give([&gate] {
        gate.Wait();
        return 1;
    });
    int calls = 0;
    EXPECT_EQ(pipeline.Take([&] {
        if (++calls == 2)
            gate.Open();
    }),
              1);
    EXPECT_GE(calls, 2);
}

TEST(OrderedPipeline, UsesAtLeastOneThreadAndAsManyAsAskedFor)
{
    EXPECT_GE(ThreadsFor(0), 1U);
    EXPECT_EQ(ThreadsFor(3), 3U);
    EXPECT_EQ(ThreadsFor(1000000), 64U);
}
