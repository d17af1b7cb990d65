#include <HelixDash/views/ControlBase.h>
#include <HelixDash/views/DisplayImage.h>
#include <HelixDash/views/ImageView.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SkinColor.h>

#include <QTemporaryDir>
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
    void notifiesOncePerTransition_data();
    void notifiesOncePerTransition();
    void placesEdges();
    void labelGrowsUntilItIsGivenASize();
    void growingLabelStaysInItsParent();
    void labelNeverClips_data();
    void labelNeverClips();
    void labelShowsMarkupAsText();
    void styleTakesNamesAndProperties();
    void textContrastsWithWhatLiesBehind_data();
    void textContrastsWithWhatLiesBehind();
    void findsImages();
};

void TestViews::notifiesOncePerTransition_data() {
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("told");
    QTest::addColumn<bool>("visible");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("as made") << "show enable"
                             << "" << true << true;
    QTest::newRow("hidden") << "hide hide"
                            << "hidden" << false << true;
    QTest::newRow("hidden by Qt") << "QWidget::hide hide"
                                  << "hidden" << false << true;
    QTest::newRow("shown again") << "hide show"
                                 << "hidden shown" << true << true;
    QTest::newRow("parent hidden") << "parent-hide"
                                   << "" << true << true;
    QTest::newRow("hidden inside") << "parent-hide hide show parent-show"
                                   << "hidden shown" << true << true;
    QTest::newRow("disabled") << "disable disable"
                              << "disabled" << true << false;
    QTest::newRow("enabled again") << "disable enable"
                                   << "disabled enabled" << true << true;
    QTest::newRow("parent disabled") << "parent-disable"
                                     << "" << true << true;
    QTest::newRow("disabled inside") << "parent-disable disable"
                                     << "disabled" << true << false;
}

void TestViews::notifiesOncePerTransition() {
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

void TestViews::placesEdges() {
    DisplayView parent;
    DisplayView view(&parent);
    view.resize(100, 50);
    view.setRight(400);
    view.setBottom(300);
    QCOMPARE(view.geometry(), QRect(300, 250, 100, 50));
    QCOMPARE(view.right() + view.bottom(), 700);
    view.setLeft(20, EaseType::Out, 40);
    QVERIFY(view.left() > 20);
    QTRY_COMPARE(view.left(), 20);
}

void TestViews::labelGrowsUntilItIsGivenASize() {
    LabelView label("Waiting");
    const QSize small = label.size();
    label.setText("Waiting\nfor the Brake");
    QVERIFY(label.width() > small.width() && label.height() > small.height());
    label.setText("Waiting");
    QCOMPARE(label.size(), small);
    label.resize(50, 20);
    label.setText("Waiting for Brake");
    QCOMPARE(label.size(), QSize(50, 20));
}

void TestViews::growingLabelStaysInItsParent() {
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

void TestViews::labelNeverClips_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("width");
    QTest::newRow("one word") << "Waiting" << 425;
    QTest::newRow("sentences") << QString("The factory server has refused the package. ").repeated(20) << 425;
    QTest::newRow("no blank") << QString(3000, 'W') << 425;
    QTest::newRow("no blank, narrow") << QString(40, 'm') << 30;
    QTest::newRow("line ends") << "HTTP/1.1 503\r\nRetry-After: 3\r\n\r\nlast\n" << 425;
    QTest::newRow("tall script") << QString::fromUtf8("ÀÜÉ Çğş gjpqy|") << 120;
}

// A label that has just the size it asked for shows as much ink as one with room to spare on all sides.
void TestViews::labelNeverClips() {
    QFETCH(QString, text);
    QFETCH(int, width);
    LabelView label(text);
    label.setBackgroundColor("panel");
    label.setStyle("Alignment:wordwrap|center|top; FontSize:25");
    label.resizeToFit(width);
    QCOMPARE(label.width(), width);
    const int ink = inkOf(&label);
    QVERIFY(ink > 0);

    constexpr int kRoom = 60;
    LabelView roomy(text);
    roomy.setBackgroundColor("panel");
    roomy.setStyle(QString("Alignment:wordwrap|center|top; FontSize:25; Padding:%1").arg(kRoom));
    roomy.resize(width + 2 * kRoom, label.height() + 2 * kRoom);
    // The tip of an accent may reach a fraction of a pixel beyond its font's height.
    QVERIFY2(ink > 0.998 * inkOf(&roomy), qPrintable(QString("%1 of %2").arg(ink).arg(inkOf(&roomy))));
}

void TestViews::labelShowsMarkupAsText() {
    QVERIFY(LabelView("<b>x</b>").width() > 4 * LabelView("x").width());
}

void TestViews::styleTakesNamesAndProperties() {
    LabelView label("x");
    label.setStyle("DeveloperAppTitle; fontsize: 40 ; Color:battery/red;Unknown:1;;");
    QCOMPARE(label.fontSize(), 40);
    QCOMPARE(label.skinColor(), "battery/red");
    QCOMPARE(label.viewStyle().alignment({}), Qt::AlignCenter);
    QCOMPARE(Style("Alignment:wordwrap|center|top;").alignment(Qt::AlignLeft), Qt::AlignHCenter | Qt::AlignTop);
}

void TestViews::textContrastsWithWhatLiesBehind_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("surface");
    for (const char* text : {"black", "quiet", "faded", "red", "battery/green", "battery/red", "battery/blue"}) {
        for (const char* surface : {"screen", "panel"})
            QTest::addRow("%s on %s", text, surface) << text << surface;
    }
    QTest::newRow("switch item") << "black"
                                 << "track";
    for (const char* kind : {"normal", "on", "saved", "recording", "primary", "stop"}) {
        const QString look = QString("button/%1/").arg(kind);
        QTest::addRow("%s button", kind) << look + "ink" << look + "fill";
        QTest::addRow("pressed %s button", kind) << look + "ink" << look + "pressed";
        QTest::addRow("disabled %s button", kind) << look + "faded/ink" << look + "faded/fill";
    }
}

void TestViews::textContrastsWithWhatLiesBehind() {
    QFETCH(QString, text);
    QFETCH(QString, surface);
    QVERIFY(SkinColor::has(text) && SkinColor::has(surface));
    QCOMPARE(SkinColor::contrast(Qt::black, Qt::white), 21.0);
    const double contrast = SkinColor::contrast(SkinColor::color(text), SkinColor::color(surface));
    QVERIFY2(contrast >= 4.5, qPrintable(QString::number(contrast)));
}

void TestViews::findsImages() {
    QTest::ignoreMessage(QtWarningMsg, "no image NVH/wheel.png");
    QVERIFY(DisplayImage("NVH/wheel.png").isNull());

    QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkpath("NVH"));
    QFile drawing(dir.filePath("NVH/wheel.svg"));
    QVERIFY(drawing.open(QIODevice::WriteOnly));
    drawing.write(
        "<svg xmlns='http://www.w3.org/2000/svg' width='40' height='20'>"
        "<rect width='40' height='20' fill='#ff0000'/></svg>");
    drawing.close();
    DisplayImage::addSearchPath(dir.path());
    ImageView view(DisplayImage("NVH/wheel.png"), 2.0);
    QCOMPARE(view.size(), QSize(80, 40));
    QCOMPARE(view.grab().toImage().pixelColor(79, 39), QColor(Qt::red));
}

QTEST_MAIN(TestViews)
#include "tst_views.moc"
