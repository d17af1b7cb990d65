// The Vehicle Status Monitor and the list of static vehicle tests.

#include "nvh/tables/VSMControlsPopup.h"
#include "nvh/tables/vsmTableController.h"
#include "nvh/ui/NVHAppView.h"
#include "nvh/ui/Screen.h"
#include "nvh/ui/TestTables.h"
#include "nvh/ui/VdtDownload.h"

#include <HelixDash/services/Logger.h>
#include <HelixDash/views/SlideSwitch.h>

void NVHAppView::vsmControlsToggledByUser() {
    logSlot(__func__);
    const bool automatic = mScreen->mVsmSwitch->position() == 1;
    if (automatic)
        new VSMControlsPopup(this);
    mTables->vsmController()->toggleCellAutoControl(automatic);
}

void NVHAppView::downloadVdtStatic() {
    logSlot(__func__);
    if (!mScreen->mVdtCaption)
        return;
    const QString command = VdtDownload::command();
    Logger(this, "INFO") << "Downloading vdt Static tests: " << command;
    mScreen->setLabel(mScreen->mVdtCaption, "Downloading VDT Static", "black", 900, 15);
    mTables->removeVdtTable();
    mDownload->start(command);
}

void NVHAppView::initVdtTable() {
    const std::optional<VdtAnswer> answer = mDownload->takeAnswer();
    if (!answer)
        return;
    logSlot(__func__);
    Logger(this, "INFO") << "mVdtStaticDownloadProcess: " << answer->text;
    if (answer->isList)
        Logger(this, "INFO") << "VDT static download successful" << answer->listText;
    else
        Logger(this, "INFO") << "VDT static download unsuccessful"
                             << "initVdtTable";
    mDownload->read(*answer, [this, answer = *answer](const QVariantMap& tests, const QString& whyNot) {
        showVdtList(answer, tests, whyNot);
    });
}

void NVHAppView::showVdtList(const VdtAnswer& answer, const QVariantMap& tests, const QString& whyNot) {
    if (answer.isList) {
        mScreen->setLabel(mScreen->mVdtCaption, "VDT Static", "black", 1000, 15);
        clearFeedbackLabel();
        // What the driver was told about a recording must not go with the text before.
        if (!mWorker.setAsideNote().isEmpty())
            updateFeedbackLabel(mWorker.setAsideNote());
    } else {
        mScreen->setLabel(mScreen->mVdtCaption, "VDT Static (not updated)", "black", 875, 15);
        updateFeedbackLabel(QStringLiteral("Error downloading VDT Static\n%1").arg(answer.text));
    }
    if (!whyNot.isEmpty())
        Logger(this, "ERROR") << "The list of VDT Static tests cannot be read:" << whyNot;
    mTables->showVdtTests(tests);
}
