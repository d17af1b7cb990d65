#pragma once

// One line of a picker's open list. Not for applications.

#include <HelixDash/views/ControlBase.h>

class ChoiceRow : public ControlBase {
    Q_OBJECT

public:
    static constexpr int kHeight = 60;

    ChoiceRow(DisplayView* parent, const QString& text, bool chosen);

    QString text() const { return mText; }

protected:
    void touchLost() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    const QString mText;
    const bool mChosen;
    bool mTouched = false;
};
