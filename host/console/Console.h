#pragma once

#include <QList>
#include <QWidget>

class QVBoxLayout;
class ValueControl;

// The panel beside the screen with which a person plays the car: what the driver and the car do, sorted by where it
// comes from, each value with its unit and its validity. It shows what the values are, whoever has set them. UI thread.
class Console : public QWidget {
    Q_OBJECT
public:
    static constexpr int kWidth = 460;

    // The vehicle's named data values have to exist.
    Console();

private:
    void addGroup(const QString& title, const QList<ValueControl*>& controls);
    void addAllValid();
    void addOtherValues();

    QVBoxLayout* mLayout;
    QList<ValueControl*> mControls;
};
