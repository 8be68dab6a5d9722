// A dialog that tells the user what keeps text from being pasted and how to allow it. Main thread.
#pragma once

#include <QPointer>

#include <string>

class QMessageBox;

namespace orlune {

class TrustDialog {
  public:
    TrustDialog() = default;
    ~TrustDialog();
    TrustDialog(const TrustDialog&) = delete;
    TrustDialog& operator=(const TrustDialog&) = delete;

    /// Returns at once. An open dialog shows the new reason; no second one opens.
    void show(const std::string& reason);

  private:
    QPointer<QMessageBox> dialog_;
};

} // namespace orlune
