#include "core/texts.h"
#include "quillon/fault.h"
#include "quillon/forms/formregistry.h"
#include "quillon/forms/screenfit.h"
#include "sending/forms/formprogressview.h"
#include "sending/forms/frmpubprogress.h"

#include <QFile>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWindow>

using namespace Qt::StringLiterals;
using corvane::FormProgressView;
using corvane::frmPubProgress;

class TestProgress : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void itStandsAsDesigned();
    void itsSizeFitsItsContents();
    void aResizeBringsTheFittedSizeBack();
    void aLongReportKeepsTheSize();
    void theBarFollowsTheMails();
    void atRestNothingMovesAndNothingCanBeCancelled();
    void itBelongsToItsOwner();
    void itIsBroughtToTheFrontFromBelow();
    void itIsBroughtBackAfterItWasClosed();
    void itBelongsToAnOwnerThatCameBack();
    void itIsNoWiderThanTheScreen();
    void cancelSetsTheFlagAndUnloads();
    void helpOpensTheManualAndGoesOn();
    void aHookThatIsNotSetIsAFaultByItsName();
    void escapeAndEnterCancelNothing();
    void touchingItLoadsItHidden();
    void anUnloadedDialogIsMadeAnewWithItsTexts();
    void hidingKeepsItsTexts();
    void theRestTextIsTheSameInEveryLanguage();
    void textsAreDrawnAfterARest();
    void aSteadyStreamOfTextsIsDrawnToo();
    void cancelStopsTheRunBeforeTheDialogGoes();

private:
    frmPubProgress *dialog() { return m_forms->as<frmPubProgress>(u"frmPubProgress"_s); }
    QLabel *label(const QString &name) { return dialog()->findChild<QLabel *>(name); }
    QPushButton *button(const QString &name) { return dialog()->findChild<QPushButton *>(name); }
    /// Inner size as the rule has it: 90 twips are 6 pixels.
    QSize ruled()
    {
        return {label(u"lblProg"_s)->x() + label(u"lblProg"_s)->width() + 6,
                button(u"sbtCancel"_s)->y() + button(u"sbtCancel"_s)->height() + 6};
    }

    std::unique_ptr<quillon::FormRegistry> m_forms;
    std::unique_ptr<FormProgressView> m_view;
    std::unique_ptr<QWidget> m_owner;
    bool m_stop = false;
    int m_helps = 0;
    QTemporaryDir m_folder;
};

void TestProgress::init()
{
    corvane::setLanguageFolder(m_folder.path());
    QFile::remove(m_folder.filePath(u"tips.dll"_s));
    m_stop = false;
    m_helps = 0;
    m_forms = std::make_unique<quillon::FormRegistry>();
    m_forms->add(u"frmPubProgress"_s, [this] {
        return new frmPubProgress(
            {[this] { m_stop = true; }, [this] { m_forms->unload(u"frmPubProgress"_s); }, [this] { ++m_helps; }});
    });
    m_owner = std::make_unique<QWidget>();
    m_view = std::make_unique<FormProgressView>(*m_forms, [this] { return m_owner.get(); });
}

void TestProgress::cleanup()
{
    m_view.reset();
    m_forms.reset();
    m_owner.reset();
    quillon::setScreenRooms({});
}

void TestProgress::itStandsAsDesigned()
{
    QCOMPARE(dialog()->windowTitle(), u"Sending Progress"_s);
    QVERIFY(!dialog()->isModal());
    QCOMPARE(label(u"lblProg"_s)->text(), QString());
    QCOMPARE(label(u"lblQty"_s)->text(), u"Sending emails..."_s);
    QVERIFY(button(u"sbtCancel"_s)->isEnabled());
    QVERIFY(button(u"sbtHelp"_s)->isEnabled());
    const auto *bar = dialog()->findChild<QProgressBar *>(u"prg"_s);
    QCOMPARE(bar->minimum(), bar->maximum()); // of unknown length
}

