#include "app/doctor/KeyringCheck.h"

#include "platform/SecureWipe.h"
#include "services/KeychainStore.h"

namespace orlune {

namespace {

using State = Finding::State;
using Code = SecretStatus::Code;

std::string adviceFor(Code code) {
    switch (code) {
    case Code::interactionNotAllowed:
    case Code::timedOut:
    case Code::userCanceled:
        return "Unlock the keyring, and try again.";
    case Code::noDefaultStore:
        return "Create or share a keyring in the keyring's own program.";
    default:
        return "Run a keyring in this session: GNOME Keyring, KWallet or KeePassXC.";
    }
}

} // namespace

Findings checkKeyring(SecretItems& secrets) {
    constexpr auto name = "keyring";
    auto match = secrets.copyMatching(KeychainStore::query(SecretKey::deepgramAPIKey));
    const bool hasKey = match.data && !match.data->empty();
    if (match.data) {
        wipe(*match.data);
    }
    const auto code = match.status.code;
    if (!match.status.isSuccess() && code != Code::itemNotFound) {
        return {{name, State::fail, match.status.message, adviceFor(code)}};
    }
    Findings findings{{name, State::ok, "answers"}};
    if (hasKey) {
        findings.push_back({"API key", State::ok, "is stored"});
    } else {
        findings.push_back({"API key", State::fail, "none is stored", "Run \"orlune key set\"."});
    }
    return findings;
}

} // namespace orlune
