#include "settings/SettingsView.h"

#include "platform/SecureWipe.h"
#include "settings/ActivationModeCard.h"
#include "settings/PermissionRow.h"
#include "settings/SettingsPanel.h"
#include "settings/ShortcutRecorderControl.h"
#include "ui/Button.h"
#include "ui/Label.h"
#include "ui/ScrollView.h"
#include "ui/SecureField.h"
#include "ui/Stack.h"
#include "ui/Text.h"
#include "ui/Toggle.h"
#include "visuals/OrluneMark.h"
#include "visuals/OrlunePalette.h"

#include <QScrollArea>
#include <QVBoxLayout>

#include <exception>
#include <utility>

namespace orlune {

namespace {

ui::Text* caption(const QString& text, ui::Style style = ui::Style::secondary) {
    return new ui::Text(text, {.font = {.size = ui::textSize::caption}, .color = ui::color(style)});
}

QWidget* panelDivider() {
    return ui::divider(OrlunePalette::border());
}

QWidget* header() {
    auto* name =
        new ui::Text(QStringLiteral("Orlune"),
                     {.font = {.size = ui::textSize::title2, .weight = ui::Weight::semibold}});
    auto* purpose = new ui::Text(
        QStringLiteral("Fast voice-to-prompt for your Mac"),
        {.font = {.size = ui::textSize::callout}, .color = ui::color(ui::Style::secondary)});
    return ui::padded(
        ui::row({.spacing = 13},
                {new OrluneMark(42),
                 ui::column({.spacing = 2, .alignment = ui::Alignment::leading}, {name, purpose}),
                 ui::spacer()}),
        22);
}

QWidget* footer() {
    auto* label = new ui::Label(
        QStringLiteral("lock.shield.fill"),
        QStringLiteral("Audio is sent to Deepgram only while dictating. Your API key stays in Mac "
                       "Keychain."),
        {.font = {.size = ui::textSize::caption}, .color = ui::color(ui::Style::secondary)});
    label->setSymbolColor(OrlunePalette::accentBright());
    return ui::padded(label, {.horizontal = 4});
}

QString noReleasesHint() {
    return QStringLiteral("This desktop doesn't report when this shortcut is released: press it "
                          "again to finish. With a key such as F9, without modifiers, holding "
                          "works.");
}

} // namespace

SettingsView::SettingsView(std::shared_ptr<AppState> state, const Platform& platform)
    : state_(std::move(state)), keyEvents_(platform.keyEventMonitors),
      keychain_(platform.secretItems), permissions_(*this, platform),
      observation_(*this, [this] { refresh(); }) {
    setFixedSize(contentSize);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(header());
    layout->addWidget(ui::divider(ui::color(ui::Style::quaternary)));
    layout->addWidget(page(platform));
    permissions_.setPolling(true);
    observation_.observe(*state_);
    observation_.observe(permissions_.microphoneGranted());
    observation_.observe(permissions_.accessibilityGranted());
}

SettingsView::~SettingsView() = default;

QWidget* SettingsView::page(const Platform& platform) {
    auto* panels = ui::column({.spacing = 16}, {activationPanel(platform), orlunePanel(),
                                                keyPanel(), permissionsPanel(), footer()});
    return ui::scrollView(ui::padded(panels, 20));
}

QWidget* SettingsView::activationPanel(const Platform& platform) {
    constexpr int cardSpacing = 10;
    auto* cards = ui::row({.spacing = cardSpacing - 2 * ActivationModeCard::overflow}, {});
    for (const auto mode : allActivationModes) {
        cards_.push_back(new ActivationModeCard(
            mode, [state = state_, mode] { state->setActivationMode(mode); }));
        ui::append(cards, cards_.back());
    }
    // The recorder may end its recording while this view is being destroyed.
    recorder_ = new ShortcutRecorderControl(
        state_->shortcut(),
        {.onCaptureStateChange =
             [state = state_](bool isCapturing) { state->setCapturingShortcut(isCapturing); },
         .onCapture =
             [state = state_](const DictationShortcut& shortcut) { state->setShortcut(shortcut); }},
        platform);
    auto* shortcutTexts =
        ui::column({.spacing = 4, .alignment = ui::Alignment::leading},
                   {new ui::Text(QStringLiteral("Shortcut"),
                                 {.font = {.size = 13, .weight = ui::Weight::semibold}}),
                    caption(QStringLiteral("Use Fn alone, or a key with modifiers"))});
    return new SettingsPanel(
        QStringLiteral("Activation"),
        {{cards, ActivationModeCard::overflow},
         panelDivider(),
         ui::row({.spacing = 16}, {shortcutTexts, ui::spacer(), recorder_}),
         caption(QStringLiteral("Press Escape while listening to cancel without inserting text."),
                 ui::Style::tertiary)});
}

QWidget* SettingsView::orlunePanel() {
    isEnabled_ = new ui::Toggle(QStringLiteral("Enable Orlune"), {});
    connect(isEnabled_, &QCheckBox::clicked, this, [this](bool isOn) { state_->setEnabled(isOn); });
    intentCheck_ = new ui::Toggle(
        QStringLiteral("Intent Check"),
        QStringLiteral("Confirm the goal and requirements before anything is inserted"));
    connect(intentCheck_, &QCheckBox::clicked, this,
            [this](bool isOn) { state_->setIntentCheckEnabled(isOn); });
    auto* engineTexts =
        ui::column({.spacing = 3, .alignment = ui::Alignment::leading},
                   {new ui::Text(QStringLiteral("Transcription engine"),
                                 {.font = {.size = ui::textSize::body}}),
                    caption(QStringLiteral("Streams active dictation using your own account"))});
    auto* engine =
        new ui::Text(QStringLiteral("Deepgram BYOK"),
                     {.font = {.size = ui::textSize::caption, .weight = ui::Weight::semibold},
                      .color = ui::color(ui::Style::secondary)});
    return new SettingsPanel(QStringLiteral("Orlune"),
                             {ui::fillingWidth(isEnabled_), panelDivider(),
                              ui::fillingWidth(intentCheck_), panelDivider(),
                              ui::row({}, {engineTexts, ui::spacer(), engine})});
}

QWidget* SettingsView::keyPanel() {
    deepgramAPIKey_ = new ui::SecureField(QStringLiteral("Paste a new API key"),
                                          QStringLiteral("Deepgram API Key"));
    deepgramAPIKey_->onChange([this] { refreshKey(); });
    deepgramAPIKey_->onSubmit([this] { saveAPIKey(); });
    keyStatus_ = new ui::Label(QStringLiteral("exclamationmark.circle"), {},
                               {.font = {.size = ui::textSize::caption}});
    removeKey_ =
        new ui::Button(QStringLiteral("Remove"),
                       {.style = ui::ButtonStyle::plain, .color = ui::color(ui::Style::secondary)});
    connect(removeKey_, &QPushButton::clicked, this, &SettingsView::removeAPIKey);
    saveKey_ = new ui::Button(QStringLiteral("Save"), {});
    connect(saveKey_, &QPushButton::clicked, this, &SettingsView::saveAPIKey);
    return new SettingsPanel(QStringLiteral("Deepgram API Key"),
                             {deepgramAPIKey_, ui::row({.spacing = 8}, {keyStatus_, ui::spacer(),
                                                                        removeKey_, saveKey_})});
}

QWidget* SettingsView::permissionsPanel() {
    microphone_ =
        new PermissionRow(QStringLiteral("Microphone"),
                          QStringLiteral("Captures audio only during an active dictation."),
                          [this] { permissions_.requestMicrophone(); });
    accessibility_ =
        new PermissionRow(QStringLiteral("Accessibility"),
                          QStringLiteral("Detects the shortcut and inserts at your cursor."),
                          [this] { permissions_.requestAccessibility(); });
    return new SettingsPanel(QStringLiteral("Permissions"),
                             {microphone_, panelDivider(), accessibility_});
}

void SettingsView::saveAPIKey() {
    if (deepgramAPIKey_->isBlank()) {
        return;
    }
    auto key = deepgramAPIKey_->text();
    try {
        state_->saveDeepgramAPIKey(key);
        clearEntry();
        keyMessage_ = QStringLiteral("Key saved in Mac Keychain");
    } catch (const std::exception& error) {
        keyMessage_ = QString::fromUtf8(error.what());
    }
    wipe(key);
    refreshKey();
}

void SettingsView::removeAPIKey() {
    try {
        keychain_.set({}, SecretKey::deepgramAPIKey);
        state_->setHasDeepgramAPIKey(false);
        clearEntry();
        keyMessage_ = QStringLiteral("Key removed");
    } catch (const std::exception& error) {
        keyMessage_ = QString::fromUtf8(error.what());
    }
    refreshKey();
}

void SettingsView::clearEntry() {
    // A button that is disabled would pass the focus to the next control.
    if (saveKey_->hasFocus() || removeKey_->hasFocus()) {
        deepgramAPIKey_->setFocus();
    }
    deepgramAPIKey_->wipe();
}

void SettingsView::discardEntry() {
    deepgramAPIKey_->wipe();
}

void SettingsView::refresh() {
    for (std::size_t index = 0; index < cards_.size(); ++index) {
        cards_[index]->setSelected(state_->activationMode() == allActivationModes.at(index));
        const bool isHold = allActivationModes.at(index) == ActivationMode::holdToSpeak;
        cards_[index]->setHint(isHold && !keyEvents_.reportsReleases() ? noReleasesHint()
                                                                       : QString());
    }
    recorder_->setShortcut(state_->shortcut());
    isEnabled_->setChecked(state_->isEnabled());
    isEnabled_->setCaption(QString::fromStdString(state_->idleInstruction()));
    intentCheck_->setChecked(state_->intentCheckEnabled());
    refreshKey();
    microphone_->setGranted(permissions_.microphoneGranted());
    accessibility_->setGranted(permissions_.accessibilityGranted());
}

void SettingsView::refreshKey() {
    const bool hasKey = state_->hasDeepgramAPIKey();
    keyStatus_->setSymbol(hasKey ? QStringLiteral("checkmark.circle.fill")
                                 : QStringLiteral("exclamationmark.circle"));
    keyStatus_->setColor(hasKey ? OrlunePalette::success() : ui::color(ui::Style::secondary));
    keyStatus_->setTitle(keyMessage_ ? *keyMessage_
                         : hasKey    ? QStringLiteral("Key saved in Mac Keychain")
                                     : QStringLiteral("Required for transcription"));
    removeKey_->setVisible(hasKey);
    saveKey_->setText(hasKey ? QStringLiteral("Replace") : QStringLiteral("Save"));
    saveKey_->setEnabled(!deepgramAPIKey_->isBlank());
}

} // namespace orlune
