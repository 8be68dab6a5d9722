#include "app/desktop/TrustDialog.h"

#include <QMessageBox>

namespace orlune {

TrustDialog::~TrustDialog() {
    delete dialog_;
}

void TrustDialog::show(const std::string& reason) {
    if (!dialog_) {
        dialog_ = new QMessageBox(QMessageBox::Warning, QStringLiteral("Orlune"),
                                  QStringLiteral("Orlune can't paste into other programs."),
                                  QMessageBox::Close);
        dialog_->setAttribute(Qt::WA_DeleteOnClose);
        dialog_->setModal(false);
    }
    dialog_->setInformativeText(QString::fromStdString(reason));
    dialog_->show();
    dialog_->raise();
}

} // namespace orlune
