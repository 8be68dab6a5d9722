// A field for a secret. Shows dots; its text is never completed, learned, copied, undone or given
// to assistive technology. The text is in this process's memory only from typing to wiping. Main
// thread. Focus goes to the inner line.
#pragma once

#include <QString>
#include <QWidget>

#include <functional>
#include <string>

namespace orlune::ui {

class SecureField final : public QWidget {
  public:
    /// `prompt` is shown while the field is empty.
    SecureField(const QString& prompt, const QString& accessibleName);
    ~SecureField() override;

    /// `changed` is called after every change.
    void onChange(std::function<void()> changed) { changed_ = std::move(changed); }
    /// `submitted` is called when Return is pressed.
    void onSubmit(std::function<void()> submitted) { submitted_ = std::move(submitted); }

    /// True when it contains only whitespace and newlines.
    bool isBlank() const;
    /// A copy in UTF-8, which the caller must wipe.
    std::string text() const;
    /// Empties the field. From the next turn on, nothing it contained is left in memory, except
    /// what the clipboard's owner and the window system keep.
    void wipe();

    bool eventFilter(QObject* watched, QEvent* event) override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    class Entry;
    void addEntry();

    const QString prompt_;
    const QString accessibleName_;
    std::function<void()> changed_;
    std::function<void()> submitted_;
    Entry* entry_ = nullptr;
    bool isUsed_ = false; ///< it has contained text since it was last wiped
};

} // namespace orlune::ui
