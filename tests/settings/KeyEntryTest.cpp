// Entering, replacing and removing the API key, and what remains of it in memory.

#include "platform/SecureWipe.h"
#include "tests/settings/SettingsPage.h"

#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <unistd.h>

namespace orlune {
namespace {

class KeyEntryTest : public SettingsPage {
  protected:
    void enter(const QString& text) {
        entry()->setFocus();
        QTest::keyClicks(entry(), text);
        settle();
    }
    void pressReturn() {
        QTest::keyClick(entry(), Qt::Key_Return);
        settle();
    }
    std::string storedKey() {
        const auto& items = dictation.platform.secretItems.items;
        return items.empty() ? "none" : items.front().data;
    }
};

TEST_F(KeyEntryTest, blankEntriesAreNotSaved) {
    EXPECT_TRUE(shows("Required for transcription"));
    EXPECT_FALSE(button("Remove"));
    EXPECT_FALSE(button("Save")->isEnabled());
    const auto asked = dictation.platform.secretItems.log;
    enter("  \t ");
    EXPECT_FALSE(button("Save")->isEnabled());
    pressReturn();
    EXPECT_EQ(dictation.platform.secretItems.log, asked);
    EXPECT_TRUE(shows("Required for transcription"));
}

TEST_F(KeyEntryTest, savesReplacesAndRemoves) {
    enter("  first ");
    pressReturn();
    EXPECT_EQ(storedKey(), "first");
    EXPECT_TRUE(dictation.state().hasDeepgramAPIKey());
    EXPECT_TRUE(shows("Key saved in Mac Keychain"));
    EXPECT_EQ(entry()->text(), "");
    EXPECT_TRUE(entry()->hasFocus());
    EXPECT_FALSE(button("Replace")->isEnabled());

    enter("second");
    click("Replace");
    EXPECT_EQ(storedKey(), "second");
    EXPECT_TRUE(entry()->hasFocus()) << "not what comes after the button";

    enter("forgotten");
    click("Remove");
    EXPECT_EQ(storedKey(), "none");
    EXPECT_FALSE(dictation.state().hasDeepgramAPIKey());
    EXPECT_TRUE(shows("Key removed"));
    EXPECT_EQ(entry()->text(), "");
    EXPECT_FALSE(button("Remove"));
    EXPECT_FALSE(button("Save")->isEnabled());
}

TEST_F(KeyEntryTest, aRefusalOfTheKeyringIsShownAndTheEntryStays) {
    dictation.platform.secretItems.addStatus = {SecretStatus::Code::refused,
                                                "The keyring is locked"};
    enter("first");
    click("Save");
    EXPECT_TRUE(shows("The keyring is locked"));
    EXPECT_EQ(entry()->text(), "first");
    EXPECT_FALSE(dictation.state().hasDeepgramAPIKey());
    EXPECT_TRUE(button("Save")->isEnabled());
}

TEST_F(KeyEntryTest, whatWasNotSavedIsForgottenWhenTheWindowCloses) {
    enter("half a key");
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    open();
    EXPECT_EQ(entry()->text(), "");
}

// A sanitizer keeps freed memory to detect later uses.
#if defined(__has_feature)
#define ORLUNE_IS_SANITIZED __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#else
#define ORLUNE_IS_SANITIZED 0
#endif
#if !(ORLUNE_IS_SANITIZED)

constexpr int keyLength = 40;
/// A row of this many letters of the key counts as found.
constexpr int fragmentLength = 10;

/// Computed letter by letter, because this program must not contain the key.
char keyLetter(int index) {
    const auto mixed = (static_cast<unsigned int>(index) + 1) * 2654435761U;
    return "0123456789abcdef"[mixed >> 28];
}

bool isFragment(const char* memory, int start, int bytesPerLetter) {
    for (int index = 0; index < fragmentLength; ++index) {
        if (memory[index * bytesPerLetter] != keyLetter(start + index)) {
            return false;
        }
    }
    return true;
}

/// How many quarters of the key are in this process's writable memory. Read through the system,
/// because guard pages of stacks are listed as readable but are not.
int fragmentsInMemory(int bytesPerLetter) {
    static std::array<char, 1 << 16> chunk;
    constexpr std::size_t page = 4096;
    const auto overlap = static_cast<std::size_t>(fragmentLength * bytesPerLetter);
    const int memory = ::open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    int found = 0;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        std::size_t place = 0;
        std::size_t end = 0;
        char isWritable = '-';
        if (std::sscanf(line.c_str(), "%zx-%zx r%c", &place, &end, &isWritable) != 3
            || isWritable != 'w') {
            continue;
        }
        while (place + overlap < end) {
            const auto wanted = std::min(chunk.size(), end - place);
            const auto count = ::pread(memory, chunk.data(), wanted, static_cast<off_t>(place));
            const auto size = count > 0 ? static_cast<std::size_t>(count) : 0;
            for (std::size_t index = 0; index + overlap <= size; ++index) {
                if (chunk[index] == '\0') {
                    continue; // most of it
                }
                for (int quarter = 0; quarter < keyLength; quarter += fragmentLength) {
                    found += isFragment(&chunk[index], quarter, bytesPerLetter) ? 1 : 0;
                }
            }
            ::explicit_bzero(chunk.data(), size); // or it would be found as well
            place += size < wanted ? size / page * page + page : size - overlap;
            if (size == wanted && wanted < chunk.size()) {
                break;
            }
        }
    }
    ::close(memory);
    return found;
}

TEST(FreeMemoryTest, isOverwrittenWhereverItLies) {
    std::vector<std::string> copies;
    for (std::size_t size = 200; size < 400'000; size += size / 3) {
        copies.emplace_back(size, '-');
    }
    for (auto& copy : copies) {
        for (std::size_t place = 64; place + keyLength < copy.size(); place += keyLength) {
            for (int index = 0; index < keyLength; ++index) {
                copy[place + static_cast<std::size_t>(index)] = keyLetter(index);
            }
        }
    }
    const std::string between(100, '-'); // separates freed memory from the unused end of the heap
    copies.clear();
    EXPECT_GT(fragmentsInMemory(1), 0) << "or there is nothing to do";
    wipeFreeMemory();
    EXPECT_EQ(fragmentsInMemory(1), 0);
}

class KeyInMemoryTest : public KeyEntryTest, public testing::WithParamInterface<bool> {
  protected:
    void typeKey() {
        for (int index = 0; index < keyLength; ++index) {
            QTest::keyClick(entry(), keyLetter(index));
        }
    }
    void pasteKey() {
        QString key;
        for (int index = 0; index < keyLength; ++index) {
            key += QLatin1Char(keyLetter(index));
        }
        auto* const clipboard = QGuiApplication::clipboard();
        clipboard->setText(key);
        QTest::keySequence(entry(), QKeySequence::Paste);
        clipboard->clear();
        key.fill(QLatin1Char('-')); // the copy in the program that it was pasted from
    }
};

TEST_P(KeyInMemoryTest, nothingIsLeftOfASavedKey) {
    GetParam() ? pasteKey() : typeKey();
    EXPECT_GE(fragmentsInMemory(sizeof(QChar)), 4) << "the key that is in the field";
    pressReturn();
    auto& stored = dictation.platform.secretItems.items.at(0).data;
    ASSERT_EQ(stored.size(), static_cast<std::size_t>(keyLength));
    wipe(stored); // the keyring's copy
    EXPECT_EQ(fragmentsInMemory(1), 0);
    // A paste makes copies in the toolkit. Where an object reuses the memory of a copy before it is
    // wiped, the parts it does not write remain: never more than a quarter of the key.
    EXPECT_LE(fragmentsInMemory(sizeof(QChar)), GetParam() ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(HoweverItIsEntered, KeyInMemoryTest, testing::Bool(),
                         [](const auto& row) { return row.param ? "pasted" : "typed"; });

#endif

} // namespace
} // namespace orlune
