// The messages on sway's socket, and which keys of a configuration are already bound.
#include "platform/linux/shortcuts/SwayKeys.h"
#include "platform/linux/shortcuts/SwayMessages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace orlune::sway {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

TEST(SwayMessagesTest, messagesAreReadHoweverTheirBytesArrive) {
    const auto bytes = encode(MessageType::runCommand, "nop") + encode(MessageType::getConfig, "");
    EXPECT_EQ(bytes.substr(0, 14), std::string("i3-ipc\3\0\0\0\0\0\0\0", 14));
    MessageReader reader;
    std::string read;
    for (const char byte : bytes) {
        reader.append({&byte, 1});
        while (const auto message = reader.next()) {
            read += std::to_string(static_cast<int>(message->type)) + message->payload + ' ';
        }
    }
    EXPECT_EQ(read, "0nop 9 ");
    EXPECT_FALSE(reader.isBroken());
}

TEST(SwayMessagesTest, invalidDataEndsTheReading) {
    for (const auto& bytes : {std::string("i3-IPC\0\0\0\0\0\0\0\0", 14),
                              std::string("i3-ipc\xff\xff\xff\xff\0\0\0\0", 14)}) {
        MessageReader reader;
        reader.append(bytes + encode(MessageType::runCommand, "nop"));
        EXPECT_EQ(reader.next(), std::nullopt);
        EXPECT_TRUE(reader.isBroken());
    }
}

TEST(SwayMessagesTest, answersOfAnotherShapeAreRejected) {
    EXPECT_EQ(commandOfBinding(R"({"change":"run","binding":{"command":"nop x"}})"), "nop x");
    EXPECT_TRUE(isReload(R"({"change":"reload"})"));
    EXPECT_EQ(failureOfCommand(R"([{"success":true}])"), std::nullopt);
    EXPECT_EQ(failureOfCommand(R"([{"success":true},{"success":false,"error":"no"}])"), "no");
    EXPECT_EQ(configurationText(R"({"config":"set $mod Mod4"})"), "set $mod Mod4");
    for (const auto* const text : {"", "{", "[]", "3", "{}", R"({"binding":3,"change":[]})",
                                   R"([{"success":"yes"}])", R"({"config":{}})"}) {
        EXPECT_EQ(commandOfBinding(text), std::nullopt) << text;
        EXPECT_FALSE(isReload(text)) << text;
        EXPECT_TRUE(failureOfCommand(text)) << text;
        EXPECT_EQ(configurationText(text), "") << text;
    }
}

std::vector<std::string> keysOf(std::optional<std::uint16_t> key, ModifierFlags flags,
                                std::string_view functionKey = "Control_R") {
    std::vector<std::string> keys;
    for (const auto& trigger : triggersFor({.virtualKey = key, .modifiers = flags}, functionKey)) {
        keys.push_back((trigger.isCode ? "code " : "sym ") + trigger.keys);
    }
    return keys;
}

TEST(SwayKeysTest, aShortcutBecomesWhatSwayBinds) {
    using enum ModifierFlags;
    constexpr std::uint16_t spaceKey = 49;
    constexpr std::uint16_t f9Key = 101;
    EXPECT_THAT(keysOf({}, function), ElementsAre("sym Control_R"));
    EXPECT_THAT(keysOf(spaceKey, function), ElementsAre("code Ctrl+65"));
    EXPECT_THAT(keysOf(spaceKey, function | shift, "Super_R"), ElementsAre("code Shift+Mod4+65"));
    EXPECT_THAT(keysOf(spaceKey, control | option), ElementsAre("code Ctrl+Mod1+65"));
    EXPECT_THAT(keysOf(f9Key, none), ElementsAre("code 75"));
    EXPECT_THAT(keysOf({}, command), ElementsAre("sym Super_L", "sym Super_R"));
    EXPECT_THAT(keysOf({}, control | option), IsEmpty());
    EXPECT_THAT(keysOf(spaceKey, function, "F13"), IsEmpty()) << "F13 modifies nothing";
    EXPECT_THAT(keysOf(60000, none), IsEmpty());
}

TEST(SwayKeysTest, theUsersOwnBindingsAreFound) {
    const std::string configuration = "# bindsym Mod4+space nop\n"
                                      "set $mod Mod4\nset $modifier Alt\n"
                                      "  bindsym --locked $mod+Shift+Space exec foot\n"
                                      "bindsym $modifier+Control_R nop\n"
                                      "bindcode Control+38 nop\n"
                                      "bindsym Escape mode default\n";
    const auto taken = [&](const Trigger& trigger) {
        return lineThatBinds(configuration, trigger);
    };
    EXPECT_THAT(taken({.isCode = true, .keys = "Shift+Mod4+65"}),
                Optional(std::string("  bindsym --locked $mod+Shift+Space exec foot")));
    EXPECT_EQ(taken({.isCode = true, .keys = "Mod4+65"}), std::nullopt);
    EXPECT_EQ(taken({.isCode = false, .keys = "Control_R"}), std::nullopt);
    EXPECT_TRUE(taken({.isCode = true, .keys = "Ctrl+38"}));
    EXPECT_TRUE(taken({.isCode = false, .keys = "Escape"}));
}

} // namespace
} // namespace orlune::sway
