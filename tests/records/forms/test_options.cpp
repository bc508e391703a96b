#include "quillon/forms/formregistry.h"
#include "quillon/forms/qtprompts.h"
#include "records/forms/frmpuboptions.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using corvane::frmPubOptions;

class TestOptions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theTabsStandInTheirOrder();
    void eachTabNamesTheFileOfItsEntries();
    void itOpensOnTheTabThatWasAskedFor();
    void aTabThatIsNotThereChangesNothing();
    void closeUnloadsIt();

private:
    static corvane::DataPaths paths();
};

corvane::DataPaths TestOptions::paths()
{
    corvane::DataPaths paths;
    paths.proxyFile = u"/data/proxy.dll"_s;
    paths.smtpFile = u"/data/smtp.dll"_s;
    paths.sendersFile = u"/data/senders.dll"_s;
    paths.signsFile = u"/data/signs.dll"_s;
    paths.optionsFile = u"/data/options.dll"_s;
    return paths;
}

void TestOptions::theTabsStandInTheirOrder()
{
    const frmPubOptions form(paths());
    const auto *tabs = form.findChild<QTabWidget *>(u"sst"_s);
    QStringList captions;
    for (int i = 0; i < tabs->count(); ++i) {
        captions.append(tabs->tabText(i));
    }
    QCOMPARE(captions, (QStringList{u"Proxy"_s, u"Accounts"_s, u"Senders"_s, u"Signatures"_s, u"Other settings"_s}));
    QCOMPARE(tabs->currentIndex(), 0);
    QCOMPARE(form.windowTitle(), u"Options"_s);
}

void TestOptions::eachTabNamesTheFileOfItsEntries()
{
    const frmPubOptions form(paths());
    const auto *tabs = form.findChild<QTabWidget *>(u"sst"_s);
    const QStringList files = {paths().proxyFile, paths().smtpFile, paths().sendersFile, paths().signsFile,
                               paths().optionsFile};
    for (int i = 0; i < files.size(); ++i) {
        const auto *line = tabs->widget(i)->findChild<QLabel *>();
        QVERIFY2(line->text().contains(u'"' + files.at(i) + u'"'), qPrintable(line->text()));
    }
}

void TestOptions::itOpensOnTheTabThatWasAskedFor()
{
    quillon::FormRegistry forms;
    forms.add(u"frmPubOptions"_s, [] { return new frmPubOptions(paths()); });
    quillon::QtPrompts prompts(forms);
    int tab = -1;
    QTimer::singleShot(0, this, [&tab] {
        QWidget *form = QApplication::activeModalWidget();
        tab = form->findChild<QTabWidget *>(u"sst"_s)->currentIndex();
        form->findChild<QPushButton *>(u"sbt(2)"_s)->click();
    });
    prompts.showModalForm(u"frmPubOptions"_s, 1);
    QCOMPARE(tab, 1);
    QVERIFY(!forms.isLoaded(u"frmPubOptions"_s));
}

void TestOptions::aTabThatIsNotThereChangesNothing()
{
    frmPubOptions form(paths());
    form.showTab(3);
    form.showTab(5);
    form.showTab(-1);
    QCOMPARE(form.findChild<QTabWidget *>(u"sst"_s)->currentIndex(), 3);
}

void TestOptions::closeUnloadsIt()
{
    quillon::FormRegistry forms;
    forms.add(u"frmPubOptions"_s, [] { return new frmPubOptions(paths()); });
    QWidget *form = forms.form(u"frmPubOptions"_s);
    form->show();
    QTest::mouseClick(form->findChild<QPushButton *>(u"sbt(2)"_s), Qt::LeftButton);
    QVERIFY(!forms.isLoaded(u"frmPubOptions"_s));
}

QTEST_MAIN(TestOptions)
#include "test_options.moc"
