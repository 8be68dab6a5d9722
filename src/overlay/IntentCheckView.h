// The card that shows what was understood, before anything is inserted: goal, requirements and
// possible gap. It only shows; keys are heard elsewhere. Made anew for each check. Main thread.
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
    /// `shortcut` is the name of the keys that confirm; a screen reader adds where they are.
    IntentCheckView(const IntentCheck& check, const QString& shortcut,
                    const QString& shortcutHint = {});

    /// Keeps header and footer in view in a panel of this height, in points: a content that is too
    /// tall moves together, then shows fewer lines of its texts, the least weighty ones first.
    void fit(int height);

    /// The card's, in this widget's coordinates.
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
    QWidget* list_ = nullptr; ///< of requirements, where there are any
    ui::Text* goal_ = nullptr;
    std::vector<ui::Text*> requirements_;
    ui::Text* gap_ = nullptr;
};

} // namespace orlune
