#include "quillon/fault.h"
#include "quillon/files/linefile.h"
#include "quillon/files/safefile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using quillon::LineFile;

class TestLineFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void anAppendedLineStandsBehindOthersThatKeepTheirOctets();
    void anUnchangedFileIsNotWritten();
    void aFileThatOnlyGetsItsLineEndsIsWritten();
    void anUnreadableFileIsNotWrittenThoughUnchanged();
    void aFileOverTheLimitIsNotRead();

private:
    [[nodiscard]] QString path() const { return m_folder->filePath(u"records.dll"_s); }
    [[nodiscard]] QByteArray content() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void write(const QByteArray &bytes) const
    {
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }
    /// Each whole write makes a new file.
    [[nodiscard]] ino_t node() const
    {
        struct stat status {};
        ::stat(QFile::encodeName(path()).constData(), &status);
        return status.st_ino;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestLineFile::anAppendedLineStandsBehindOthersThatKeepTheirOctets()
{
    write("caf\xE9\t1\r\nb\t2");
    LineFile file(path());
    file.append(u"ä\t3"_s);
    QVERIFY(file.saveIfChanged());
    QCOMPARE(content(), QByteArray("caf\xE9\t1\r\nb\t2\r\n\xC3\xA4\t3\r\n"));
}

void TestLineFile::anUnchangedFileIsNotWritten()
{
    write("a\t1\r\nb\t2\r\n");
    const ino_t before = node();
    LineFile file(path());
    QCOMPARE(file.removeIf([](const QString &line) { return line == u"b\t2"; }), 1);
    file.append(u"b\t2"_s);
    QVERIFY(file.saveIfChanged());
    QCOMPARE(node(), before);
    QVERIFY(file.save());
    QVERIFY(node() != before);
}

void TestLineFile::aFileThatOnlyGetsItsLineEndsIsWritten()
{
    write("a\t1\nb\t2\n");
    QVERIFY(LineFile(path()).saveIfChanged());
    QCOMPARE(content(), QByteArray("a\t1\r\nb\t2\r\n"));
}

void TestLineFile::anUnreadableFileIsNotWrittenThoughUnchanged()
{
    QVERIFY(QDir().mkdir(path()));
    const LineFile file(path());
    QVERIFY(!file.readable());
    QVERIFY(!file.saveIfChanged());
    QVERIFY(QFileInfo(path()).isDir());
}

void TestLineFile::aFileOverTheLimitIsNotRead()
{
    write("12345");
    const int faults = quillon::faultCount();
    QCOMPARE(quillon::readWholeFile(path(), 5), QByteArray("12345"));
    QCOMPARE(quillon::faultCount(), faults);
    QVERIFY(!quillon::readWholeFile(path(), 4));
    QCOMPARE(quillon::faultCount(), faults + 1);
}

QTEST_GUILESS_MAIN(TestLineFile)
#include "test_linefile.moc"
