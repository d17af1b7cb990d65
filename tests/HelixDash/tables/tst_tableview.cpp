#include "tests/HelixDash/views/TouchScreen.h"
#include "tests/support/Rows.h"
#include "tests/support/ThreadTime.h"

#include <HelixDash/tables/TableCell.h>
#include <HelixDash/tables/TableController.h>
#include <HelixDash/tables/TableView.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SlideSwitch.h>

#include <QSignalSpy>

#include <functional>
#include <memory>

namespace {

constexpr int kRowHeight = 135;
constexpr int kTitleHeight = 48;
constexpr int kMany = 3000;
constexpr int kSeveralTurns = 400;

class Model : public TableModel {
public:
    explicit Model(int rows, const QStringList& titles = {QString()}) : mRows(rows), mTitles(titles) {}
    int sectionCount() const override { return int(mTitles.size()); }
    int sectionItemCount(int) const override { return mRows; }
    QString sectionTitle(int section) const override { return mTitles.at(section); }

private:
    int mRows;
    QStringList mTitles;
};

class MarkCell : public TableCell {
public:
    explicit MarkCell(TableView* table)
        : TableCell(table, "mark"), name(new LabelView("Windshield washer nozzle aim", contentView())) {}
    void populate() override {
        widths.append(width());
        name->resizeToFit(width());
        if (!mark)
            mark = new SlideSwitch(contentView(), {"FAIL", "PASS", "NA"});
        mark->setSwitchType(SlideSwitch::Row);
        mark->move(5, 55);
    }

    LabelView* name;
    SlideSwitch* mark = nullptr;
    QList<int> widths;
};

class Controller : public TableController {
public:
    bool createsCells() const override { return true; }
    int itemHeight(TableView*, const TableModelIndex&) override { return kRowHeight; }
    TableRenderer* rendererForIndex(TableView*, const TableModelIndex&) override { return nullptr; }
    DisplayView* viewForParent(DisplayView*, const TableModelIndex&) override { return nullptr; }
    void itemSelected(TableView*, const TableModelIndex& index) override { selected.append(index.row); }
    TableCell* createCellForItem(TableView* table, const TableModelIndex&) override {
        TableCell* unused = table->dequeUnusedCell("mark");
        reused += unused ? 1 : 0;
        return unused ? unused : new MarkCell(table);
    }

    QList<int> selected;
    int reused = 0;
};

}  // namespace

class TestTableView : public QObject {
    Q_OBJECT

private slots:
    // A table of which 125 of 425 pixels lie below the screen.
    void init() {
        mScreen = std::make_unique<TouchScreen>(600, 500);
        mApp = new DisplayView(mScreen.get());
        mApp->resize(600, 440);
        mApp->move(0, 60);
        mController = std::make_unique<Controller>();
        mTable = new TableView(mApp);
        mTable->setController(mController.get());
        mTable->resize(425, 425);
        mTable->move(100, 140);
        mTable->setModel(&mModel);
        QVERIFY(mScreen->appears());
        QTRY_COMPARE(mTable->readyRows(), 10);
    }

    void cleanup() { mScreen.reset(); }

    void makesAllRowsAtOnceAndOffersThemOnlyInAReload() {
        QCOMPARE(cell(9)->geometry(), QRect(0, 9 * kRowHeight, 425, kRowHeight));
        QCOMPARE(cell(9)->widths.count(425), 1);
        MarkCell* marked = cell(1);
        marked->mark->setPosition(2);
        mTable->scrollToRow(9);
        mTable->scrollToRow(0);
        QCOMPARE(mController->reused, 0);
        mTable->reload();
        QTRY_COMPARE(mTable->readyRows(), 10);
        QCOMPARE(mController->reused, 10);
        QCOMPARE(cell(1), marked);
        QCOMPARE(cell(1)->mark->position(), 2);
        QCOMPARE(mTable->dequeUnusedCell("mark"), nullptr);
        Model fewer(3);
        mTable->setModel(&fewer);
        QCOMPARE(mController->reused, 10);
    }

