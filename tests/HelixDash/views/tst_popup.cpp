#include "tests/HelixDash/views/TouchScreen.h"
#include "tests/support/Rows.h"

#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/PopupView.h>

#include <QElapsedTimer>
#include <QPointer>
#include <QSignalSpy>

#include <functional>
#include <memory>

class TestPopup : public QObject {
    Q_OBJECT

private slots:
    void init() {
        mScreen = std::make_unique<TouchScreen>(800, 700);
        mTitle = new DisplayView(mScreen.get());
        mTitle->resize(800, 60);
        mApp = new DisplayView(mScreen.get());
        mApp->resize(800, 640);
        mApp->move(0, 60);
        QVERIFY(mScreen->appears());
    }
    void cleanup() { mScreen.reset(); }

    void closesByItself() {
        QElapsedTimer clock;
        clock.start();
        QPointer<PopupView> popup = new PopupView(mApp, 20, 5);
        popup->resize(300, 200);
        QCOMPARE(popup->geometry().center(), mApp->rect().center());
        QTRY_VERIFY_WITH_TIMEOUT(!popup, 6000);
        QVERIFY2(clock.elapsed() >= 3950 && clock.elapsed() < 4500, qPrintable(QString::number(clock.elapsed())));
    }

    void takesTheTouchThatClosesIt_data() {
        const auto row = columns<QPoint, bool>("place", "inTitle");
        row("on it", QPoint(380, 300), false);
        row("beside it", QPoint(20, 20), false);
        row("outside its parent", QPoint(20, 0), true);
    }

    void takesTheTouchThatClosesIt() {
        const auto [place, inTitle] = cells<QPoint, bool>();
        auto* button = new ButtonView("Start", inTitle ? mTitle : mApp);
        button->resize(100, 50);
        button->move(place.x(), place.y());
        QSignalSpy acted(button, &ControlBase::released);
        QPointer<PopupView> popup = new PopupView(mApp, 20, 5);
        popup->resize(300, 200);
        mScreen->press(button);
        QTRY_VERIFY(!popup);
        mScreen->moveTo(button, {30, 30});
        QVERIFY(!button->isPressed());
        mScreen->lift(button);
        QCOMPARE(acted.count(), 0);
        mScreen->tap(button);
        QCOMPARE(acted.count(), 1);
    }

    void staysAboveWhatComesLater() {
        auto* popup = new PopupView(mApp, 20, 5);
        popup->resize(300, 200);
        auto* later = new ButtonView("Reload", mApp);
        later->resize(800, 640);
        QTRY_COMPARE_WITH_TIMEOUT(mApp->childAt(mApp->rect().center()), popup, 1000);
    }

    void closesWithItsParent_data() {
        const auto row = columns<std::function<void(DisplayView*)>>("end");
        row("disabled", [](DisplayView* app) { app->childViews().last()->setEnabled(false); });
        row("parent disabled", [](DisplayView* app) { app->setEnabled(false); });
        row("parent hidden", [](DisplayView* app) { app->show(false); });
        row("parent deleted", [](DisplayView* app) { delete app; });
    }

    void closesWithItsParent() {
        QFETCH(std::function<void(DisplayView*)>, end);
        auto* button = new ButtonView("Mode", mTitle);
        QSignalSpy acted(button, &ControlBase::released);
        QPointer<PopupView> popup = new PopupView(mApp, 20, 5);
        end(mApp);
        QTRY_VERIFY(!popup);
        mScreen->tap(button);
        QCOMPARE(acted.count(), 1);
    }

private:
    std::unique_ptr<TouchScreen> mScreen;
    DisplayView* mTitle = nullptr;
    DisplayView* mApp = nullptr;
};

QTEST_MAIN(TestPopup)
#include "tst_popup.moc"
