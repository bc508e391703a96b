#include "quillon/fault.h"
#include "quillon/files/settingsfile.h"
#include "quillon/system/quillonsystem.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using quillon::QuillonSystem;
using quillon::SettingsFile;

namespace {

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

/// Any text, made mostly of what could upset a file of sections and keys.
QString anyText(QRandomGenerator &random)
{
    static const QString pool = u"ab =[];\"'\t\r\n\\:#uüß漢\u2028\uFEFF\u00A0\u0085"_s;
    QString text;
    const int length = random.bounded(12);
    for (int i = 0; i < length; ++i) {
        switch (random.bounded(12)) {
        case 0:
            text += u"\\lines:"_s;
            break;
        case 1:
            text += QString::fromUcs4(U"\U0001F600");
            break;
        case 2:
            text += QChar(static_cast<char16_t>(random.bounded(0x10000)));
            break;
        default:
            text += pool.at(random.bounded(static_cast<int>(pool.size())));
        }
    }
    return text;
}

} // namespace

class TestSettingsFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void missingFileReadsAsEmpty();
    void missingKeyOrSectionIsNoFault();
    void writingMakesSectionAndKeyAndLeavesTheRest();
    void namesCompareWithoutRegardToCase();
    void valueWithoutLineBreaksStandsVerbatim();
    void valueWithLineBreaksStandsOnOneLineAndReturns();
    void anyTextComesBackAsSectionKeyAndValue();
    void fileOfAnotherEditorIsRead();
    void fileOfAnotherEditorIsRead_data();
    void mixedEncodingsAreReadLineByLine();
    void commentsAndForeignLinesAreKept();
    void brokenLinesAreKeptAndDoNotHideKeys();
    void bytesAreReadAndGivenAsAFileWouldBe();
    void bytesHaveNoFileToBeSavedTo();
    void blanksAroundNamesDoNotCountThoseOfAValueDo();
    void blanksAtTheEdgesOfAKeyComeBack_data();
    void blanksAtTheEdgesOfAKeyComeBack();
    void keysOfOneSectionAreFoundWhereverItStands();
    void aNewKeyStandsBehindTheLastOfItsSection_data();
    void aNewKeyStandsBehindTheLastOfItsSection();
    void aSectionIsRemovedWithAllItsLinesInAnyCase();
    void whatWasSetIsReadBeforeItIsSaved();
    void escapesAreReadToTheLastOne_data();
    void escapesAreReadToTheLastOne();

private:
    [[nodiscard]] QString path(const QString &name = u"options.dll"_s) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QuillonSystem m_system;
};

void TestSettingsFile::missingFileReadsAsEmpty()
{
    QCOMPARE(m_system.ReadSetting(path(), u"Other"_s, u"Startup"_s), QString());
    QVERIFY(!QFile::exists(path()));
}

void TestSettingsFile::missingKeyOrSectionIsNoFault()
{
    write(path(), "[Other]\r\nStartup=Last\r\n");
    const int before = quillon::faultCount();
    QCOMPARE(m_system.ReadSetting(path(), u"Other"_s, u"Format"_s), QString());
    QCOMPARE(m_system.ReadSetting(path(), u"Nothing"_s, u"Startup"_s), QString());
    QCOMPARE(quillon::faultCount(), before);
}

void TestSettingsFile::writingMakesSectionAndKeyAndLeavesTheRest()
{
    m_system.WriteSetting(path(), u"Other"_s, u"Font Name"_s, u"Courier New"_s);
    QCOMPARE(read(path()), QByteArray("[Other]\r\nFont Name=Courier New\r\n"));
    m_system.WriteSetting(path(), u"Position"_s, u"Left"_s, u"15"_s);
    m_system.WriteSetting(path(), u"Other"_s, u"Startup"_s, u"Max"_s);
    m_system.WriteSetting(path(), u"Other"_s, u"Font Name"_s, u"Serif"_s);
    QCOMPARE(read(path()), QByteArray("[Other]\r\nFont Name=Serif\r\nStartup=Max\r\n[Position]\r\nLeft=15\r\n"));
}

