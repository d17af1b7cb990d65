// JSON text to variants and back.

#include "tests/support/Rows.h"

#include <HelixDash/json/JSONData.h>
#include <HelixDash/json/KJson.h>

#include <QBuffer>
#include <QTest>

class TestJson : public QObject {
    Q_OBJECT

private slots:
    void parses_data() {
        const auto row = columns<QByteArray, QVariant, int>("text", "value", "errorLine");
        row("object", QByteArray("{\"a\": [1, 2.5, true, null, \"ö\"]}"),
            QVariant(
                QVariantMap{{"a", QVariantList{1, 2.5, true, QVariant::fromValue(nullptr), QString::fromUtf8("ö")}}}),
            0);
        row("empty", QByteArray(), QVariant(), 1);
        row("broken", QByteArray("{\n\"a\": 1,\n\"b\": }"), QVariant(), 3);
        row("more behind it", QByteArray("{}\nx"), QVariant(), 2);
    }

    void parses() {
        auto [text, value, errorLine] = cells<QByteArray, QVariant, int>();
        QBuffer device(&text);
        QVERIFY(!KJson::Parser::parse(device).ok());
        QVERIFY(device.open(QIODevice::ReadOnly));
        for (const KJson::ParseResult& result : {KJson::Parser::parse(text), KJson::Parser::parse(device)}) {
            QCOMPARE(result.value, value);
            QCOMPARE(result.line, errorLine);
            QCOMPARE(result.ok(), errorLine == 0);
        }
    }

    void serializes() {
        JSONData data;
        data.insert("url", "old");
        data.insert("url", QString::fromUtf8("http://x/\"ö\\\n"));
        data.insert("n", 3);
        QCOMPARE(data.serializedJSON(), QByteArray("{\"n\":3,\"url\":\"http://x/\\\"ö\\\\\\n\"}"));
        QCOMPARE(KJson::Serializer::serialize(QVariantList{1.5, false, QVariant()}), QByteArray("[1.5,false,null]"));
    }
};

QTEST_GUILESS_MAIN(TestJson)
#include "tst_json.moc"
