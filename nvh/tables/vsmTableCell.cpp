#include "nvh/tables/vsmTableCell.h"

#include <HelixDash/values/DataValueManager.h>
#include <HelixDash/views/LabelView.h>

#include <utility>

namespace {

constexpr int kMargin = 20;
constexpr int kStatusWidth = 130;
constexpr int kFontSize = 28;
const char* const kNameStyle = "Alignment:wordwrap|center";
const char* const kStatusStyle = "Alignment:wordwrap|center; Weight:semibold";

const QString kOk = QStringLiteral("OK");
const QString kNotOk = QStringLiteral("NOT OK");
const QString kInvalid = QStringLiteral("INVALID");
const QString kAuto = QStringLiteral("AUTO");

DataValue* dataValue(const QString& name) {
    return DataValueManager::instance().find(name);
}

}  // namespace

vsmTableCell::vsmTableCell(TableView* table, QString const& key, int row, QString name,
                           QMap<QString, QVariant> dataValues, QMap<QString, QVariant> overrideDataValues)
    : TableCell(table, key),
      mNameLabel(new LabelView(name, contentView())),
      mStatusLabel(new LabelView(contentView())),
      mDataValues(std::move(dataValues)),
      mOverrideDataValues(std::move(overrideDataValues)),
      mRow(row) {
    mNameLabel->setStyle(kNameStyle);
    mNameLabel->setSkinColor("black");
    mNameLabel->setFontSize(kFontSize);
    mStatusLabel->setStyle(kStatusStyle);
    mStatusLabel->setViewName(QStringLiteral("mVsmStatus%1").arg(row));
    mStatusLabel->setSkinColor("red");
    mStatusLabel->setFontSize(kFontSize);
    updateVSMTableCell();
}

void vsmTableCell::populate() {
    // A name stands at the left edge; only one that has to be wrapped is centred in its column.
    const int column = width() - 2 * kMargin - kStatusWidth;
    mNameLabel->resize(qMin(mNameLabel->sizeHint().width(), column), height());
    mNameLabel->move(kMargin, 0);
    mStatusLabel->resize(kStatusWidth, height());
    mStatusLabel->move(width() - kMargin - kStatusWidth, 0);
}

bool vsmTableCell::follow(const QMap<QString, QVariant>& dataValues) {
    bool all = true;
    for (auto entry = dataValues.cbegin(); entry != dataValues.cend(); ++entry) {
        DataValue* value = dataValue(entry.key());
        dvConnect(value, this, &vsmTableCell::updateVSMTableCell, Qt::UniqueConnection);
        all = all && value;
    }
    return all;
}

QString vsmTableCell::checkDataValues(QMap<QString, QVariant> dataValues) {
    for (auto expected = dataValues.cbegin(); expected != dataValues.cend(); ++expected) {
        const DataValue* value = dataValue(expected.key());
        const DataValue::StateLocker locker(value);
        if (!value || !value->isValid())
            return kInvalid;
        if (value->toString() != expected.value().toString())
            return kNotOk;
    }
    return kOk;
}

QString vsmTableCell::status() {
    if (mAutoControl)
        return kAuto;
    const QString status = checkDataValues(mDataValues);
    return status == kOk || mOverrideDataValues.isEmpty() ? status : checkDataValues(mOverrideDataValues);
}

void vsmTableCell::updateVSMTableCell() {
    if (!mFollowsAll) {
        const bool followsCondition = follow(mDataValues);
        mFollowsAll = follow(mOverrideDataValues) && followsCondition;
    }
    const QString now = status();
    mStatusLabel->setSkinColor(now == kNotOk || now == kInvalid ? "red" : "battery/green");
    mStatusLabel->setText(now);
}
