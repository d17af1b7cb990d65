#include "nvh/ui/Screen.h"

#include "nvh/controls/DVControllable.h"

#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/ScrollableView.h>

void Screen::apply(Call call, const Recordings& there) {
    for (const ControlRow& row : controlRows()) {
        if (DisplayView* view = row.view(*this))
            apply(row.*call, view, there);
    }
}

void Screen::applyToAll(Call call) {
    for (DisplayView* view : mView.childViews())
        apply(rowOf(view, *this).*call, view, {});
}

void Screen::apply(Cell cell, DisplayView* view, const Recordings& there) {
    switch (cell) {
        case Cell::Unchanged:
            break;
        case Cell::On:
        case Cell::Off:
            view->enable(cell == Cell::On);
            break;
        case Cell::Shown:
        case Cell::Hidden:
            view->enable(cell == Cell::Shown);
            view->show(cell == Cell::Shown);
            break;
        case Cell::IfTest:
            if (there.test)
                view->enable(true);
            break;
        case Cell::IfAny:
            if (there.any())
                view->enable(true);
            break;
        case Cell::AsBefore:
            mSnapshot.restore(view);
            break;
    }
}

void Screen::setLabel(LabelView* label, const char* text, const char* color) {
    label->setText(QString::fromLatin1(text));
    label->setSkinColor(QString::fromLatin1(color));
}

void Screen::setLabel(LabelView* label, const char* text, const char* color, quint16 x, quint16 y) {
    setLabel(label, text, color);
    label->move(x, y);
}

void Screen::setStatus(const StatusText& status) {
    mStatusLabel->setText(status.text);
    mStatusLabel->setSkinColor(status.color);
    mStatusLabel->setLeft(status.x);
}

StatusText Screen::status() const {
    return {mStatusLabel->text(), mStatusLabel->skinColor(), mStatusLabel->left()};
}

void Screen::setUploadStatus(UploadStatus status, int count) {
    const UploadStatusText shown = textOf(status);
    mUploadStatusLabel->setText(QString(shown.text).replace(QLatin1String("%1"), QString::number(count)));
    mUploadStatusLabel->setSkinColor(shown.color);
}

void Screen::blackenLabels() {
    for (LabelView* label : {mUploadStatusLabel, mTestTypeCaption, mDurationCaption, mTimeLabel, mRpmCaption, mRpmLabel,
                             mMicChannelCaption, mFreqResCaption, mVdtCaption}) {
        if (label)
            label->setSkinColor("black");
    }
    setLabel(mCanAlertLabel, "-", "battery/red");
}

void Screen::setFeedback(const QString& text) {
    mFeedbackLabel->setText(QString::fromLatin1(text.toLatin1()));
    mFeedbackLabel->setSkinColor("black");
    fitFeedback();
    mFeedbackArea->scrollTo(0);
}

void Screen::fitFeedback() {
    mFeedbackLabel->resizeToFit(mFeedbackArea->width());
    mFeedbackLabel->setWidth(mFeedbackArea->width());
}

void Screen::showClips(const Recordings& there) {
    const auto show = [](ButtonView* button, bool exists, const char* saved, const char* record) {
        if (!button)
            return;
        button->setButtonColor(exists ? ButtonView::Saved : ButtonView::Normal);
        button->setLabel(QString::fromLatin1(exists ? saved : record));
    };
    show(mAmbientButton, there.ambient, "Ambient Saved", "Record Ambient");
    show(mNotesButton, there.notes, "Notes Saved", "Record Notes");
}

void Screen::followWheel(bool follow) {
    for (DVControllable* widget : mBoundWidgets)
        follow ? widget->enableDVControl() : widget->disableDVControl();
}

void Screen::saveState() {
    mSnapshot.save(mView.childViews());
}

void Screen::interrupt() {
    applyToAll(&ControlRow::interrupt);
    // What ends meanwhile may show Start again; it stays covered.
    mResumeButton->raise();
}

bool Screen::isCovered() const {
    return mResumeButton->isVisible();
}