void TestSettingsFile::namesCompareWithoutRegardToCase()
{
    m_system.WriteSetting(path(), u"SMTP Account"_s, u"Default"_s, u"one"_s);
    m_system.WriteSetting(path(), u"SMTP account"_s, u"DEFAULT"_s, u"two"_s);
    QCOMPARE(m_system.ReadSetting(path(), u"smtp ACCOUNT"_s, u"default"_s), u"two"_s);
    QCOMPARE(read(path()).count("[SMTP"), 1);
}

void TestSettingsFile::valueWithoutLineBreaksStandsVerbatim()
{
    const QString value = u"  mail.example\t25\tN = <a@b.c>;[x] "_s;
    m_system.WriteSetting(path(), u"SMTP Account"_s, u"Default"_s, value);
    QCOMPARE(read(path()), "[SMTP Account]\r\nDefault=" + value.toUtf8() + "\r\n");
    QCOMPARE(m_system.ReadSetting(path(), u"SMTP Account"_s, u"Default"_s), value);
}

void TestSettingsFile::valueWithLineBreaksStandsOnOneLineAndReturns()
{
    const QString value = u"a@b.c,\r\nd@e.f\n[Head]\rSubject=x\\n"_s;
    m_system.WriteSetting(path(), u"Head"_s, u"To"_s, value);
    QCOMPARE(read(path()).count('\n'), 2);
    QCOMPARE(m_system.ReadSetting(path(), u"Head"_s, u"To"_s), value);
    QCOMPARE(m_system.ReadSetting(path(), u"Head"_s, u"Subject"_s), QString());
}

void TestSettingsFile::anyTextComesBackAsSectionKeyAndValue()
{
    QRandomGenerator random(20261121);
    for (int round = 0; round < 150; ++round) {
        QFile::remove(path());
        QList<std::array<QString, 3>> written;
        SettingsFile file(path());
        for (int i = 0; i < 40; ++i) {
            const QString section = anyText(random);
            const QString key = anyText(random) + QString::number(i);
            const QString value = anyText(random);
            file.setValue(section, key, value);
            written.append({section, key, value});
        }
        QVERIFY(file.save());
        const SettingsFile again(path());
        for (const auto &[section, key, value] : std::as_const(written)) {
            QVERIFY2(again.value(section, key) == value,
                     qPrintable(u"round %1: [%2] %3 = %4"_s.arg(round).arg(section, key, value)));
        }
    }
}

void TestSettingsFile::fileOfAnotherEditorIsRead_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QString text = u"[Sender]\nDefault.DispName=Jürgen €\n"_s;
    QTest::newRow("LF") << text.toUtf8();
    QTest::newRow("CR LF") << QString(text).replace(u"\n"_s, u"\r\n"_s).toUtf8();
    QTest::newRow("byte-order mark") << "\xEF\xBB\xBF" + text.toUtf8();
    QTest::newRow("Windows-1252") << QByteArray("[Sender]\r\nDefault.DispName=J\xFCrgen \x80\r\n");
    QTest::newRow("no last line end") << text.toUtf8().chopped(1);
    QTest::newRow("UTF-16") << QByteArray("\xFF\xFE") +
                                   QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * 2);
}

void TestSettingsFile::fileOfAnotherEditorIsRead()
{
    QFETCH(const QByteArray, bytes);
    write(path(), bytes);
    QCOMPARE(m_system.ReadSetting(path(), u"Sender"_s, u"Default.DispName"_s), u"Jürgen €"_s);
    m_system.WriteSetting(path(), u"Sender"_s, u"Default.EmailAddr"_s, u"ü@b.c"_s);
    QCOMPARE(m_system.ReadSetting(path(), u"Sender"_s, u"Default.DispName"_s), u"Jürgen €"_s);
    QCOMPARE(m_system.ReadSetting(path(), u"Sender"_s, u"Default.EmailAddr"_s), u"ü@b.c"_s);
}

