#include "listbench.h"

#include <QElapsedTimer>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::BoxAnswer;

class TestOptionRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void oldSecurityIsShownAsSslAndStoredAsS();
    void accountThatBecomesDefaultFillsTheMacros();
    void sendersOfOneAddressGoTogetherAtTheNextLoad();
    void oneAddressUnderTwoNamesIsAllowed();
    void aTabIsKeptAsABlank_data() { addTabs(); }
    void aTabIsKeptAsABlank();
    void textsOfAnyScriptAndLengthAreKept_data() { addTabs(); }
    void textsOfAnyScriptAndLengthAreKept();
    void foldersInPlaceOfTheFilesGiveEmptyListsAndStay();
    void thousandsOfRecordsAreShown();
};

void TestOptionRecords::oldSecurityIsShownAsSslAndStoredAsS()
{
    ListBench bench(u"accounts"_s);
    const QString old = QString(bench.facts.kind.records[0]).replace(u"\tT\t"_s, u"\tY\t"_s);
    bench.start({old}, old);
    bench.inDialog([&bench] {
        QVERIFY(bench.dialog()->findChild<QRadioButton *>(u"opt(1)"_s)->isChecked());
        bench.saveAndClose();
    });
    bench.press(bench.facts.edit);
    const QString stored = QString(old).replace(u"587\tY\t"_s, u"587\tS\t"_s);
    QCOMPARE(bench.file(), octetsOf({stored}));
    QCOMPARE(bench.globals().settings.text(Setting::DefaultAccount), stored);
}

void TestOptionRecords::accountThatBecomesDefaultFillsTheMacros()
{
    ListBench bench(u"accounts"_s);
    bench.start({});
    writeFile(bench.globals().paths.macrosFile, "{My Email Address}\t\t/MIS\r\n");
    bench.inDialog([&bench] {
        bench.enter(bench.facts.entry);
        bench.saveAndClose();
    });
    bench.pressAdd();
    const QByteArray macros = contentOf(bench.globals().paths.macrosFile);
    QVERIFY2(macros.contains("{My Email Address}\tdora@new.example\t"), macros.constData());
}

void TestOptionRecords::sendersOfOneAddressGoTogetherAtTheNextLoad()
{
    ListBench bench(u"senders"_s);
    bench.start({u"Ann\tann@x.example\t"_s, u"Bob\tbob@x.example\t"_s, u"Anna\tann@x.example\t"_s});
    bench.clickRow(0);
    bench.pressWhileAsked(bench.facts.remove, u"DEL_SENDER_PROMPT"_s, BoxAnswer::Yes);
    QCOMPARE(bench.rows(0), (QStringList{u"Bob"_s, u"Anna"_s}));
    QCOMPARE(bench.file(), octetsOf({u"Bob\tbob@x.example\t"_s}));
    bench.sbt(2)->click();
    bench.open(bench.facts.tab);
    QCOMPARE(bench.rows(0), QStringList{u"Bob"_s});
}

void TestOptionRecords::oneAddressUnderTwoNamesIsAllowed()
{
    ListBench bench(u"senders"_s);
    bench.startAll();
    bench.clickRow(1);
    bench.enterWith(bench.facts.copy, {{u"txtDisp"_s, u"Anna"_s}});
    QCOMPARE(bench.file(), octetsOf(bench.facts.kind.records + QStringList{u"Anna\tann@two.example\t"_s}));
}

void TestOptionRecords::aTabIsKeptAsABlank()
{
    ListBench bench(kindOfRow());
    bench.start({});
    const QString name = bench.facts.kind.name == "senders"_L1 ? u"txtDisp"_s : u"txt(0)"_s;
    bench.inDialog([&] {
        bench.enter(bench.facts.entry);
        bench.enter({{name, u"\t one\ttwo "_s}});
        bench.saveAndClose();
    });
    bench.pressAdd();
    QCOMPARE(bench.lines().size(), 1);
    QCOMPARE(bench.lines()[0].count(u'\t'), bench.facts.entered.count(u'\t'));
    QVERIFY2(bench.lines()[0].split(u'\t').contains(u"one two"_s), qPrintable(bench.lines()[0]));
    QCOMPARE(bench.file(), octetsOf(bench.lines()));
}

