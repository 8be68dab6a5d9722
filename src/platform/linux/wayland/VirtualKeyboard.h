// Posts keys as a separate keyboard, through zwp_virtual_keyboard_v1. It exists as long as the
// program, because compositors briefly remove the seat's keyboard when one comes or goes. Main
// thread.
#pragma once

#include "platform/linux/paste/KeyInjector.h"

#include <memory>
#include <string>

struct xkb_state;
struct zwp_virtual_keyboard_manager_v1;
struct zwp_virtual_keyboard_v1;

namespace orlune {

class WaylandConnection;

class VirtualKeyboard final : public KeyInjector {
  public:
    /// Null when the compositor offers no virtual keyboards. The connection must outlive the
    /// keyboard.
    static std::unique_ptr<VirtualKeyboard> open(WaylandConnection& connection);
    ~VirtualKeyboard() override;

    std::string name() const override { return "virtual keyboard"; }
    void setOnChange(std::function<void()> onChange) override { onChange_ = std::move(onChange); }
    void prepare() override {}
    void rest() override {}
    void requestAccess() override {}
    std::string reasonForUnavailability() const override;
    bool isReady() const override;
    bool press(KeyCode key) override { return send(key, /*isDown=*/true); }
    bool release(KeyCode key) override { return send(key, /*isDown=*/false); }

  private:
    struct StateDeleter {
        void operator()(xkb_state* state) const;
    };

    explicit VirtualKeyboard(WaylandConnection& connection);
    bool sendKeymap();
    bool send(KeyCode key, bool isDown);

    WaylandConnection& connection_;
    std::function<void()> onChange_;
    zwp_virtual_keyboard_manager_v1* manager_;
    zwp_virtual_keyboard_v1* keyboard_;
    std::unique_ptr<xkb_state, StateDeleter> state_;
};

} // namespace orlune
