#include "host/console/OtherValues.h"

#include "host/setup/HostOptions.h"

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

// Nobody tells when a value is made; a person does not notice the delay.
constexpr int kLookMs = 300;

}  // namespace

OtherValues::OtherValues(const QStringList& elsewhere)
    : mElsewhere(elsewhere), mList(new QTreeWidget), mLine(new QLineEdit), mFault(new QLabel) {
    mList->setHeaderLabels({tr("Name"), tr("Value")});
    mList->setRootIsDecorated(false);
    mList->header()->setStretchLastSection(true);
    mList->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    mLine->setPlaceholderText(tr("NAME=true, NAME=4.5, NAME=int:invalid …"));
    mLine->setObjectName(QStringLiteral("setValue"));
    mFault->setWordWrap(true);
    mFault->hide();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(mList, 1);
    layout->addWidget(mLine);
    layout->addWidget(mFault);

    connect(mLine, &QLineEdit::returnPressed, this, &OtherValues::setAsTyped);
    connect(mList, &QTreeWidget::itemClicked, this, &OtherValues::offer);
    connect(&mTimer, &QTimer::timeout, this, &OtherValues::lookForNewValues);
    mTimer.start(kLookMs);
    lookForNewValues();
}

void OtherValues::lookForNewValues() {
    for (DataValue* value : DataValueManager::instance().values()) {
        if (mItems.contains(value->name()) || mElsewhere.contains(value->name()))
            continue;
        mItems.insert(value->name(), new QTreeWidgetItem(mList, {value->name()}));
        dvConnect(value, this, &OtherValues::show);
        show(value);
    }
}

void OtherValues::show(DataValue* value) {
    const DataValue::StateLocker locker(value);
    mItems.value(value->name())->setText(1, value->toString());
}

void OtherValues::offer(QTreeWidgetItem* item) {
    mLine->setText(item->text(0) + QLatin1Char('='));
    mLine->setFocus();
}

void OtherValues::setAsTyped() {
    QString fault;
    const auto setting = ValueSetting::parse(mLine->text().trimmed(), &fault);
    const bool done = setting && setting->apply(&fault);
    mFault->setText(fault);
    mFault->setVisible(!done);
    if (done)
        mLine->clear();
    lookForNewValues();
}
