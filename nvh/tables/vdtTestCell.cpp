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
    // A name that does not fit into its line takes the room down to the switch.
    mNameLabel->resizeToFit(width() - kLeft);
    const bool fits = mNameLabel->height() <= kNameHeight;
    mNameLabel->resize(width() - kLeft, fits ? kNameHeight : kSwitchTop - kNameTop);
    mNameLabel->move(kLeft, kNameTop);
}

QString vdtTestCell::name() const {
    return mNameLabel->text();
}

QString vdtTestCell::mark() const {
    return mMarkSwitch ? mMarkSwitch->labelAt(mMarkSwitch->position()) : untouchedMark();
}

QString vdtTestCell::untouchedMark() {
    return kMarks.first();
}
