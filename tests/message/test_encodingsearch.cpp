#include "message/encodingsearch.h"
#include "support/fakewindow.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestEncodingSearch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theListStaysOnTheEntryOfThatName();
    void withoutThatNameTheListStaysOnItsLastEntry();
};

void TestEncodingSearch::theListStaysOnTheEntryOfThatName()
{
    FakeWindow window;
    window.encodings = {u"big5 | Chinese"_s, u"utf-8 | Unicode"_s, u"x-other | Unicode"_s};
    QCOMPARE(selectEncodingOfName(window, u"Unicode"_s), u"utf-8"_s);
    QCOMPARE(window.selectedEncoding(), u"utf-8 | Unicode"_s);
}

void TestEncodingSearch::withoutThatNameTheListStaysOnItsLastEntry()
{
    FakeWindow window;
    window.encodings = {u"big5 | Chinese"_s, u"utf-8 | Unicode"_s, u"no entry"_s};
    for (const QString &name : {u"unicode"_s, u"utf-8"_s, QString()}) {
        window.selectEncoding(0);
        QCOMPARE(selectEncodingOfName(window, name), QString());
        QCOMPARE(window.selectedEncoding(), u"no entry"_s);
    }
}

QTEST_GUILESS_MAIN(TestEncodingSearch)
#include "test_encodingsearch.moc"
