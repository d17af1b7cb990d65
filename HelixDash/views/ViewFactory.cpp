#include <HelixDash/views/ScrollableView.h>
#include <HelixDash/views/ViewFactory.h>

ScrollableView* ViewFactory::createScrollableView(DisplayView* parent, const QString& backgroundColor) {
    auto* view = new ScrollableView(parent);
    view->setBackgroundColor(backgroundColor);
    return view;
}
