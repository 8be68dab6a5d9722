// The card of the intent check: its parts, and that it fits into its panel.

#include "overlay/IntentCheckView.h"

#include <QApplication>
#include <QLabel>
#include <gtest/gtest.h>

#include <algorithm>

namespace orlune {
namespace {

constexpr QSize panel{492, 390};

IntentCheck madeOf(const std::string& goal, const std::vector<std::string>& requirements = {}) {
    IntentCheck check;
    check.goal = goal;
    check.requirements = requirements;
    return check;
}

/// A visible card.
class Card {
  public:
    explicit Card(const IntentCheck& check, const QString& shortcut = QStringLiteral("⇧⌘K"))
        : view_(check, shortcut) {
        view_.setFixedSize(panel);
        view_.fit(panel.height());
        view_.show();
        QApplication::processEvents();
    }

    QStringList texts() const {
        QStringList all;
        for (const auto* text : view_.findChildren<QLabel*>()) {
            all << text->text();
        }
        return all;
    }

    /// Whether this text lies entirely within the panel and is tall enough for a line.
    bool isWhole(const QString& wanted) const {
        const auto& text = found(wanted);
        const QRect place(text.mapTo(&view_, QPoint()), text.size());
        return view_.rect().contains(place) && place.height() >= text.minimumSizeHint().height();
    }

    const QLabel& found(const QString& wanted) const {
        const auto all = view_.findChildren<QLabel*>();
        return **std::ranges::find(all, wanted, &QLabel::text);
    }

    QRectF outline() const { return view_.outline().boundingRect(); }

  private:
    IntentCheckView view_;
};

TEST(IntentCheckViewTest, showsThreeRequirementsAndCountsTheRest) {
    auto check = madeOf("Goal.", {"A.", "B.", "C."});
    EXPECT_FALSE(Card(check).texts().join(u' ').contains(QStringLiteral("more")));
    check.requirements = {"A.", "B.", "C.", "D.", "E."};
    const auto texts = Card(check).texts();
    EXPECT_TRUE(texts.contains(QStringLiteral("C.")));
    EXPECT_FALSE(texts.contains(QStringLiteral("D.")));
    EXPECT_TRUE(texts.contains(QStringLiteral("+ 2 more")));
    EXPECT_TRUE(texts.contains(QStringLiteral("⇧⌘K")));
}

TEST(IntentCheckViewTest, showsAllKeysOfALongShortcut) {
    const auto shortcut = QStringLiteral("fn⌃⌥⇧⌘Page Down");
    const Card card(madeOf("Goal."), shortcut);
    for (const auto& keys : {shortcut, QStringLiteral("esc")}) {
        const auto& text = card.found(keys);
        EXPECT_GE(text.width(), text.sizeHint().width()) << keys.toStdString();
    }
}

TEST(IntentCheckViewTest, leavesOutMissingParts) {
    const auto texts = Card(madeOf("Goal.")).texts();
    EXPECT_FALSE(texts.contains(QStringLiteral("REQUIREMENTS")));
    EXPECT_FALSE(texts.contains(QStringLiteral("POSSIBLE GAP")));
}

TEST(IntentCheckViewTest, keepsHeaderAndFooterInViewHoweverMuchWasSaid) {
    std::string endless;
    for (int count = 0; count < 200; ++count) {
        endless += "words without end ";
    }
    auto check = madeOf(endless, {endless, endless, endless, endless});
    check.potentialGap = endless;
    const Card card(check);
    EXPECT_TRUE(QRectF(QPointF(), panel).contains(card.outline()));
    EXPECT_GE(card.outline().top(), 10);
    for (const auto* text : {"INTENT CHECK", "GOAL", "REQUIREMENTS", "+ 1 more", "POSSIBLE GAP",
                             "Nothing is inserted until you confirm"}) {
        EXPECT_TRUE(card.isWhole(QString::fromUtf8(text))) << text;
    }
}

} // namespace
} // namespace orlune
