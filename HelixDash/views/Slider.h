#pragma once

// A thumb on a track, for one value; with items, a choice among texts along the track.
//
//     auto* volume = new Slider(this, Qt::Horizontal);
//     volume->setRange(0, 11);
//     connect(volume, &Slider::valueChanged, this, &MyView::volumeChanged);
//
// A horizontal slider has its smallest value at the left, a vertical one at the bottom. A tap moves the thumb to where
// the finger is lifted, a finger that comes down on the thumb drags it. With items the value is the number of one of
// them and the thumb comes to rest on it. A finger lifted far beside the track (kGiveUp pixels) gives the gesture up.
//
// Without pictures of its own the slider shows the skin's.

#include <HelixDash/views/ControlBase.h>
#include <HelixDash/views/DisplayImage.h>

#include <QMargins>
#include <QStringList>
#include <QVariantAnimation>

class HELIXDASH_EXPORT Slider : public ControlBase {
    Q_OBJECT

public:
    static constexpr int kSlideMs = 120;
    static constexpr int kGiveUp = 150;

    explicit Slider(DisplayView* parent = nullptr, Qt::Orientation orientation = Qt::Horizontal);

    Qt::Orientation orientation() const { return mOrientation; }

    // Texts in order of their values, beginning with value 0; sets the range. An empty list makes it continuous again.
    void setItems(const QStringList& items);
    const QStringList& items() const { return mItems; }

    double minimum() const { return mMinimum; }
    double maximum() const { return mMaximum; }
    // A maximum below the minimum is taken as the minimum. The value is kept inside.
    void setRange(double minimum, double maximum);

    double value() const { return mValue; }
    // The value, kept inside the range and with items rounded to one of them; not a number is ignored. With all flags
    // false the thumb is there at once and no signal goes out.
    //   animate  the thumb slides there in kSlideMs; value() is the new one at once all the same
    //   notify   valueChanged() goes out if the value is another one than before
    //   force    with notify, valueChanged() goes out in any case
    // A finger that holds the thumb lets go of it.
    void setValue(double value, bool animate, bool notify, bool force);

    void setTrackImage(const DisplayImage& image);
    void setThumbImage(const DisplayImage& image);

    // Sizes for a slider that is laid out by its pictures, in pixels at scale 1: one item is as long as the thumb.
    int trackWidth() const { return mTrackImage.width(); }
    int thumbWidth() const { return mThumbImage.width(); }
    int thumbHeight() const { return mThumbImage.height(); }
    // The blank strips at the ends and sides of the track's picture.
    QMargins trackMargins() const { return {}; }
    // The room that the slider keeps free around the thumb's travel.
    QMargins thumbMargins() const;

    // How far the track reaches beyond the middle of the thumb at either end of its travel; at first half of the
    // thumb's length, so that track and travel end together.
    int trackAdjustment() const;
    void setTrackAdjustment(int px);

    // Where the thumb is drawn for a value, in the slider; what a finger has to touch to choose it.
    QRect thumbPlace(double value) const;

signals:
    void valueChanged(double value);

protected:
    void touchLost() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool isVertical() const { return mOrientation == Qt::Vertical; }
    QRect travel() const;
    double itemLength() const;
    double settled(double value) const;
    double valueAt(const QPoint& place) const;
    int along(const QPoint& place) const { return isVertical() ? place.y() : place.x(); }
    int beside(const QPoint& place) const;
    void follow(const QPoint& place);
    void slideThumbTo(double value, bool animate);
    QRect trackPlace() const;
    void paintTouch(QPainter* painter) const;
    void paintItem(QPainter* painter, int item) const;

    const Qt::Orientation mOrientation;
    QStringList mItems;
    double mMinimum = 0;
    double mMaximum = 1;
    double mValue = 0;
    double mThumb = 0;  // where the thumb is seen: behind a finger or on its way to the value
    QVariantAnimation mSlide;
    DisplayImage mTrackImage;
    DisplayImage mThumbImage;
    int mTrackAdjustment = -1;  // not chosen

    enum class Touch { None, OnTrack, OnThumb, Dragging };
    Touch mTouch = Touch::None;
    QPoint mTouchedAt;
    QPoint mFinger;
    double mGrip = 0;  // value under the finger less the thumb's, when it came down
};
