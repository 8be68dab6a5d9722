// A key cap with a key's name, and what the key does. One element to assistive technology.
#pragma once

#include <QWidget>

namespace orlune {

class ShortcutHint final : public QWidget {
  public:
    ShortcutHint(const QString& key, const QString& action);
};

} // namespace orlune
