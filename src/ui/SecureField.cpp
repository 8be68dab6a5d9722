#include "ui/SecureField.h"

#include "platform/SecureWipe.h"
#include "ui/AccessibleElement.h"
#include "ui/FocusRing.h"
#include "ui/Style.h"
#include "ui/Surface.h"
#include "ui/Theme.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QProxyStyle>
#include <QStringEncoder>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace orlune::ui {

namespace {

constexpr int fieldHeight = 26;
constexpr int padding = 8;
constexpr double cornerRadius = 6;

/// In place, even when the characters are shared: a copy would leave the original behind.
void overwrite(const QString& text) {
    ::explicit_bzero(const_cast<QChar*>(text.constData()),
                     static_cast<std::size_t>(text.size()) * sizeof(QChar));
}

/// Small dots from the start: some styles show the letter that was typed last.
class Dots final : public QProxyStyle {
  public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override {
        switch (hint) {
        case SH_LineEdit_PasswordCharacter:
            return u'•';
        case SH_LineEdit_PasswordMaskDelay:
            return 0;
        default:
            return QProxyStyle::styleHint(hint, option, widget, returned);
        }
    }
};

} // namespace

class SecureField::Entry final : public QLineEdit {
  public:
    Entry(const QString& prompt, const QString& accessibleName) {
        auto* const dots = new Dots;
        dots->setParent(this);
        setStyle(dots);
        setEchoMode(Password);
        setPlaceholderText(prompt);
        setAccessibleName(accessibleName);
        concealFromAccessibility(*this); // Qt's line would report each letter
        setFrame(false);
        setDragEnabled(false);
        setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText
                            | Qt::ImhNoAutoUppercase);
        QPalette clear;
        clear.setColor(QPalette::Base, Qt::transparent);
        setPalette(clear);
    }

    /// Qt's line would give an input method the whole text.
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override {
        switch (query) {
        case Qt::ImSurroundingText:
        case Qt::ImCurrentSelection:
        case Qt::ImTextBeforeCursor:
        case Qt::ImTextAfterCursor:
            return QString();
        default:
            return QLineEdit::inputMethodQuery(query);
        }
    }

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        const auto isAsked = [event](auto key) { return event->matches(key); };
        if (std::ranges::none_of(std::array{QKeySequence::Undo, QKeySequence::Redo,
                                            QKeySequence::Copy, QKeySequence::Cut},
                                 isAsked)) {
            QLineEdit::keyPressEvent(event);
        }
    }

    void contextMenuEvent(QContextMenuEvent* event) override {
        auto* const menu = new QMenu(this);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        adoptTheme(*menu);
        menu->addAction(QStringLiteral("Paste"), this, &QLineEdit::paste);
        menu->addAction(QStringLiteral("Clear"), this, &QLineEdit::clear)
            ->setEnabled(!text().isEmpty());
        menu->popup(event->globalPos());
    }
};

SecureField::SecureField(const QString& prompt, const QString& accessibleName)
    : prompt_(prompt), accessibleName_(accessibleName) {
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, 0, padding, 0);
    setFixedHeight(fieldHeight);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setCursor(Qt::IBeamCursor);
    addEntry();
}

SecureField::~SecureField() {
    overwrite(entry_->text());
    delete entry_;
    if (isUsed_) {
        wipeFreeMemory();
    }
}

void SecureField::addEntry() {
    entry_ = new Entry(prompt_, accessibleName_);
    entry_->installEventFilter(this);
    connect(entry_, &QLineEdit::textChanged, this, [this] {
        isUsed_ = true;
        if (changed_) {
            changed_();
        }
    });
    connect(entry_, &QLineEdit::returnPressed, this, [this] {
        if (submitted_) {
            submitted_();
        }
    });
    layout()->addWidget(entry_);
    entry_->show(); // at once, so that it can take the focus
    setFocusProxy(entry_);
}

bool SecureField::isBlank() const {
    const QString text = entry_->text();
    return std::ranges::all_of(text, [](QChar character) { return character.isSpace(); });
}

std::string SecureField::text() const {
    const QString text = entry_->text();
    QStringEncoder encoder(QStringEncoder::Utf8);
    std::string bytes(static_cast<std::size_t>(encoder.requiredSpace(text.size())), '\0');
    const char* const end = encoder.appendToBuffer(bytes.data(), text);
    bytes.resize(static_cast<std::size_t>(end - bytes.data()));
    return bytes;
}

/// The inner line keeps typed text in its undo history, so it is destroyed.
void SecureField::wipe() {
    if (!isUsed_) {
        return;
    }
    auto* const used = entry_;
    const bool hadFocus = window()->focusWidget() == used;
    used->disconnect(this);
    overwrite(used->text());
    addEntry();
    setTabOrder(used, entry_);
    if (hadFocus) {
        entry_->setFocus();
    }
    used->hide();
    // Deferred, because the line may be reporting that Return was pressed.
    connect(used, &QObject::destroyed, &wipeFreeMemory);
    used->deleteLater();
    isUsed_ = false;
    if (changed_) {
        changed_();
    }
}

bool SecureField::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        update();
    }
    return QWidget::eventFilter(watched, event);
}

void SecureField::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintSurface(painter, rect(),
                 {.shape = Shape::rounded(cornerRadius),
                  .fill = withOpacity(Qt::white, 0.06),
                  .stroke = withOpacity(Qt::white, 0.16),
                  .lineWidth = 1});
    if (entry_->hasFocus()) {
        paintFocusRing(painter, rect(), cornerRadius, palette().color(QPalette::Highlight));
    }
}

} // namespace orlune::ui
