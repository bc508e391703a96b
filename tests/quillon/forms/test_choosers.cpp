#include "modaldriver.h"

#include <QColorDialog>
#include <QDir>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using quillon::FileFilter;

/// Questions for a line, for files, folders and colours.
class TestChoosers : public QObject, private QtPromptsBench {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void inputGivesTheLineOrNothingOnCancel();
    void inputShowsItsPromptAsWritten();
    void filtersKeepTheirNamesAndPatterns_data();
    void filtersKeepTheirNamesAndPatterns();
    void openingFilesGivesTheChosenPaths();
    void savingStartsWithTheDefaultName();
    void aDialogStartsWhereItsDefaultLies();
    void aFolderIsChosenOrNothing();
    void aColourComesAsBlueGreenRed();
};

void TestChoosers::inputGivesTheLineOrNothingOnCancel()
{
    QString offered;
    QString title;
    meet<QInputDialog>([&](QInputDialog *dialog) {
        offered = dialog->textValue();
        title = dialog->windowTitle();
        dialog->setTextValue(u"typed"_s);
        dialog->accept();
    });
    QCOMPARE(m_prompts->input({u"KEY"_s, u"Name?"_s, u"default"_s}), u"typed"_s);
    QCOMPARE(offered, u"default"_s);
    QCOMPARE(title, u"Corvane"_s);

    meet<QInputDialog>([](QInputDialog *dialog) { dialog->reject(); });
    QCOMPARE(m_prompts->input({u"KEY"_s, u"Name?"_s, u"default"_s}), QString());
}

void TestChoosers::inputShowsItsPromptAsWritten()
{
    Qt::TextFormat format = Qt::AutoText;
    QString prompt;
    meet<QInputDialog>([&](QInputDialog *dialog) {
        format = dialog->findChild<QLabel *>()->textFormat();
        prompt = dialog->labelText();
        dialog->reject();
    });
    m_prompts->input({u"KEY"_s, u"Value for <b>Ann</b>?"_s, QString()});
    QCOMPARE(prompt, u"Value for <b>Ann</b>?"_s);
    QCOMPARE(format, Qt::PlainText);
}

void TestChoosers::filtersKeepTheirNamesAndPatterns_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("filter");
    QTest::newRow("one") << u"Text Files (*.txt)"_s << u"*.txt"_s << u"Text Files (*.txt)"_s;
    QTest::newRow("two") << u"Text Files (*.txt)"_s << u"*.txt; *.text"_s << u"Text Files (*.txt *.text)"_s;
    QTest::newRow("words in brackets") << u"Text Files (Tab Separated, *.txt)"_s << u"*.txt"_s
                                       << u"Text Files [Tab Separated] (*.txt)"_s;
    QTest::newRow("two brackets") << u"Text Files (Tab Separated) (*.txt)"_s << u"*.txt"_s
                                  << u"Text Files [Tab Separated] (*.txt)"_s;
    QTest::newRow("all") << u"All Files (*.*)"_s << u"*.*"_s << u"All Files (*)"_s;
}

void TestChoosers::filtersKeepTheirNamesAndPatterns()
{
    QFETCH(QString, name);
    QFETCH(QString, pattern);
    QTEST(quillon::qtFileFilter(FileFilter{name, pattern}), "filter");
}

void TestChoosers::openingFilesGivesTheChosenPaths()
{
    const QTemporaryDir folder;
    QStringList paths;
    for (const QString &name : {u"a.txt"_s, u"b.text"_s}) {
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        paths.append(file.fileName());
    }
    const auto choose = [&](QFileDialog::FileMode expected, const QStringList &files) {
        meet<QFileDialog>([=](QFileDialog *dialog) {
            QCOMPARE(dialog->windowTitle(), u"Choose"_s);
            QCOMPARE(dialog->fileMode(), expected);
            QCOMPARE(dialog->nameFilters(), QStringList{u"Text Files (*.txt *.text)"_s});
            QStringList quoted;
            for (const QString &file : files) {
                quoted.append(u'"' + QFileInfo(file).fileName() + u'"');
            }
            dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(quoted.join(u' '));
            QMetaObject::invokeMethod(dialog, "accept");
        });
    };
    const QList<FileFilter> filters = {{u"Text Files (*.txt)"_s, u"*.txt; *.text"_s}};
    choose(QFileDialog::ExistingFiles, paths);
    QCOMPARE(m_prompts->openFiles({u"Choose"_s, filters, folder.path(), true}), paths);
    choose(QFileDialog::ExistingFile, {paths.last()});
    QCOMPARE(m_prompts->openFiles({u"Choose"_s, filters, folder.path(), false}), QStringList{paths.last()});
    meet<QFileDialog>([](QFileDialog *dialog) { dialog->reject(); });
    QCOMPARE(m_prompts->openFiles({u"Choose"_s, filters, folder.path(), false}), QStringList());
}

