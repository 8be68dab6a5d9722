// A key cap with a key's name, and what the key does. One element to assistive technology.
#pragma once

#include <QWidget>

namespace orlune {

class ShortcutHint final : public QWidget {
  public:
    /// `place` says where the key is, only for assistive technology; the panel takes no pointer.
    ShortcutHint(const QString& key, const QString& action, const QString& place = {});
};

} // namespace orlune
