#include "platform/linux/portals/GlobalShortcuts.h"

#include "platform/linux/portals/PortalRequest.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QList>

#include <algorithm>
#include <utility>

namespace orlune {

/// One shortcut, as the portal is asked for it and as it answers.
struct PortalShortcut {
    QString id;
    QVariantMap properties;
};

QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut) {
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut) {
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    // As QtDBus wants it: NOLINTNEXTLINE(bugprone-return-const-ref-from-parameter)
    return argument;
}

} // namespace orlune

Q_DECLARE_METATYPE(orlune::PortalShortcut)

namespace orlune {

namespace {

using Code = PortalResponse::Code;
using Edge = RepeatedPresses::Edge;

const QString interface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString dictate = QStringLiteral("dictate");
const QString cancel = QStringLiteral("cancel");

constexpr auto notAnswered = "the desktop portal has not answered yet";
constexpr auto notAllowed =
    "the desktop has to be asked for the shortcut: it shows the keys, which you can change there";
constexpr auto refused = "you did not allow the shortcut";

bool holds(const QVariant& shortcuts, const QString& id) {
    const auto list = qdbus_cast<QList<PortalShortcut>>(shortcuts);
    return std::ranges::any_of(list, [&](const auto& shortcut) { return shortcut.id == id; });
}

} // namespace

GlobalShortcuts::GlobalShortcuts(Portal& portal, TokenStore& bound, Surroundings surroundings)
    : portal_(portal), bound_(bound), surroundings_(std::move(surroundings)), reason_(notAnswered) {
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    clock_.start();
    deadline_.setSingleShot(true);
    connect(&deadline_, &QTimer::timeout, this, [this] { report(presses_.expire()); });
    auto& bus = portal_.connection();
    bus.connect(QString(), portalPath, interface, QStringLiteral("Activated"), this,
                SLOT(onActivated(QDBusObjectPath, QString, qulonglong, QVariantMap)));
    bus.connect(QString(), portalPath, interface, QStringLiteral("Deactivated"), this,
                SLOT(onDeactivated(QDBusObjectPath, QString, qulonglong, QVariantMap)));
    connect(&portal_, &Portal::lost, this, [this] {
        isThere_ = false;
        fail(notAnswered);
    });
    connect(&portal_, &Portal::found, this, [this] { findOut(); });
    findOut();
}

GlobalShortcuts::~GlobalShortcuts() {
    close();
}

void GlobalShortcuts::findOut() {
    portal_.readNumber(interface, QStringLiteral("version"), [this](auto version) {
        if (session_ || attempt_) {
            return; // a second question: the first one started the portal
        }
        isThere_ = version.value_or(0) != 0;
        isMissing_ = !isThere_;
        isRetryLeft_ = true;
        if (isMissing_) {
            setReason("the portal of this desktop reports no shortcuts");
        } else {
            begin();
        }
    });
}

void GlobalShortcuts::watch(const KeyCombination& shortcut) {
    if (std::exchange(isWatching_, true) && shortcut == edges_.shortcut()) {
        return;
    }
    presses_.reset();
    deadline_.stop();
    const auto released = edges_.setShortcut(shortcut);
    // Deferred, because it must not be reported within this call.
    QMetaObject::invokeMethod(this, [this, released] { report(released); }, Qt::QueuedConnection);
    trigger_ = namedShortcutFor(shortcut, surroundings_.functionKey);
    isRetryLeft_ = true;
    close();
    begin();
}

void GlobalShortcuts::begin() {
    if (!isThere_ || !isWatching_) {
        return;
    }
    if (!trigger_) {
        setReason("this desktop can't report this combination of keys; choose another shortcut");
    } else if (bound_.token() == record()) {
        open(Way::silently);
    } else {
        setReason(notAllowed);
    }
}

void GlobalShortcuts::requestAccess() {
    if (!isThere_ || !trigger_ || attempt_) {
        return;
    }
    isRetryLeft_ = true;
    const bool remembersOthers = !bound_.token().empty() && bound_.token() != record();
    open(remembersOthers ? Way::forgetting : Way::asking);
}

void GlobalShortcuts::open(Way way) {
    close();
    attempt_ = std::make_unique<QObject>();
    const QVariantMap options{{QStringLiteral("session_handle_token"), portal_.makeToken()}};
    portal_.request(
        interface, QStringLiteral("CreateSession"), {}, options, Portal::answerLimit,
        attempt_.get(), [this, way, attempt = attempt_.get()](const PortalResponse& response) {
            if (attempt != attempt_.get()) {
                return;
            }
            const auto path = response.results.value(QStringLiteral("session_handle")).toString();
            if (response.code != Code::granted || path.isEmpty()) {
                failOrRetry(way, "the desktop portal opens no session");
                return;
            }
            session_ = std::make_unique<PortalSession>(portal_, QDBusObjectPath(path), nullptr);
            connect(session_.get(), &PortalSession::closed, this,
                    [this] { failOrRetry(Way::silently, "the desktop has ended the shortcut"); });
            bind(way);
        });
}

void GlobalShortcuts::bind(Way way) {
    const QString description = QStringLiteral("description");
    QList<PortalShortcut> shortcuts{
        {cancel, {{description, QStringLiteral("Cancel the dictation")}}}};
    if (way != Way::forgetting) {
        shortcuts.prepend({dictate,
                           {{description, QStringLiteral("Dictate")},
                            {QStringLiteral("preferred_trigger"),
                             QString::fromStdString(portalTrigger(*trigger_))}}});
    }
    // Without a limit, a dialog may stay open.
    const auto limit = way == Way::silently
                           ? std::optional<std::chrono::milliseconds>(Portal::answerLimit)
                           : std::nullopt;
    portal_.request(
        interface, QStringLiteral("BindShortcuts"),
        {QVariant::fromValue(session_->path()), QVariant::fromValue(shortcuts), QString()}, {},
        limit, attempt_.get(),
        [this, way, attempt = attempt_.get()](const PortalResponse& response) {
            if (attempt == attempt_.get()) {
                finish(way, response);
            }
        });
}

void GlobalShortcuts::finish(Way way, const PortalResponse& response) {
    if (way == Way::forgetting) {
        bound_.forget();
        open(Way::asking);
        return;
    }
    // GNOME 48.0 answers "ended", with the list of what it has bound all the same.
    if (response.code != Code::refused
        && holds(response.results.value(QStringLiteral("shortcuts")), dictate)) {
        attempt_.release()->deleteLater();
        bound_.set(record());
        setReason("");
        return;
    }
    if (response.code == Code::refused) {
        fail(refused);
    } else if (response.code == Code::granted) {
        fail("the desktop has no keys for the shortcut; choose some in its settings");
    } else {
        failOrRetry(way, "the desktop portal binds no shortcut");
    }
}

void GlobalShortcuts::fail(std::string reason) {
    close();
    report(edges_.release());
    setReason(std::move(reason));
}

void GlobalShortcuts::failOrRetry(Way way, std::string reason) {
    fail(std::move(reason));
    if (std::exchange(isRetryLeft_, false)) {
        QTimer::singleShot(retryDelay, this, [this, way] {
            if (isThere_ && trigger_ && !session_ && !attempt_) {
                open(way);
            }
        });
    }
}

void GlobalShortcuts::close() {
    presses_.reset();
    deadline_.stop();
    // Both may currently be calling us.
    if (attempt_) {
        attempt_.release()->deleteLater();
    }
    if (session_) {
        session_->disconnect(this);
        session_->close();
        session_.release()->deleteLater();
    }
}

std::string GlobalShortcuts::record() const {
    return surroundings_.desktop + ' ' + portalTrigger(*trigger_);
}

bool GlobalShortcuts::isOurs(const QDBusObjectPath& session) const {
    return session_ && session_->path() == session;
}

void GlobalShortcuts::onActivated(const QDBusObjectPath& session, const QString& id,
                                  qulonglong /*timestamp*/, const QVariantMap& /*options*/) {
    if (!isOurs(session)) {
        return;
    }
    if (id == cancel && isEscapeWanted_) {
        report(escapeEvent(/*isDown=*/true));
        report(escapeEvent(/*isDown=*/false));
    } else if (id == dictate && trigger_->isModifierOnly) {
        report({Edge::press, Edge::release}); // the release is never reported, or at once
    } else if (id == dictate) {
        report(presses_.reportPress(now()));
    }
}

void GlobalShortcuts::onDeactivated(const QDBusObjectPath& session, const QString& id,
                                    qulonglong /*timestamp*/, const QVariantMap& /*options*/) {
    if (isOurs(session) && id == dictate && !trigger_->isModifierOnly) {
        report(presses_.reportRelease());
    }
}

void GlobalShortcuts::releaseAll() {
    presses_.reset();
    deadline_.stop();
    report(edges_.release());
}

void GlobalShortcuts::setReason(std::string reason) {
    if (reason != std::exchange(reason_, reason)) {
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (observer_.onChange) {
                    observer_.onChange();
                }
            },
            Qt::QueuedConnection);
    }
}

void GlobalShortcuts::report(const std::optional<KeyEvent>& event) {
    if (event && observer_.onKey) {
        observer_.onKey(*event);
    }
}

void GlobalShortcuts::report(const RepeatedPresses::Edges& edges) {
    if (const auto deadline = presses_.deadline()) {
        deadline_.start(std::max(*deadline - now(), RepeatedPresses::Time(0)));
    } else {
        deadline_.stop();
    }
    for (const auto edge : edges) {
        report(edge == Edge::press ? edges_.press() : edges_.release());
    }
}

RepeatedPresses::Time GlobalShortcuts::now() const {
    return RepeatedPresses::Time(clock_.elapsed());
}

} // namespace orlune
