#pragma once

#include <HelixDash/values/DataValue.h>

#include <QVariant>
#include <QWidget>

class QCheckBox;
class QGraphicsOpacityEffect;
class QHBoxLayout;

// One data value in the console: its name for people, something to set it with, its unit, and whether it is valid.
//
// It follows the value, whoever sets it; an invalid value is drawn faint. Using the editor sets the value and makes it
// valid. The control's object name is the value's. UI thread.
class ValueControl : public QWidget {
    Q_OBJECT
public:
    // The data value has to exist.
    ValueControl(const QString& valueName, const QString& label, const QString& unit = {});

    // Makes the value valid, as the editor shows it, or invalid.
    void setValid(bool valid);

protected:
    // Puts the editor into its place and shows the value for the first time.
    void setEditor(QWidget* editor);
    void setValue(const QVariant& value);

    // What the editor says.
    virtual QVariant edited() const = 0;
    // Shows a valid value; must not set it.
    virtual void showValue(const DataValue& value) = 0;

private:
    void follow();

    DataValue* mValue;
    QHBoxLayout* mLayout;
    QCheckBox* mValid;
    QGraphicsOpacityEffect* mFaint = nullptr;
};
