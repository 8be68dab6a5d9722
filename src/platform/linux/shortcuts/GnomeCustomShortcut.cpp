#include "platform/linux/shortcuts/GnomeCustomShortcut.h"

#include "platform/linux/keys/NamedShortcut.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

#undef signals // GIO has members of this name
#include <algorithm>
#include <gio/gio.h>
#include <string_view>
#include <utility>

namespace orlune {

namespace {

constexpr auto schema = "org.gnome.settings-daemon.plugins.media-keys";
constexpr auto entrySchema = "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding";
constexpr auto entries = "custom-keybindings";
constexpr auto entryPath =
    "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/orlune/";
const QString follower = QStringLiteral("org.gnome.SettingsDaemon.MediaKeys");

constexpr auto notAllowed =
    "Orlune has to add a custom shortcut to the keyboard settings, which runs \"orlune press\"; "
    "you can change or remove it there";

struct Unref {
    void operator()(GSettings* settings) const { g_object_unref(settings); }
    void operator()(GSettingsSchema* found) const { g_settings_schema_unref(found); }
};
using SettingsHandle = std::unique_ptr<GSettings, Unref>;

/// GSettings ends the program when a schema is missing.
bool isInstalled(const char* name) {
    auto* const source = g_settings_schema_source_get_default();
    return source
           && std::unique_ptr<GSettingsSchema, Unref>(
               g_settings_schema_source_lookup(source, name, /*recursive=*/TRUE));
}

std::string text(GSettings* settings, const char* key) {
    char* const value = g_settings_get_string(settings, key);
    std::string copy = value;
    g_free(value);
    return copy;
}

} // namespace

class GnomeCustomShortcut::Settings {
  public:
    Settings()
        : all_(g_settings_new(schema)), ours_(g_settings_new_with_path(entrySchema, entryPath)) {}

    bool isListed() const {
        return anyEntry([](const char* path) { return std::string_view(path) == entryPath; });
    }
    /// Whether the user has bound a command of ours to a key by hand.
    bool isBoundByHand() const {
        return anyEntry([](const char* path) {
            const SettingsHandle entry(g_settings_new_with_path(entrySchema, path));
            const auto run = text(entry.get(), "command");
            return run.find("orlune toggle") != std::string::npos
                   || run.find(command) != std::string::npos;
        });
    }
    void write(const std::string& accelerator) {
        if (text(ours_.get(), "binding") == accelerator
            && text(ours_.get(), "command") == command) {
            return;
        }
        g_settings_set_string(ours_.get(), "name", "Orlune");
        g_settings_set_string(ours_.get(), "command", command);
        g_settings_set_string(ours_.get(), "binding", accelerator.c_str());
        g_settings_sync();
    }
    /// Keeps the entries of the user.
    void list() {
        char** paths = g_settings_get_strv(all_.get(), entries);
        const auto count = g_strv_length(paths);
        paths = g_renew(char*, paths, count + 2);
        paths[count] = g_strdup(entryPath);
        paths[count + 1] = nullptr;
        g_settings_set_strv(all_.get(), entries, paths);
        g_strfreev(paths);
        g_settings_sync();
    }

  private:
    template <typename Condition>
    bool anyEntry(Condition holds) const {
        char** const paths = g_settings_get_strv(all_.get(), entries);
        const bool any = std::any_of(paths, paths + g_strv_length(paths), holds);
        g_strfreev(paths);
        return any;
    }

    SettingsHandle all_;
    SettingsHandle ours_;
};

std::unique_ptr<GnomeCustomShortcut> GnomeCustomShortcut::open(std::string functionKey) {
    auto* const names = QDBusConnection::sessionBus().interface();
    const bool isFollowed = names && names->isServiceRegistered(follower);
    return isFollowed ? openSettings(std::move(functionKey)) : nullptr;
}

std::unique_ptr<GnomeCustomShortcut> GnomeCustomShortcut::openSettings(std::string functionKey) {
    if (!isInstalled(schema) || !isInstalled(entrySchema)) {
        return nullptr;
    }
    return std::unique_ptr<GnomeCustomShortcut>(
        new GnomeCustomShortcut(std::make_unique<Settings>(), std::move(functionKey)));
}

GnomeCustomShortcut::GnomeCustomShortcut(std::unique_ptr<Settings> settings,
                                         std::string functionKey)
    : settings_(std::move(settings)), functionKey_(std::move(functionKey)) {
    judge();
}

GnomeCustomShortcut::~GnomeCustomShortcut() = default;

void GnomeCustomShortcut::watch(const KeyCombination& shortcut) {
    const auto named = namedShortcutFor(shortcut, functionKey_);
    accelerator_ = named ? std::optional(gnomeAccelerator(*named)) : std::nullopt;
    if (accelerator_ && settings_->isListed()) {
        settings_->write(*accelerator_);
    }
    judge();
}

void GnomeCustomShortcut::requestAccess() {
    if (accelerator_ && !settings_->isListed()) {
        settings_->write(*accelerator_);
        settings_->list();
    }
    judge();
    if (observer_.onChange) {
        observer_.onChange();
    }
}

void GnomeCustomShortcut::judge() {
    if (!settings_->isListed()) {
        reason_ = settings_->isBoundByHand() ? "" : notAllowed;
    } else if (!accelerator_) {
        reason_ = "this desktop can't report this combination of keys; choose another shortcut";
    } else {
        reason_.clear();
    }
}

} // namespace orlune
