#include "ui/ScrollView.h"

#include "ui/ScrollBar.h"

#include <QScrollArea>

namespace orlune::ui {

QScrollArea* scrollView(QWidget* content) {
    auto* view = new QScrollArea;
    view->setFrameShape(QFrame::NoFrame);
    view->setFocusPolicy(Qt::NoFocus); // it follows the focus of its content
    view->setVerticalScrollBar(new ScrollBar(ScrollBar::Place::over));
    view->setWidgetResizable(true);
    view->setWidget(content);
    // Qt gives both of them a background.
    view->viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    return view;
}

} // namespace orlune::ui
