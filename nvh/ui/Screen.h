#pragma once

#include "nvh/ui/InterruptionSnapshot.h"
#include "nvh/ui/ScreenState.h"
#include "nvh/ui/ScreenWidgets.h"
#include "nvh/ui/StatusTexts.h"

// The views of the recorder's screen, and all that is done to them while it runs: what may be touched, what the labels
// say. It decides nothing; NVHAppView tells it. UI thread.
class Screen : public ScreenWidgets {
public:
    // The view has the widgets for children and outlives this object.
    explicit Screen(DisplayView& view) : mView(view) {}

    // Does to every control what the table says of that call.
    void apply(Call call, const Recordings& there = {});

    // Sets a label's text and skin colour (Latin-1), and moves it to a place in the view.
    void setLabel(LabelView* label, const char* text, const char* color);
    void setLabel(LabelView* label, const char* text, const char* color, quint16 x, quint16 y);

    // The status label: its text with colour and place, from the table or as it was read before.
    void setStatus(Status status) { setStatus(textOf(status)); }
    void setStatus(const StatusText& status);
    StatusText status() const;
    // The upload-status label, with the count where the text has one.
    void setUploadStatus(UploadStatus status, int count = 0);
    // Colours the labels of a ready screen.
    void blackenLabels();
    // Replaces the feedback, from its top; characters that Latin-1 does not have are shown as '?'.
    void setFeedback(const QString& text);
    // For a feedback area that has got another size.
    void fitFeedback();
    // The side recordings' buttons say whether there is such a recording.
    void showClips(const Recordings& there);

    // Whether the widgets that are bound to the steering wheel follow it.
    void followWheel(bool follow);

    // Takes the picture to which restoreState() goes back.
    void saveState();
    void restoreState() { applyToAll(&ControlRow::restoreState); }
    // A view goes.
    void forget(const QObject* view) { mSnapshot.forget(view); }
    // Disables everything and covers Start and Stop with the resume button.
    void interrupt();
    // True from an interruption until the driver resumes.
    bool isCovered() const;

private:
    void apply(Cell cell, DisplayView* view, const Recordings& there);
    void applyToAll(Call call);

    DisplayView& mView;
    InterruptionSnapshot mSnapshot;
};