void TestProgress::itsSizeFitsItsContents()
{
    m_view->makeVisible();
    QVERIFY(QTest::qWaitForWindowExposed(dialog()));
    QCOMPARE(dialog()->size(), ruled());
    QVERIFY(label(u"lblProg"_s)->width() > 100);
    // In the order of the lines, and nothing cut off.
    const auto *bar = dialog()->findChild<QProgressBar *>(u"prg"_s);
    QVERIFY(label(u"lblProg"_s)->geometry().bottom() < label(u"lblQty"_s)->y());
    QVERIFY(label(u"lblQty"_s)->geometry().bottom() < bar->y());
    QVERIFY(bar->geometry().bottom() < button(u"sbtCancel"_s)->y());
    QVERIFY(button(u"sbtCancel"_s)->height() >= button(u"sbtCancel"_s)->minimumSizeHint().height());
    QVERIFY(dialog()->rect().contains(button(u"sbtHelp"_s)->geometry()));
}

void TestProgress::aResizeBringsTheFittedSizeBack()
{
    m_view->makeVisible();
    const QSize fitted = dialog()->size();
    for (const QSize size : {QSize(900, 700), QSize(20, 20), QSize(fitted.width() + 1, fitted.height())}) {
        dialog()->setMinimumSize(0, 0);
        dialog()->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
        dialog()->resize(size);
        QCOMPARE(dialog()->size(), fitted);
        QCOMPARE(dialog()->size(), ruled());
    }
}

void TestProgress::aLongReportKeepsTheSize()
{
    m_view->makeVisible();
    const QSize fitted = dialog()->size();
    const QString report = u"550 <b>no</b> such user "_s.repeated(100);
    m_view->setActivity(report);
    m_view->setCounter(u"Sending 32767/32767 emails..."_s);
    QCoreApplication::processEvents();
    QCOMPARE(dialog()->size(), fitted);
    QCOMPARE(m_view->activity(), report);
    QCOMPARE(label(u"lblProg"_s)->toolTip(), report); // what is cut off can be read there
    QCOMPARE(label(u"lblProg"_s)->textFormat(), Qt::PlainText);
}

void TestProgress::theBarFollowsTheMails()
{
    const auto *bar = dialog()->findChild<QProgressBar *>(u"prg"_s);
    m_view->setProgress(3, 40);
    QCOMPARE(bar->minimum(), 0);
    QCOMPARE(bar->maximum(), 40);
    QCOMPARE(bar->value(), 3);
    m_view->setProgress(41, 40);
    QCOMPARE(bar->value(), 40);
    QVERIFY(bar->isTextVisible());
    m_view->setProgress(-1, 40);
    QCOMPARE(bar->value(), 0);
    for (const int total : {0, -1}) {
        m_view->setProgress(1, 2);
        m_view->setProgress(0, total);
        QCOMPARE(bar->minimum(), 0);
        QCOMPARE(bar->maximum(), 0);
        QVERIFY(!bar->isTextVisible());
    }
    m_view->setProgress(1, 1);
    QCOMPARE(bar->value(), 1);
    QVERIFY(bar->isTextVisible());
}

void TestProgress::atRestNothingMovesAndNothingCanBeCancelled()
{
    const auto *bar = dialog()->findChild<QProgressBar *>(u"prg"_s);
    m_view->setProgress(0, 0);
    m_view->setAtRest();
    QVERIFY2(bar->maximum() > bar->minimum(), "a bar of unknown length moves");
    QCOMPARE(bar->value(), 0);
    QVERIFY(!bar->isTextVisible());
    QVERIFY(!button(u"sbtCancel"_s)->isEnabled());
    QVERIFY(button(u"sbtHelp"_s)->isEnabled());
    m_view->setProgress(0, 0);
    QCOMPARE(bar->maximum(), bar->minimum());
    QVERIFY(button(u"sbtCancel"_s)->isEnabled());
    m_view->setProgress(3, 4);
    m_view->setAtRest();
    QCOMPARE(bar->value(), 3); // what came of the run
    QCOMPARE(bar->maximum(), 4);
    QVERIFY(!button(u"sbtCancel"_s)->isEnabled());
    m_view->setProgress(0, 2);
    QVERIFY(button(u"sbtCancel"_s)->isEnabled());
}

void TestProgress::itBelongsToItsOwner()
{
    m_view->makeVisible(); // an owner that was never shown is no window yet
    QVERIFY(m_view->isVisible());
    m_view->hide();
    m_owner->show();
    m_view->makeVisible();
    QCOMPARE(dialog()->windowHandle()->transientParent(), m_owner->windowHandle());
    m_forms->unload(u"frmPubProgress"_s);
    m_view->makeVisible();
    QCOMPARE(dialog()->windowHandle()->transientParent(), m_owner->windowHandle());
    const FormProgressView without(*m_forms, [] { return nullptr; });
    QVERIFY(without.isVisible());
}

