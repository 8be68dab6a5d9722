#include "app/commands/DoctorCommand.h"

#include "app/doctor/ConfigurationCheck.h"
#include "app/doctor/DesktopChecks.h"
#include "app/doctor/InstanceCheck.h"
#include "app/doctor/KeyringCheck.h"
#include "app/doctor/NetworkCheck.h"
#include "app/doctor/Report.h"
#include "app/doctor/SoundCheck.h"
#include "platform/linux/portals/GlobalShortcuts.h"
#include "platform/linux/portals/RemoteDesktopInjector.h"
#include "platform/linux/secrets/SecretServiceItems.h"
#include "platform/linux/session/SessionBus.h"
#include "platform/linux/shortcuts/SwayBindings.h"

#include <QCoreApplication>

#include <array>
#include <chrono>
#include <cstdio>
#include <string>

namespace orlune {

namespace {

constexpr std::chrono::seconds networkLimit{5};

constexpr SessionBus::Address trayWatcher{"org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
                                          "org.kde.StatusNotifierWatcher"};

constexpr SessionBus::Address portalShortcuts{"org.freedesktop.portal.Desktop",
                                              "/org/freedesktop/portal/desktop",
                                              "org.freedesktop.portal.GlobalShortcuts"};

/// Whether the program would use the portal's shortcuts, and has bound one there.
std::optional<bool> portalShortcut(const Environment& environment, const DesktopFacts& desktop,
                                   SessionBus* bus) {
    const bool isUsed =
        desktop.wayland && desktop.hasPortal && !desktop.hasSway
        && !environment.contains("KDE_SESSION_VERSION")
        && (!desktop.wayland->hasVirtualKeyboard || desktop.wayland->hasHyprlandShortcuts);
    if (!isUsed || !bus || bus->number(portalShortcuts, "version").value_or(0) == 0) {
        return std::nullopt;
    }
    return std::filesystem::exists(stateFolder(environment) / GlobalShortcuts::boundFile);
}

Findings examine() {
    const auto environment = processEnvironment();
    const auto proxies = ProxySettings::fromProcessEnvironment();
    const auto folder = configurationFolder(environment);
    const auto configuration = PlatformConfiguration::load(folder, environment);
    const auto bus = SessionBus::open();

    DesktopFacts desktop;
    desktop.environment = environment;
    desktop.functionKeyName = configuration.fnKey;
    desktop.wayland = WaylandFacts::read();
    desktop.hasSway = SwayBindings::isThere(swaySocket());
    desktop.display = DisplayFacts::read({}, configuration.fnKey);
    const auto answers = [&bus](const char* name, const char* path) {
        using Kind = SessionBus::Answer::Kind;
        return bus
               && bus->call({name, path, "org.freedesktop.DBus.Peer"}, "Ping").kind
                      == Kind::answered;
    };
    const auto plasma = environment.find("KDE_SESSION_VERSION");
    desktop.hasGlobalAccel = plasma != environment.end() && plasma->second == "5"
                             && answers("org.kde.kglobalaccel", "/kglobalaccel");
    desktop.hasPortal =
        answers("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop");
    desktop.hasPortalShortcut = portalShortcut(environment, desktop, bus.get());
    desktop.isPastingAllowed =
        std::filesystem::exists(stateFolder(environment) / RemoteDesktopInjector::tokenFile);
    desktop.hasTrayHost =
        bus && bus->flag(trayWatcher, "IsStatusNotifierHostRegistered").value_or(false);

    auto findings = checkDesktop(desktop);
    const auto add = [&findings](const Findings& more) {
        findings.insert(findings.end(), more.begin(), more.end());
    };
    add(checkSound(SoundFacts::read()));
    SecretServiceItems keyring;
    add(checkKeyring(keyring));
    add(checkNetwork(EndpointProbe::run(configuration.endpoint, proxies, networkLimit)));
    add(checkConfiguration(folder, configuration));
    add(checkInstance(bus.get()));
    return findings;
}

} // namespace

int runDoctorCommand(const DoctorOptions& options) {
    std::string name = "orlune";
    std::array arguments{name.data()};
    int count = 1;
    const QCoreApplication application(count, arguments.data()); // for the loop of this thread
    const auto findings = examine();
    const auto report = options.isJson ? reportJson(findings) : reportText(findings);
    std::fputs(report.c_str(), stdout);
    return allWork(findings) ? exitDone : exitFailed;
}

} // namespace orlune
