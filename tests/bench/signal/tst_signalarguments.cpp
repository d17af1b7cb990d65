#include "tests/bench/signal/Sound.h"

#include <QTemporaryDir>
#include <QTest>

// What check-mic and whine refuse, and how they introduce themselves.
class SignalArgumentsTest : public QObject {
    Q_OBJECT

private slots:
    void refuseWhatTheyCannotUse_data();
    void refuseWhatTheyCannotUse();
    void explainThemselves();

private:
    QTemporaryDir mDirectory;
};

void SignalArgumentsTest::refuseWhatTheyCannotUse_data() {
    QTest::addColumn<QByteArray>("wav");
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("reason");
    const QByteArray good = wavBytes({sine(0.2, 1000, 0.1)});
    const QByteArray sunAudio = QByteArray::fromHex("2e736e64000000180000000800000003000bb80000000001") + good;
    for (const char* program : {"check-mic", "whine"}) {
        const bool isCheck = *program == 'c';
        const QString words = isCheck ? "0.001 1.5" : "rpm.txt sum 4096";
        const auto add = [&](const char* name, const QByteArray& wav, const QString& reason) {
            QTest::addRow("%s: %s", program, name) << wav << program << words << reason;
        };
        add("missing", QByteArray(), "test.wav: No such file");
        add("empty", "", "test.wav: is no WAV file");
        add("text", "1500, 37\n", "test.wav: is no WAV file");
        add("header cut", good.left(40), "test.wav: is no WAV file");
        add("other container", sunAudio, "test.wav: is no WAV file");
        add("header only", good.left(44), isCheck ? "holds no sound" : "less than the 4096 samples");
        add("too short", good.left(44 + 2 * 4095), isCheck ? "only 0.085 s" : "less than the 4096 samples");
    }
    const auto add = [&](const QString& program, const QString& words, const QString& reason) {
        QTest::addRow("%s %s", qPrintable(program), qPrintable(words)) << good << program << words << reason;
    };
    add("check-mic", "0.001", "got 2 arguments");
    add("check-mic", "low 1.5", "'low'");
    add("check-mic", "-1 1.5", "'-1'");
    add("check-mic", "0.001 1.5dB", "'1.5dB'");
    add("check-mic", "0.001 nan", "'nan'");
    add("whine", "rpm.txt sum", "got 3 arguments");
    add("whine", "rpm.txt both 2048", "'both'");
    add("whine", "rpm.txt right 2048", "test.wav: has one channel");
    add("whine", "rpm.txt sum 3000", "'3000'");
    add("whine", "rpm.txt sum 0", "'0'");
}

void SignalArgumentsTest::refuseWhatTheyCannotUse() {
    QFETCH(QByteArray, wav);
    QFETCH(QString, program);
    QFETCH(QString, words);
    QFETCH(QString, reason);
    const QString path = mDirectory.filePath("test.wav");
    QFile::remove(path);
    if (!wav.isNull()) {
        writeFile(path, wav);
    }
    writeFile(mDirectory.filePath("rpm.txt"), "0, 3000\n100, 3000\n200, 3000\n");
    const Outcome outcome = runProgram(
        program, QStringList{path} + QString(words).replace("rpm.txt", mDirectory.filePath("rpm.txt")).split(' '));
    QCOMPARE(outcome.status, 2);
    // The screen shows standard output of the one; of the other, it is the table.
    const bool isCheck = program == "check-mic";
    const QString line = isCheck ? outcome.lines.join('\n') + '\n' : outcome.errors;
    QVERIFY2(line.contains(reason) && line.count('\n') == 1, qPrintable(line));
    QVERIFY(line.startsWith(isCheck ? "MIC CHECK: ERROR (" : "whine: "));
    QVERIFY((isCheck ? outcome.errors : outcome.lines.join('\n')).isEmpty());
}

void SignalArgumentsTest::explainThemselves() {
    for (const QString program : {"check-mic", "whine"}) {
        const Outcome help = runProgram(program, {"--help"});
        QCOMPARE(help.status, 0);
        QVERIFY(help.lines.value(0).startsWith("Usage: " + program + " WAV ") && help.lines.size() > 10);
        const Outcome version = runProgram(program, {"--version"});
        QCOMPARE(version.status, 0);
        QVERIFY(version.lines.value(0).startsWith(program + " (NVH bench)"));
    }
}

QTEST_GUILESS_MAIN(SignalArgumentsTest)
#include "tst_signalarguments.moc"