void TestProgress::itIsBroughtToTheFrontFromBelow()
{
    m_owner->show();
    m_view->makeVisible();
    m_owner->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_owner.get()));
    m_view->makeVisible(); // what a report does takes the keyboard from nobody
    QCoreApplication::processEvents();
    QVERIFY(m_owner->isActiveWindow());
    m_view->bringToFront();
    QVERIFY(QTest::qWaitForWindowActive(dialog()));
    dialog()->setWindowState(Qt::WindowMinimized);
    m_view->bringToFront();
    QVERIFY(!dialog()->isMinimized());
}

void TestProgress::itIsBroughtBackAfterItWasClosed()
{
    m_owner->show();
    m_view->bringToFront();
    dialog()->close();
    QVERIFY(!m_forms->isLoaded(u"frmPubProgress"_s));
    m_view->bringToFront();
    QVERIFY(m_view->isVisible());
    QVERIFY(QTest::qWaitForWindowActive(dialog()));
    QVERIFY(!m_stop); // closed, not cancelled
}

void TestProgress::itBelongsToAnOwnerThatCameBack()
{
    m_view->ownerShown();
    QVERIFY2(!m_forms->isLoaded(u"frmPubProgress"_s), "a dialog that is not there is not made");
    m_view->setCounter(u"Sending 1/2 emails..."_s);
    m_view->ownerShown();
    QVERIFY(!m_view->isVisible());
    m_view->makeVisible();
    dialog()->move(60, 70);
    m_owner->show();
    m_owner->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_owner.get()));
    dialog()->windowHandle()->setTransientParent(nullptr); // as the window manager has it
    m_view->ownerShown();
    QVERIFY(m_view->isVisible());
    QCOMPARE(dialog()->windowHandle()->transientParent(), m_owner->windowHandle());
    QCOMPARE(dialog()->windowHandle()->framePosition(), QPoint(60, 70));
    QVERIFY(!dialog()->testAttribute(Qt::WA_ShowWithoutActivating));
    QCOMPARE(m_view->counter(), u"Sending 1/2 emails..."_s);
    dialog()->windowHandle()->setTransientParent(nullptr);
    QDialog question;
    question.setModal(true);
    question.show();
    m_view->ownerShown();
    QCOMPARE(dialog()->windowHandle()->transientParent(), nullptr); // nothing comes over a question
}

void TestProgress::itIsNoWiderThanTheScreen()
{
    const int usual = label(u"lblProg"_s)->width();
    m_forms->unload(u"frmPubProgress"_s);
    const QRect narrow(0, 0, usual - 50, 400);
    quillon::setScreenRooms([narrow] { return QList<QRect>{narrow}; });
    m_view->makeVisible();
    QVERIFY(label(u"lblProg"_s)->width() < usual);
    QVERIFY(dialog()->frameGeometry().width() <= narrow.width());
    QCOMPARE(dialog()->size(), ruled());
}

void TestProgress::cancelSetsTheFlagAndUnloads()
{
    m_view->makeVisible();
    QVERIFY(QTest::qWaitForWindowExposed(dialog()));
    QTest::mouseClick(button(u"sbtCancel"_s), Qt::LeftButton);
    QVERIFY(m_stop);
    QVERIFY(!m_forms->isLoaded(u"frmPubProgress"_s));
}

void TestProgress::helpOpensTheManualAndGoesOn()
{
    m_view->makeVisible();
    button(u"sbtHelp"_s)->click();
    QCOMPARE(m_helps, 1);
    QVERIFY(!m_stop);
    QVERIFY(m_view->isVisible());
}

void TestProgress::aHookThatIsNotSetIsAFaultByItsName()
{
    for (const char *name : {"requestStop", "unload", "help"}) {
        QTest::ignoreMessage(QtWarningMsg, qPrintable(u"hook not set: frmPubProgress::"_s + QString::fromLatin1(name)));
    }
    const int before = quillon::faultCount();
    const frmPubProgress form({});
    QCOMPARE(quillon::faultCount() - before, 3);
    form.findChild<QPushButton *>(u"sbtCancel"_s)->click();
}

