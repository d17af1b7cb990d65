#include "tests/support/Rows.h"
#include "tests/support/ThreadTime.h"

#include <HelixDash/views/ControlBase.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/ScrollableView.h>
#include <HelixDash/views/SkinColor.h>

#include <QTest>

#include <functional>

namespace {

class Recorder : public ControlBase {
public:
    using ControlBase::ControlBase;

    void shown() override { log.append("shown"); }
    void hidden() override { log.append("hidden"); }
    void enabled() override { log.append("enabled"); }
    void disabled() override { log.append("disabled"); }

    QStringList log;
};

int inkOf(LabelView* label) {
    const QImage picture = label->grab().toImage().convertToFormat(QImage::Format_RGB32);
    int ink = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ink += 255 - qGray(picture.pixel(x, y));
    }
    return ink;
}

// Letters of no common width, the more the worse.
QString manyScripts() {
    QString letters;
    for (char16_t letter = 0x400; letters.size() < 65000; letter = letter < 0x9000 ? letter + 1 : 0x400)
        letters += QChar(letter);
    return letters;
}

}  // namespace

class TestViews : public QObject {
    Q_OBJECT

private slots:
    void notifiesOncePerTransition_data() {
        const auto row = columns<QString, QString, bool, bool>("steps", "told", "visible", "enabled");
        row("as made", "show enable", "", true, true);
        row("hidden", "hide hide", "hidden", false, true);
        row("hidden by Qt", "QWidget::hide hide", "hidden", false, true);
        row("shown again", "hide show", "hidden shown", true, true);
        row("parent hidden", "parent-hide", "", true, true);
        row("hidden inside", "parent-hide hide show parent-show", "hidden shown", true, true);
        row("disabled", "disable disable", "disabled", true, false);
        row("enabled again", "disable enable", "disabled enabled", true, true);
        row("parent disabled", "parent-disable", "", true, true);
        row("disabled inside", "parent-disable disable", "disabled", true, false);
    }

    void notifiesOncePerTransition() {
        DisplayView screen;
        screen.show(true);
        auto* parent = new DisplayView(&screen);
        Recorder view(parent);
        const QHash<QString, std::function<void()>> actions{
            {"show", [&] { view.show(true); }},
            {"hide", [&] { view.show(false); }},
            {"QWidget::hide", [&] { view.hide(); }},
            {"enable", [&] { view.setEnabled(true); }},
            {"disable", [&] { view.enable(false); }},
            {"parent-show", [&] { parent->show(true); }},
            {"parent-hide", [&] { parent->show(false); }},
            {"parent-disable", [&] { parent->setEnabled(false); }},
        };
        QFETCH(QString, steps);
        for (const QString& step : steps.split(' '))
            actions[step]();
        QTEST(view.log.join(' '), "told");
        QTEST(view.isVisible(), "visible");
        QTEST(view.isEnabled(), "enabled");
    }

    void growingLabelStaysInItsParent() {
        DisplayView parent;
        parent.resize(400, 300);
        LabelView label(&parent);
        label.move(300, 0);
        for (const QString& text : {QStringLiteral("| Fatal!"), QStringLiteral("| Fatal Error"), QString(200, 'W')}) {
            label.setText(text);
            QVERIFY2(label.right() <= parent.width(), qPrintable(text));
        }
        QVERIFY(label.height() > 200);
    }

    void labelShowsMarkupAsText() { QVERIFY(LabelView("<b>x</b>").width() > 4 * LabelView("x").width()); }

    void labelNeverClips_data() {
        const auto row = columns<QString, int>("text", "width");
        row("one word", "Waiting", 425);
        row("sentences", QString("The factory server has refused the package. ").repeated(20), 425);
        row("no blank", QString(3000, 'W'), 425);
        row("no blank, narrow", QString(40, 'm'), 30);
        row("line ends", "HTTP/1.1 503\r\nRetry-After: 3\r\n\r\nlast\n", 425);
        row("tall script", QString::fromUtf8("ÀÜÉ Çğş gjpqy|"), 120);
    }

    // A label that has just the size it asked for shows as much ink as one with room to spare on all sides.
    void labelNeverClips() {
        const auto [text, width] = cells<QString, int>();
        LabelView label(text);
        label.setBackgroundColor("panel");
        label.setStyle("Alignment:wordwrap|center|top; FontSize:25");
        label.resizeToFit(width);
        QCOMPARE(label.width(), width);
        const int ink = inkOf(&label);

        constexpr int kRoom = 60;
        LabelView roomy(text);
        roomy.setBackgroundColor("panel");
        roomy.setStyle(QString("Alignment:wordwrap|center|top; FontSize:25; Padding:%1").arg(kRoom));
        roomy.resize(width + 2 * kRoom, label.height() + 2 * kRoom);
        // The tip of an accent may reach a fraction of a pixel beyond its font's height.
        QVERIFY2(ink > 0.998 * inkOf(&roomy), qPrintable(QString("%1 of %2").arg(ink).arg(inkOf(&roomy))));
    }

