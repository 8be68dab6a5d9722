#include "app/commands/KeyCommand.h"

#include "app/commands/ReadSecret.h"
#include "core/Text.h"
#include "platform/SecureWipe.h"
#include "services/KeychainStore.h"

#include <cstdio>
#include <string>

namespace orlune {

namespace {

const SecretItemQuery item = KeychainStore::query(SecretKey::deepgramAPIKey);

int failed(const std::string& reason) {
    std::fprintf(stderr, "orlune: %s\n", reason.c_str());
    return exitFailed;
}

int setKey(SecretItems& secrets, int input) {
    auto typed = readSecret(input, "Deepgram API key (it is not shown): ").value_or(std::string());
    const auto key = trimmedWhitespaceAndNewlines(typed);
    if (key.empty()) {
        return failed("no key was given; nothing was changed");
    }
    std::string error;
    try {
        KeychainStore(secrets).set(key, SecretKey::deepgramAPIKey);
    } catch (const KeychainStore::Error& refusal) {
        error = refusal.what();
    }
    wipe(typed);
    if (!error.empty()) {
        return failed(error);
    }
    std::fputs("The key is in the keyring.\n", stderr);
    return exitDone;
}

int removeKey(SecretItems& secrets) {
    const auto status = secrets.remove(item);
    if (!status.isSuccess() && status.code != SecretStatus::Code::itemNotFound) {
        return failed(status.message);
    }
    std::fputs("No key is in the keyring.\n", stderr);
    return exitDone;
}

int showStatus(SecretItems& secrets) {
    auto match = secrets.copyMatching(item);
    const bool isThere = match.data && !match.data->empty();
    if (match.data) {
        wipe(*match.data);
    }
    if (!match.status.isSuccess() && match.status.code != SecretStatus::Code::itemNotFound) {
        return failed(match.status.message);
    }
    std::puts(isThere ? "A key is in the keyring." : "No key is in the keyring.");
    return isThere ? exitDone : exitFailed;
}

} // namespace

int runKeyCommand(const KeyOptions& options, SecretItems& secrets, int input) {
    switch (options.action) {
    case KeyOptions::Action::set:
        return setKey(secrets, input);
    case KeyOptions::Action::remove:
        return removeKey(secrets);
    case KeyOptions::Action::status:
        return showStatus(secrets);
    }
    return exitFailed;
}

SecretServiceItems::Options patientKeyring() {
    auto options = SecretServiceItems::sessionOptions();
    options.onPrompt = [] {
        std::fputs("The keyring asks for its password in a window of its own. Ctrl-C gives up.\n",
                   stderr);
    };
    return options;
}

} // namespace orlune
