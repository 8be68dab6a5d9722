#include "tests/desktop/wayland/Hands.h"

#include "platform/linux/wayland/VirtualKeyboard.h"

#include <fake-input-client-protocol.h>
#include <stdexcept>

namespace orlune::desktop {

Hands::Hands() : connection_(WaylandConnection::open()) {
    if (!connection_) {
        throw std::runtime_error("no compositor answers");
    }
    if (auto keyboard = std::shared_ptr<VirtualKeyboard>(VirtualKeyboard::open(*connection_))) {
        send_ = [keyboard](KeyCode key, bool isDown) {
            isDown ? keyboard->press(key) : keyboard->release(key);
        };
        return;
    }
    auto* const input = static_cast<org_kde_kwin_fake_input*>(
        connection_->bind(org_kde_kwin_fake_input_interface, 4));
    if (!input) {
        throw std::runtime_error("the compositor lets nobody type");
    }
    org_kde_kwin_fake_input_authenticate(input, "test", "types as a person would");
    const std::shared_ptr<org_kde_kwin_fake_input> owner(input, org_kde_kwin_fake_input_destroy);
    send_ = [this, owner](KeyCode key, bool isDown) {
        org_kde_kwin_fake_input_keyboard_key(owner.get(), key, isDown ? 1 : 0);
        connection_->flush();
    };
}

Hands::~Hands() {
    send_ = {}; // must go before the connection
}

void Hands::tap(const std::vector<KeyCode>& keys) {
    for (const auto key : keys) {
        press(key);
    }
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
        release(*key);
    }
}

} // namespace orlune::desktop
