// A picture of the whole screen of a Wayland session, by the compositor's own means, which ordinary
// programs do not have. Main thread.
#pragma once

#include <QImage>

namespace orlune::desktop {

/// Throws std::runtime_error when the compositor refuses.
QImage screenshot();

} // namespace orlune::desktop
