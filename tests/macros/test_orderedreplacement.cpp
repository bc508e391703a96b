#include "macros/orderedreplacement.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

/// The one pass over a text against the plain way, one key after the other.
class TestOrderedReplacement : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachKeyIsReplacedEverywhere();
    void aValueMeetsOnlyTheKeysBehindItsOwn();
    void aKeyThatStaysLeavesTheTurnToTheSameKeyBehindIt();
    void theOutcomeIsAlwaysThatOfOneKeyAfterTheOther();
    void theOutcomeIsAlwaysThatOfOneKeyAfterTheOther_data();
    void eachKeyIsAskedForOnce();
    void eachKeyIsAskedForOnce_data();
    void anEndlessChainEnds();

private:
    using Value = std::optional<QString>;

    static QString replaced(QString text, const QStringList &keys, const QList<Value> &values)
    {
        replaceInOrder(text, keys, [&values](qsizetype index) { return values.at(index); });
        return text;
    }
    static QString plainly(QString text, const QStringList &keys, const QList<Value> &values)
    {
        for (qsizetype i = 0; i < keys.size(); ++i) {
            if (!keys[i].isEmpty() && values[i]) {
                text.replace(keys[i], *values[i]);
            }
        }
        return text;
    }
    static QString anyOf(QRandomGenerator &generator, const QStringList &pieces, int most)
    {
        QString text;
        for (int left = generator.bounded(most + 1); left > 0; --left) {
            text += pieces.at(generator.bounded(pieces.size()));
        }
        return text;
    }
};

void TestOrderedReplacement::eachKeyIsReplacedEverywhere()
{
    QCOMPARE(replaced(u"{a} and {b}, {a}{b}, {c}"_s, {u"{a}"_s, QString(), u"{b}"_s}, {u"1"_s, u"never"_s, u""_s}),
             u"1 and , 1, {c}"_s);
}

void TestOrderedReplacement::aValueMeetsOnlyTheKeysBehindItsOwn()
{
    const QStringList keys{u"{a}"_s, u"{b}"_s, u"{c}"_s};
    QCOMPARE(replaced(u"{a} {b} {c}"_s, keys, {u"<{b}>"_s, u"[{a}{b}{c}]"_s, u"c{c}"_s}),
             u"<[{a}{b}c{c}]> [{a}{b}c{c}] c{c}"_s);
}

void TestOrderedReplacement::aKeyThatStaysLeavesTheTurnToTheSameKeyBehindIt()
{
    QCOMPARE(replaced(u"{a}"_s, {u"{a}"_s, u"{a}"_s, u"{a}"_s}, {std::nullopt, u"x{a}"_s, u"y"_s}), u"xy"_s);
}

void TestOrderedReplacement::theOutcomeIsAlwaysThatOfOneKeyAfterTheOther_data()
{
    QTest::addColumn<QStringList>("keyPieces");
    QTest::addColumn<QStringList>("textPieces");
    const QStringList whole{u"{a}"_s, u"{b}"_s, u"{c}"_s, u"{ab}"_s, u"{}"_s};
    const QStringList broken{u"{"_s, u"}"_s, u"a"_s, u"b"_s, u"{a}"_s, u"{b}"_s, u"{{a}}"_s};
    QTest::newRow("placeholders only") << whole << (whole + QStringList{u"a"_s, u" "_s, u"b"_s});
    QTest::newRow("braces alone in texts and values") << whole << broken;
    QTest::newRow("braces alone in keys") << broken << broken;
}

void TestOrderedReplacement::theOutcomeIsAlwaysThatOfOneKeyAfterTheOther()
{
    QFETCH(QStringList, keyPieces);
    QFETCH(QStringList, textPieces);
    for (quint32 seed = 0; seed < 20000; ++seed) {
        QRandomGenerator generator(seed);
        QStringList keys;
        QList<Value> values;
        for (int count = generator.bounded(1, 6); count > 0; --count) {
            keys.append(anyOf(generator, keyPieces, keyPieces.first() == u"{"_s ? 2 : 1));
            values.append(generator.bounded(8) == 0 ? std::nullopt : Value(anyOf(generator, textPieces, 3)));
        }
        const QString text = anyOf(generator, textPieces, 8);
        const QString outcome = replaced(text, keys, values);
        QVERIFY2(outcome == plainly(text, keys, values),
                 qPrintable(u"seed %1: \"%2\" became \"%3\""_s.arg(seed).arg(text, outcome)));
    }
}

void TestOrderedReplacement::eachKeyIsAskedForOnce_data()
{
    QTest::addColumn<int>("depth");
    QTest::addColumn<int>("chains");
    QTest::newRow("keys that hold none") << 1 << 500;
    QTest::newRow("many chains") << 3 << 100;
    QTest::newRow("the deepest chain") << 64 << 2;
}

void TestOrderedReplacement::eachKeyIsAskedForOnce()
{
    // However often a key stands in the text and in the values, one pass asks for it once.
    QFETCH(const int, depth);
    QFETCH(const int, chains);
    QStringList keys;
    QString text;
    for (int chain = 0; chain < chains; ++chain) {
        for (int link = 0; link < depth; ++link) {
            keys.append(u"{%1-%2}"_s.arg(chain).arg(link));
        }
        text += u"{%1-0} {%1-0} "_s.arg(chain);
    }
    QList<int> asked(keys.size());
    replaceInOrder(text, keys, [&](qsizetype index) {
        ++asked[index];
        return Value((index + 1) % depth == 0 ? u"end"_s : u"x"_s + keys.at(index + 1));
    });
    QCOMPARE(text, (QString(depth - 1, u'x') + u"end "_s).repeated(2 * chains));
    QCOMPARE(asked, QList<int>(keys.size(), 1));
}

void TestOrderedReplacement::anEndlessChainEnds()
{
    QStringList keys;
    for (int link = 0; link <= 1000; ++link) {
        keys.append(u"{%1}"_s.arg(link));
    }
    QString text = u"{0}"_s;
    replaceInOrder(text, keys,
                   [&](qsizetype index) { return Value(index == 1000 ? u"end"_s : u"x"_s + keys.at(index + 1)); });
    QCOMPARE(text, QString(1000, u'x') + u"end"_s);
}

QTEST_APPLESS_MAIN(TestOrderedReplacement)
#include "test_orderedreplacement.moc"
