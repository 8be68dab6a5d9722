#include "app/desktop/SessionInput.h"

#include "platform/linux/keys/DesktopKeyEvents.h"
#include "platform/linux/keys/FirstShortcutSource.h"
#include "platform/linux/paste/ConsentAccessibility.h"
#include "platform/linux/paste/InjectedPaste.h"
#include "platform/linux/paste/QtPasteboard.h"
#include "platform/linux/paste/XTestKeyPoster.h"
#include "platform/linux/portals/GlobalShortcuts.h"
#include "platform/linux/portals/Portal.h"
#include "platform/linux/portals/RemoteDesktopInjector.h"
#include "platform/linux/portals/TokenStore.h"
#include "platform/linux/shortcuts/GnomeCustomShortcut.h"
#include "platform/linux/shortcuts/KGlobalAccel.h"
#include "platform/linux/shortcuts/SwayBindings.h"
#include "platform/linux/storage/ConfigurationFolder.h"
#include "platform/linux/wayland/DataControlPasteboard.h"
#include "platform/linux/wayland/VirtualKeyboard.h"
#include "platform/linux/wayland/WaylandConnection.h"
#include "platform/linux/x11/X11Accessibility.h"

#include <QDBusConnection>
#include <QGuiApplication>

#include <utility>

namespace orlune {

/// In the order of creation; destroyed in reverse order.
struct SessionInput::Parts {
    std::unique_ptr<WaylandConnection> wayland;
    std::unique_ptr<Portal> portal;
    std::unique_ptr<TokenStore> tokens;
    std::unique_ptr<TokenStore> boundShortcuts;
    std::unique_ptr<ShortcutSource> source;
    std::unique_ptr<KeyInjector> injector;
    /// Whether the injected keys combine with the modifiers that the user holds. A virtual keyboard
    /// has its own.
    bool sharesModifiers = false;
    std::unique_ptr<DataControlPasteboard> dataControl;
    std::unique_ptr<QtPasteboard> clipboard;
    std::unique_ptr<Accessibility> accessibility;
    std::unique_ptr<DesktopKeyEvents> keys; // outlives `posting`, which queries and informs it
    std::unique_ptr<KeyEventPosting> posting;

