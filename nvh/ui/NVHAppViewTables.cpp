// The Vehicle Status Monitor and the list of static vehicle tests.

#include "nvh/packaging/ChildProcess.h"
#include "nvh/tables/VSMControlsPopup.h"
#include "nvh/tables/VdtTestList.h"
#include "nvh/tables/vdtTableController.h"
#include "nvh/tables/vdtTableModel.h"
#include "nvh/tables/vsmTableController.h"
#include "nvh/tables/vsmTableModel.h"
#include "nvh/ui/ApplicationInfo.h"
#include "nvh/ui/NVHAppView.h"

#include <HelixDash/json/KJson.h>
#include <HelixDash/services/AppInfo.h>
#include <HelixDash/services/Logger.h>
#include <HelixDash/tables/TableView.h>
#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SlideSwitch.h>

#include <QFile>

namespace {

constexpr int kTableButtonHeight = 70;
// Both texts in one size.
const char* const kTableButtonStyle = "SettingsPushButton; FontSize:19";
// Two buttons below the list stand frame to frame.
constexpr int kTableButtonOverlap = 5;

QVariantMap readConditions(const NVHAppView* view) {
    const AppInfo* info = applicationInfo();
    QFile file(info ? info->directory + QLatin1String("/nvh_vsm.json") : QString());
    if (!file.exists())
        Logger(view, "INFO") << "VSM file does not exists"
                             << "initVSMTable";
    file.open(QIODevice::ReadOnly);
    const KJson::ParseResult conditions = KJson::Parser::parse(file);
    if (!conditions.ok())
        Logger(view, "INFO")
            << QStringLiteral("%1:%2:%3").arg(file.fileName(), QString::number(conditions.line), conditions.error)
            << "initVSMTable";
    return conditions.value.toMap();
}

}  // namespace

void NVHAppView::initVSMTable() {
    const QVariantMap conditions = readConditions(this);
    delete mVsmTable;
    delete mVsmController;
    mVsmTable = new TableView(this);
    mVsmTable->setViewName("mVsmTable");
    mVsmController = new vsmTableController(conditions, this);
    mVsmTable->setController(mVsmController);
    mVsmTable->setModel(new vsmTableModel(int(conditions.size()), mVsmTable));
    mVsmTable->resize(450, 425);
    mVsmTable->move(385, 640);
    mVsmCaption->move(460, 600);
}

void NVHAppView::vsmControlsToggledByUser() {
    logSlot(__func__);
    const bool automatic = mVsmSwitch->position() == 1;
    if (automatic)
        new VSMControlsPopup(this);
    mVsmController->toggleCellAutoControl(automatic);
}

void NVHAppView::downloadVdtStatic() {
    logSlot(__func__);
    if (!mVdtCaption)
        return;
    const QString command =
        QStringLiteral("curl -i -Ss --retry 3 --retry-max-time 15 --connect-timeout 2 --max-time 4 %1")
            .arg(cVdtStaticURL.value());
    if (!mVdtStaticDownloadProcess) {
        mVdtStaticDownloadProcess = new QProcess(this);
        // What went wrong stands on standard error.
        mVdtStaticDownloadProcess->setProcessChannelMode(QProcess::MergedChannels);
        connect(mVdtStaticDownloadProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
                &NVHAppView::initVdtTable);
        connect(mVdtStaticDownloadProcess, &QProcess::errorOccurred, this, &NVHAppView::initVdtTable);
    }
    Logger(this, "INFO") << "Downloading vdt Static tests: " << command;
    setLabel(mVdtCaption, "Downloading VDT Static", "black", 900, 15);
    if (mVdtTable) {
        // The marks in it hold until there is a new list: the driver may save or upload before.
        mVdtController->rememberMarks();
        mVdtTable->deleteLater();
        mVdtTable = nullptr;
    }
    mVdtStaticDownloadProcess->startCommand(command);
}

void NVHAppView::initVdtTable() {
    if (!mVdtStaticDownloadProcess)
        return;
    logSlot(__func__);
    const QByteArray answer = mVdtStaticDownloadProcess->readAll();
    const QString text = QString::fromUtf8(answer);
    Logger(this, "INFO") << "mVdtStaticDownloadProcess: " << text;
    const auto bodyAt = answer.indexOf('{');
    QByteArray list;
    if (answer.contains("HTTP/1.1 200 OK") && bodyAt >= 0) {
        list = answer.mid(bodyAt);
        Logger(this, "INFO") << "VDT static download successful" << QString::fromUtf8(list);
        setLabel(mVdtCaption, "VDT Static", "black", 1000, 15);
        clearFeedbackLabel();
    } else {
        list = builtInVdtTests();
        Logger(this, "INFO") << "VDT static download unsuccessful"
                             << "initVdtTable";
        setLabel(mVdtCaption, "VDT Static (not updated)", "black", 875, 15);
        updateFeedbackLabel(QStringLiteral("Error downloading VDT Static\n%1").arg(text));
    }
    showVdtTests(KJson::Parser::parse(list).value.toMap());
    mVdtStaticDownloadProcess->deleteLater();
    mVdtStaticDownloadProcess = nullptr;
}

void NVHAppView::showVdtTests(const QVariantMap& tests) {
    delete mVdtController;
    mVdtTable = new TableView(this);
    mVdtTable->setViewName("mVdtTable");
    mVdtController = new vdtTableController(tests, this);
    mVdtTable->setController(mVdtController);
    mVdtTable->setModel(new vdtTableModel(int(tests.size()), mVdtTable));
    mVdtTable->resize(425, mMode == AppModeVdt ? 875 : 430);
    mVdtTable->move(850, 50);
    if (mMode == AppModeVdt)
        return;
    const int width = mVdtTable->width() / 2 + kTableButtonOverlap;
    for (ButtonView* button : {mReloadVdtButton, mClearFeedbackButton}) {
        button->setStyle(kTableButtonStyle);
        button->resize(width, kTableButtonHeight);
        button->setTop(mVdtTable->bottom());
        button->show(true);
    }
    mReloadVdtButton->setLeft(mVdtTable->left());
    mClearFeedbackButton->setRight(mVdtTable->right());
}
