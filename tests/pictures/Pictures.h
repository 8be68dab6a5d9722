// Which pictures orlune_pictures makes: each a name and a function that makes the widget it shows.
#pragma once

#include "tests/support/DictationHarness.h"

#include <QString>
#include <QWidget>

#include <functional>
#include <vector>

namespace orlune::pictures {

/// What the widget of one picture reads; lives longer than it.
struct Stage {
    DictationHarness dictation;
    MemoryDisplayOptions& displayOptions = dictation.platform.displayOptions;
    WaveformState waveform;
};

struct Picture {
    QString name; ///< of the file, without its ending
    std::function<QWidget*(Stage&)> make;
    int margin = 12; ///< of the windows' background round the widget, points
};

std::vector<Picture> symbolPictures();
std::vector<Picture> visualPictures();
std::vector<Picture> overlayPictures();
std::vector<Picture> settingsPictures();
std::vector<Picture> mainWindowPictures();

} // namespace orlune::pictures
