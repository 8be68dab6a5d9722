#include "platform/concurrency/Actor.h"
#include "platform/concurrency/AsyncStream.h"
#include "platform/concurrency/Published.h"
#include "platform/concurrency/Task.h"
#include "platform/memory/ManualClock.h"
#include "platform/memory/TurnQueue.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace orlune {
namespace {

using namespace std::chrono_literals;

class ConcurrencyTest : public testing::Test {
  protected:
    void advance(Clock::Duration duration) {
        clock.advance(duration);
        queue.runUntilIdle();
    }

    TurnQueue queue;
    ManualClock clock;
    std::vector<std::string> events;
};

TEST_F(ConcurrencyTest, aTaskStartsInALaterTurnAndItsEndCanBeAwaited) {
    const auto task = Task::start(queue.executor(), [this]() -> Awaitable<void> {
        events.push_back("started");
        co_await clock.sleep(10ms);
        events.push_back("ended");
    });
    events.push_back("returned");
    Task::start(queue.executor(), [this, task]() -> Awaitable<void> {
        co_await task.value();
        events.push_back("awaited");
        co_await task.value();
        events.push_back("awaited again");
    });
    queue.runUntilIdle();
    EXPECT_EQ(events, (std::vector<std::string>{"returned", "started"}));
    advance(9ms);
    EXPECT_EQ(events.size(), 2u);
    advance(1ms);
    EXPECT_EQ(events, (std::vector<std::string>{"returned", "started", "ended", "awaited",
                                                "awaited again"}));
}

TEST_F(ConcurrencyTest, cancellationEndsASleepEarlyAndIsVisibleAtOnce) {
    const auto task = Task::start(queue.executor(), [this](Task self) -> Awaitable<void> {
        try {
            co_await clock.sleep(1h);
        } catch (const boost::system::system_error& error) {
            EXPECT_EQ(error.code(), boost::asio::error::operation_aborted);
            events.push_back(self.isCancelled() ? "cancelled" : "aborted");
        }
    });
    queue.runUntilIdle();
    task.cancel();
    EXPECT_TRUE(task.isCancelled());
    queue.runUntilIdle();
    EXPECT_EQ(events, std::vector<std::string>{"cancelled"});
    EXPECT_FALSE(clock.nextWake());
}

TEST_F(ConcurrencyTest, aTaskCancelledBeforeItRanStopsAtItsFirstSuspension) {
    const auto task = Task::start(queue.executor(), [this]() -> Awaitable<void> {
        events.push_back("began");
        co_await clock.sleep(1ms);
        events.push_back("went on");
    });
    task.cancel();
    queue.runUntilIdle();
    advance(1ms);
    EXPECT_EQ(events, std::vector<std::string>{"began"});
}

TEST_F(ConcurrencyTest, aCancelledTaskMayCatchButItsNextWaitFailsToo) {
    const auto task = Task::start(queue.executor(), [this]() -> Awaitable<void> {
        for (int round = 0; round < 2; ++round) {
            try {
                co_await clock.sleep(1h);
            } catch (const boost::system::system_error&) {
                events.push_back("stopped");
            }
        }
    });
    queue.runUntilIdle();
    task.cancel();
    queue.runUntilIdle();
    EXPECT_EQ(events, (std::vector<std::string>{"stopped", "stopped"}));
}

TEST_F(ConcurrencyTest, anErrorThatEscapesATaskIsReportedAndDoesNotStopTheWaiters) {
    testing::internal::CaptureStderr();
    const auto task = Task::start(queue.executor(), []() -> Awaitable<void> {
        throw std::runtime_error("lost and found");
        co_return;
    });
    Task::start(queue.executor(), [this, task]() -> Awaitable<void> {
        co_await task.value();
        events.push_back("awaited");
    });
    queue.runUntilIdle();
    EXPECT_NE(testing::internal::GetCapturedStderr().find("lost and found"), std::string::npos);
    EXPECT_EQ(events, std::vector<std::string>{"awaited"});
}

TEST_F(ConcurrencyTest, aTaskThatNobodyResumesIsUnwoundWithItsQueue) {
    auto alive = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = alive;
    {
        TurnQueue shortLived;
        ManualClock stopped;
        Task::start(shortLived.executor(),
                    [&stopped, alive]() -> Awaitable<void> { co_await stopped.sleep(1h); });
        alive.reset();
        shortLived.runUntilIdle();
        EXPECT_FALSE(watched.expired());
        stopped.advance(1h);
    }
    EXPECT_TRUE(watched.expired());
}

TEST_F(ConcurrencyTest, aTaskWhoseQueueEndsHasEndedForItsWaitersEvenIfItNeverBegan) {
    {
        TurnQueue shortLived;
        const auto task = Task::start(shortLived.executor(), [this]() -> Awaitable<void> {
            events.push_back("began");
            co_return;
        });
        Task::start(queue.executor(), [this, task]() -> Awaitable<void> {
            co_await task.value();
            events.push_back("awaited");
        });
        queue.runUntilIdle();
    }
    queue.runUntilIdle();
    EXPECT_EQ(events, std::vector<std::string>{"awaited"});
}

TEST_F(ConcurrencyTest, aStreamDeliversInOrderThenEndsAndDropsWhatComesAfter) {
    AsyncStream<std::string> stream;
    const auto producer = stream.continuation();
    producer.yield("one");
    Task::start(queue.executor(), [this, stream]() -> Awaitable<void> {
        while (auto element = co_await stream.next()) {
            events.push_back(*element);
        }
        events.push_back("end");
    });
    queue.runUntilIdle();
    producer.yield("two");
    producer.yield("three");
    queue.runUntilIdle();
    producer.yield("four");
    producer.finish();
    producer.yield("five");
    producer.finish();
    queue.runUntilIdle();
    EXPECT_EQ(events, (std::vector<std::string>{"one", "two", "three", "four", "end"}));
}

TEST_F(ConcurrencyTest, aStreamLosesNothingBetweenThreadsThatRace) {
    constexpr int perProducer = 20'000;
    AsyncStream<std::pair<int, int>> stream;
    std::vector<std::jthread> producers;
    for (int producer = 0; producer < 2; ++producer) {
        producers.emplace_back([producer, continuation = stream.continuation()] {
            for (int number = 0; number < perProducer; ++number) {
                continuation.yield({producer, number});
            }
        });
    }
    int next[2] = {0, 0};
    bool ended = false;
    Task::start(queue.executor(), [&]() -> Awaitable<void> {
        while (next[0] + next[1] < 2 * perProducer) {
            const auto element = co_await stream.next();
            EXPECT_EQ(element->second, next[element->first]++) << "out of order";
        }
        ended = true;
    });
    while (!ended) {
        queue.runUntilIdle();
        std::this_thread::yield();
    }
    EXPECT_EQ(next[0], perProducer);
    EXPECT_EQ(next[1], perProducer);
}

TEST_F(ConcurrencyTest, aCancelledConsumerLeavesTheStreamAndItsProducersGoOn) {
    AsyncStream<int> stream;
    const auto task = Task::start(queue.executor(), [this, stream]() -> Awaitable<void> {
        while (co_await stream.next()) {
            events.push_back("element");
        }
    });
    queue.runUntilIdle();
    task.cancel();
    queue.runUntilIdle();
    stream.continuation().yield(1);
    stream.continuation().finish();
    queue.runUntilIdle();
    EXPECT_TRUE(events.empty());
}

class Counter final : public Actor {
  public:
    using Actor::Actor;
    Awaitable<int> add(int amount, Clock& clock) { return isolated(adding(amount, clock)); }

