// Whether a view can be seen: it is shown, in a window that is not minimised. Main thread; to be
// used as a member of the view.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWindow>

#include <functional>

class QWidget;

namespace orlune::ui {

class Visibility final : public QObject {
  public:
    /// `changed` is called with the new answer. Initially the view counts as not seen.
    Visibility(QWidget& view, std::function<void(bool isSeen)> changed);

    bool isSeen() const { return isSeen_; }

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QWidget& view_;
    std::function<void(bool)> changed_;
    QPointer<QWindow> window_;
    bool isSeen_ = false;
};

} // namespace orlune::ui
