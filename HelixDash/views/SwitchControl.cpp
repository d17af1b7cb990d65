#include <HelixDash/views/SwitchControl.h>

#include <QPointer>

SwitchControl::SwitchControl(DisplayView* parent, Qt::Orientation orientation, const QStringList& itemsByPosition)
    : ControlBase(parent), mSlider(new Slider(this, orientation)) {
    mSlider->setItems(itemsByPosition);
    connect(mSlider, &Slider::valueChanged, this, &SwitchControl::chosen);
}

void SwitchControl::setPosition(int position) {
    mSlider->setValue(position, false, false, false);
}

QRect SwitchControl::itemPlace(int position) const {
    return mSlider->thumbPlace(position).translated(mSlider->pos());
}

void SwitchControl::resizeEvent(QResizeEvent* event) {
    ControlBase::resizeEvent(event);
    const QRect place = contentsRect();
    mSlider->move(place.left(), place.top());
    mSlider->resize(place.width(), place.height());
}

void SwitchControl::chosen() {
    QPointer<SwitchControl> self = this;
    emit positionChanged(position());
    if (self)
        emit released(this);
}
