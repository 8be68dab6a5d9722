#include "ui/AccessibleElement.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace orlune::ui {

namespace {

constexpr auto kindProperty = "orluneAccessibility";

enum Kind { hidden = 1, combined, concealed };

int kind(const QObject& object) {
    return object.property(kindProperty).toInt();
}

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
    switch (kind(*widget)) {
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

QString dots(const QString& text) {
    return QString(text.size(), u'•');
}

/// Replaces the event's text by dots; leaves events without text unchanged.
void announceInDots(QAccessibleEvent& event) {
    auto* const editor = event.object();
    switch (event.type()) {
    case QAccessible::TextInserted: {
        const auto& insertion = static_cast<QAccessibleTextInsertEvent&>(event);
        QAccessibleTextInsertEvent told(editor, insertion.changePosition(),
                                        dots(insertion.textInserted()));
        QAccessible::updateAccessibility(&told);
        break;
    }
    case QAccessible::TextRemoved: {
        const auto& removal = static_cast<QAccessibleTextRemoveEvent&>(event);
        QAccessibleTextRemoveEvent told(editor, removal.changePosition(),
                                        dots(removal.textRemoved()));
        QAccessible::updateAccessibility(&told);
        break;
    }
    case QAccessible::TextUpdated: {
        const auto& update = static_cast<QAccessibleTextUpdateEvent&>(event);
        QAccessibleTextUpdateEvent told(editor, update.changePosition(), dots(update.textRemoved()),
                                        dots(update.textInserted()));
        QAccessible::updateAccessibility(&told);
        break;
    }
    default:
        QAccessible::updateAccessibility(&event);
    }
}

/// Runs in place of the desktop's own handler, which it calls while it is uninstalled.
void announce(QAccessibleEvent* event) {
    QAccessible::installUpdateHandler(nullptr);
    if (event->object() && kind(*event->object()) == concealed) {
        announceInDots(*event);
    } else {
        QAccessible::updateAccessibility(event);
    }
    QAccessible::installUpdateHandler(announce);
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

void concealFromAccessibility(QWidget& editor) {
    editor.setProperty(kindProperty, concealed);
    QAccessible::installUpdateHandler(announce);
}

} // namespace orlune::ui
