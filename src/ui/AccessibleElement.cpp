#include "ui/AccessibleElement.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace orlune::ui {

namespace {

constexpr auto kindProperty = "orluneAccessibility";

enum Kind { hidden = 1, combined };

class HiddenElement final : public QAccessibleWidget {
  public:
    explicit HiddenElement(QWidget* widget) : QAccessibleWidget(widget, QAccessible::NoRole) {}

    QAccessible::State state() const override {
        auto state = QAccessibleWidget::state();
        state.invisible = true;
        return state;
    }
    QString text(QAccessible::Text /*kind*/) const override { return {}; }
    int childCount() const override { return 0; }
};

class CombinedElement final : public QAccessibleWidget {
  public:
    explicit CombinedElement(QWidget* widget)
        : QAccessibleWidget(widget, QAccessible::StaticText) {}

    int childCount() const override { return 0; }
};

QAccessibleInterface* makeElement(const QString& /*className*/, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (!widget) {
        return nullptr;
    }
    switch (widget->property(kindProperty).toInt()) {
    case hidden:
        return new HiddenElement(widget);
    case combined:
        return new CombinedElement(widget);
    default:
        return nullptr;
    }
}

void setKind(QWidget& widget, Kind kind) {
    static const bool isInstalled = [] {
        QAccessible::installFactory(makeElement);
        return true;
    }();
    static_cast<void>(isInstalled);
    widget.setProperty(kindProperty, kind);
}

} // namespace

void hideFromAccessibility(QWidget& widget) {
    setKind(widget, hidden);
}

void combineForAccessibility(QWidget& widget, const QString& label) {
    setKind(widget, combined);
    if (widget.accessibleName() != label) {
        widget.setAccessibleName(label);
    }
}

} // namespace orlune::ui
