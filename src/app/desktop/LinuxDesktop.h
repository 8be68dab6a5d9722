// Builds every real facility of a Linux desktop, bundles them, and takes them down in the right
// order. Created on the main thread after the application object; whatever received the bundle must
// end before it.
#pragma once

#include "platform/Platform.h"
#include "platform/linux/storage/ConfigurationFolder.h"
#include "platform/linux/storage/PlatformConfiguration.h"

#include <functional>
#include <memory>
#include <string>

namespace orlune {

class LinuxDesktop {
  public:
    /// Facilities that a command for a single dictation replaces; a null or empty member means the
    /// real one. The objects must outlive the desktop.
    struct Replacements {
        Accessibility* accessibility = nullptr;
        Pasteboard* pasteboard = nullptr;
        KeyEventPosting* keyEventPosting = nullptr;
        SecretItems* secretItems = nullptr;
        UserDefaults* userDefaults = nullptr;
        Log* log = nullptr;
        AudioEngineFactory makeAudioEngine;
        std::string speechEndpoint;
    };

    /// Tells the user what keeps text from being pasted and how to allow it; returns at once.
    using TrustPrompt = std::function<void(const std::string& reason)>;

    LinuxDesktop(Replacements replacements, TrustPrompt trustPrompt);
    ~LinuxDesktop();
    LinuxDesktop(const LinuxDesktop&) = delete;
    LinuxDesktop& operator=(const LinuxDesktop&) = delete;

    const Platform& platform() const;

    /// From now on no key is reported while the screen is locked. `onLock` is called on the main
    /// thread at each lock, before the release of held keys is reported, so that a dictation that
    /// they started can be cancelled instead of finished.
    void watchScreenLock(std::function<void()> onLock);

  private:
    struct Facilities;
    std::unique_ptr<Facilities> facilities_;
};

} // namespace orlune