  private:
    Awaitable<int> adding(int amount, Clock& clock) {
        total_ += amount;
        co_await clock.sleep(10ms);
        co_return total_;
    }
    int total_ = 0;
};

TEST_F(ConcurrencyTest, anActorIsReentrantWhileItWaits) {
    Counter counter(queue.executor());
    for (const int amount : {1, 2}) {
        Task::start(queue.executor(), [&, amount]() -> Awaitable<void> {
            const int total = co_await counter.add(amount, clock);
            events.push_back(std::to_string(total));
        });
    }
    queue.runUntilIdle();
    advance(10ms);
    EXPECT_EQ(events, (std::vector<std::string>{"3", "3"}));
}

TEST(PublishedTest, announcesBeforeItStoresAndStopsWithTheSubscription) {
    struct Model : ObservableObject {
        Published<int> number{*this, 1};
    } model;
    std::vector<std::pair<int, int>> seen; // announced, stored
    int changes = 0;
    {
        const Subscription number =
            model.number.subscribe([&](int next) { seen.emplace_back(next, model.number.get()); });
        const Subscription any = model.onChange([&] { ++changes; });
        model.number.set(2);
        model.number.set(2);
    }
    model.number.set(3);
    EXPECT_EQ(seen, (std::vector<std::pair<int, int>>{{2, 1}, {2, 2}}));
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(model.number.get(), 3);
}

TEST(SignalTest, observersMayComeAndGoWhileTheyAreCalled) {
    auto signal = std::make_unique<Signal<void(int)>>();
    std::string calls;
    Subscription added;
    Subscription own;
    Subscription last;
    const auto first = signal->connect([&](int number) { calls += "a" + std::to_string(number); });
    own = signal->connect([&](int number) {
        calls += 'b';
        own.disconnect();
        last.disconnect();
        added = signal->connect([&](int /*number*/) { calls += 'd'; });
        if (number == 1) {
            (*signal)(2);
        }
    });
    last = signal->connect([&](int /*number*/) { calls += 'c'; });
    (*signal)(1);
    EXPECT_EQ(calls, "a1ba2d");
    (*signal)(3);
    EXPECT_EQ(calls, "a1ba2da3d");
    // A handle may outlive its signal, and an observer may end it.
    const auto end = signal->connect([&](int /*number*/) { signal.reset(); });
    (*signal)(4);
    EXPECT_EQ(calls, "a1ba2da3da4d");
}

} // namespace
} // namespace orlune
