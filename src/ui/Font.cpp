#include "ui/Font.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QScreen>
#include <QStringList>

namespace orlune::ui {

namespace {

/// The first installed family, or else the desktop's own.
QString firstInstalled(const QStringList& families) {
    for (const auto& family : families) {
        if (QFontDatabase::hasFamily(family)) {
            return family;
        }
    }
    return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
}

const QString& family(Design design) {
    static const QString standard = firstInstalled({QStringLiteral("Inter")});
    static const QString rounded =
        firstInstalled({QStringLiteral("Nunito"), QStringLiteral("Varela Round"), standard});
    static const QString monospaced = QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
    switch (design) {
    case Design::rounded:
        return rounded;
    case Design::monospaced:
        return monospaced;
    case Design::standard:
        break;
    }
    return standard;
}

/// Qt's pixel sizes are whole numbers, its point sizes are not.
double typographicPoints(double pixels) {
    constexpr double pointsPerInch = 72;
    constexpr double usualDotsPerInch = 96;
    const auto* screen = QGuiApplication::primaryScreen();
    return pixels * pointsPerInch / (screen ? screen->logicalDotsPerInchY() : usualDotsPerInch);
}

} // namespace

QFont Font::resolved() const {
    QFont font(family(design));
    font.setPointSizeF(typographicPoints(size));
    font.setWeight(static_cast<QFont::Weight>(weight));
    if (tracking != 0) {
        font.setLetterSpacing(QFont::AbsoluteSpacing, tracking);
    }
    return font;
}

} // namespace orlune::ui
