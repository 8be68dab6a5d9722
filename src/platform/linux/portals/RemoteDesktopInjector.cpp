#include "platform/linux/portals/RemoteDesktopInjector.h"

#include <QTimer>

#include <utility>

namespace orlune {

namespace {

using Code = PortalResponse::Code;

const QString interface = QStringLiteral("org.freedesktop.portal.RemoteDesktop");
/// The first version that can store a consent.
constexpr std::uint32_t rememberingVersion = 2;
constexpr std::uint32_t keyboard = 1;
constexpr std::uint32_t untilRevoked = 2;
/// Stored instead of a token when the portal returns none.
constexpr auto consented = "consented";

constexpr auto notAnswered = "the desktop portal has not answered yet";
constexpr auto notAllowed =
    "Orlune needs your permission to paste. The desktop asks for it once, as "
    "for a remote desktop: allow it to interact, and to be remembered.";
constexpr auto refused = "you did not allow Orlune to paste";
constexpr auto forgotten = "the desktop wants to be asked again whether Orlune may paste";

} // namespace

RemoteDesktopInjector::RemoteDesktopInjector(Portal& portal, TokenStore& tokens)
    : portal_(portal), tokens_(tokens), reason_(notAnswered) {
    connect(&portal_, &Portal::lost, this, [this] {
        close();
        version_ = 0;
        isRetryDue_ = false;
        retryCount_ = 0;
        reason_ = notAnswered;
        changed();
    });
    connect(&portal_, &Portal::found, this, [this] { findOut(); });
    findOut();
}

RemoteDesktopInjector::~RemoteDesktopInjector() = default;

void RemoteDesktopInjector::findOut() {
    portal_.readNumber(interface, QStringLiteral("version"), [this](auto version) {
        if (isOpening_ || isOpen_) {
            return; // a second question: the first one started the portal
        }
        version_ = version.value_or(0);
        if (version_ == 0) {
            reason_ = "the portal of this desktop lets no program press keys";
        } else {
            reason_ = remembers() && isStoredConsent() ? "" : notAllowed;
        }
        changed();
        if (isWanted_ && reason_.empty()) {
            open(Way::silently);
        } else if (version_ != 0 && !remembers() && !tokens_.token().empty()) {
            open(Way::asking);
        }
    });
}

bool RemoteDesktopInjector::remembers() const {
    return version_ >= rememberingVersion;
}

bool RemoteDesktopInjector::isStoredConsent() const {
    return !tokens_.token().empty() && tokens_.token() != consented;
}

void RemoteDesktopInjector::prepare() {
    isWanted_ = true;
    if ((reason_.empty() || isRetryDue_) && !isOpen_ && !isOpening_) {
        open(Way::silently);
    }
}

void RemoteDesktopInjector::rest() {
    isWanted_ = false;
    if (remembers() && way_ == Way::silently) {
        close();
    }
}

void RemoteDesktopInjector::requestAccess() {
    if (version_ != 0 && !isOpening_ && !isOpen_) {
        open(Way::asking);
    }
}

std::string RemoteDesktopInjector::reasonForUnavailability() const {
    return reason_;
}

void RemoteDesktopInjector::open(Way way) {
    way_ = way;
    isOpening_ = true;
    isRetryDue_ = false;
    attempt_ = std::make_unique<QObject>();
    const QVariantMap options{{QStringLiteral("session_handle_token"), portal_.makeToken()}};
    portal_.request(interface, QStringLiteral("CreateSession"), {}, options, Portal::answerLimit,
                    attempt_.get(), onResponse(&RemoteDesktopInjector::onSession));
}

Portal::OnResponse
RemoteDesktopInjector::onResponse(void (RemoteDesktopInjector::*handler)(const PortalResponse&)) {
    return [this, handler, attempt = attempt_.get()](const PortalResponse& response) {
        if (attempt == attempt_.get()) {
            (this->*handler)(response);
        }
    };
}

void RemoteDesktopInjector::onSession(const PortalResponse& response) {
    const auto path = response.results.value(QStringLiteral("session_handle")).toString();
    if (response.code != Code::granted || path.isEmpty()) {
        failForNow("the desktop portal opens no session");
        return;
    }
    session_ = std::make_unique<PortalSession>(portal_, QDBusObjectPath(path), nullptr);
    connect(session_.get(), &PortalSession::closed, this, [this] {
        if (isOpen_) {
            fail(remembers() ? "" : "the permission to paste was withdrawn");
        } else {
            failForNow("the desktop portal has closed the session");
        }
    });
    // The options never change: with other options some desktops ask again.
    QVariantMap options{{QStringLiteral("types"), keyboard}};
    if (remembers()) {
        options.insert(QStringLiteral("persist_mode"), untilRevoked);
        if (isStoredConsent()) {
            options.insert(QStringLiteral("restore_token"),
                           QString::fromStdString(tokens_.token()));
        }
    }
    portal_.request(interface, QStringLiteral("SelectDevices"),
                    {QVariant::fromValue(session_->path())}, options, Portal::answerLimit,
                    attempt_.get(), onResponse(&RemoteDesktopInjector::onDevices));
}

void RemoteDesktopInjector::onDevices(const PortalResponse& response) {
    if (response.code != Code::granted) {
        failForNow("the desktop portal offers no keyboard");
        return;
    }
    const auto limit = way_ == Way::silently ? std::optional<std::chrono::milliseconds>(silentLimit)
                                             : std::nullopt;
    portal_.request(interface, QStringLiteral("Start"),
                    {QVariant::fromValue(session_->path()), QString()}, {}, limit, attempt_.get(),
                    onResponse(&RemoteDesktopInjector::finish));
}

void RemoteDesktopInjector::finish(const PortalResponse& response) {
    switch (response.code) {
    case Code::granted:
        break;
    case Code::timedOut:
        if (!std::exchange(hasTimedOut_, true)) {
            failForNow("the desktop portal did not answer in time");
            return;
        }
        [[fallthrough]];
    case Code::refused:
        if (way_ == Way::silently) {
            tokens_.forget();
            fail(forgotten);
        } else {
            fail(refused);
        }
        return;
    case Code::ended:
    case Code::failed:
        failForNow("the desktop portal gives no permission");
        return;
    }
    isOpening_ = false;
    isOpen_ = true;
    retryCount_ = 0;
    hasTimedOut_ = false;
    reason_.clear();
    const auto token = response.results.value(QStringLiteral("restore_token")).toString();
    if (!remembers()) {
        tokens_.set(consented);
    } else if (!token.isEmpty()) {
        tokens_.set(token.toStdString());
    }
    const bool wasAsked = std::exchange(way_, Way::silently) == Way::asking;
    if (wasAsked && remembers() && !isWanted_) {
        close(); // only the consent was wanted
    }
    changed();
}

/// An empty `reason` means that the next session may be opened.
void RemoteDesktopInjector::fail(std::string reason) {
    close();
    way_ = Way::silently;
    reason_ = std::move(reason);
    changed();
}

void RemoteDesktopInjector::failForNow(std::string reason) {
    isRetryDue_ = way_ == Way::silently;
    const bool isAskingAgain =
        way_ == Way::asking && version_ != 0 && retryCount_ < retryDelays.size();
    fail(std::move(reason));
    if (isAskingAgain) {
        QTimer::singleShot(retryDelays.at(retryCount_++), this, [this] { requestAccess(); });
    }
}

void RemoteDesktopInjector::close() {
    isOpening_ = false;
    isOpen_ = false;
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

bool RemoteDesktopInjector::notify(KeyCode key, bool isDown) {
    if (!isOpen_) {
        return false;
    }
    portal_.send(interface, QStringLiteral("NotifyKeyboardKeycode"),
                 {QVariant::fromValue(session_->path()), QVariantMap(), static_cast<int>(key),
                  isDown ? 1U : 0U});
    return true;
}

void RemoteDesktopInjector::changed() {
    if (onChange_) {
        onChange_();
    }
}

} // namespace orlune
