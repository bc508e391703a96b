#include "quillon/files/linefile.h"
#include "quillon/files/quillonlines.h"
#include "quillon/files/safefile.h"
#include "quillon/files/settingsfile.h"
#include "quillon/files/writeoutcome.h"
#include "quillon/system/quillonsystem.h"
#include "support/fulldisk.h"

#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <memory>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

class TestWriteOutcome : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_told.clear();
        quillon::setWriteListener(
            [this](const QString &path, const QString &reason) { m_told.append(name(path) + u'|' + reason); });
    }
    void cleanup() { quillon::setWriteListener({}); }

    void everyWriteIsToldOnce();
    void aWriteWithoutSpaceIsToldWithItsReason();
    void aReadOnlyDeviceIsTold();
    void aLineThatComesShortIsTold();
    void somethingElseInTheFilesPlaceIsTold();
    void aMissingFolderIsTold();
    void aFileThatCannotBeReadIsNotRewrittenAndThatIsTold();
    void aChangeOfNothingIsNoWrite();
    void aFileThatHoldsItAlreadyCountsAsWritten();
    void aPassingFileIsNotTold();
    void theReasonOfEachError_data();
    void theReasonOfEachError();
    void theListenerBeforeIsGivenBack();
    void aListenerMayTakeItselfAway();

private:
    [[nodiscard]] QString path(const QString &file) const { return m_folder->filePath(file); }
    [[nodiscard]] QString name(const QString &file) const { return QDir(m_folder->path()).relativeFilePath(file); }
    QStringList told() { return std::exchange(m_told, {}); }
    void put(const QString &file, const QByteArray &octets) const
    {
        QFile target(path(file));
        QVERIFY(target.open(QIODevice::WriteOnly));
        QCOMPARE(target.write(octets), octets.size());
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QStringList m_told;
    const quillon::QuillonLines m_lines{};
};

void TestWriteOutcome::everyWriteIsToldOnce()
{
    QVERIFY(m_lines.AppendLine(path(u"a"_s), u"x"_s));
    QCOMPARE(told(), QStringList{u"a|"_s});
    QVERIFY(m_lines.ReplaceLine(path(u"a"_s), u"x"_s, u"y"_s, {}, 0));
    QCOMPARE(told(), QStringList{u"a|"_s});
    QVERIFY(m_lines.DeleteLineByKey(path(u"a"_s), u"y"_s, {}, 0));
    QCOMPARE(told(), QStringList{u"a|"_s});
    QVERIFY(m_lines.WriteTextFile(path(u"a"_s), u"text"_s, u"utf-8"_s));
    QCOMPARE(told(), QStringList{u"a|"_s});
    quillon::QuillonSystem().WriteSetting(path(u"o"_s), u"S"_s, u"k"_s, u"v"_s);
    QCOMPARE(told(), QStringList{u"o|"_s});
    QVERIFY(m_lines.AppendLines(path(u"a"_s), {}));
    QVERIFY(told().isEmpty());
}

void TestWriteOutcome::aWriteWithoutSpaceIsToldWithItsReason()
{
    FullDisk disk(path(u"disk"_s));
    if (!disk.mounted()) {
        QSKIP(FullDisk::reason);
    }
    put(u"disk/a"_s, "line\r\nstays\r\n");
    disk.fill();
    const QStringList failed{u"disk/a|no space left on the device"_s};
    QVERIFY(!m_lines.AppendLine(path(u"disk/a"_s), QString(5000, u'x')));
    QCOMPARE(told(), failed);
    QVERIFY(!m_lines.ReplaceLine(path(u"disk/a"_s), u"line"_s, u"other"_s, {}, 0));
    QCOMPARE(told(), failed);
    QVERIFY(!m_lines.DeleteLinesByKeys(path(u"disk/a"_s), {u"line"_s, u"no"_s}, {}, 0));
    QCOMPARE(told(), failed);
    QVERIFY(!m_lines.WriteTextFile(path(u"disk/a"_s), u"text"_s, u"utf-8"_s));
    QCOMPARE(told(), failed);
    quillon::QuillonSystem().WriteSetting(path(u"disk/o"_s), u"S"_s, u"k"_s, u"v"_s);
    QCOMPARE(told(), QStringList{u"disk/o|no space left on the device"_s});
    disk.makeRoom();
    QVERIFY(m_lines.AppendLine(path(u"disk/a"_s), u"x"_s));
    QCOMPARE(told(), QStringList{u"disk/a|"_s});
}

void TestWriteOutcome::aReadOnlyDeviceIsTold()
{
    FullDisk disk(path(u"disk"_s));
    if (!disk.mounted()) {
        QSKIP(FullDisk::reason);
    }
    put(u"disk/a"_s, "line\r\n");
    QVERIFY(disk.lock(path(u"disk"_s)));
    QVERIFY(!m_lines.DeleteLineByKey(path(u"disk/a"_s), u"line"_s, {}, 0));
    QVERIFY(!m_lines.AppendLine(path(u"disk/a"_s), u"x"_s));
    QCOMPARE(told(), (QStringList{u"disk/a|the device is read-only"_s, u"disk/a|the device is read-only"_s}));
}

void TestWriteOutcome::aLineThatComesShortIsTold()
{
    put(u"a"_s, "12345678");
    const SizeLimit limit(10);
    QVERIFY(limit.isSet());
    QVERIFY(!m_lines.AppendLine(path(u"a"_s), u"more"_s)); // two of its octets have room
    QCOMPARE(told(), QStringList{u"a|no space left on the device"_s});
    QVERIFY(!m_lines.WriteTextFile(path(u"a"_s), QString(100, u'x'), u"utf-8"_s));
    QCOMPARE(told(), QStringList{u"a|the file is too large"_s});
}

