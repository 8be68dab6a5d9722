#include "tests/desktop/TrayPanel.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>

#include <algorithm>
#include <stdexcept>

namespace orlune::desktop {

namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

/// The last entry of an a(iiay), which is sorted by size.
QByteArray largestPicture(const QVariant& pictures) {
    const auto argument = pictures.value<QDBusArgument>();
    QByteArray pixels;
    argument.beginArray();
    while (!argument.atEnd()) {
        int width = 0;
        int height = 0;
        argument.beginStructure();
        argument >> width >> height >> pixels;
        argument.endStructure();
    }
    argument.endArray();
    return pixels;
}

/// The title in an (sa(iiay)ss).
std::string tipIn(const QVariant& tip) {
    const auto argument = tip.value<QDBusArgument>();
    QString ignored;
    QString title;
    argument.beginStructure();
    argument >> ignored;
    argument.beginArray();
    while (!argument.atEnd()) {
        argument.beginStructure();
        argument.endStructure();
    }
    argument.endArray();
    argument >> title;
    argument.endStructure();
    return title.toStdString();
}

/// The keys in an aas.
QString keysIn(const QVariant& shortcuts) {
    const auto argument = shortcuts.value<QDBusArgument>();
    QStringList keys;
    argument.beginArray();
    while (!argument.atEnd()) {
        argument >> keys;
    }
    argument.endArray();
    return keys.join(QLatin1Char('+'));
}

QString asRead(const QVariantMap& item) {
    if (item.value(QStringLiteral("type")) == QStringLiteral("separator")) {
        return QStringLiteral("-");
    }
    QString text = item.value(QStringLiteral("label")).toString();
    if (item.contains(QStringLiteral("toggle-type"))) {
        text += item.value(QStringLiteral("toggle-state")).toInt() == 1 ? QStringLiteral(" [x]")
                                                                        : QStringLiteral(" [ ]");
    }
    if (item.contains(QStringLiteral("shortcut"))) {
        text += QStringLiteral("  ") + keysIn(item.value(QStringLiteral("shortcut")));
    }
    if (!item.value(QStringLiteral("enabled"), true).toBool()) {
        text = QLatin1Char('(') + text + QLatin1Char(')');
    }
    return text;
}

} // namespace

TrayPanel::TrayPanel()
    : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("panel"))) {
    if (!bus_.registerVirtualObject(QStringLiteral("/StatusNotifierWatcher"), this)
        || !bus_.registerService(watcherName)) {
        throw std::runtime_error("there is a panel already");
    }
}

TrayPanel::~TrayPanel() {
    QDBusConnection::disconnectFromBus(QStringLiteral("panel"));
}

QString TrayPanel::introspect(const QString& /*path*/) const {
    return QStringLiteral(R"(<interface name="org.kde.StatusNotifierWatcher">
        <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
        <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
        </interface>)");
}

bool TrayPanel::handleMessage(const QDBusMessage& message, const QDBusConnection& bus) {
    if (message.member() == QStringLiteral("Introspect")) {
        return false; // the library answers
    }
    if (message.member() == QStringLiteral("Get")) {
        return bus.send(message.createReply(QVariant::fromValue(QDBusVariant(true))));
    }
    bus.send(message.createReply());
    if (message.member() == QStringLiteral("RegisterStatusNotifierItem")) {
        receive(message.service());
    }
    return true;
}

void TrayPanel::receive(const QString& program) {
    program_ = program;
    for (const auto* change : {"NewIcon", "NewToolTip"}) {
        bus_.connect(program_, itemPath, itemInterface, QString::fromLatin1(change), this,
                     SLOT(lookAtIcon()));
    }
    lookAtIcon();
    for (const auto* change : {"LayoutUpdated", "ItemsPropertiesUpdated"}) {
        bus_.connect(program_, menuPath_, menuInterface, QString::fromLatin1(change), this,
                     SLOT(lookAtMenu()));
    }
    lookAtMenu();
}

QVariantList TrayPanel::ask(const QString& path, const QString& interface, const QString& method,
                            const QVariantList& arguments) {
    auto call = QDBusMessage::createMethodCall(program_, path, interface, method);
    call.setArguments(arguments);
    return bus_.call(call).arguments();
}

void TrayPanel::lookAtIcon() {
    // Queried together, so that the parts belong to the same moment.
    const auto answer =
        ask(itemPath, propertiesInterface, QStringLiteral("GetAll"), {itemInterface});
    const auto properties = qdbus_cast<QVariantMap>(answer.value(0));
    identifier_ = properties.value(QStringLiteral("Id")).toString().toStdString();
    menuPath_ = properties.value(QStringLiteral("Menu")).value<QDBusObjectPath>().path();
    const Icon icon{.tip = tipIn(properties.value(QStringLiteral("ToolTip"))),
                    .picture = largestPicture(properties.value(QStringLiteral("IconPixmap")))};
    if (!hasIcon() || icon != shown_.back()) {
        shown_.push_back(icon);
    }
}

void TrayPanel::lookAtMenu() {
    constexpr int root = 0;
    constexpr int allLevels = -1;
    const auto answer = ask(menuPath_, menuInterface, QStringLiteral("GetLayout"),
                            {root, allLevels, QStringList{}});
    const auto layout = answer.value(1).value<QDBusArgument>();
    int id = 0;
    QVariantMap properties;
    layout.beginStructure();
    layout >> id >> properties;
    menu_.clear();
    layout.beginArray();
    while (!layout.atEnd()) {
        QDBusVariant child;
        layout >> child;
        const auto item = child.variant().value<QDBusArgument>();
        item.beginStructure();
        item >> id >> properties;
        item.endStructure();
        menu_.push_back({.id = id, .text = asRead(properties).toStdString()});
    }
    layout.endArray();
    layout.endStructure();
}

std::vector<std::string> TrayPanel::menu() const {
    std::vector<std::string> texts;
    std::ranges::transform(menu_, std::back_inserter(texts), &Item::text);
    return texts;
}

bool TrayPanel::offers(const std::string& item) const {
    return std::ranges::count(menu_, item, &Item::text) == 1;
}

void TrayPanel::activate() {
    ask(itemPath, itemInterface, QStringLiteral("Activate"), {0, 0});
}

void TrayPanel::choose(const std::string& title) {
    const auto item = std::ranges::find_if(
        menu_, [&](const Item& candidate) { return candidate.text.starts_with(title); });
    if (item == menu_.end()) {
        throw std::runtime_error("the menu does not offer " + title);
    }
    ask(menuPath_, menuInterface, QStringLiteral("Event"),
        {item->id, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant(QString())), 0U});
}

} // namespace orlune::desktop
