#include "nvh/ui/VdtDownload.h"

#include "nvh/engine/Settings.h"
#include "nvh/process/ChildProcess.h"
#include "nvh/tables/VdtTestList.h"
#include "nvh/ui/NVHAppView.h"

#include <HelixDash/json/KJson.h>
#include <HelixDash/services/Logger.h>

VdtDownload::VdtDownload(NVHAppView& view) : mView(view) {}

VdtDownload::~VdtDownload() {
    delete mVdtStaticDownloadProcess;
    for (const auto& reader : mReaders)
        reader->wait();
}

QString VdtDownload::command() {
    return QStringLiteral("curl -i -Ss --retry 3 --retry-max-time 15 --connect-timeout 2 --max-time 4 %1")
        .arg(cVdtStaticURL.value());
}

bool VdtDownload::start(const QString& command) {
    if (mVdtStaticDownloadProcess) {
        Logger(&mView, "INFO") << "A download of the VDT Static tests is under way already";
        return false;
    }
    ++mNewest;
    mVdtStaticDownloadProcess = new ChildProcess(&mView);
    // What went wrong stands on standard error.
    mVdtStaticDownloadProcess->setProcessChannelMode(QProcess::MergedChannels);
    connect(mVdtStaticDownloadProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &mView,
            &NVHAppView::initVdtTable);
    connect(mVdtStaticDownloadProcess, &QProcess::errorOccurred, &mView, &NVHAppView::initVdtTable);
    mVdtStaticDownloadProcess->startCommand(command);
    return true;
}

std::optional<VdtAnswer> VdtDownload::takeAnswer() {
    if (!mVdtStaticDownloadProcess)
        return std::nullopt;
    const ChildOutput& output = mVdtStaticDownloadProcess->output();
    const QByteArray& bytes = output.bytes();
    const auto bodyAt = bytes.indexOf('{');
    VdtAnswer answer;
    answer.text = output.text();
    answer.isList = bodyAt >= 0 && bytes.contains("HTTP/1.1 200 OK");
    answer.bytes = answer.isList ? bytes : builtInVdtTests();
    answer.listAt = answer.isList ? bodyAt : 0;
    // A little more than is shown, so that it is seen that there is more.
    const QByteArray head = answer.bytes.mid(answer.listAt, ChildOutput::kMostShown + 1);
    answer.listText = ChildOutput::shown(head, (answer.isList ? output.total() : answer.bytes.size()) - answer.listAt);
    if (answer.isList && output.isCut())
        answer.whyCut = QStringLiteral("longer than %1 bytes").arg(ChildOutput::kMostJudged);
    mVdtStaticDownloadProcess->deleteLater();
    mVdtStaticDownloadProcess = nullptr;
    return answer;
}

VdtDownload::Result VdtDownload::parsed(const QByteArray& list) {
    const KJson::ParseResult result = KJson::Parser::parse(list);
    return {result.value.toMap(),
            result.ok() ? QString() : QStringLiteral("line %1: %2").arg(result.line).arg(result.error)};
}

void VdtDownload::read(const VdtAnswer& answer, Read callback) {
    if (!answer.whyCut.isEmpty()) {
        callback({}, answer.whyCut);
        return;
    }
    if (answer.bytes.size() <= ChildOutput::kMostShown) {
        const Result result = parsed(answer.bytes.mid(answer.listAt));
        callback(result.tests, result.whyNot);
        return;
    }
    const auto result = std::make_shared<Result>();
    QThread* reader = QThread::create(
        [result, bytes = answer.bytes, listAt = answer.listAt] { *result = parsed(bytes.mid(listAt)); });
    mReaders.emplace_back(reader);
    connect(reader, &QThread::finished, this, [this, reader, result, callback, number = ++mNewest] {
        std::erase_if(mReaders, [reader](const auto& each) { return each.get() == reader; });
        if (number == mNewest)
            callback(result->tests, result->whyNot);
    });
    reader->start();
}
