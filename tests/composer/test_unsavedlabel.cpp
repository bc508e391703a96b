#include "composer/unsavedlabel.h"
#include "core/unsavedfiles.h"

#include <QMainWindow>
#include <QStatusBar>
#include <QTest>

#include <cerrno>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

struct Bar {
    Bar()
    {
        form.statusBar()->addPermanentWidget(panel1, 1);
        form.statusBar()->addPermanentWidget(panel2);
        panel2->setText(u"Corvane"_s);
        label = new UnsavedLabel(form.statusBar(), files);
        form.resize(500, 200);
        form.show();
    }

    UnsavedFiles files;
    QMainWindow form;
    QLabel *panel1 = new QLabel;
    QLabel *panel2 = new QLabel;
    UnsavedLabel *label = nullptr;
};

} // namespace

class TestUnsavedLabel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hiddenUntilAWriteFails();
    void itsTipIsPlainText();
    void standsBetweenThePanels();
    void aLongLineMakesTheWindowNoWider();
    void whatFailedBeforeTheWindowCameIsShown();
    void theLineIsPainted();
};

void TestUnsavedLabel::hiddenUntilAWriteFails()
{
    Bar bar;
    QVERIFY(QTest::qWaitForWindowExposed(&bar.form));
    QVERIFY(!bar.label->isVisible());
    quillon::tellNotWritten(u"/d/senders.dll"_s, ENOSPC);
    QVERIFY(bar.label->isVisible());
    QCOMPARE(bar.label->text(), u"Not saved: senders.dll (no space left on the device)"_s);
    QCOMPARE(bar.label->objectName(), u"lblUnsaved"_s);
    quillon::tellWritten(u"/d/senders.dll"_s);
    QVERIFY(!bar.label->isVisible());
    QVERIFY(bar.label->toolTip().isEmpty());
}

void TestUnsavedLabel::itsTipIsPlainText()
{
    const Bar bar;
    quillon::tellNotWritten(u"/d/<b>x</b>.dll"_s, ENOSPC);
    QVERIFY2(bar.label->toolTip().contains(u"/d/&lt;b&gt;x&lt;/b&gt;.dll"_s), qPrintable(bar.label->toolTip()));
    QCOMPARE(bar.label->textFormat(), Qt::PlainText);
}

void TestUnsavedLabel::standsBetweenThePanels()
{
    const Bar bar;
    quillon::tellNotWritten(u"/d/a.dll"_s, EACCES);
    QTRY_VERIFY(bar.label->x() > bar.panel1->x());
    QTRY_VERIFY(bar.label->geometry().right() < bar.panel2->x());
    QVERIFY(bar.label->width() >= bar.label->fontMetrics().horizontalAdvance(bar.label->text()));
}

void TestUnsavedLabel::aLongLineMakesTheWindowNoWider()
{
    const Bar bar;
    const int least = bar.form.minimumSizeHint().width();
    quillon::tellNotWritten(u"/d/"_s + QString(250, u'x'), EACCES);
    QCoreApplication::processEvents();
    QCOMPARE(bar.form.width(), 500);
    QVERIFY(bar.form.minimumSizeHint().width() < least + 250);
    QTRY_VERIFY(bar.label->geometry().right() < bar.panel2->x());
}

void TestUnsavedLabel::whatFailedBeforeTheWindowCameIsShown()
{
    const UnsavedFiles files;
    quillon::tellNotWritten(u"/d/a.dll"_s, EACCES);
    QMainWindow form;
    form.statusBar()->addPermanentWidget(new QLabel);
    const auto *label = new UnsavedLabel(form.statusBar(), files);
    form.show();
    QVERIFY(label->isVisible());
}

void TestUnsavedLabel::theLineIsPainted()
{
    Bar bar;
    quillon::tellNotWritten(u"/d/a.dll"_s, EACCES);
    QVERIFY(QTest::qWaitForWindowExposed(&bar.form));
    const QImage shown = bar.label->grab().toImage();
    const QRgb ground = shown.pixel(0, 0);
    int inked = 0;
    for (int x = 0; x < shown.width(); ++x) {
        for (int y = 0; y < shown.height(); ++y) {
            inked += shown.pixel(x, y) == ground ? 0 : 1;
        }
    }
    QVERIFY(inked > 100);
}

QTEST_MAIN(TestUnsavedLabel)
#include "test_unsavedlabel.moc"
