#include "quillon/fault.h"
#include "quillon/files/quillonlines.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class TestLines : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void appendMakesTheFileAndEndsTheLine();
    void appendDoesNotGlueToAnUnendedLine();
    void appendToUtf16FileKeepsItsText();
    void appendToAFolderIsAFault();
    void countCountsLines();
    void countCountsLines_data();
    void deleteByWholeLineRemovesAllThatMatch();
    void deleteByFieldComparesThatFieldOnly();
    void deleteWithoutAMatchLeavesTheFileUntouched();
    void deleteTakesSeveralKeysAtOnce();
    void deleteWithoutKeysLeavesTheFileUntouched();
    void deleteByTheEmptyKeyTakesBlankLinesOrEmptyFields();
    void replaceChangesTheFirstMatchOnly();
    void replaceWithFieldChangesOnlyThatField();
    void lineExistsIsExact();
    void findLineByKeyGivesTheFirstThatBeginsWithIt();
    void otherLinesKeepTheirOctets();
    void textFileComesBackAsWritten();
    void textFileComesBackAsWritten_data();
    void lineThatBeginsLikeAByteOrderMarkStaysALine();
    void lineThatBecomesTheFirstKeepsItsOctets();
    void appendToAMarkAloneAddsNoBlankLine();
    void textFileOfAnotherProgramIsRead();
    void textFileInAnotherCharsetIsAFault();
    void longLinesAndControlCharactersSurvive();
    void unreadableFileGivesNothingAndIsNotRewritten();

private:
    [[nodiscard]] QString path(const QString &name = u"records.dll"_s) const { return m_folder->filePath(name); }
    [[nodiscard]] QByteArray content(const QString &name = u"records.dll"_s) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void write(const QByteArray &bytes) const
    {
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    quillon::QuillonLines m_lines;
};

void TestLines::appendMakesTheFileAndEndsTheLine()
{
    m_lines.AppendLine(path(), u"Grüße"_s);
    m_lines.AppendLine(path(), QString());
    QCOMPARE(content(), QByteArray("Gr\xC3\xBC\xC3\x9F"
                                   "e\r\n\r\n"));
    struct stat status {};
    QCOMPARE(::stat(QFile::encodeName(path()).constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 0777), 0600);
}

void TestLines::appendDoesNotGlueToAnUnendedLine()
{
    write("one\ntwo");
    m_lines.AppendLine(path(), u"three"_s);
    QCOMPARE(content(), QByteArray("one\ntwo\r\nthree\r\n"));
}

void TestLines::appendToUtf16FileKeepsItsText()
{
    const QString text = u"Jürgen\r\n"_s;
    write(QByteArray("\xFF\xFE") + QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * 2));
    m_lines.AppendLine(path(), u"Ada"_s);
    QCOMPARE(m_lines.ReadLines(path()), QStringList({u"Jürgen"_s, u"Ada"_s}));
}

void TestLines::appendToAFolderIsAFault()
{
    QVERIFY(QDir().mkpath(path()));
    const int before = quillon::faultCount();
    m_lines.AppendLine(path(), u"x"_s);
    QCOMPARE(quillon::faultCount(), before + 1);
}

void TestLines::countCountsLines_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("count");
    QTest::newRow("empty") << QByteArray() << 0;
    QTest::newRow("one, unended") << QByteArray("a") << 1;
    QTest::newRow("one") << QByteArray("a\r\n") << 1;
    QTest::newRow("blank lines count") << QByteArray("a\n\n\r\nb") << 4;
    QTest::newRow("a lone CR ends no line") << QByteArray("a\rb\n") << 1;
}

void TestLines::countCountsLines()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const int, count);
    write(bytes);
    QCOMPARE(m_lines.CountLines(path()), count);
    QCOMPARE(m_lines.ReadLines(path()).size(), count);
}

void TestLines::deleteByWholeLineRemovesAllThatMatch()
{
    write("a\tb\r\na\r\nb\r\na\r\n");
    m_lines.DeleteLineByKey(path(), u"a"_s, QString(), 0);
    QCOMPARE(content(), QByteArray("a\tb\r\nb\r\n"));
}

