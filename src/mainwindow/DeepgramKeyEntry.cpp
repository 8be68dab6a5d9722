#include "mainwindow/DeepgramKeyEntry.h"

#include "platform/SecureWipe.h"
#include "ui/Button.h"
#include "ui/SecureField.h"
#include "ui/Stack.h"
#include "ui/Symbol.h"
#include "ui/Text.h"
#include "visuals/OrlunePalette.h"

#include <QVBoxLayout>

#include <exception>
#include <utility>

namespace orlune {

namespace {

constexpr auto consoleAddress = "https://console.deepgram.com/";

} // namespace

DeepgramKeyEntry::DeepgramKeyEntry(std::shared_ptr<AppState> state, UrlOpener& urlOpener,
                                   std::function<void()> saved)
    : state_(std::move(state)), saved_(std::move(saved)),
      observation_(*this, [this] { refresh(); }) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(ui::column({.spacing = 14}, {entryRow(), statusRow(urlOpener)}));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    setFocusProxy(field_);
    observation_.observe(state_->hasDeepgramAPIKey());
}

QWidget* DeepgramKeyEntry::entryRow() {
    field_ = new ui::SecureField(QStringLiteral("Paste your Deepgram API key"),
                                 QStringLiteral("Deepgram API key"));
    save_ = new ui::Button(QStringLiteral("Save Key"), {.style = ui::ButtonStyle::prominent});
    field_->onChange([this] { save_->setEnabled(!field_->isBlank()); });
    field_->onSubmit([this] { saveAPIKey(); });
    save_->setEnabled(false);
    connect(save_, &QPushButton::clicked, this, [this] { saveAPIKey(); });
    return ui::row({.spacing = 10}, {field_, save_});
}

QWidget* DeepgramKeyEntry::statusRow(UrlOpener& urlOpener) {
    const ui::Font caption{.size = ui::textSize::caption};
    icon_ = new ui::Symbol(QStringLiteral("key.horizontal"), caption);
    status_ = new ui::Text({}, {.font = caption, .color = ui::color(ui::Style::secondary)});
    auto* link = new ui::Button(
        QStringLiteral("Open Deepgram Console"),
        {.style = ui::ButtonStyle::plain, .font = caption, .color = OrlunePalette::accentBright()});
    connect(link, &QPushButton::clicked, this, [&urlOpener] { urlOpener.open(consoleAddress); });
    return ui::row({.spacing = 8}, {icon_, status_, ui::spacer(), link});
}

void DeepgramKeyEntry::saveAPIKey() {
    if (field_->isBlank()) {
        return;
    }
    auto key = field_->text();
    std::optional<QString> refusal;
    try {
        state_->saveDeepgramAPIKey(key);
    } catch (const std::exception& error) {
        refusal = QString::fromUtf8(error.what());
    }
    wipe(key);
    keyMessage_ = refusal.value_or(QStringLiteral("Deepgram key saved securely"));
    refresh();
    if (!refusal) {
        field_->wipe();
        saved_();
    }
}

void DeepgramKeyEntry::discardEntry() {
    field_->wipe();
}

void DeepgramKeyEntry::refresh() {
    const bool hasKey = state_->hasDeepgramAPIKey();
    save_->setText(hasKey ? QStringLiteral("Replace Key") : QStringLiteral("Save Key"));
    icon_->setName(hasKey ? QStringLiteral("checkmark.circle.fill")
                          : QStringLiteral("key.horizontal"));
    icon_->setColor(hasKey ? OrlunePalette::success() : ui::color(ui::Style::secondary));
    status_->setText(
        keyMessage_.value_or(hasKey ? QStringLiteral("Deepgram key saved securely")
                                    : QStringLiteral("A Deepgram key is required to transcribe")));
}

} // namespace orlune