void TestWriteOutcome::somethingElseInTheFilesPlaceIsTold()
{
    QVERIFY(QDir().mkpath(path(u"a"_s)));
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"p"_s)).constData(), 0600), 0);
    QVERIFY(!m_lines.AppendLine(path(u"a"_s), u"x"_s));
    QVERIFY(!m_lines.AppendLine(path(u"p"_s), u"x"_s));
    QVERIFY(!m_lines.WriteTextFile(path(u"a"_s), u"x"_s, u"utf-8"_s));
    QCOMPARE(told(), (QStringList{u"a|something else is in its place"_s, u"p|something else is in its place"_s,
                                  u"a|something else is in its place"_s}));
}

void TestWriteOutcome::aMissingFolderIsTold()
{
    QVERIFY(!m_lines.AppendLine(path(u"no/a"_s), u"x"_s));
    QVERIFY(!m_lines.WriteTextFile(path(u"no/a"_s), u"x"_s, u"utf-8"_s));
    QCOMPARE(told(), (QStringList{u"no/a|its folder is missing"_s, u"no/a|its folder is missing"_s}));
}

void TestWriteOutcome::aFileThatCannotBeReadIsNotRewrittenAndThatIsTold()
{
    QVERIFY(QDir().mkpath(path(u"a"_s)));
    const QStringList refused{u"a|it cannot be read, so it is not replaced"_s};
    QVERIFY(!m_lines.DeleteLineByKey(path(u"a"_s), u"x"_s, {}, 0));
    QCOMPARE(told(), refused);
    QVERIFY(!m_lines.ReplaceLine(path(u"a"_s), u"x"_s, u"y"_s, {}, 0));
    QCOMPARE(told(), refused);
    QVERIFY(!quillon::LineFile(path(u"a"_s)).save());
    QCOMPARE(told(), refused);
    QVERIFY(!quillon::LineFile(path(u"a"_s)).saveIfChanged());
    QCOMPARE(told(), refused);
    QVERIFY(!quillon::SettingsFile(path(u"a"_s)).save());
    QCOMPARE(told(), refused);
}

void TestWriteOutcome::aChangeOfNothingIsNoWrite()
{
    put(u"a"_s, "line\r\n");
    QVERIFY(m_lines.DeleteLineByKey(path(u"a"_s), u"x"_s, {}, 0));
    QVERIFY(m_lines.ReplaceLine(path(u"a"_s), u"x"_s, u"y"_s, {}, 0));
    QVERIFY(told().isEmpty());
}

void TestWriteOutcome::aFileThatHoldsItAlreadyCountsAsWritten()
{
    put(u"a"_s, "line\r\n");
    quillon::LineFile file(path(u"a"_s));
    file.replace(0, u"line"_s);
    QVERIFY(file.saveIfChanged());
    QCOMPARE(told(), QStringList{u"a|"_s});
}

void TestWriteOutcome::aPassingFileIsNotTold()
{
    QVERIFY(QDir().mkpath(path(u"d"_s)));
    QVERIFY(quillon::appendToFile(path(u"a"_s), "x", quillon::WriteUse::Passing));
    QVERIFY(!quillon::appendToFile(path(u"d"_s), "x", quillon::WriteUse::Passing));
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"p"_s)).constData(), 0600), 0);
    QVERIFY(!quillon::appendToFile(path(u"p"_s), "x", quillon::WriteUse::Passing));
    const SizeLimit limit(2);
    QVERIFY(!quillon::appendToFile(path(u"a"_s), "xyz", quillon::WriteUse::Passing));
    QVERIFY(told().isEmpty());
}

void TestWriteOutcome::theReasonOfEachError_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("reason");
    QTest::newRow("quota") << EDQUOT << u"no space left on the device"_s;
    QTest::newRow("mode") << EACCES << u"no permission"_s;
    QTest::newRow("immutable") << EPERM << u"no permission"_s;
    QTest::newRow("circle of links") << ELOOP << u"something else is in its place"_s;
    QTest::newRow("pipe without a reader") << ENXIO << u"something else is in its place"_s;
    QTest::newRow("file as folder") << ENOTDIR << u"its folder is missing"_s;
    QTest::newRow("broken disk") << EIO << u"the device failed"_s;
    QTest::newRow("other") << ETXTBSY << QString::fromLocal8Bit(std::strerror(ETXTBSY));
}

void TestWriteOutcome::theReasonOfEachError()
{
    QFETCH(int, error);
    QFETCH(QString, reason);
    quillon::tellNotWritten(path(u"a"_s), error);
    QCOMPARE(told(), QStringList{u"a|"_s + reason});
}

void TestWriteOutcome::theListenerBeforeIsGivenBack()
{
    int heard = 0;
    quillon::WriteListener before = quillon::setWriteListener([&heard](const QString &, const QString &) { ++heard; });
    quillon::tellWritten(path(u"a"_s));
    QCOMPARE(heard, 1);
    QVERIFY(told().isEmpty());
    quillon::setWriteListener(std::move(before));
    quillon::tellDeleted(path(u"a"_s));
    QCOMPARE(told(), QStringList{u"a|"_s});
    QCOMPARE(heard, 1);
}

void TestWriteOutcome::aListenerMayTakeItselfAway()
{
    quillon::setWriteListener([this, owned = QString(u"still here"_s)](const QString &, const QString &) {
        quillon::setWriteListener({});
        m_told.append(owned);
    });
    quillon::tellWritten(path(u"a"_s));
    quillon::tellWritten(path(u"a"_s));
    QCOMPARE(told(), QStringList{u"still here"_s});
}

QTEST_GUILESS_MAIN(TestWriteOutcome)
#include "test_writeoutcome.moc"