void TestOptionRecords::textsOfAnyScriptAndLengthAreKept()
{
    ListBench bench(kindOfRow());
    bench.start({});
    const QStringList texts = {QString(300, u'x'), u"Ἑλένη"_s, u"王小明"_s, u"почта"_s, u"𐌀 \"a\" <b>; c, d = [e]"_s};
    const QString name = bench.facts.kind.name == "senders"_L1 ? u"txtDisp"_s : u"txt(0)"_s;
    const int field = bench.facts.kind.kind().columns[0];
    QStringList expected;
    for (const QString &text : texts) {
        const QString address = u"λ%1@παράδειγμα.gr"_s.arg(expected.size());
        bench.inDialog([&] {
            bench.enter(bench.facts.entry);
            bench.enter({{name, text}});
            for (const QString &box : {u"txtEmail"_s, u"txt(5)"_s}) {
                if (bench.box(box)) {
                    bench.enter({{box, address}});
                }
            }
            bench.saveAndClose();
        });
        bench.pressAdd();
        QStringList fields = bench.facts.entered.split(u'\t');
        fields.replaceInStrings(u"dora@new.example"_s, address);
        fields[field] = text;
        expected.append(fields.join(u'\t'));
    }
    QCOMPARE(bench.file(), octetsOf(expected));
    for (int row = 0; row < texts.size(); ++row) {
        bench.clickRow(row);
        bench.inDialog([&] {
            QCOMPARE(bench.box(name)->text(), texts[row]);
            bench.saveAndClose();
        });
        bench.press(bench.facts.edit);
    }
    QCOMPARE(bench.file(), octetsOf(expected));
}

void TestOptionRecords::foldersInPlaceOfTheFilesGiveEmptyListsAndStay()
{
    ListBench bench(u"accounts"_s);
    const DataPaths &paths = bench.globals().paths;
    const QStringList files = {paths.smtpFile, paths.proxyFile, paths.sendersFile};
    for (const QString &path : files) {
        QVERIFY(QFile::remove(path));
        QVERIFY(QDir().mkpath(path + u"/kept"_s));
    }
    bench.open(bench.facts.tab);
    for (const int list : {0, 2, 3}) {
        QCOMPARE(bench.rows(list), QStringList());
    }
    bench.inDialog([&bench] {
        bench.enter(bench.facts.entry);
        bench.saveAndClose();
        // What was entered stays, since it is nowhere else.
        QVERIFY(bench.forms.isLoaded(bench.facts.dialog));
        bench.forms.unload(bench.facts.dialog);
    });
    bench.pressAdd();
    QCOMPARE(bench.rows(3), QStringList());
    bench.sbt(2)->click();
    for (const QString &path : files) {
        QVERIFY(QFileInfo(path + u"/kept"_s).isDir());
    }
}

void TestOptionRecords::thousandsOfRecordsAreShown()
{
    ListBench bench(u"accounts"_s);
    QStringList accounts;
    QStringList senders;
    for (int i = 0; i < 5000; ++i) {
        accounts.append(
            u"mail%1.example\t25\tN\tY\tu\tp\tName %1\tann%1@mail.example\tName\tann%1@mail.example\t/SAEND"_s.arg(i));
        senders.append(u"Name %1\tann%1@mail.example\tremark"_s.arg(i));
    }
    writeFile(bench.globals().paths.smtpFile, octetsOf(accounts));
    writeFile(bench.globals().paths.sendersFile, octetsOf(senders));
    storeDefaultAccount(bench.globals(), accounts.last());
    QElapsedTimer clock;
    clock.start();
    QWidget *form = bench.form();
    const qint64 made = clock.elapsed();
    bench.open(AccountTab);
    qInfo("5,000 accounts and 5,000 senders: made after %lld ms, shown after %lld ms", made, clock.elapsed());
    QVERIFY(form->isVisible());
    QCOMPARE(bench.lsv(3)->model()->rowCount(), 5000);
    QCOMPARE(bench.lsv(0)->model()->rowCount(), 5000);
    QCOMPARE(bench.bold(), QStringList{u"mail4999.example"_s});
    clock.restart();
    bench.clickHeader(0);
    bench.lsv(3)->viewport()->repaint();
    qInfo("sorted after %lld ms", clock.elapsed());
    QCOMPARE(bench.rows(3).first(), u"mail0.example"_s);
    QCOMPARE(bench.bold(), QStringList{u"mail4999.example"_s});
}

QTEST_MAIN(TestOptionRecords)
#include "test_optionrecords.moc"
