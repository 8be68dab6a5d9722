#include "overlay/OverlayView.h"
#include "tests/pictures/Pictures.h"

namespace orlune::pictures {

namespace {

using Play = std::function<void(DictationHarness&)>;

constexpr auto threeRequirements =
    "Build a command that reads the log file. Newest entries first. No more than ten lines. "
    "Tests for the empty file";
constexpr auto fiveRequirements =
    "Write a function that reads the file. Errors are values. Short and simple. Tests for the "
    "empty file. One comment on top. Standard library alone";

/// The overlay after these steps.
auto after(Play play) {
    return [play = std::move(play)](Stage& stage) {
        play(stage.dictation);
        auto* view = new OverlayView(stage.dictation.state().shared_from_this(),
                                     stage.dictation.platform.bundle());
        view->setFixedSize(OverlayView::size(stage.dictation.state().phase()));
        return view;
    };
}

void listen(DictationHarness& dictation) {
    dictation.begin();
    for (const float amplitude : {0.1F, 0.6F, 0.8F, 0.5F, 0.7F, 0.3F, 0.6F}) {
        dictation.hear(amplitude);
    }
}

auto saying(std::string text) {
    return [text = std::move(text)](DictationHarness& dictation) { dictation.dictate(text); };
}

std::string longText(int sentences) {
    std::string text;
    for (int count = 0; count < sentences; ++count) {
        text += "Everybody who reads the code for the first time understands at once what it does "
                "in this place, in this order, with these names, on every machine we have, which "
                "is what most people get wrong for as long as they live. ";
    }
    return text;
}

} // namespace

std::vector<Picture> overlayPictures() {
    const std::vector<std::pair<QString, Play>> states = {
        {"idle", [](auto& dictation) { dictation.state(); }},
        {"listening-tap", listen},
        {"listening-hold",
         [](auto& dictation) {
             dictation.state().setActivationMode(ActivationMode::holdToSpeak);
             listen(dictation);
         }},
        {"listening-long-shortcut",
         [](auto& dictation) {
             using Modifiers = DictationShortcut::Modifiers;
             dictation.state().setShortcut(
                 {.keyCode = 49,
                  .modifiers = {Modifiers::control, Modifiers::option, Modifiers::shift}});
             listen(dictation);
         }},
        {"listening-reduced-motion",
         [](auto& dictation) {
             dictation.platform.displayOptions.reduceMotion.set(true);
             listen(dictation);
         }},
        {"listening-without-compositor",
         [](auto& dictation) {
             dictation.platform.windowFacilities.compositing.set(false);
             listen(dictation);
         }},
        {"processing",
         [](auto& dictation) {
             listen(dictation);
             dictation.end();
         }},
        {"processing-reduced-motion",
         [](auto& dictation) {
             dictation.platform.displayOptions.reduceMotion.set(true);
             listen(dictation);
             dictation.end();
         }},
        {"success",
         [](auto& dictation) {
             dictation.state().setIntentCheckEnabled(false);
             dictation.dictate("Rename the button in the settings window and its tests");
         }},
        {"failure",
         [](auto& dictation) {
             dictation.platform.secretItems.items.clear();
             dictation.begin();
         }},
        {"cancelled",
         [](auto& dictation) {
             dictation.begin();
             dictation.cancel();
         }},
        {"review-goal-alone",
         saying("Refactor the network layer with its interface as it is today")},
        {"review-gap", saying("Rename the button")},
        {"review-3-requirements", saying(threeRequirements)},
        {"review-5-requirements", saying(fiveRequirements)},
        {"review-long", saying(longText(5))},
        {"review-long-gap", saying(longText(5) + "Make it better somehow")},
    };
    std::vector<Picture> pictures;
    for (const auto& [name, play] : states) {
        pictures.push_back({"overlay-" + name, after(play)});
    }
    return pictures;
}

} // namespace orlune::pictures
