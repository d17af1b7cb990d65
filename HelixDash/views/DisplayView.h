#pragma once

// A rectangle on the screen, the base of everything that is shown.
//
//     auto* panel = new DisplayView(parent);        // visible and enabled, at 0,0
//     panel->setViewName("mPanel");
//     panel->resize(300, 200);
//     panel->setRight(parent->width() - 10);
//     panel->show(false);
//
// It is a QWidget: Qt paints it, clips its children to it and brings the touches. What differs is what the names mean.
// isVisible() and isEnabled() are the view's own flags. A view is visible when it would be seen if its parents were,
// and enabled when it would take a touch if its parents did. A hidden or disabled parent takes its children with it on
// the screen and leaves their flags alone, so that a picture of all flags can be taken and put back later.
//
// Coordinates are pixels from the parent's top left corner; right() and bottom() are the first pixel beyond the view.
// Geometry calls with 0 ms take effect at once; with a time the view moves there along the ease curve.
//
// UI thread only.

#include <HelixDash/Export.h>
#include <HelixDash/views/Style.h>

#include <QList>
#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

enum class EaseType { Linear = 0, In = 1, Out = 2, InOut = 3 };

class HELIXDASH_EXPORT DisplayView : public QWidget {
    Q_OBJECT

public:
    // Without a parent the view is a window of its own that stays off the screen until show(true).
    explicit DisplayView(DisplayView* parent = nullptr);
    ~DisplayView() override;

    // The name by which drives and pictures of the state find the view; it is the QObject's name.
    QString viewName() const { return objectName(); }
    void setViewName(const QString& name) { setObjectName(name); }

    int left() const { return x(); }
    int top() const { return y(); }
    int right() const { return x() + width(); }
    int bottom() const { return y() + height(); }

    void move(int left, int top, EaseType ease = EaseType::Out, int ms = 0);
    void resize(int width, int height, EaseType ease = EaseType::Out, int ms = 0);
    // Each moves the view so that the edge lies there; none changes its size.
    void setLeft(int px, EaseType ease = EaseType::Out, int ms = 0);
    void setTop(int px, EaseType ease = EaseType::Out, int ms = 0);
    void setRight(int px, EaseType ease = EaseType::Out, int ms = 0);
    void setBottom(int px, EaseType ease = EaseType::Out, int ms = 0);
    void setWidth(int px, EaseType ease = EaseType::Out, int ms = 0);
    void setHeight(int px, EaseType ease = EaseType::Out, int ms = 0);

    void show(bool visible = true);
    bool isVisible() const { return mVisible; }

    void enable(bool on) { setEnabled(on); }
    void setEnabled(bool on);
    void setDisabled(bool off) { setEnabled(!off); }
    bool isEnabled() const { return mEnabled; }

    // True while a touch may act: the view's own visible flag is set and neither it nor a parent is disabled.
    bool acceptsTouch() const;

    // A name from the skin ("SettingsMainLabel"), properties ("Alignment:center; FontSize:24"), or both. Properties
    // that the view does not know are ignored.
    void setStyle(const Style& style);
    const Style& viewStyle() const { return mStyle; }

    // A skin colour that fills the view behind its content; an empty name removes it.
    void setBackgroundColor(const QString& skinColor);
    QString backgroundColor() const { return mBackgroundColor; }

    // The views directly inside this one, in their stacking order, lowest first.
    QList<DisplayView*> childViews() const;
    DisplayView* parentView() const;
    // The outermost view, which is the screen.
    DisplayView* screenView();

    // Told once per change of the own visible flag, after it. Overriders call the base first.
    virtual void shown();
    virtual void hidden();

    // Whatever a finger has begun in this view or in one inside it comes to nothing.
    void forgetTouches();

    // Qt's own way in, for QWidget::hide() and the like; the same as show(bool).
    void setVisible(bool visible) override;

protected:
    // The style has been set; take from it what this view knows.
    virtual void styleChanged();
    // The application has chosen a size, as opposed to one that the view gave itself.
    virtual void sizeChosen();
    // The own enabled flag has changed.
    virtual void enabledFlagChanged(bool on);
    // A touch that is going on must be forgotten: the view went, or became disabled.
    virtual void touchLost();

    // Sizes the view without telling sizeChosen().
    void resizeSilently(int width, int height) { takeSize({width, height}); }

    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void animate(QPointer<QVariantAnimation>& running, const QVariant& from, const QVariant& to, EaseType ease, int ms);
    void stop(QPointer<QVariantAnimation>& running);
    void moveTo(const QPoint& place, EaseType ease, int ms);
    void resizeTo(const QSize& size, EaseType ease, int ms);
    void takePlace(const QPoint& place);
    void takeSize(const QSize& size);

    bool mVisible = true;
    bool mEnabled = true;
    Style mStyle;
    QString mBackgroundColor;
    QPointer<QVariantAnimation> mMoving;
    QPointer<QVariantAnimation> mResizing;
};
