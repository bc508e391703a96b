#include "quillon/fault.h"
#include "quillon/files/settingsfile.h"
#include "quillon/system/quillonsystem.h"

#include <QFile>
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

} // namespace

/// Settings files as the file system has them: modes, links, names in another case, and what cannot be read.
class TestSettingsAccess : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void fileThatCannotBeReadIsNeverRewritten();
    void pipeNeitherHangsNorIsWritten();
    void newFileIsForItsOwnerOnly();
    void fileIsFoundAndRenamedInAnotherCase();
    void linkKeepsPointingToItsTarget();
    void whatCouldNotBeReadIsNotWrittenEvenWhenThatWouldWork();

private:
    [[nodiscard]] QString path(const QString &name = u"options.dll"_s) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QuillonSystem m_system;
};

void TestSettingsAccess::fileThatCannotBeReadIsNeverRewritten()
{
    QVERIFY(QDir().mkpath(path(u"folder.dll"_s)));
    const int before = quillon::faultCount();
    m_system.WriteSetting(path(u"folder.dll"_s), u"A"_s, u"k"_s, u"v"_s);
    QVERIFY(quillon::faultCount() > before);
    QVERIFY(QFileInfo(path(u"folder.dll"_s)).isDir());
}

void TestSettingsAccess::pipeNeitherHangsNorIsWritten()
{
    QCOMPARE(::mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
    QCOMPARE(m_system.ReadSetting(path(), u"A"_s, u"k"_s), QString());
    m_system.WriteSetting(path(), u"A"_s, u"k"_s, u"v"_s);
    struct stat status {};
    QCOMPARE(::stat(QFile::encodeName(path()).constData(), &status), 0);
    QVERIFY(S_ISFIFO(status.st_mode));
}

void TestSettingsAccess::newFileIsForItsOwnerOnly()
{
    m_system.WriteSetting(path(), u"A"_s, u"k"_s, u"v"_s);
    struct stat status {};
    QCOMPARE(::stat(QFile::encodeName(path()).constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 0777), 0600);
}

void TestSettingsAccess::fileIsFoundAndRenamedInAnotherCase()
{
    write(path(u"HEAD_Letter.dll"_s), "[Head]\r\nTo=a@b.c\r\n");
    QCOMPARE(m_system.ReadSetting(path(u"head_letter.dll"_s), u"Head"_s, u"To"_s), u"a@b.c"_s);
    m_system.WriteSetting(path(u"head_letter.dll"_s), u"Head"_s, u"CC"_s, u"d@e.f"_s);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{u"head_letter.dll"_s});
    QCOMPARE(read(path(u"head_letter.dll"_s)), QByteArray("[Head]\r\nTo=a@b.c\r\nCC=d@e.f\r\n"));
}

void TestSettingsAccess::linkKeepsPointingToItsTarget()
{
    write(path(u"real.dll"_s), "[A]\r\nk=1\r\n");
    QVERIFY(QFile::link(path(u"real.dll"_s), path()));
    m_system.WriteSetting(path(), u"A"_s, u"k"_s, u"2"_s);
    QVERIFY(QFileInfo(path()).isSymLink());
    QCOMPARE(read(path(u"real.dll"_s)), QByteArray("[A]\r\nk=2\r\n"));
}

void TestSettingsAccess::whatCouldNotBeReadIsNotWrittenEvenWhenThatWouldWork()
{
    QVERIFY(QDir().mkpath(path()));
    SettingsFile file(path());
    QVERIFY(!file.readable());
    QVERIFY(QDir().rmdir(path()));
    write(path(), "[A]\r\nk=1\r\n");
    file.setValue(u"A"_s, u"l"_s, u"2"_s);
    const int before = quillon::faultCount();
    QVERIFY(!file.save());
    QCOMPARE(quillon::faultCount(), before + 1);
    QCOMPARE(read(path()), QByteArray("[A]\r\nk=1\r\n"));
}

QTEST_GUILESS_MAIN(TestSettingsAccess)
#include "test_settingsaccess.moc"
