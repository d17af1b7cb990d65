// The Vehicle Status Monitor's rows and the marks of the static vehicle tests.

#include "nvh/tables/vdtTableController.h"
#include "nvh/tables/vdtTableModel.h"
#include "nvh/tables/vdtTestCell.h"
#include "nvh/tables/vsmTableController.h"
#include "nvh/tables/vsmTableModel.h"
#include "tests/support/PrivateMachine.h"
#include "tests/support/Rows.h"

#include <HelixDash/json/KJson.h>
#include <HelixDash/services/ConfigStore.h>
#include <HelixDash/tables/TableCell.h>
#include <HelixDash/tables/TableView.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SlideSwitch.h>

#include <QTemporaryDir>
#include <QTest>

#include <cstdlib>

namespace {

QVariantMap parsed(const QByteArray& json) {
    return KJson::Parser::parse(json).value.toMap();
}

template <typename Controller, typename Model>
struct Table {
    explicit Table(const QVariantMap& rows) : controller(rows), model(int(rows.size())) {
        view.setController(&controller);
        view.setModel(&model);
    }

    QList<LabelView*> labels(int row) const { return view.cellAt(row)->findChildren<LabelView*>(); }

    Controller controller;
    Model model;
    TableView view;
};

struct Monitor : Table<vsmTableController, vsmTableModel> {
    using Table::Table;
    // Status and its colour.
    QString shown(int row) const {
        const LabelView* status = labels(row).at(1);
        return status->text() + '/' + status->skinColor();
    }
};

}  // namespace

class TestTestTables : public QObject {
    Q_OBJECT

private slots:
    void init() {
        QVERIFY(ConfigStore::instance().open(mDir.filePath("test.ini")));
        QVERIFY(ConfigStore::instance().setValue("nvh/vdt_static_filename", mDir.filePath("marks.txt")));
        setValue("LAMP_on", false);
        setValue("LEVEL_left", 1.0);
        setValue("LEVEL_right", 3);
    }

    void showsStatus_data() {
        const auto row = columns<QByteArray, QString>("conditions", "status");
        row("met", R"("DataValues": {"LAMP_on": "false", "LEVEL_right": "3"})", "OK/battery/green");
        row("no condition", R"("DataValues": {})", "OK/battery/green");
        row("other value", R"("DataValues": {"LAMP_on": "true"})", "NOT OK/red");
        row("a number is not its text", R"("DataValues": {"LEVEL_left": 1})", "NOT OK/red");
        row("text of a real", R"("DataValues": {"LEVEL_left": "1.0"})", "OK/battery/green");
        row("case matters", R"("DataValues": {"LAMP_on": "False"})", "NOT OK/red");
        row("unknown value", R"("DataValues": {"NOBODY_knows": "1"})", "INVALID/red");
        row("first by name decides", R"("DataValues": {"NOBODY_knows": "1", "LAMP_on": "true"})", "NOT OK/red");
        row("override met", R"("DataValues": {"LAMP_on": "true"}, "OverrideDataValues": {"LEVEL_right": "3"})",
            "OK/battery/green");
        row("override not met", R"("DataValues": {"NO_one": "1"}, "OverrideDataValues": {"LEVEL_right": "4"})",
            "NOT OK/red");
        row("override unknown", R"("DataValues": {"LAMP_on": "true"}, "OverrideDataValues": {"NO_one": "4"})",
            "INVALID/red");
        row("empty override", R"("DataValues": {"LAMP_on": "true"}, "OverrideDataValues": {})", "NOT OK/red");
    }

    void showsStatus() {
        QFETCH(QByteArray, conditions);
        const Monitor monitor(parsed(R"({"0": {"Name": "Lamp", )" + conditions + "}}"));
        QTEST(monitor.shown(0), "status");
        QCOMPARE(monitor.labels(0).at(0)->text(), QString("Lamp"));
    }

    void followsValuesThatComeLater() {
        setValue("LAMP_on", QVariant());
        const Monitor monitor(parsed(R"({"0": {"DataValues": {"LAMP_on": "true"}},
        "1": {"DataValues": {"LATE_value": "7"}, "OverrideDataValues": {"LATE_other": "8"}}})"));
        QCOMPARE(monitor.shown(0), QString("INVALID/red"));
        setValue("LAMP_on", true);
        QCOMPARE(monitor.shown(0), QString("OK/battery/green"));
        QCOMPARE(monitor.shown(1), QString("INVALID/red"));
        setValue("LATE_value", 6);
        setValue("LATE_other", 6);
        QTRY_COMPARE(monitor.shown(1), QString("NOT OK/red"));
        setValue("LATE_other", 8);
        QCOMPARE(monitor.shown(1), QString("OK/battery/green"));
    }