void TestSettingsFile::mixedEncodingsAreReadLineByLine()
{
    write(path(), "[A]\nk=J\xFCrgen\nl=J\xC3\xBCrgen\n");
    QCOMPARE(m_system.ReadSetting(path(), u"A"_s, u"k"_s), u"Jürgen"_s);
    QCOMPARE(m_system.ReadSetting(path(), u"A"_s, u"l"_s), u"Jürgen"_s);
}

void TestSettingsFile::commentsAndForeignLinesAreKept()
{
    write(path(), "; of mine\n[A]\n\nk=1\nnot a key\n; end\n");
    m_system.WriteSetting(path(), u"A"_s, u"k"_s, u"2"_s);
    QCOMPARE(read(path()), QByteArray("; of mine\r\n[A]\r\n\r\nk=2\r\nnot a key\r\n; end\r\n"));
}

void TestSettingsFile::brokenLinesAreKeptAndDoNotHideKeys()
{
    const QByteArray broken =
        QByteArray("[A\r\n=\r\n[]\r\n[A]\r\n\xFF\xFE\0=x\r\n", 23) + QByteArray(3'000'000, 'x') + "\r\nk=found\r\n";
    write(path(), broken);
    QCOMPARE(m_system.ReadSetting(path(), u"A"_s, u"k"_s), u"found"_s);
    m_system.WriteSetting(path(), u"A"_s, u"k"_s, u"found"_s);
    QCOMPARE(read(path()), broken);
}

void TestSettingsFile::bytesAreReadAndGivenAsAFileWouldBe()
{
    for (const QByteArray &bytes : {QByteArray(), QByteArray("; of mine\n[A]\n\nk=J\xFCrgen\nnot a key"),
                                    QByteArray("\xEF\xBB\xBF[A]\r\nk=1\r\n"), QByteArray("k=0\r\n[a]\r\nK=1\r\n")}) {
        write(path(), bytes);
        SettingsFile onDisk(path());
        SettingsFile inMemory = SettingsFile::fromBytes(bytes);
        QCOMPARE(inMemory.sections(), onDisk.sections());
        QCOMPARE(inMemory.value(u"A"_s, u"k"_s), onDisk.value(u"A"_s, u"k"_s));
        for (SettingsFile *file : {&onDisk, &inMemory}) {
            file->setValue(u"A"_s, u"k"_s, u"two\nlines"_s);
        }
        QVERIFY(onDisk.save());
        QCOMPARE(inMemory.toBytes(), read(path()));
    }
}

void TestSettingsFile::bytesHaveNoFileToBeSavedTo()
{
    SettingsFile file = SettingsFile::fromBytes("[A]\r\nk=1\r\n");
    const int before = quillon::faultCount();
    QVERIFY(!file.readable());
    QVERIFY(!file.save());
    QCOMPARE(quillon::faultCount(), before + 1);
}

void TestSettingsFile::blanksAroundNamesDoNotCountThoseOfAValueDo()
{
    const QByteArray bytes = "k=before any section\r\n \t[A]\t \r\n\tk \t= v \r\n ; c=1\r\n;d=2\r\ne\r\n=n\r\n"
                             " [B] ; note\r\nk==\r\nl=\r\n[C]]\r\nk=3\r\n";
    write(path(), bytes);
    const SettingsFile file(path());
    QCOMPARE(file.sections(), (QStringList{u"A"_s, u"B"_s, u"C]"_s}));
    QCOMPARE(file.keys(u"a"_s), (QStringList{u"k"_s, QString()}));
    QCOMPARE(file.value(u"A"_s, u"K"_s), u" v "_s);
    QCOMPARE(file.value(u"A"_s, QString()), u"n"_s);
    QCOMPARE(file.value(u"B"_s, u"k"_s), u"="_s);
    QCOMPARE(file.value(u"C]"_s, u"k"_s), u"3"_s);
    QVERIFY(file.contains(u"B"_s, u"L"_s) && !file.contains(u"B"_s, u"c"_s) && !file.contains(u" A"_s, u"k"_s));
    QVERIFY(!file.contains(QString(), u"k"_s) && file.keys(u"D"_s).isEmpty());
    SettingsFile again(path());
    again.setValue(u"A"_s, u"k"_s, u"v2"_s);
    QVERIFY(again.save());
    QCOMPARE(read(path()), QByteArray(bytes).replace("\tk \t= v ", "k=v2"));
}

