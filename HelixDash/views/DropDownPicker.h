#pragma once

// One choice of several, the others in a list that opens at a touch.
//
//     auto* channel = new DropDownPicker(this, 300);
//     channel->setChoices({"Right", "Left", "Sum (Avg.)"});
//     connect(channel, &DropDownPicker::choiceChanged, this, &MyView::channelChosen);
//
// The list lies above everything on the screen and closes when a choice is touched, when the screen is touched
// elsewhere (that touch does nothing else), and when the picker is hidden, disabled or deleted. choiceChanged() goes
// out when the user has chosen another one, not for setChoice().

#include <HelixDash/views/ControlBase.h>
#include <HelixDash/views/ScrollableView.h>

#include <QPointer>
#include <QStringList>

class HELIXDASH_EXPORT DropDownPicker : public ControlBase {
    Q_OBJECT

public:
    DropDownPicker(DisplayView* parent, int width);
    ~DropDownPicker() override;

    const QStringList& choices() const { return mChoices; }
    // Chooses the first.
    void setChoices(const QStringList& choices);

    // -1 while there are none.
    int choice() const { return mChoice; }
    // Ignored where there is no such choice.
    void setChoice(int choice);

    bool isOpen() const { return mList; }
    void openList();
    void closeList();
    // The open list, which belongs to the screen, else null; its content holds one view per choice, in their order.
    ScrollableView* list() const { return mList; }

signals:
    void choiceChanged(int choice);

protected:
    void touchLost() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void placeList();
    void rowReleased(int row);

    QStringList mChoices;
    int mChoice = -1;
    bool mTouched = false;
    QPointer<ScrollableView> mList;
};
