// Data values: when a change counts, who hears of it and where, and how values are written.

#include "tests/support/Rows.h"

#include <HelixDash/values/DataValueManager.h>

#include <QSignalSpy>
#include <QTest>
#include <QThread>
#include <QThreadPool>

#include <functional>

static void onAnotherThread(const std::function<void()>& work) {
    QThreadPool pool;
    pool.start(work);
    QVERIFY(pool.waitForDone(5000));
}

class TestDataValues : public QObject {
    Q_OBJECT

private slots:
    void init() {
        mReal = qobject_cast<RealDataValue*>(DataValueManager::instance().add("REAL", DataValueManager::Type::Real));
        set(qQNaN());
    }

    void commitsWhenOutermostLockerGoes() {
        QSignalSpy changes(mReal, &DataValue::valueChanged);
        QSignalSpy realChanges(mReal, &RealDataValue::realValueChanged);
        {
            const DataValue::EventLocker outer(mReal);
            mReal->setValue(1.5);
            {
                const DataValue::EventLocker inner(mReal);
                const DataValue::StateLocker reading(nullptr);
                mReal->setValue(2.5);
            }
            QVERIFY(!mReal->isValid() && changes.isEmpty());
        }
        QCOMPARE(mReal->value(), 2.5);
        QCOMPARE(changes.size(), 1);
        QCOMPARE(realChanges.size(), 1);
        set(2.5);
        { const DataValue::EventLocker nothingSet(mReal); }
        QCOMPARE(changes.size(), 1);
        set(qQNaN());
        QVERIFY(!mReal->isValid());
        QCOMPARE(mReal->value(), 2.5);
        set(2.5);
        QCOMPARE(changes.size(), 3);
        mReal->setValue(9.0);
        QCOMPARE(mReal->value(), 2.5);
    }

    void remembersValueBeforeLastChange_data() {
        const auto row = columns<QVariantList, int, bool>("settings", "previous", "wasValid");
        row("first", QVariantList{1}, 0, false);
        row("set again", QVariantList{1, 2, 2}, 1, true);
        row("first again", QVariantList{1, 1}, 0, false);
        row("made invalid", QVariantList{1, 2, QVariant()}, 2, true);
        row("valid again", QVariantList{1, 2, QVariant(), 2}, 2, false);
    }

    void remembersValueBeforeLastChange() {
        const auto [settings, previous, wasValid] = cells<QVariantList, int, bool>();
        IntDataValue value("PREVIOUS");
        for (const QVariant& setting : settings) {
            const DataValue::EventLocker locker(&value);
            QVERIFY(value.setVariant(setting));
        }
        QCOMPARE(value.wasPreviousValid(), wasValid);
        if (wasValid)
            QCOMPARE(value.previousValue(), previous);
    }

    // A slot that waits for another thread which reads a value would wait for good under the lock.
    void announcesWithoutLockOnOwningThread() {
        int heard = 0;
        const auto connection = dvConnect(mReal, this, [&] {
            QCOMPARE(QThread::currentThread(), thread());
            onAnotherThread([this] { const DataValue::StateLocker locker(mReal); });
            ++heard;
        });
        {
            const DataValue::StateLocker outer(nullptr);
            set(3.5);
            QCOMPARE(heard, 0);
        }
        QCOMPARE(heard, 1);
        onAnotherThread([this] { set(4.5); });
        QCOMPARE(heard, 1);
        QTRY_COMPARE(heard, 2);
        QVERIFY(dvDisconnect(mReal, this));
        set(5.5);
        QCOMPARE(heard, 2);
    }

    void writesValues_data() {
        const auto row = columns<QVariant, QString>("value", "text");
        const QList<QPair<QVariant, const char*>> rows = {
            {-1.0, "-1.0"},      {0.1 + 0.2, "0.30000000000000004"}, {1e300, "1.0e+300"},
            {1.5e-7, "1.5e-07"}, {-2147483647, "-2147483647"},       {true, "true"},
            {false, "false"}};
        for (const auto& [value, text] : rows)
            row(text, value, text);
    }

    void writesValues() {
        QFETCH(QVariant, value);
        RealDataValue real("R");
        IntDataValue integer("I");
        BoolDataValue flag("B");
        DataValue* const made = QHash<int, DataValue*>{
            {QMetaType::Double, &real}, {QMetaType::Int, &integer}, {QMetaType::Bool, &flag}}[value.userType()];
        QCOMPARE(made->toString(), "Invalid");
        {
            const DataValue::EventLocker locker(made);
            QVERIFY(made->setVariant(value));
            QVERIFY(!made->setVariant("loud"));
        }
        QTEST(made->toString(), "text");
    }

    void namesEnums() {
        QCOMPARE(NameForEnum(TrimNameMap, 3), "Premium+");
        QCOMPARE(NameForEnum(TrimNameMap, -1), "-1");
    }

private:
    void set(double value) {
        const DataValue::EventLocker locker(mReal);
        mReal->setValue(value);
    }

    RealDataValue* mReal = nullptr;
};

QTEST_GUILESS_MAIN(TestDataValues)
#include "tst_datavalues.moc"