void TestSettingsFile::blanksAtTheEdgesOfAKeyComeBack_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("blank behind") << u"k "_s;
    QTest::newRow("tab behind") << u"k\t"_s;
    QTest::newRow("no-break space behind") << u"k\u00A0"_s;
    QTest::newRow("two blanks behind") << u"k  "_s;
    QTest::newRow("blank in front") << u" k"_s;
    QTest::newRow("tab in front") << u"\tk"_s;
    QTest::newRow("blanks on both sides") << u" k "_s;
    QTest::newRow("a blank alone") << u" "_s;
}

void TestSettingsFile::blanksAtTheEdgesOfAKeyComeBack()
{
    QFETCH(QString, key);
    SettingsFile file(path());
    file.setValue(u"A"_s, key, u"1"_s);
    file.setValue(u"A"_s, u"k"_s, u"2"_s);
    QVERIFY(file.save());
    const SettingsFile again(path());
    QCOMPARE(again.keys(u"A"_s), (QStringList{key, u"k"_s}));
    QCOMPARE(again.value(u"A"_s, key), u"1"_s);
    QCOMPARE(again.value(u"A"_s, u"k"_s), u"2"_s);
}

void TestSettingsFile::keysOfOneSectionAreFoundWhereverItStands()
{
    write(path(), "[A]\r\nk=1\r\nK=2\r\n[B]\r\nk=3\r\n[a]\r\nk=4\r\nl=5\r\n[b]\r\n");
    const SettingsFile file(path());
    QCOMPARE(file.value(u"A"_s, u"k"_s), u"1"_s);
    QCOMPARE(file.value(u"A"_s, u"l"_s), u"5"_s);
    QCOMPARE(file.value(u"B"_s, u"l"_s), QString());
    QCOMPARE(file.sections(), (QStringList{u"A"_s, u"B"_s}));
    QCOMPARE(file.keys(u"a"_s), (QStringList{u"k"_s, u"K"_s, u"k"_s, u"l"_s}));
    QCOMPARE(file.keys(u"b"_s), QStringList{u"k"_s});
}

void TestSettingsFile::aNewKeyStandsBehindTheLastOfItsSection_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("no file") << QByteArray() << QByteArray("[A]\r\nk=v\r\n");
    QTest::newRow("other sections") << QByteArray("x\r\n[B]\r\n") << QByteArray("x\r\n[B]\r\n[A]\r\nk=v\r\n");
    QTest::newRow("no keys yet") << QByteArray("[a]\r\n\r\n; c\r\n") << QByteArray("[a]\r\nk=v\r\n\r\n; c\r\n");
    QTest::newRow("blank lines behind") << QByteArray("[A]\r\na=1\r\n\r\nb=2\r\n\r\n[B]\r\nc=3\r\n")
                                        << QByteArray("[A]\r\na=1\r\n\r\nb=2\r\nk=v\r\n\r\n[B]\r\nc=3\r\n");
    QTest::newRow("last section") << QByteArray("[B]\r\nb=1\r\n[A]\r\na=2\r\n")
                                  << QByteArray("[B]\r\nb=1\r\n[A]\r\na=2\r\nk=v\r\n");
    QTest::newRow("first of two") << QByteArray("[A]\r\n[B]\r\nb=1\r\n[A]\r\na=2\r\n")
                                  << QByteArray("[A]\r\nk=v\r\n[B]\r\nb=1\r\n[A]\r\na=2\r\n");
    QTest::newRow("there in the second") << QByteArray("[A]\r\n[B]\r\nk=1\r\n[A]\r\nK=2\r\n")
                                         << QByteArray("[A]\r\n[B]\r\nk=1\r\n[A]\r\nk=v\r\n");
}