    void scrollsTheLastRowIntoWhatCanBeSeen_data() {
        const auto row = columns<int>("rows");
        row("many", 10);
        row("as many as the table would hold", 3);
        row("all in sight", 2);
    }

    void scrollsTheLastRowIntoWhatCanBeSeen() {
        QFETCH(int, rows);
        Model model(rows);
        mTable->setModel(&model);
        QTRY_COMPARE(mTable->readyRows(), rows);
        for (int row : {rows - 1, 0, rows / 2}) {
            mTable->scrollToRow(row);
            QVERIFY2(mScreen->rect().contains(placeOf(cell(row))), qPrintable(QString::number(row)));
        }
        QCOMPARE(mTable->scrollRange(), qMax(0, rows * kRowHeight - 300));
    }

    void fingerScrollsToTheEnd() {
        for (int i = 0; i < 20 && mTable->scrollPosition() < mTable->scrollRange(); ++i)
            mScreen->drag(mTable, {200, 280}, {200, 20});
        QTRY_VERIFY(mScreen->rect().contains(placeOf(cell(9))));
        for (int row = 0; row < 10; ++row)
            QCOMPARE(cell(row)->mark->position(), 0);
        QVERIFY(mController->selected.isEmpty());
    }

    void gesturesOnASwitch_data() {
        const auto row = columns<QPoint, int, bool, int, bool>("move", "held", "disabled", "position", "scrolls");
        row("quick tap", QPoint(), 0, false, 2, false);
        row("slow tap", QPoint(), 200, false, 2, false);
        row("quick drag sideways", QPoint(-140, 0), 0, false, 1, false);
        row("slow drag sideways", QPoint(-140, 0), 200, false, 1, false);
        row("quick drag up", QPoint(0, -120), 0, false, 0, true);
        row("slow drag up", QPoint(0, -120), 200, false, 0, true);
        row("disabled, tap", QPoint(), 0, true, 0, false);
        row("disabled, drag up", QPoint(0, -120), 0, true, 0, false);
    }

    void gesturesOnASwitch() {
        const auto [move, held, disabled] = cells<QPoint, int, bool>();
        SlideSwitch* mark = cell(1)->mark;
        QSignalSpy changed(mark, &SwitchControl::positionChanged);
        mTable->setEnabled(!disabled);
        const QImage atRest = mark->grab().toImage();
        const QPoint from = mark->mapTo(mScreen.get(), mark->itemPlace(2).center());
        mScreen->press(mScreen.get(), from);
        QTest::qWait(held);  // the finger rests
        mScreen->go(mScreen.get(), from, from + move);
        mScreen->lift(mScreen.get(), from + move);
        QTEST(mark->position(), "position");
        QCOMPARE(int(changed.count()), mark->position() == 0 ? 0 : 1);
        QTEST(mTable->scrollPosition() > 0, "scrolls");
        QTRY_COMPARE(mark->grab().toImage() == atRest, mark->position() == 0);
        QVERIFY(mController->selected.isEmpty());
    }

    void laysRowsOutBelowTheirTitles() {
        Model titled(2, {"First", QString(), "Third"});
        mTable->setModel(&titled);
        QTRY_COMPARE(mTable->readyRows(), 6);
        QList<int> tops;
        for (int row = 0; row < mTable->rowCount(); ++row)
            tops.append(cell(row)->top() - row * kRowHeight - kTitleHeight);
        QCOMPARE(tops, QList<int>({0, 0, 0, 0, kTitleHeight, kTitleHeight}));
        QCOMPARE(mTable->contentView()->height(), 6 * kRowHeight + 2 * kTitleHeight);
    }