    void findWayland(const PlatformConfiguration& configuration);
    void useXTest(const PlatformConfiguration& configuration, TrustPrompt trustPrompt);
    void useInjector(const PlatformConfiguration& configuration, TrustPrompt trustPrompt);
    bool ownPrimarySelection() const;
    InjectedPaste::HeldKeys heldKeys() const;
    void log(const Logger& logger) const;
};

/// Selects by what the session offers, not by its name. Facilities that need no consent come first.
void SessionInput::Parts::findWayland(const PlatformConfiguration& configuration) {
    if (!qEnvironmentVariableIsSet("WAYLAND_DISPLAY")) {
        return;
    }
    wayland = WaylandConnection::open();
    if (wayland) {
        injector = VirtualKeyboard::open(*wayland);
        dataControl = DataControlPasteboard::open(*wayland);
    }
    // Hyprland, where the portal is needed only for the shortcut.
    const bool hasPortalShortcuts = wayland && wayland->offers(hyprlandShortcuts, 1);
    if (!injector || hasPortalShortcuts) {
        portal = Portal::open();
    }
    if (!injector && portal) {
        tokens = std::make_unique<TokenStore>(stateFolder(processEnvironment()),
                                              RemoteDesktopInjector::tokenFile);
        injector = std::make_unique<RemoteDesktopInjector>(*portal, *tokens);
        sharesModifiers = true;
    }
    source = SwayBindings::open(swaySocket(), configuration.fnKey);
    // From version 6 on, Plasma also shows X clients these keys, with press and release of
    // modifiers, for which its service then reports only the release.
    const auto plasma = qgetenv("KDE_SESSION_VERSION");
    if (!source && plasma == "5") {
        source = KGlobalAccel::open(QDBusConnection::sessionBus(), configuration.fnKey);
    }
    if (!source && plasma.isEmpty() && portal) {
        boundShortcuts = std::make_unique<TokenStore>(stateFolder(processEnvironment()),
                                                      GlobalShortcuts::boundFile);
        source = std::make_unique<GlobalShortcuts>(
            *portal, *boundShortcuts,
            GlobalShortcuts::Surroundings{
                .functionKey = configuration.fnKey,
                .desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP").toStdString()});
        if (auto custom = GnomeCustomShortcut::open(configuration.fnKey)) {
            source = std::make_unique<FirstShortcutSource>(std::move(source), std::move(custom));
        }
    }
}

bool SessionInput::Parts::ownPrimarySelection() const {
    return dataControl ? dataControl->ownsPrimarySelection() : clipboard->ownPrimarySelection();
}

void SessionInput::Parts::useXTest(const PlatformConfiguration& configuration,
                                   TrustPrompt trustPrompt) {
    accessibility = std::make_unique<X11Accessibility>(std::move(trustPrompt));
    XTestKeyPoster::Hooks hooks;
    hooks.ownPrimarySelection = [this] { return ownPrimarySelection(); };
    hooks.willPost = [this] { keys->willPost(); };
    hooks.didPost = [this] { keys->didPost(); };
    hooks.onModifiersReleased = [this](const auto& released) { keys->countAsReleased(released); };
    posting = std::make_unique<XTestKeyPoster>(configuration.terminals, std::move(hooks));
}

void SessionInput::Parts::useInjector(const PlatformConfiguration& configuration,
                                      TrustPrompt trustPrompt) {
    accessibility =
        std::make_unique<ConsentAccessibility>(source.get(), *injector, std::move(trustPrompt));
    const auto chord = configuration.pastesWithControlV ? InjectedPaste::Chord::controlV
                                                        : InjectedPaste::Chord::shiftInsert;
    posting = std::make_unique<InjectedPaste>(
        *injector,
        InjectedPaste::Surroundings{.chord = chord,
                                    .ownPrimarySelection = [this] { return ownPrimarySelection(); },
                                    .heldKeys = [this] { return heldKeys(); }});
}

InjectedPaste::HeldKeys SessionInput::Parts::heldKeys() const {
    using HeldKeys = InjectedPaste::HeldKeys;
    if (!sharesModifiers) {
        return HeldKeys::none;
    }
    // Without a source, a command that the user bound to a key may have confirmed, except in
    // Plasma, whose X clients see the keys.
    const bool seesReleases = source ? !source->isMissing() && source->reportsReleases()
                                     : qEnvironmentVariableIsSet("KDE_SESSION_VERSION");
    if (!seesReleases) {
        return HeldKeys::unknown;
    }
    return keys->areKeysHeld() ? HeldKeys::some : HeldKeys::none;
}

void SessionInput::Parts::log(const Logger& logger) const {
    logger.info("Keys of other programs by " + (source ? source->name() : "X") + ", pasted by "
                + (injector ? injector->name() : "XTEST") + ", clipboard by "
                + (dataControl ? "data control" : "X"));
}

SessionInput::SessionInput(const PlatformConfiguration& configuration, TrustPrompt trustPrompt,
                           Log& log)
    : parts_(std::make_unique<Parts>()) {
    auto& parts = *parts_;
    parts.findWayland(configuration);
    parts.clipboard = std::make_unique<QtPasteboard>();
    if (parts.injector) {
        parts.useInjector(configuration, std::move(trustPrompt));
    } else {
        parts.useXTest(configuration, std::move(trustPrompt));
    }
    auto* const consent = dynamic_cast<ConsentAccessibility*>(parts.accessibility.get());
    parts.keys = std::make_unique<DesktopKeyEvents>(
        DesktopKeyEvents::Surroundings{
            .functionKeyName = configuration.fnKey,
            .ownWindowHasKeyboard = [] { return QGuiApplication::focusWindow() != nullptr; },
            .source = parts.source.get(),
            .onSourceChange =
                [consent, &parts, logger = Logger(log, "Session")] {
                    const auto reason = parts.source->reasonForUnavailability();
                    logger.info(reason.empty() ? "The shortcut is bound"
                                               : "The shortcut isn't bound: " + reason);
                    if (consent) {
                        consent->sourceChanged();
                    }
                }},
        log);
    const Logger logger(log, "Session");
    if (parts.injector) {
        parts.injector->setOnChange([&injector = *parts.injector, logger] {
            const auto reason = injector.reasonForUnavailability();
            logger.info(reason.empty() ? "Keys can be posted" : "Keys can't be posted: " + reason);
        });
    }
    if (parts.wayland) {
        parts.log(logger);
    }
}

SessionInput::~SessionInput() = default;

KeyEvents& SessionInput::keyEvents() {
    return *parts_->keys;
}

KeyEventPosting& SessionInput::keyEventPosting() {
    return *parts_->posting;
}

Pasteboard& SessionInput::pasteboard() {
    if (parts_->dataControl) {
        return *parts_->dataControl;
    }
    return *parts_->clipboard;
}

Accessibility& SessionInput::accessibility() {
    return *parts_->accessibility;
}

void SessionInput::setLocked(bool isLocked) {
    parts_->keys->setLocked(isLocked);
}

} // namespace orlune
