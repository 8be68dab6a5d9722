// The main window as its user sees it: what is visible, and what can be pressed and typed into.
#pragma once

#include "mainwindow/MainWindow.h"
#include "tests/support/DictationHarness.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTest>

#include <optional>

namespace orlune {

class WindowUser {
  public:
    explicit WindowUser(std::string_view storedKey) : dictation(storedKey) {}

    void open() {
        window.emplace(dictation.state().shared_from_this(), dictation.platform.bundle(),
                       MainWindow::Callbacks{.openSettings = [this] { ++settingsOpened; }});
        window->present();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&*window));
        settle();
    }

    void settle() {
        dictation.platform.runUntilIdle();
        QCoreApplication::processEvents();
    }
    void wait(std::chrono::milliseconds duration) {
        dictation.platform.advance(duration);
        settle();
    }

    /// The visible part of this kind; for buttons and texts the one with this text.
    template <typename Kind>
    Kind* seen(const QString& text = {}) const {
        for (auto* widget : window->findChildren<QWidget*>()) {
            auto* part = dynamic_cast<Kind*>(widget); // Qt does not know every kind
            if (part && part->isVisible() && (text.isEmpty() || part->property("text") == text)) {
                return part;
            }
        }
        return nullptr;
    }
    bool reads(const QString& text) const { return seen<QLabel>(text) != nullptr; }
    /// The widget that assistive technology finds under this name.
    QWidget* named(const QString& name) const {
        for (auto* part : window->findChildren<QWidget*>()) {
            if (part->isVisible() && part->accessibleName() == name) {
                return part;
            }
        }
        return nullptr;
    }
    bool tells(const QString& name) const { return named(name) != nullptr; }
    QAbstractButton* button(const QString& title) const { return seen<QAbstractButton>(title); }
    QPlainTextEdit* editor() const { return seen<QPlainTextEdit>(); }

    void click(const QString& title) {
        auto* const wanted = button(title);
        ASSERT_TRUE(wanted) << title.toStdString();
        QTest::mouseClick(wanted, Qt::LeftButton);
        settle();
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        ASSERT_TRUE(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        settle();
    }
    void type(const QString& text) {
        ASSERT_TRUE(QApplication::focusWidget());
        QTest::keyClicks(QApplication::focusWidget(), text);
        settle();
    }

    DictationHarness dictation;
    int settingsOpened = 0;
    std::optional<MainWindow> window;
};

} // namespace orlune
