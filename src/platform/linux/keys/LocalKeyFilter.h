// The keys our own windows are about to receive, with the chance to keep them from them; an open
// menu receives Escape whatever is answered. Installed on the Qt application for as long as it
// lives; main thread.
#pragma once

#include "platform/KeyEvents.h"
#include "platform/linux/x11/KeyboardLayout.h"

#include <QObject>

#include <functional>
#include <utility>

namespace orlune {

class LocalKeyFilter final : public QObject {
  public:
    struct Key {
        KeyboardLayout::Keycode keycode;
        bool isDown;
        bool isARepeat;
        /// Asked ahead, because a window might take the key for one of its shortcuts.
        bool isAnnouncement;
    };
    using Ask = std::function<KeyEventAnswer(const Key&)>;

    explicit LocalKeyFilter(Ask ask);
    ~LocalKeyFilter() override;

    bool eventFilter(QObject* receiver, QEvent* event) override;

  private:
    Ask ask_;
};

} // namespace orlune
