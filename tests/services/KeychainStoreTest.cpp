#include "services/KeychainStore.h"

#include "platform/memory/MemorySecretItems.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orlune {
namespace {

using testing::ElementsAre;

constexpr auto key = SecretKey::deepgramAPIKey;

class KeychainStoreTest : public testing::Test {
  protected:
    MemorySecretItems items;
    KeychainStore store{items};
};

TEST_F(KeychainStoreTest, ReturnsWhatWasStored) {
    for (const std::string value : {"abc", "abc", "Schlüssel – 鍵", "with\nnewline "}) {
        store.set(value, key);
        EXPECT_EQ(store.string(key), value);
        EXPECT_EQ(items.items.size(), 1u) << "a replacement leaves exactly one item";
    }
    EXPECT_EQ(items.items[0].query.service, "app.orlune.Orlune");
    EXPECT_EQ(items.items[0].query.account, "deepgramAPIKey");
    EXPECT_EQ(items.items[0].accessibility, SecretAccessibility::afterFirstUnlockThisDeviceOnly);
}

TEST_F(KeychainStoreTest, AnEmptyValueRemovesTheItem) {
    store.set("abc", key);
    store.set("", key);
    EXPECT_EQ(store.string(key), std::nullopt);
    EXPECT_TRUE(items.items.empty());
}

TEST_F(KeychainStoreTest, AReplacementIsADeletionAndThenAnAddition) {
    store.set("abc", key);
    EXPECT_THAT(items.log, ElementsAre("remove app.orlune.Orlune/deepgramAPIKey",
                                       "add app.orlune.Orlune/deepgramAPIKey"));
}

TEST_F(KeychainStoreTest, ReadsNothingFromAStoreThatFailsOrHoldsOtherBytes) {
    const auto query = KeychainStore::query(key);
    for (const std::string bytes : {"\xff", "a\xc3", "\xed\xa0\x80", "\xc0\x80"}) {
        items.items = {{query, bytes, SecretAccessibility::afterFirstUnlockThisDeviceOnly}};
        EXPECT_EQ(store.string(key), std::nullopt) << testing::PrintToString(bytes);
    }
    items.items[0].data = "";
    EXPECT_EQ(store.string(key), "") << "an item without data is the empty text";
    items.copyMatchingStatus = {SecretStatus::Code::interactionNotAllowed,
                                "The keyring is locked."};
    EXPECT_EQ(store.string(key), std::nullopt);
}

TEST_F(KeychainStoreTest, ARefusedReplacementLeavesNothingAndSaysWhy) {
    store.set("old", key);
    items.addStatus = {SecretStatus::Code::refused, "The keyring refused."};
    try {
        store.set("new", key);
        FAIL() << "the refusal must reach the caller";
    } catch (const KeychainStore::Error& error) {
        EXPECT_EQ(error.code(), SecretStatus::Code::refused);
        EXPECT_STREQ(error.what(), "The keyring refused.");
    }
    EXPECT_EQ(store.string(key), std::nullopt);
}

TEST_F(KeychainStoreTest, AFailedDeletionIsOnlyReportedByTheAddition) {
    store.set("old", key);
    items.removeStatus = {SecretStatus::Code::timedOut, "The keyring did not answer."};
    EXPECT_NO_THROW(store.set("", key));
    EXPECT_THROW(store.set("new", key), KeychainStore::Error);
    EXPECT_EQ(store.string(key), "old");
}

} // namespace
} // namespace orlune
