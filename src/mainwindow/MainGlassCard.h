// The card of the main window: a rounded surface with its content on it. Main thread.
#pragma once

#include <QWidget>

namespace orlune {

class MainGlassCard final : public QWidget {
  public:
    /// Owns `content`.
    explicit MainGlassCard(QWidget* content);
};

} // namespace orlune
