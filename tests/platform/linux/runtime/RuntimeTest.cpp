#include "platform/concurrency/Actor.h"
#include "platform/concurrency/Task.h"
#include "platform/linux/runtime/BackgroundThread.h"
#include "platform/linux/runtime/QtMainActor.h"
#include "platform/linux/runtime/SteadyClock.h"

#include <QCoreApplication>
#include <boost/asio/post.hpp>
#include <gtest/gtest.h>

#include <future>
#include <thread>
#include <vector>

namespace orlune {
namespace {

using namespace std::chrono_literals;

class RuntimeTest : public testing::Test {
  protected:
    /// Runs the Qt loop until `condition` holds; ctest's time limit ends a test that hangs.
    template <typename Condition>
    void runUntil(Condition condition) {
        while (!condition()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

    int argumentCount = 1;
    char name[5] = "test";
    char* arguments[2] = {name, nullptr};
    QCoreApplication application{argumentCount, arguments};
    QtMainActor main;
    BackgroundThread background;
    SteadyClock clock{background.context()};
};

TEST_F(RuntimeTest, aTaskSleepsAndHopsButAlwaysComesBackToTheMainThread) {
    class Elsewhere final : public Actor {
      public:
        using Actor::Actor;
        Awaitable<std::thread::id> thread() { return isolated(current()); }

      private:
        Awaitable<std::thread::id> current() { co_return std::this_thread::get_id(); }
    } elsewhere(background.executor());
    bool done = false;
    Task::start(main.executor(), [&]() -> Awaitable<void> {
        EXPECT_TRUE(main.isCurrent());
        const auto before = clock.now();
        co_await clock.sleep(5ms);
        EXPECT_GE(clock.now() - before, 5ms);
        EXPECT_TRUE(main.isCurrent());
        const auto other = co_await elsewhere.thread();
        EXPECT_NE(other, std::this_thread::get_id());
        EXPECT_TRUE(main.isCurrent());
        done = true;
    });
    EXPECT_FALSE(done);
    runUntil([&] { return done; });
}

TEST_F(RuntimeTest, workFromOtherThreadsRunsInOrderAndNeverInsideThePost) {
    std::vector<int> order;
    boost::asio::post(main.executor(), [&] {
        boost::asio::post(main.executor(), [&] { order.push_back(2); });
        order.push_back(1);
    });
    runUntil([&] { return order.size() == 2; });
    std::jthread other([&] {
        for (int number = 3; number <= 1000; ++number) {
            boost::asio::post(main.executor(), [&order, number] { order.push_back(number); });
        }
    });
    runUntil([&] { return order.size() == 1000; });
    for (int number = 1; number <= 1000; ++number) {
        EXPECT_EQ(order[static_cast<std::size_t>(number - 1)], number);
    }
}

TEST_F(RuntimeTest, aCancelledSleepEndsEarlyWhereverItRaces) {
    int ended = 0;
    constexpr int rounds = 200;
    for (int round = 0; round < rounds; ++round) {
        // Close to the moment at which the timer fires.
        const auto task = Task::start(main.executor(), [&, round]() -> Awaitable<void> {
            try {
                co_await clock.sleep(round % 2 == 0 ? 1ms : 1h);
            } catch (const boost::system::system_error&) {
            }
            ++ended;
        });
        Task::start(background.executor(), [&, task]() -> Awaitable<void> {
            co_await clock.sleep(1ms);
            task.cancel();
        });
    }
    runUntil([&] { return ended == rounds; });
}

TEST_F(RuntimeTest, anExceptionInTheMainLoopIsReportedAndTheLoopGoesOn) {
    testing::internal::CaptureStderr();
    bool after = false;
    boost::asio::post(main.executor(), [] { throw std::runtime_error("told on the way out"); });
    boost::asio::post(main.executor(), [&] { after = true; });
    runUntil([&] { return after; });
    EXPECT_NE(testing::internal::GetCapturedStderr().find("told on the way out"),
              std::string::npos);
}

TEST_F(RuntimeTest, whatStillWaitsWhenTheProgramEndsIsReleased) {
    auto onMain = std::make_shared<int>(1);
    auto onBackground = std::make_shared<int>(2);
    const std::weak_ptr<int> watchedMain = onMain;
    const std::weak_ptr<int> watchedBackground = onBackground;
    Executor survivor;
    {
        auto shortMain = std::make_unique<QtMainActor>();
        BackgroundThread shortBackground;
        SteadyClock shortClock(shortBackground.context());
        survivor = shortMain->executor();
        std::promise<void> waiting;
        Task::start(shortMain->executor(),
                    [&, onMain]() -> Awaitable<void> { co_await shortClock.sleep(1h); });
        const auto endless =
            Task::start(shortBackground.executor(), [&, onBackground]() -> Awaitable<void> {
                waiting.set_value();
                co_await shortClock.sleep(1h);
            });
        Task::start(shortMain->executor(),
                    [&, onMain, endless]() -> Awaitable<void> { co_await endless.value(); });
        onMain.reset();
        onBackground.reset();
        waiting.get_future().wait();
        QCoreApplication::processEvents();
        shortBackground.stop();
        shortMain.reset();
    }
    boost::asio::post(survivor, [] { FAIL() << "nobody is there to run this"; });
    QCoreApplication::processEvents();
    EXPECT_TRUE(watchedMain.expired());
    EXPECT_TRUE(watchedBackground.expired());
}

} // namespace
} // namespace orlune
