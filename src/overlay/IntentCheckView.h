// The card that shows what was understood, before anything is inserted: goal, requirements and
// possible gap. It only displays; keys are handled elsewhere. Made anew for each check. Main
// thread.
#pragma once

#include "core/IntentCheck.h"

#include <QPainterPath>
#include <QWidget>

#include <vector>

namespace orlune {

namespace ui {
class Text;
}

class IntentCheckView final : public QWidget {
  public:
    /// `shortcut` names the keys that confirm; for screen readers it is followed by where these
    /// keys are.
    IntentCheckView(const IntentCheck& check, const QString& shortcut,
                    const QString& shortcutHint = {});

    /// Keeps header and footer visible in a panel of this height, in points: if the content is too
    /// tall, it moves closer together first, then shows fewer lines of its texts, the least
    /// important ones first.
    void fit(int height);

    /// The outline of the card, in this widget's coordinates.
    QPainterPath outline() const;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QWidget* header();
    QWidget* content(const IntentCheck& check);
    QWidget* requirements(const std::vector<std::string>& requirements);
    QWidget* requirement(const std::string& text);
    QWidget* gapBox(const std::string& gap);
    QWidget* footer(const QString& shortcut, const QString& shortcutHint);

    QWidget* card_;
    QWidget* content_ = nullptr;
    QWidget* sections_ = nullptr;
    QWidget* list_ = nullptr; ///< of requirements; null without any
    ui::Text* goal_ = nullptr;
    std::vector<ui::Text*> requirements_;
    ui::Text* gap_ = nullptr;
};

} // namespace orlune
