// The pictures that orlune_pictures makes: each a name and a function that creates the widget.
#pragma once

#include "tests/support/DictationHarness.h"

#include <QString>
#include <QWidget>

#include <functional>
#include <vector>

namespace orlune::pictures {

/// The objects that the widget of one picture reads; must outlive it.
struct Stage {
    DictationHarness dictation;
    MemoryDisplayOptions& displayOptions = dictation.platform.displayOptions;
    WaveformState waveform;
};

struct Picture {
    QString name; ///< of the file, without its ending
    std::function<QWidget*(Stage&)> make;
    int margin = 12; ///< of the window's background around the widget, points
};

std::vector<Picture> symbolPictures();
std::vector<Picture> visualPictures();
std::vector<Picture> overlayPictures();
std::vector<Picture> settingsPictures();
std::vector<Picture> mainWindowPictures();

} // namespace orlune::pictures
