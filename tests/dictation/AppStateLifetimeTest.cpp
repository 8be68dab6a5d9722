#include "dictation/AppState.h"
#include "platform/memory/MemoryPlatform.h"

#include <gtest/gtest.h>

namespace orlune {
namespace {

using namespace std::chrono_literals;

/// Wraps another owner's queue, so that this actor can end earlier.
class LentMainActor final : public MainActor {
  public:
    explicit LentMainActor(MainActor& lender) : lender_(lender) {}
    Executor executor() const override { return lender_.executor(); }
    bool isCurrent() const override { return lender_.isCurrent(); }

  private:
    MainActor& lender_;
};

TEST(AppStateLifetimeTest, aStateThatATaskStillHoldsMayEndAfterTheMainActor) {
    MemoryPlatform platform;
    ASSERT_TRUE(platform.secretItems
                    .add(KeychainStore::query(SecretKey::deepgramAPIKey), "secret",
                         SecretAccessibility::afterFirstUnlockThisDeviceOnly)
                    .isSuccess());
    auto mainActor = std::make_unique<LentMainActor>(platform.queue);
    auto state = AppState::make(platform.bundle(*mainActor));
    state->beginDictation();
    platform.runUntilIdle();
    state->endDictation();
    platform.runUntilIdle();
    const std::weak_ptr<AppState> watched = state;
    state.reset();
    ASSERT_FALSE(watched.expired()) << "the last results are still awaited";
    mainActor.reset();
    platform.clock.forgetSleepers();
    platform.runUntilIdle();
    EXPECT_TRUE(watched.expired());
}

} // namespace
} // namespace orlune
