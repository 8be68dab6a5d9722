#include "app/doctor/ConfigurationCheck.h"

#include "platform/linux/storage/DefaultsFormat.h"
#include "platform/linux/storage/FileUserDefaults.h"
#include "platform/linux/storage/SettingsFile.h"

namespace orlune {

namespace {

using State = Finding::State;
using Kind = SettingsFile::Contents::Kind;

constexpr auto name = "configuration";

/// No findings when the file is valid or missing.
Findings checkDefaults(const std::filesystem::path& folder) {
    const SettingsFile file(folder / FileUserDefaults::fileName);
    const auto contents = file.read(largestDefaultsFileBytes);
    const auto path = file.path().string();
    if (contents.kind == Kind::unreadable) {
        return {{name, State::warning, path + " cannot be read: " + contents.error,
                 "Make it readable and writable for you: settings are not kept until then."}};
    }
    const bool isDamaged = contents.kind == Kind::tooLarge
                           || (contents.kind == Kind::text && !parseDefaults(contents.text));
    if (isDamaged) {
        return {{name, State::warning, path + " is damaged",
                 "Correct it, or let Orlune set it aside at its next start."}};
    }
    return {};
}

} // namespace

Findings checkConfiguration(const std::filesystem::path& folder,
                            const PlatformConfiguration& configuration) {
    if (folder.empty()) {
        return {{name, State::warning, "there is no home folder: settings are not kept",
                 "Set HOME or XDG_CONFIG_HOME."}};
    }
    auto findings = checkDefaults(folder);
    for (const auto& problem : configuration.problems) {
        findings.push_back({name, State::warning, problem, "Correct it or leave it out."});
    }
    if (findings.empty()) {
        findings.push_back({name, State::ok, folder.string()});
    }
    return findings;
}

} // namespace orlune
