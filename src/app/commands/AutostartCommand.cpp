#include "app/commands/AutostartCommand.h"

#include "app/commands/LoginItem.h"
#include "platform/linux/storage/ConfigurationFolder.h"

#include <cstdio>
#include <filesystem>
#include <system_error>

namespace orlune {

namespace {

int tell(bool isEnabled) {
    std::puts(isEnabled ? "Orlune starts at login." : "Orlune doesn't start at login.");
    return isEnabled ? exitDone : exitFailed;
}

} // namespace

int runAutostartCommand(const AutostartOptions& options) {
    const LoginItem item(configurationFolder(processEnvironment()).parent_path());
    try {
        switch (options.action) {
        case AutostartOptions::Action::on:
            item.enable(std::filesystem::read_symlink("/proc/self/exe"));
            return tell(true);
        case AutostartOptions::Action::off:
            item.disable();
            tell(false);
            return exitDone;
        case AutostartOptions::Action::status:
            break;
        }
        return tell(item.isEnabled());
    } catch (const std::system_error& error) {
        std::fprintf(stderr, "orlune: the entry for login can't be changed: %s\n", error.what());
        return exitFailed;
    }
}

} // namespace orlune
