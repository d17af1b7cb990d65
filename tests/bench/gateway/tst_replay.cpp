// Which frames share a datagram, and when it is due, on a clock of the test's own.

#include "bench/gateway/Replay.h"
#include "bench/gateway/Subscriptions.h"
#include "tests/support/Rows.h"

#include <QtTest>

namespace {

constexpr CanAddress kWanted{1, 0x108};
constexpr CanAddress kOther{1, 0x109};

Recording recordingAt(std::initializer_list<int> timesMs) {
    Recording recording{{}, 100'000, false};
    for (const int ms : timesMs) {
        for (const CanAddress address : {kWanted, kOther})
            recording.frames.push_back({ms * 1000LL, address, 8, {}});
    }
    return recording;
}

// "TIME: FRAME FRAME…" in milliseconds for every datagram, as a caller sees it who asks every `stepMs`.
QStringList play(const Recording& recording, const ReplaySettings& settings, int stepMs) {
    Subscriptions wanted(false);
    wanted.add(kWanted);
    Replay replay(recording, settings);
    QStringList seen;
    for (int now = 0; now <= 150; now += stepMs) {
        for (auto frames = replay.take(now * 1000, wanted); !frames.empty(); frames = replay.take(now * 1000, wanted)) {
            seen += QString::number(now) + ':';
            for (const CanFrame& frame : frames)
                seen.last() += frame.address == kWanted ? ' ' + QString::number(frame.us / 1000) : " unwanted";
        }
    }
    return seen;
}

}  // namespace

class TestReplay : public QObject {
    Q_OBJECT

private slots:
    void fillsDatagrams_data() {
        const auto row = columns<ReplaySettings, QStringList>("settings", "datagrams");
        row("as recorded", ReplaySettings{1.0, {}, 100, 20}, QStringList{"20: 0 10 20", "41: 30 40 41"});
        row("full early", ReplaySettings{1.0, {}, 2, 20}, QStringList{"10: 0 10", "30: 20 30", "41: 40 41"});
        row("half as fast", ReplaySettings{0.5, {}, 9, 25}, QStringList{"25: 0 10", "65: 20 30", "82: 40 41"});
        row("1000 a second", ReplaySettings{1.0, 1000.0, 9, 3}, QStringList{"3: 0 10 20 30", "5: 40 41"});
        row("at any rate", ReplaySettings{1.0, 0.0, 4, 20}, QStringList{"0: 0 10 20 30", "0: 40 41"});
        row("over and over", ReplaySettings{1.0, {}, 6, 50, true},
            QStringList{"41: 0 10 20 30 40 41", "141: 100 110 120 130 140 141"});
    }

    void fillsDatagrams() {
        auto [settings, datagrams] = cells<ReplaySettings, QStringList>();
        const Recording recording = recordingAt({0, 10, 20, 30, 40, 41});
        QCOMPARE(play(recording, settings, 1), datagrams);
        // Asked seldom, the same frames in the same datagrams, only later.
        const QRegularExpression time("^\\d+");
        QCOMPARE(play(recording, settings, 37).replaceInStrings(time, ""), datagrams.replaceInStrings(time, ""));
        // The time of a frame in its datagram has 16 bits.
        QCOMPARE(play(recordingAt({0, 65'535, 65'536}), {1.0, 0.0, 100, 50}, 200),
                 QStringList({"0: 0 65535", "0: 65536"}));
    }
};

QTEST_GUILESS_MAIN(TestReplay)
#include "tst_replay.moc"
