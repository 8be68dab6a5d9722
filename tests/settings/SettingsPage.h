// The settings window on a platform in memory, with helpers to find its parts.
#pragma once

#include "settings/SettingsWindow.h"
#include "tests/support/DictationHarness.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include <algorithm>

namespace orlune {

class SettingsPage : public testing::Test {
  protected:
    void SetUp() override { open(); }

    void open() {
        window.present();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        settle();
    }

    /// Runs until all observers have been notified.
    void settle() {
        dictation.platform.runUntilIdle();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }

    /// The visible control with this title or name; null when there is none.
    QAbstractButton* button(const QString& name) {
        const auto all = window.findChildren<QAbstractButton*>();
        const auto found = std::ranges::find_if(all, [&](const auto* candidate) {
            return candidate->isVisible()
                   && (candidate->text() == name || candidate->accessibleName().startsWith(name));
        });
        return found == all.end() ? nullptr : *found;
    }
    void click(const QString& name) {
        QTest::mouseClick(button(name), Qt::LeftButton);
        settle();
    }

    bool shows(const QString& text) {
        return std::ranges::any_of(window.findChildren<QLabel*>(), [&](const auto* candidate) {
            return candidate->isVisible() && candidate->text() == text;
        });
    }

    QLineEdit* entry() {
        for (auto* line : window.findChildren<QLineEdit*>()) {
            if (line->isVisible()) {
                return line;
            }
        }
        return nullptr;
    }

    DictationHarness dictation{""};
    SettingsWindow window{dictation.state().shared_from_this(), dictation.platform.bundle()};
};

} // namespace orlune
