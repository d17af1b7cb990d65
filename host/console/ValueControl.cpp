#include "host/console/ValueControl.h"

#include "host/values/ValueSetter.h"

#include <QCheckBox>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QLabel>

namespace {

constexpr int kLabelWidth = 96;
constexpr int kRowHeight = 28;
constexpr int kUnitWidth = 42;
constexpr int kEditorPlace = 1;
constexpr qreal kFaint = 0.45;

}  // namespace

ValueControl::ValueControl(const QString& valueName, const QString& label, const QString& unit)
    : mValue(DataValueManager::instance().find(valueName)),
      mLayout(new QHBoxLayout(this)),
      mValid(new QCheckBox(tr("valid"))) {
    setObjectName(valueName);
    setToolTip(valueName);
    mLayout->setContentsMargins(0, 0, 0, 0);
    auto* labelView = new QLabel(label);
    labelView->setFixedWidth(kLabelWidth);
    auto* unitView = new QLabel(unit);
    unitView->setFixedWidth(kUnitWidth);
    mLayout->addWidget(labelView);
    mLayout->addWidget(unitView);
    mLayout->addWidget(mValid);
    connect(mValid, &QCheckBox::clicked, this, &ValueControl::setValid);
    dvConnect(mValue, this, &ValueControl::follow);
}

void ValueControl::setEditor(QWidget* editor) {
    editor->setMinimumHeight(kRowHeight);
    mLayout->insertWidget(kEditorPlace, editor, 1);
    mFaint = new QGraphicsOpacityEffect(editor);
    editor->setGraphicsEffect(mFaint);
    follow();
}

void ValueControl::setValue(const QVariant& value) {
    ValueSetter::set(mValue->name(), value, nullptr);
    // Where nothing has changed, no signal has brought the editor back to the value.
    follow();
}

void ValueControl::setValid(bool valid) {
    setValue(valid ? edited() : QVariant());
}

void ValueControl::follow() {
    const DataValue::StateLocker locker(mValue);
    mValid->setChecked(mValue->isValid());
    mFaint->setOpacity(mValue->isValid() ? 1.0 : kFaint);
    if (mValue->isValid())
        showValue(*mValue);
}
