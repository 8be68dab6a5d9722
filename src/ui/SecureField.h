// A field for a secret. Shows dots; nothing of it is completed, learned, copied, undone or given to
// assistive technology. The text stands in this process' memory from typing to wiping, and nowhere
// in it afterwards. Main thread. Focus goes to the line inside.
#pragma once

#include <QString>
#include <QWidget>

#include <functional>
#include <string>

namespace orlune::ui {

class SecureField final : public QWidget {
  public:
    /// `prompt` stands in the field while it is empty.
    SecureField(const QString& prompt, const QString& accessibleName);
    ~SecureField() override;

    /// `changed` is called after every change.
    void onChange(std::function<void()> changed) { changed_ = std::move(changed); }
    /// `submitted` is called when Return is pressed.
    void onSubmit(std::function<void()> submitted) { submitted_ = std::move(submitted); }

    /// Whether there is nothing in it but whitespace and newlines.
    bool isBlank() const;
    /// A copy in UTF-8, which the caller wipes.
    std::string text() const;
    /// Empties the field. In the next turn nothing of what it has held is left in memory, but for
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
    bool isUsed_ = false; ///< it has held something since it was last wiped
};

} // namespace orlune::ui
