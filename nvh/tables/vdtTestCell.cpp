#include "nvh/tables/vdtTestCell.h"

#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SlideSwitch.h>

namespace {

constexpr int kLeft = 5;
constexpr int kNameTop = 10;
constexpr int kNameHeight = 25;
constexpr int kSwitchTop = 55;
constexpr int kFontSize = 20;
const QStringList kMarks{QStringLiteral("FAIL"), QStringLiteral("PASS"), QStringLiteral("NA")};

}  // namespace

vdtTestCell::vdtTestCell(TableView* table, QString const& key, int row, QString name)
    : TableCell(table, key), mRow(row), mNameLabel(new LabelView(name, contentView())) {
    mNameLabel->setStyle("Alignment:wordwrap|center");
    mNameLabel->setSkinColor("black");
    mNameLabel->setFontSize(kFontSize);
}

void vdtTestCell::populate() {
    if (!mMarkSwitch) {
        mMarkSwitch = new SlideSwitch(contentView(), kMarks);
        mMarkSwitch->setSwitchType(SlideSwitch::Row);
        mMarkSwitch->move(kLeft, kSwitchTop);
    }
    mNameLabel->resize(width() - kLeft, kNameHeight);
    mNameLabel->move(kLeft, kNameTop);
}

QString vdtTestCell::name() const {
    return mNameLabel->text();
}

QString vdtTestCell::mark() const {
    return mMarkSwitch ? mMarkSwitch->labelAt(mMarkSwitch->position()) : kMarks.first();
}
