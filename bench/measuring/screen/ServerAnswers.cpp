#include "bench/measuring/screen/ServerAnswers.h"

#include "bench/measuring/screen/AnswerServer.h"
#include "bench/measuring/screen/Waiting.h"

#include <HelixDash/services/ConfigStore.h>

#include <QTimer>

#include <array>

namespace {

constexpr int kRows = 3000;
constexpr int kLargeBody = 20 * 1000 * 1000;
constexpr int kLongWord = 200 * 1000;
// Longer than any answer takes to be shown after it has come.
constexpr int kLimitMs = 120000;

const QString kUrlKey = QStringLiteral("nvh/vdtStaticURL");

struct Answer {
    const char* path;
    const char* what;
    bool isList;
};
constexpr std::array kAnswers = {Answer{"/rows", "3000 rows", true}, Answer{"/large", "20 MB", false},
                                 Answer{"/word", "a word of 200 kB", false}};

QByteArray listOfTests(int rows) {
    QByteArray list = "{";
    for (int row = 0; row < rows; ++row)
        list += (row == 0 ? "\"" : ",\"") + QByteArray::number(row) + R"(": {"Name": "Windshield washer nozzle aim )" +
                QByteArray::number(row) + "\"}";
    return list + "}";
}

// Puts the setting back as it was; the bench's configuration has one.
class OtherUrl {
public:
    OtherUrl() : mBefore(ConfigStore::instance().value(kUrlKey)) {}
    ~OtherUrl() { set(mBefore.toString()); }
    Q_DISABLE_COPY(OtherUrl)

    void set(const QString& url) { ConfigStore::instance().setValue(kUrlKey, url); }

private:
    const QVariant mBefore;
};

bool isShown(const RecorderScreen& recorder, const Answer& answer) {
    const QString caption = recorder.labelText("mVdtCaption");
    return caption.startsWith(QLatin1String("VDT Static")) && recorder.rowsAreReady("mVdtTable") &&
           (!answer.isList || recorder.rowCount("mVdtTable") == kRows);
}

}  // namespace

std::vector<Figure> measureServerAnswers(RecorderScreen& recorder, LoopWatch<QApplication>& watch, QString& error) {
    const AnswerServer server({{"/rows", AnswerServer::answer("200 OK", listOfTests(kRows))},
                               {"/large", AnswerServer::answer("200 OK", QByteArray(kLargeBody, 'x'))},
                               {"/word", AnswerServer::answer("500 Error", QByteArray(kLongWord, 'W'))}});
    OtherUrl setting;
    QStringList each;
    double longest = 0;
    for (const Answer& answer : kAnswers) {
        setting.set(server.url(answer.path));
        watch.forget();
        bool asked = false;
        QTimer::singleShot(0, &watch, [&] {
            recorder.call("downloadVdtStatic");
            asked = true;
        });
        if (!waitUntil([&] { return asked && isShown(recorder, answer); }, kLimitMs)) {
            error = QStringLiteral("%1 did not reach the screen").arg(QLatin1String(answer.what));
            return {};
        }
        each << QStringLiteral("%1: %2 ms").arg(QLatin1String(answer.what)).arg(watch.longestMs(), 0, 'f', 1);
        longest = std::max(longest, watch.longestMs());
    }
    Figure figure;
    figure.what = QStringLiteral("longest event at a server's answer");
    figure.measured = each.join(QStringLiteral(", "));
    figure.value = longest;
    figure.unit = QStringLiteral("ms");
    figure.atMost = 16.0;
    return {figure};
}