    void aLongTextNeverStopsTheScreen_data() {
        const auto row = columns<QString, QString, int>("text", "alignment", "leastLines");
        const QString words = QString("The factory server has refused the package. ").repeated(1490);
        row("words", words, "center|top", 2500);
        row("words at the left", words, "left|top", 2500);
        row("words at the bottom right", words, "right|bottom", 2500);
        row("one word", QString(65536, 'W'), "center|top", 4000);
        row("lines", QString("short line\n").repeated(5958), "center", 5958);
        row("line ends", QString(65536, '\n'), "center|top", 65536);
        row("blanks", QString(65536, ' '), "center|top", 1);
        row("many scripts", manyScripts(), "center|top", 2000);
        row("surrogates and marks", QString::fromUtf8("😀é̂").repeated(16384), "left|top", 1000);
    }

    // What comes at the end of a long text looks as it does alone, and can be scrolled to.
    void aLongTextNeverStopsTheScreen() {
        const auto [text, alignment, leastLines] = cells<QString, QString, int>();
        const QString end =
            "\nthe last words of an answer, kept on the screen" + QString("\n- and a line").repeated(20);
        const QString style = "Alignment:wordwrap|" + alignment + "; Padding:12; FontSize:25";
        DisplayView screen;
        screen.resize(500, 300);
        screen.show(true);
        ScrollableView area(&screen);
        area.resize(425, 280);
        LabelView alone(end.mid(1));
        LabelView* label = new LabelView("Ready", area.contentView());
        for (LabelView* one : {label, &alone}) {
            one->setBackgroundColor("panel");
            one->setStyle(style);
            one->resizeToFit(425);
        }
        label->setText("what a font needs at its first use: The factory server has refused");
        area.grab();
        double longest = threadMsOf([&] {
            label->setText(text + end);
            label->setSkinColor("battery/red");
            label->setSkinColor("black");
            label->resizeToFit(425);
            label->setWidth(425);
        });
        for (int part = 0; part < 3; ++part) {
            area.scrollTo(area.scrollRange() / 2 * part);
            longest = qMax(longest, threadMsOf([&] { area.grab(); }));
        }
        QVERIFY2(longest < 100, qPrintable(QString("%1 ms").arg(longest)));
        QCOMPARE(label->text(), text + end);
        QVERIFY2(label->height() > leastLines * 25, qPrintable(QString::number(label->height())));
        QCOMPARE(area.scrollRange(), label->height() - area.height());
        const auto lastPixels = [](LabelView* view) {
            return view->grab(QRect(0, view->height() - 280, 425, 280)).toImage().convertToFormat(QImage::Format_RGB32);
        };
        QCOMPARE(lastPixels(label), lastPixels(&alone));
    }

    void aBoxOfLongTextNeverStopsTheScreen_data() {
        const auto row = columns<QString>("text");
        row("sentence", QString("The factory server has refused the package. ").repeated(1490));
        row("one word", QString(65536, 'W'));
        row("a word to be shaped", QString(990, 'W'));
    }

    // In a fixed size a text is drawn smaller, and cut where it is too long all the same.
    void aBoxOfLongTextNeverStopsTheScreen() {
        QFETCH(QString, text);
        LabelView label;
        label.resize(420, 45);
        const auto draw = [&label] { label.grab(); };
        label.setText("The factory server");
        draw();
        label.setText(text);
        const double ms = threadMsOf(draw);
        QVERIFY2(ms < 100, qPrintable(QString("%1 ms").arg(ms)));
        QVERIFY(inkOf(&label) > 1000);
    }

    void textContrastsWithWhatLiesBehind_data() {
        const auto row = columns<QString, QString>("text", "surface");
        for (const char* text : {"black", "quiet", "faded", "red", "battery/green", "battery/red", "battery/blue"}) {
            for (const char* surface : {"screen", "panel"})
                QTest::addRow("%s on %s", text, surface) << text << surface;
        }
        row("switch item", "black", "track");
        for (const char* kind : {"normal", "on", "saved", "recording", "primary", "stop"}) {
            const QString look = QString("button/%1/").arg(kind);
            QTest::addRow("%s button", kind) << look + "ink" << look + "fill";
            QTest::addRow("pressed %s button", kind) << look + "ink" << look + "pressed";
            QTest::addRow("disabled %s button", kind) << look + "faded/ink" << look + "faded/fill";
        }
    }

    void textContrastsWithWhatLiesBehind() {
        const auto [text, surface] = cells<QString, QString>();
        QVERIFY(SkinColor::has(text) && SkinColor::has(surface));
        QCOMPARE(SkinColor::contrast(Qt::black, Qt::white), 21.0);
        const double contrast = SkinColor::contrast(SkinColor::color(text), SkinColor::color(surface));
        QVERIFY2(contrast >= 4.5, qPrintable(QString::number(contrast)));
    }
};

QTEST_MAIN(TestViews)
#include "tst_views.moc"