void TestSettingsFile::aNewKeyStandsBehindTheLastOfItsSection()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    write(path(), before);
    m_system.WriteSetting(path(), u"A"_s, u"k"_s, u"v"_s);
    QCOMPARE(read(path()), after);
}

void TestSettingsFile::aSectionIsRemovedWithAllItsLinesInAnyCase()
{
    const auto left = [this](const QByteArray &bytes) {
        write(path(), bytes);
        SettingsFile file(path());
        file.removeSection(u"GONE"_s);
        return file.save() ? read(path()) : QByteArray("not saved");
    };
    QCOMPARE(left("x\r\n[A]\r\na=1\r\n[Gone]\r\n; c\r\n\r\nb=2\r\n[B]\r\nc=3\r\n[gone]\r\nd=4\r\n"),
             QByteArray("x\r\n[A]\r\na=1\r\n[B]\r\nc=3\r\n"));
    QCOMPARE(left("[Gone too]\r\na=1\r\n"), QByteArray("[Gone too]\r\na=1\r\n"));
}

void TestSettingsFile::whatWasSetIsReadBeforeItIsSaved()
{
    write(path(), "[A]\r\nk=1\r\n");
    SettingsFile file(path());
    file.setValue(u"a"_s, u"K"_s, u"2\n"_s);
    file.setValue(u"B"_s, u"l="_s, u"3"_s);
    file.setValue(u"b"_s, u"L="_s, u"4"_s);
    QCOMPARE(file.value(u"A"_s, u"k"_s), u"2\n"_s);
    QCOMPARE(file.value(u"B"_s, u"l="_s), u"4"_s);
    QCOMPARE(read(path()), QByteArray("[A]\r\nk=1\r\n"));
    QVERIFY(file.save());
    QCOMPARE(SettingsFile(path()).value(u"B"_s, u"L="_s), u"4"_s);
}

void TestSettingsFile::escapesAreReadToTheLastOne_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("value");
    const auto row = [](const QString &stored, const QString &value) {
        QTest::newRow(stored.toLatin1().constData()) << stored << value;
    };
    row(u"a\\nb"_s, u"a\\nb"_s);
    row(u"\\Lines:a\\n"_s, u"\\Lines:a\\n"_s);
    row(u"\\lines:"_s, QString());
    row(u"\\lines:\\r\\n\\\\\\x"_s, u"\r\n\\x"_s);
    row(u"\\lines:a\\n"_s, u"a\n"_s);
    row(u"\\lines:a\\"_s, u"a\\"_s);
    row(u"\\lines:\\u0041"_s, u"A"_s);
    row(u"\\lines:\\u00fC\\u00e4b"_s, u"üäb"_s);
    row(u"\\lines:\\u004"_s, u"u004"_s);
    row(u"\\lines:\\u00g1"_s, u"u00g1"_s);
    row(u"\\lines:\\u"_s, u"u"_s);
}

void TestSettingsFile::escapesAreReadToTheLastOne()
{
    QFETCH(QString, stored);
    write(path(), "[A]\r\nk=" + stored.toUtf8() + "\r\n");
    QTEST(m_system.ReadSetting(path(), u"A"_s, u"k"_s), "value");
}

QTEST_GUILESS_MAIN(TestSettingsFile)
#include "test_settingsfile.moc"
