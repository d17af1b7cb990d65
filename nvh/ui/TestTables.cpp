#include "nvh/ui/TestTables.h"

#include "nvh/tables/vdtTableController.h"
#include "nvh/tables/vdtTableModel.h"
#include "nvh/tables/vsmTableController.h"
#include "nvh/tables/vsmTableModel.h"
#include "nvh/ui/ApplicationInfo.h"
#include "nvh/ui/NVHAppView.h"
#include "nvh/ui/Screen.h"

#include <HelixDash/json/KJson.h>
#include <HelixDash/services/AppInfo.h>
#include <HelixDash/services/Logger.h>
#include <HelixDash/tables/TableView.h>
#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/LabelView.h>

#include <QFile>

namespace {

constexpr int kTableButtonHeight = 70;
// Both texts in one size.
const char* const kTableButtonStyle = "SettingsPushButton; FontSize:19";
// Two buttons below the list stand frame to frame.
constexpr int kTableButtonOverlap = 5;

QVariantMap readConditions(const NVHAppView& view) {
    const AppInfo* info = applicationInfo();
    QFile file(info ? info->directory + QLatin1String("/nvh_vsm.json") : QString());
    if (!file.exists())
        Logger(&view, "INFO") << "VSM file does not exists"
                              << "initVSMTable";
    file.open(QIODevice::ReadOnly);
    const KJson::ParseResult conditions = KJson::Parser::parse(file);
    if (!conditions.ok())
        Logger(&view, "INFO")
            << QStringLiteral("%1:%2:%3").arg(file.fileName(), QString::number(conditions.line), conditions.error)
            << "initVSMTable";
    return conditions.value.toMap();
}

}  // namespace

TestTables::TestTables(NVHAppView& view, Screen& screen, AppMode mode) : mView(view), mScreen(screen), mMode(mode) {}

void TestTables::initVSMTable() {
    const QVariantMap conditions = readConditions(mView);
    delete mVsmTable;
    delete mVsmController;
    mVsmTable = new TableView(&mView);
    mVsmTable->setViewName("mVsmTable");
    mVsmController = new vsmTableController(conditions, &mView);
    mVsmTable->setController(mVsmController);
    // Before the model, so that the rows are laid out once.
    mVsmTable->resize(450, 425);
    mVsmTable->move(385, 640);
    mVsmTable->setModel(new vsmTableModel(int(conditions.size()), mVsmTable));
    mScreen.mVsmCaption->move(460, 600);
}

void TestTables::removeVdtTable() {
    if (!mVdtTable)
        return;
    mVdtController->rememberMarks();
    mVdtTable->deleteLater();
    mVdtTable = nullptr;
}

bool TestTables::isVdtTableHidden() const {
    return mVdtTable && !mVdtTable->isVisible();
}

void TestTables::showVdtTests(const QVariantMap& tests) {
    delete mVdtTable;
    delete mVdtController;
    mVdtTable = new TableView(&mView);
    mVdtTable->setViewName("mVdtTable");
    mVdtController = new vdtTableController(tests, &mView);
    mVdtTable->setController(mVdtController);
    mVdtTable->resize(425, mMode == AppModeVdt ? 875 : 430);
    mVdtTable->move(850, 50);
    mVdtTable->setModel(new vdtTableModel(int(tests.size()), mVdtTable));
    if (mMode == AppModeVdt)
        return;
    const int width = mVdtTable->width() / 2 + kTableButtonOverlap;
    for (ButtonView* button : {mScreen.mReloadVdtButton, mScreen.mClearFeedbackButton}) {
        button->setStyle(kTableButtonStyle);
        button->resize(width, kTableButtonHeight);
        button->setTop(mVdtTable->bottom());
        button->show(true);
    }
    mScreen.mReloadVdtButton->setLeft(mVdtTable->left());
    mScreen.mClearFeedbackButton->setRight(mVdtTable->right());
}