void TestProgress::escapeAndEnterCancelNothing()
{
    m_view->makeVisible();
    QVERIFY(QTest::qWaitForWindowActive(dialog()));
    QTest::keyClick(dialog(), Qt::Key_Escape);
    QTest::keyClick(dialog(), Qt::Key_Return);
    QVERIFY(m_view->isVisible());
    QVERIFY(!m_stop);
}

void TestProgress::touchingItLoadsItHidden()
{
    QVERIFY(!m_forms->isLoaded(u"frmPubProgress"_s));
    m_view->setActivity(u"Connecting..."_s);
    QVERIFY(m_forms->isLoaded(u"frmPubProgress"_s));
    QVERIFY(!m_view->isVisible());
    m_view->makeVisible();
    QVERIFY(m_view->isVisible());
    QCOMPARE(label(u"lblProg"_s)->text(), u"Connecting..."_s);
}

void TestProgress::anUnloadedDialogIsMadeAnewWithItsTexts()
{
    m_view->makeVisible();
    m_view->setActivity(u"busy"_s);
    m_view->setCounter(u"Sending 1/2 emails..."_s);
    m_forms->unload(u"frmPubProgress"_s);
    QCOMPARE(m_view->counter(), u"Sending emails..."_s);
    QCOMPARE(m_view->activity(), QString());
    QVERIFY(!m_view->isVisible());
}

void TestProgress::hidingKeepsItsTexts()
{
    m_view->makeVisible();
    m_view->setCounter(u"Sending 1/2 emails..."_s);
    m_view->hide();
    QVERIFY(!m_view->isVisible());
    QCOMPARE(m_view->counter(), u"Sending 1/2 emails..."_s);
}

void TestProgress::theRestTextIsTheSameInEveryLanguage()
{
    QFile file(m_folder.filePath(u"tips.dll"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        "[frmPubProgress]\r\nfrmPubProgress=Fortschritt\r\nlblQty=Mails werden gesendet\r\nsbtCancel=&Abbrechen\r\n");
    file.close();
    QCOMPARE(dialog()->windowTitle(), u"Fortschritt"_s);
    QCOMPARE(button(u"sbtCancel"_s)->text(), u"&Abbrechen"_s);
    QCOMPARE(m_view->counter(), u"Sending emails..."_s);
}

void TestProgress::textsAreDrawnAfterARest()
{
    m_view->makeVisible();
    QLabel *prog = label(u"lblProg"_s);
    QLabel *qty = label(u"lblQty"_s);
    for (const bool first : {true, false}) {
        QTRY_VERIFY(prog->updatesEnabled() && qty->updatesEnabled());
        first ? m_view->setActivity(u"one"_s) : m_view->setCounter(u"one"_s);
        QVERIFY(!prog->updatesEnabled() && !qty->updatesEnabled());
        m_view->setActivity(u"two"_s);
        m_view->setCounter(u"two"_s);
        QVERIFY(!prog->updatesEnabled() && !qty->updatesEnabled());
        QCOMPARE(m_view->activity(), u"two"_s); // who asks hears the text at once
        QCOMPARE(m_view->counter(), u"two"_s);
    }
    QTRY_VERIFY(prog->updatesEnabled() && qty->updatesEnabled());
}

void TestProgress::aSteadyStreamOfTextsIsDrawnToo()
{
    m_view->makeVisible();
    const QLabel *prog = label(u"lblProg"_s);
    int changes = 0;
    bool drawn = false;
    m_view->setActivity(u"begun"_s);
    QVERIFY(!prog->updatesEnabled());
    QTimer stream; // in every turn of the loop
    connect(&stream, &QTimer::timeout, this, [&] {
        drawn = drawn || prog->updatesEnabled();
        m_view->setActivity(QString::number(++changes));
    });
    stream.start(0);
    QTRY_VERIFY(drawn);
}

void TestProgress::cancelStopsTheRunBeforeTheDialogGoes()
{
    QStringList order;
    frmPubProgress form({[&] { order.append(u"stop"_s); }, [&] { order.append(u"unload"_s); }, [] {}});
    form.findChild<QPushButton *>(u"sbtCancel"_s)->click();
    QCOMPARE(order, (QStringList{u"stop"_s, u"unload"_s}));
}

QTEST_MAIN(TestProgress)
#include "test_progress.moc"