void TestLines::deleteByFieldComparesThatFieldOnly()
{
    write("Ada\tada@x.org\tnote\r\nada@x.org\tb@x.org\t\r\nshort\r\nAda L\tada@x.org\t\r\n");
    m_lines.DeleteLineByKey(path(), u"ada@x.org"_s, u"\t"_s, 1);
    QCOMPARE(content(), QByteArray("ada@x.org\tb@x.org\t\r\nshort\r\n"));
}

void TestLines::deleteWithoutAMatchLeavesTheFileUntouched()
{
    write("a\nb");
    m_lines.DeleteLineByKey(path(), u"c"_s, QString(), 0);
    m_lines.ReplaceLine(path(), u"c"_s, u"d"_s, QString(), 0);
    QCOMPARE(content(), QByteArray("a\nb"));
}

void TestLines::deleteTakesSeveralKeysAtOnce()
{
    write("a\tx\r\nb\ty\nW\xfc\tz\nc\tx\nx");
    m_lines.DeleteLinesByKeys(path(), {u"x"_s, u"y"_s, u"not there"_s, u"x"_s}, u"\t"_s, 1);
    QCOMPARE(content(), QByteArray("W\xfc\tz\r\nx\r\n"));
    m_lines.DeleteLinesByKeys(path(), {u"x"_s, u"Wü\tz"_s}, QString(), 0);
    QCOMPARE(content(), QByteArray(""));
}

void TestLines::deleteWithoutKeysLeavesTheFileUntouched()
{
    write("a\n\nb");
    m_lines.DeleteLinesByKeys(path(), {}, QString(), 0);
    m_lines.DeleteLinesByKeys(path(), {u"A"_s, u"a "_s, u"a\n"_s}, QString(), 0);
    QCOMPARE(content(), QByteArray("a\n\nb"));
}

void TestLines::deleteByTheEmptyKeyTakesBlankLinesOrEmptyFields()
{
    write("a\t\tb\r\n\r\na\r\n\t\r\n");
    m_lines.DeleteLinesByKeys(path(), {QString()}, QString(), 0);
    QCOMPARE(content(), QByteArray("a\t\tb\r\na\r\n\t\r\n"));
    m_lines.DeleteLinesByKeys(path(), {QString()}, u"\t"_s, 1);
    QCOMPARE(content(), QByteArray("a\r\n"));
}

void TestLines::replaceChangesTheFirstMatchOnly()
{
    write("a\r\nb\r\na\r\n");
    m_lines.ReplaceLine(path(), u"a"_s, u"c"_s, QString(), 0);
    QCOMPARE(content(), QByteArray("c\r\nb\r\na\r\n"));
}

void TestLines::replaceWithFieldChangesOnlyThatField()
{
    write("Work\t/home/x/work.htm\r\nHome\t\r\n");
    m_lines.ReplaceLine(path(), u"Work"_s, u"Office"_s, u"\t"_s, 0);
    QCOMPARE(content(), QByteArray("Office\t/home/x/work.htm\r\nHome\t\r\n"));
}

void TestLines::lineExistsIsExact()
{
    write("Ada <a@b.c>\r\n");
    QVERIFY(m_lines.LineExists(path(), u"Ada <a@b.c>"_s));
    QVERIFY(!m_lines.LineExists(path(), u"ada <a@b.c>"_s));
    QVERIFY(!m_lines.LineExists(path(), u"Ada <a@b.c> "_s));
    QVERIFY(!m_lines.LineExists(path(u"missing"_s), u"Ada <a@b.c>"_s));
}

void TestLines::findLineByKeyGivesTheFirstThatBeginsWithIt()
{
    write("x{My Name}\t1\r\n{My Name}\t2\r\n{My Name}\t3\r\n");
    QCOMPARE(m_lines.FindLineByKey(path(), u"{My Name}"_s, -1), u"{My Name}\t2"_s);
    QCOMPARE(m_lines.FindLineByKey(path(), u"{Other}"_s, -1), QString());
}