void TestChoosers::savingStartsWithTheDefaultName()
{
    const QTemporaryDir folder;
    QString offered;
    meet<QFileDialog>([&offered](QFileDialog *dialog) {
        offered = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->text();
        QCOMPARE(dialog->acceptMode(), QFileDialog::AcceptSave);
        QCOMPARE(dialog->fileMode(), QFileDialog::AnyFile);
        QMetaObject::invokeMethod(dialog, "accept");
    });
    const QString path = folder.filePath(u"list.txt"_s);
    QCOMPARE(m_prompts->saveFile({u"Specify File"_s, {{u"Text Files (*.txt)"_s, u"*.txt"_s}}, path, false}), path);
    QCOMPARE(offered, u"list.txt"_s);
}

void TestChoosers::aFolderIsChosenOrNothing()
{
    const QTemporaryDir folder;
    meet<QFileDialog>([&folder](QFileDialog *dialog) {
        QCOMPARE(dialog->windowTitle(), u"Folder"_s);
        QCOMPARE(dialog->fileMode(), QFileDialog::Directory);
        QVERIFY(dialog->testOption(QFileDialog::ShowDirsOnly));
        dialog->setDirectory(folder.path());
        dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(folder.path());
        QMetaObject::invokeMethod(dialog, "accept");
    });
    QCOMPARE(m_prompts->selectFolder(u"Folder"_s), folder.path());
    meet<QFileDialog>([](QFileDialog *dialog) { dialog->reject(); });
    QCOMPARE(m_prompts->selectFolder(u"Folder"_s), QString());
}

void TestChoosers::aColourComesAsBlueGreenRed()
{
    meet<QColorDialog>([](QColorDialog *dialog) {
        dialog->setCurrentColor(QColor(0x12, 0x34, 0x56));
        dialog->accept();
    });
    QCOMPARE(m_prompts->chooseColor(), 0x563412L);
    meet<QColorDialog>([](QColorDialog *dialog) { dialog->reject(); });
    QCOMPARE(m_prompts->chooseColor(), -1L);
}

void TestChoosers::aDialogStartsWhereItsDefaultLies()
{
    const QTemporaryDir folder;
    const QString below = folder.filePath(u"below"_s);
    QVERIFY(QDir().mkpath(below));
    const auto start = [this](const QString &path) {
        QStringList seen;
        meet<QFileDialog>([&seen](QFileDialog *dialog) {
            seen = {dialog->directory().absolutePath(), dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->text()};
            dialog->reject();
        });
        m_prompts->saveFile({u"Save"_s, {}, path, false});
        return seen;
    };
    QCOMPARE(start(below), (QStringList{below, QString()}));
    const QString elsewhere = start(QString()).constFirst();
    QCOMPARE(start(below + u"/new.txt"_s), (QStringList{below, u"new.txt"_s}));
    QCOMPARE(start(u"name.txt"_s).constLast(), u"name.txt"_s);
    QVERIFY2(start(u"name.txt"_s).constFirst() != QString(), "a bare name leaves the folder to the dialog");
    QCOMPARE(start(folder.filePath(u"gone/list.txt"_s)).constLast(), u"list.txt"_s);
    QVERIFY(!elsewhere.isEmpty());
}

QTEST_MAIN(TestChoosers)
#include "test_choosers.moc"
