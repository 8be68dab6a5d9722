// The desktop's clipboard through Qt, plain text alone, held for as long as the program runs. Main
// thread, with a QGuiApplication; other programs are served by its loop. A clipboard that somebody
// else keeps is a refusal.
#pragma once

#include "platform/Pasteboard.h"

#include <QString>

#include <memory>
#include <string>

class QTimer;

namespace orlune {

class QtPasteboard final : public Pasteboard {
  public:
    QtPasteboard();
    ~QtPasteboard() override;

    /// Takes effect in the next turn of the loop, unless a text is set before: clipboard managers
    /// refill an empty clipboard, and would do so over the text that follows.
    void clearContents() override;
    /// Refused also when another program took the clipboard in this very turn of the loop; in the
    /// next one it is granted.
    bool setString(const std::string& text) override;

    /// Offers the text set last as the primary selection too, where terminals look. False when
    /// there is none or somebody else keeps the selection.
    bool ownPrimarySelection();

  private:
    std::unique_ptr<QTimer> nextTurn_;
    QString refused_; ///< offered again in the next turn; null: the clipboard is cleared then
};

} // namespace orlune
