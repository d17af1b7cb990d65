#pragma once

// A window on a content that may be higher than it is.
//
//     ScrollableView* area = ViewFactory::createScrollableView(this, "black3");
//     auto* text = new LabelView(area->contentView());
//
// The content is as wide as the view and as high as the views in it need. A finger drags it and it runs on after a
// flick (Qt's kinetic scroller). Scrolling counts on what can be seen: where a part of the view lies outside the
// screen, the content's end still scrolls into the part that does not. A disabled view does not scroll by touch.

#include <HelixDash/views/DisplayView.h>

class HELIXDASH_EXPORT ScrollableView : public DisplayView {
    Q_OBJECT

public:
    explicit ScrollableView(DisplayView* parent = nullptr);

    DisplayView* contentView() const { return mContent; }

    // The part of this view that its parents and the screen do not cut off, in this view.
    QRect visiblePart() const;

    // Pixels of the content that are scrolled away above.
    int scrollPosition() const;
    int scrollRange() const;
    // At once, kept inside 0 .. scrollRange(); a movement that goes on stops.
    void scrollTo(int position);
    // Scrolls as little as possible so that the rows of the content from top on are in the visible part.
    void scrollToShow(int top, int height);

protected:
    // What the views in the content need.
    virtual int contentHeight() const;
    // Gives the content its height. Called by itself when a view in the content comes, goes, or changes its place.
    void fitContent();

    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    class Edge;

    void placeContent(int position);

    DisplayView* mContent;
    Edge* mEdge;
};