    // From the model to the deletion.
    void aLongListNeverStopsTheScreen() {
        Model many(kMany);
        double longest = threadMsOf([&] { mTable->setModel(&many); });
        double all = longest;
        const auto turnUntil = [&](const std::function<bool()>& reached) {
            return QTest::qWaitFor(
                [&] {
                    const double turn = threadMsOf([] { QCoreApplication::processEvents(); });
                    longest = qMax(longest, turn);
                    all += turn;
                    return reached();
                },
                60000);
        };
        const auto ready = [&] { return mTable->readyRows() == kMany; };
        QCOMPARE(mTable->rowCount(), kMany);
        QVERIFY(mTable->readyRows() > 0 && !ready());
        mTable->scrollToRow(kMany - 1);
        QCOMPARE(mTable->cellAt(kMany - 1), nullptr);
        QVERIFY(turnUntil(ready));
        QVERIFY(mScreen->rect().contains(placeOf(cell(kMany - 1))));
        QVERIFY2(all < 4000, qPrintable(QString("%1 ms for all rows").arg(all)));

        cell(kMany - 1)->mark->setPosition(2);
        mTable->reload();
        QVERIFY(turnUntil(ready));
        QCOMPARE(mController->reused, kMany);
        QCOMPARE(cell(kMany - 1)->mark->position(), 2);

        const QPointer<TableView> gone = mTable;
        mTable->deleteLater();
        QVERIFY(turnUntil([&] { return !gone; }));
        QVERIFY2(longest < 60, qPrintable(QString("%1 ms in one turn").arg(longest)));
    }

    void staysRightWhileRowsAreMade_data() {
        const auto row = columns<std::function<void()>, int, int>("change", "rows", "reused");
        row(
            "another model", [this] { mTable->setModel(&mModel); }, 10, 0);
        row(
            "reload", [this] { mTable->reload(); }, kSeveralTurns, 1);
        row(
            "another width", [this] { mTable->setWidth(450); }, kSeveralTurns, 0);
        row(
            "no controller", [this] { mTable->setController(nullptr); }, 0, 0);
        row(
            "the controller deleted", [this] { mController.reset(); }, -1, 0);
        row(
            "the table deleted", [this] { delete mTable; }, -1, 0);
    }

    void staysRightWhileRowsAreMade() {
        const auto [change, rows, reused] = cells<std::function<void()>, int, int>();
        Model many(kSeveralTurns);
        mTable->setModel(&many);
        QCoreApplication::processEvents();
        const int made = mTable->readyRows();
        QVERIFY(made > 0 && made < kSeveralTurns);
        change();
        if (rows < 0) {
            QCoreApplication::processEvents();
            return;
        }
        QTRY_COMPARE_WITH_TIMEOUT(mTable->readyRows(), rows, 60000);
        QTRY_COMPARE(int(mTable->contentView()->childViews().size()), rows);
        QCOMPARE(mTable->rowCount(), rows);
        QCOMPARE(mController->reused, reused * made);
        for (int row = 0; row < rows; ++row)
            QCOMPARE(cell(row)->geometry(), QRect(0, row * kRowHeight, mTable->width(), kRowHeight));
    }

    void tellsATouchedRow() {
        mScreen->tap(cell(1), {300, 20});
        QTRY_COMPARE(mController->selected, QList<int>{1});
    }

    void staysAliveWhenDeletedInAGesture() {
        mScreen->press(mTable, {200, 280});
        mScreen->go(mTable, {200, 280}, {200, 150});
        const QPoint place = mTable->pos();
        delete mTable;
        mScreen->moveTo(mApp, place + QPoint(200, 100));
        mScreen->lift(mApp, place + QPoint(200, 100));
        QCOMPARE(mApp->childViews().size(), 0);
    }

private:
    MarkCell* cell(int row) const { return static_cast<MarkCell*>(mTable->cellAt(row)); }
    // In the screen.
    QRect placeOf(const QWidget* view) const { return {view->mapTo(mScreen.get(), QPoint()), view->size()}; }

    std::unique_ptr<TouchScreen> mScreen;
    DisplayView* mApp = nullptr;
    TableView* mTable = nullptr;
    std::unique_ptr<Controller> mController;
    Model mModel{10};
};

QTEST_MAIN(TestTableView)
#include "tst_tableview.moc"
