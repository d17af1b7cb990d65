#include "tests/support/Rows.h"

#include <HelixDash/views/ControlBase.h>
#include <HelixDash/views/LabelView.h>
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

}  // namespace

class TestViews : public QObject {
    Q_OBJECT

private slots:
    void notifiesOncePerTransition_data() {
        columns<QString, QString, bool, bool>("steps", "told", "visible", "enabled");
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
        columns<QString, int>("text", "width");
        row("one word", "Waiting", 425);
        row("sentences", QString("The factory server has refused the package. ").repeated(20), 425);
        row("no blank", QString(3000, 'W'), 425);
        row("no blank, narrow", QString(40, 'm'), 30);
        row("line ends", "HTTP/1.1 503\r\nRetry-After: 3\r\n\r\nlast\n", 425);
        row("tall script", QString::fromUtf8("ÀÜÉ Çğş gjpqy|"), 120);
    }

    // A label that has just the size it asked for shows as much ink as one with room to spare on all sides.
    void labelNeverClips() {
        QFETCH(QString, text);
        QFETCH(int, width);
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

    void textContrastsWithWhatLiesBehind_data() {
        columns<QString, QString>("text", "surface");
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
        QFETCH(QString, text);
        QFETCH(QString, surface);
        QVERIFY(SkinColor::has(text) && SkinColor::has(surface));
        QCOMPARE(SkinColor::contrast(Qt::black, Qt::white), 21.0);
        const double contrast = SkinColor::contrast(SkinColor::color(text), SkinColor::color(surface));
        QVERIFY2(contrast >= 4.5, qPrintable(QString::number(contrast)));
    }
};

QTEST_MAIN(TestViews)
#include "tst_views.moc"