    void takesFirstTwoRowsOver() {
        Monitor monitor(parsed(R"({"0": {"DataValues": {"LAMP_on": "true"}}, "1": {}, "2": {}})"));
        monitor.controller.toggleCellAutoControl(true);
        QCOMPARE(monitor.shown(0), QString("AUTO/battery/green"));
        QCOMPARE(monitor.shown(1), QString("AUTO/battery/green"));
        QCOMPARE(monitor.shown(2), QString("OK/battery/green"));
        monitor.controller.toggleCellAutoControl(false);
        QCOMPARE(monitor.shown(0), QString("NOT OK/red"));
        Monitor oneRow(parsed(R"({"0": {"DataValues": {"LAMP_on": "true"}}})"));
        oneRow.controller.toggleCellAutoControl(true);
        QCOMPARE(oneRow.shown(0), QString("NOT OK/red"));
    }

    void writesMarks() {
        Table<vdtTableController, vdtTableModel> tests(parsed(R"({"0": {"Name": "Horn"}, "2": {"Name": "Wipers"}})"));
        const auto written = [this] { return parsed(readFile(mDir.filePath("marks.txt"))); };
        tests.view.cellAt(0)->findChild<SlideSwitch*>()->setPosition(2);
        tests.controller.collectVdtResults();
        QCOMPARE(written(), parsed(R"({"0": {"Name": "Horn", "Value": "NA"}, "1": {"Name": "", "Value": "FAIL"}})"));
        tests.view.cellAt(0)->findChild<SlideSwitch*>()->setPosition(1);
        tests.controller.collectVdtResults();
        QCOMPARE(written().value("0").toMap().value("Value"), QVariant("PASS"));
        QCOMPARE(tests.controller.whyNoMarks(), QString());
    }

    void writesRowsThatAreNotThereYet() {
        QVariantMap tests;
        QVariantMap marks;
        for (int row = 0; row < 12; ++row) {
            const QString name = QStringLiteral("Test %1").arg(row);
            tests.insert(QString::number(row), QVariantMap{{"Name", name}});
            marks.insert(QString::number(row), QVariantMap{{"Name", name}, {"Value", "FAIL"}});
        }
        vdtTableController controller(tests);
        TableView table;
        auto* cell = static_cast<vdtTestCell*>(controller.createCellForItem(&table, {0, 1}));
        cell->populate();
        cell->findChild<SlideSwitch*>()->setPosition(1);
        marks["1"] = QVariantMap{{"Name", "Test 1"}, {"Value", "PASS"}};
        controller.collectVdtResults();
        QCOMPARE(parsed(readFile(mDir.filePath("marks.txt"))), marks);
    }

    void saysWhyThereAreNoMarks_data() {
        const auto row = columns<QByteArray, QString>("how", "reason");
        row("link", "ln -s other marks.txt", "Too many levels of symbolic links");
        row("FIFO", "mkfifo marks.txt", "Operation not permitted");
        row("directory", "mkdir marks.txt", "Is a directory");
    }

    void saysWhyThereAreNoMarks() {
        const auto [how, reason] = cells<QByteArray, QString>();
        QTemporaryDir dir;
        const QString file = dir.filePath("marks.txt");
        writeFile(dir.filePath("other"), "kept");
        QCOMPARE(std::system(qPrintable("cd " + dir.path() + " && " + how)), 0);
        QVERIFY(ConfigStore::instance().setValue("nvh/vdt_static_filename", file));
        vdtTableController controller(parsed(R"({"0": {"Name": "Horn"}})"));
        controller.collectVdtResults();
        QVERIFY(controller.whyNoMarks().startsWith(file));
        QCOMPARE(controller.whyNoMarks().section(": ", -1), reason);
        QCOMPARE(readFile(dir.filePath("other")), QByteArray("kept"));
    }

private:
    QTemporaryDir mDir;
};

QTEST_MAIN(TestTestTables)
#include "tst_testtables.moc"
