#include "tests/pictures/Pictures.h"
#include "ui/Stack.h"
#include "ui/Surface.h"
#include "ui/Text.h"
#include "visuals/AuroraBackdrop.h"
#include "visuals/DictationMotion.h"
#include "visuals/OrluneBubble.h"
#include "visuals/OrluneMark.h"
#include "visuals/OrlunePalette.h"
#include "visuals/ProcessingGlow.h"
#include "visuals/VoiceWaveform.h"

#include <QPainter>

namespace orlune::pictures {

namespace {

/// The meter after these levels, in the overlay's size.
auto meter(std::vector<double> levels) {
    return [levels = std::move(levels)](Stage& stage) {
        for (const double level : levels) {
            stage.waveform.push(level);
        }
        return new VoiceWaveform(stage.waveform, 42, stage.displayOptions);
    };
}

std::vector<double> repeated(double level, int count) {
    return std::vector<double>(static_cast<std::size_t>(count), level);
}

auto still(const std::function<QWidget*(Stage&)>& make) {
    return [make](Stage& stage) {
        stage.displayOptions.reduceMotion.set(true);
        return make(stage);
    };
}

auto motion(bool processing) {
    return [processing](Stage& stage) {
        stage.waveform.push(0.5);
        return new DictationMotion(stage.waveform, processing, stage.displayOptions);
    };
}

QWidget* spinner(Stage& stage) {
    return new ProcessingGlow(30, stage.displayOptions);
}

QWidget* marks(Stage& /*stage*/) {
    auto* sizes = ui::row({.spacing = 16}, {});
    for (const double size : {10, 16, 24, 30, 34, 66, 128}) {
        ui::append(sizes, new OrluneMark(size));
    }
    return sizes;
}

class Bubble final : public QWidget {
  public:
    explicit Bubble(QSize size) { setFixedSize(size); }

  protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(OrluneBubble::path(rect()), OrlunePalette::orbPearl());
    }
};

QWidget* bubbles(Stage& /*stage*/) {
    return ui::row({.spacing = 16}, {new Bubble({90, 90}), new Bubble({240, 90})});
}

auto backdrop(bool active) {
    return [active](Stage& /*stage*/) {
        auto* result = new AuroraBackdrop(active);
        result->setFixedSize(900, 640);
        return result;
    };
}

QWidget* swatch(const QString& name, const QColor& color) {
    auto* field = new ui::Surface({.shape = ui::Shape::rounded(12), .fill = color});
    field->setFixedSize(84, 56);
    return ui::column({.spacing = 5},
                      {field, new ui::Text(name, {.font = {ui::textSize::caption}})});
}

QWidget* palette(Stage& /*stage*/) {
    return ui::row({.spacing = 12}, {swatch("background", OrlunePalette::background()),
                                     swatch("surface", OrlunePalette::surface()),
                                     swatch("surfaceRaised", OrlunePalette::surfaceRaised()),
                                     swatch("border", OrlunePalette::border()),
                                     swatch("accent", OrlunePalette::accent()),
                                     swatch("accentBright", OrlunePalette::accentBright()),
                                     swatch("success", OrlunePalette::success()),
                                     swatch("orbGraphite", OrlunePalette::orbGraphite()),
                                     swatch("orbPearl", OrlunePalette::orbPearl())});
}

} // namespace

std::vector<Picture> visualPictures() {
    return {
        {"waveform-silent", meter({})},
        {"waveform-quiet", meter(repeated(0.05, 30))},
        {"waveform-syllable", meter({0.1, 0.1, 0.6})},
        {"waveform-speaking", meter(repeated(0.4, 17))},
        {"waveform-loudest", meter(repeated(1, 5))},
        {"waveform-syllable-still", still(meter({0.1, 0.1, 0.6}))},
        {"spinner-turning", spinner},
        {"spinner-still", still(spinner)},
        {"motion-listening", motion(/*processing=*/false)},
        {"motion-processing", motion(/*processing=*/true)},
        {"mark", marks},
        {"bubble", bubbles},
        {"backdrop", backdrop(/*active=*/false), /*margin=*/0},
        {"backdrop-active", backdrop(/*active=*/true), /*margin=*/0},
        {"palette", palette},
    };
}

} // namespace orlune::pictures
