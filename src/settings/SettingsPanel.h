// A titled card of the settings page. Main thread.
#pragma once

#include <QString>
#include <QWidget>

#include <initializer_list>

namespace orlune {

class SettingsPanel final : public QWidget {
  public:
    /// A part of a panel, which may extend into the panel's padding.
    struct Content {
        Content(QWidget* part, int beyond = 0) // NOLINT(google-explicit-constructor): reads as list
            : widget(part), overflow(beyond) {}

        QWidget* widget;
        int overflow; ///< points, on each side
    };

    SettingsPanel(const QString& title, std::initializer_list<Content> content);

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace orlune
