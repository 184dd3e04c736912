#include "cli/menujson.h"
#include "model/menudocument.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

class TestMenuJson : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stringLiteralEscapesWhatJsonRequires_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("literal");
        QTest::newRow("plain") << QStringLiteral("Pack") << QStringLiteral("\"Pack\"");
        QTest::newRow("empty") << QString() << QStringLiteral("\"\"");
        QTest::newRow("quote and backslash")
            << QStringLiteral("say \"C:\\x\"") << QStringLiteral("\"say \\\"C:\\\\x\\\"\"");
        QTest::newRow("short escapes") << QStringLiteral("\b\f\n\r\t") << QStringLiteral("\"\\b\\f\\n\\r\\t\"");
        QTest::newRow("other control") << QStringLiteral("a\u0001b\u001f") << QStringLiteral("\"a\\u0001b\\u001f\"");
        QTest::newRow("DEL and C1") << QStringLiteral("\u007f\u0081\u009d")
                                    << QStringLiteral("\"\\u007f\\u0081\\u009d\"");
        QTest::newRow("slash stays") << QStringLiteral("a/b") << QStringLiteral("\"a/b\"");
        QTest::newRow("accents stay") << QStringLiteral("Caf\u00e9 \u20ac \u201c\u201d")
                                      << QStringLiteral("\"Caf\u00e9 \u20ac \u201c\u201d\"");
    }

    void stringLiteralEscapesWhatJsonRequires()
    {
        QFETCH(QString, text);
        QFETCH(QString, literal);
        QCOMPARE(jsonStringLiteral(text), literal);
    }

    void everyCharacterSurvivesAJsonParser()
    {
        QString text;
        for (char16_t code = 0; code < 0x100; ++code) {
            text += QChar(code);
        }
        text += QStringLiteral("\u20ac\u2026");
        const QByteArray json = QByteArrayLiteral("[") + jsonStringLiteral(text).toUtf8() + QByteArrayLiteral("]");
        QJsonParseError error;
        const QJsonDocument parsed = QJsonDocument::fromJson(json, &error);
        QCOMPARE(error.error, QJsonParseError::NoError);
        QCOMPARE(parsed.array().at(0).toString(), text);
    }

    void emptyDocumentIsAnObjectWithNoItems()
    {
        MenuDocument document;
        const QJsonObject object = QJsonDocument::fromJson(menuDocumentJson(document)).object();
        QCOMPARE(object.value(QStringLiteral("lastIndex")), QJsonValue(0));
        QCOMPARE(object.value(QStringLiteral("items")), QJsonValue(QJsonArray()));
    }

    void itemsAreWrittenAsTheyAreHeld()
    {
        // After a deletion keys no longer follow the array index and lastIndex is above the bound.
        MenuDocument document;
        document.lastIndex = 7;
        MenuItem target;
        target.caption = QStringLiteral("Pack");
        target.key = QStringLiteral("E7");
        target.siblingOrder = 1;
        target.commands.append(Command { QStringLiteral("zip"), QStringLiteral("pack.exe a") });
        MenuItem link;
        link.caption = QStringLiteral("Unpack");
        link.key = QStringLiteral("E2");
        link.level = 3;
        link.parent = 0;
        link.childCount = 0;
        link.siblingOrder = 1;
        link.copyKey = QStringLiteral("E7");
        link.copiesCommands = true;
        target.childCount = 1;
        document.items = { target, link };

        const QByteArray json = menuDocumentJson(document);
        const QJsonObject object = QJsonDocument::fromJson(json).object();
        QCOMPARE(object.value(QStringLiteral("lastIndex")), QJsonValue(7));
        const QJsonArray items = object.value(QStringLiteral("items")).toArray();
        QCOMPARE(items.size(), 2);
        const QJsonObject first = items.at(0).toObject();
        QCOMPARE(first.value(QStringLiteral("key")), QJsonValue(QStringLiteral("E7")));
        QCOMPARE(first.value(QStringLiteral("childCount")), QJsonValue(1));
        QCOMPARE(first.value(QStringLiteral("commands")).toArray().size(), 1);
        const QJsonObject second = items.at(1).toObject();
        QCOMPARE(second.value(QStringLiteral("key")), QJsonValue(QStringLiteral("E2")));
        QCOMPARE(second.value(QStringLiteral("level")), QJsonValue(3));
        QCOMPARE(second.value(QStringLiteral("parent")), QJsonValue(0));
        QCOMPARE(second.value(QStringLiteral("copyKey")), QJsonValue(QStringLiteral("E7")));
        QCOMPARE(second.value(QStringLiteral("copiesCommands")), QJsonValue(true));
        // The link's own array holds only the placeholder, which is never written.
        QCOMPARE(second.value(QStringLiteral("commands")), QJsonValue(QJsonArray()));
        QVERIFY(json.contains("\"copiesCommands\": true, \"commands\": []}"));
    }

    void longTextsAreWrittenWholeAcrossThePieces()
    {
        // Written piece by piece: characters beyond 16 bits and escapes on every boundary come out
        // whole.
        QString caption;
        while (caption.size() < 70000) {
            caption += QStringLiteral("abcd\U0001F600\"\n\u00E9");
        }
        MenuDocument document;
        MenuItem item;
        item.caption = caption;
        item.key = QStringLiteral("E0");
        item.commands.append(Command { QStringLiteral("txt"), caption.mid(1) });
        document.items = { item };
        QJsonParseError error;
        const QJsonDocument parsed = QJsonDocument::fromJson(menuDocumentJson(document), &error);
        QCOMPARE(error.error, QJsonParseError::NoError);
        const QJsonObject written = parsed.object().value(QStringLiteral("items")).toArray().at(0).toObject();
        QCOMPARE(written.value(QStringLiteral("caption")).toString(), caption);
        QCOMPARE(written.value(QStringLiteral("commands")).toArray().at(0).toObject().value(QStringLiteral("command")),
                 QJsonValue(caption.mid(1)));
    }
};

QTEST_GUILESS_MAIN(TestMenuJson)
#include "test_menujson.moc"
