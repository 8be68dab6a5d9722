// Tells the user, in one dialog, what keeps text from being pasted and how to allow it. Main
// thread.
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

    /// Returns at once. While the dialog is open it takes the new reason instead of a second one.
    void show(const std::string& reason);

  private:
    QPointer<QMessageBox> dialog_;
};

} // namespace orlune