void TestLines::otherLinesKeepTheirOctets()
{
    write("J\xFCrgen\r\nodd\0octets\xC3\r\ndrop\r\n");
    const QByteArray bytes = QByteArray("J\xFCrgen\r\nodd\0octets\xC3\r\n", 21);
    write(bytes + "drop\r\n");
    m_lines.DeleteLineByKey(path(), u"drop"_s, QString(), 0);
    QCOMPARE(content(), bytes);
}

void TestLines::textFileComesBackAsWritten_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("lines") << u"a\r\nb\nc\rd"_s;
    QTest::newRow("unicode") << u"Grüße, 漢字, "_s + QString::fromUcs4(U"\U0001F600");
    QTest::newRow("begins like a byte-order mark") << u"\uFEFFtext"_s;
    QTest::newRow("NUL") << QString(u"a\0b"_s);
}

void TestLines::textFileComesBackAsWritten()
{
    QFETCH(const QString, text);
    m_lines.WriteTextFile(path(), text, u"utf-8"_s);
    QCOMPARE(m_lines.ReadTextFile(path()), text);
}

void TestLines::lineThatBeginsLikeAByteOrderMarkStaysALine()
{
    m_lines.AppendLine(path(), u"\uFEFFfirst"_s);
    m_lines.AppendLine(path(), u"\uFEFFsecond"_s);
    QCOMPARE(m_lines.ReadLines(path()), QStringList({u"\uFEFFfirst"_s, u"\uFEFFsecond"_s}));
}

void TestLines::lineThatBecomesTheFirstKeepsItsOctets()
{
    for (const QByteArray &line : {QByteArray("\xEF\xBB\xBF"
                                              "a"),
                                   QByteArray("\xFF\xFE"
                                              "a"),
                                   QByteArray("\xFE\xFF"
                                              "a")}) {
        write("drop\r\n" + line + "\r\n");
        const QString before = m_lines.ReadLines(path()).constLast();
        m_lines.DeleteLineByKey(path(), u"drop"_s, QString(), 0);
        QCOMPARE(m_lines.ReadLines(path()), QStringList{before});
    }
}

void TestLines::appendToAMarkAloneAddsNoBlankLine()
{
    write("\xEF\xBB\xBF");
    m_lines.AppendLine(path(), u"first"_s);
    QCOMPARE(m_lines.ReadLines(path()), QStringList{u"first"_s});
}

void TestLines::textFileOfAnotherProgramIsRead()
{
    write("Gr\xFC\xDF"
          "e\nGr\xC3\xBC\xC3\x9F"
          "e\n");
    QCOMPARE(m_lines.ReadTextFile(path()), u"Grüße\nGrüße\n"_s);
}

void TestLines::textFileInAnotherCharsetIsAFault()
{
    const int before = quillon::faultCount();
    m_lines.WriteTextFile(path(), u"x"_s, u"koi8-r"_s);
    QCOMPARE(quillon::faultCount(), before + 1);
    QVERIFY(!QFile::exists(path()));
}

void TestLines::longLinesAndControlCharactersSurvive()
{
    const QString line = QString(5'000'000, u'x') + u"\x01\x1B\v"_s;
    m_lines.AppendLine(path(), line);
    m_lines.AppendLine(path(), u"next"_s);
    QCOMPARE(m_lines.ReadLines(path()), QStringList({line, u"next"_s}));
}

void TestLines::unreadableFileGivesNothingAndIsNotRewritten()
{
    QVERIFY(QDir().mkpath(path()));
    QCOMPARE(m_lines.CountLines(path()), 0);
    QCOMPARE(m_lines.ReadTextFile(path()), QString());
    m_lines.DeleteLineByKey(path(), u"a"_s, QString(), 0);
    QVERIFY(QFileInfo(path()).isDir());
}

QTEST_GUILESS_MAIN(TestLines)
#include "test_lines.moc"
