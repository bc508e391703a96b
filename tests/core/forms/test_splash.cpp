#include "core/forms/frmpubsplash.h"
#include "quillon/fault.h"
#include "quillon/forms/formregistry.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QPixmap>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QtTest/qtestspontaneevent.h>

using namespace Qt::StringLiterals;
using corvane::frmPubSplash;

class TestSplash : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theTimerIsToldInTheForm();
    void theTimerRunsFromTheFirstShowing();
    void theHandOverHappensOnce();
    void aNestedLoopInTheHandOverDoesNotFireAgain();
    void theHandOverMayUnloadTheSplash();
    void anUnloadedSplashHandsOverNoMore();
    void aUsersCloseBeforeItsTimeIsRefused();
    void aPictureFillsTheWindow();
    void withoutAPictureTheNameIsDrawn();
    void aHandOverThatIsNotSetIsAFault();
    void itStandsInTheMiddleOfTheScreen();
    void aSharpPictureKeepsItsSize();
    void theVersionIsDrawn();

private:
    static QTimer *timerOf(const QWidget *splash) { return splash->findChild<QTimer *>(u"tim"_s); }
    /// Lets the timer fire as if its time had come.
    static void expire(QTimer *timer)
    {
        timer->setInterval(0);
        QEventLoop loop;
        connect(timer, &QTimer::timeout, &loop, &QEventLoop::quit);
        timer->start();
        loop.exec();
    }
};

void TestSplash::theTimerIsToldInTheForm()
{
    const frmPubSplash splash([] {});
    QTimer *timer = timerOf(&splash);
    QVERIFY(timer);
    QCOMPARE(timer->interval(), 3000);
    QVERIFY(timer->isSingleShot());
    QVERIFY(splash.windowFlags().testFlag(Qt::FramelessWindowHint));
}

void TestSplash::theTimerRunsFromTheFirstShowing()
{
    frmPubSplash splash([] {});
    QVERIFY(!timerOf(&splash)->isActive());
    splash.show();
    QVERIFY(timerOf(&splash)->isActive());
    timerOf(&splash)->stop();
    splash.hide();
    splash.show();
    QVERIFY(!timerOf(&splash)->isActive());
}

void TestSplash::theHandOverHappensOnce()
{
    int handOvers = 0;
    frmPubSplash splash([&handOvers] { ++handOvers; });
    splash.show();
    expire(timerOf(&splash));
    QCOMPARE(handOvers, 1);
    QVERIFY(!timerOf(&splash)->isActive());
    expire(timerOf(&splash));
    QCOMPARE(handOvers, 1);
}

void TestSplash::aNestedLoopInTheHandOverDoesNotFireAgain()
{
    int handOvers = 0;
    frmPubSplash *form = nullptr;
    frmPubSplash splash([&] {
        ++handOvers;
        if (handOvers == 1) {
            expire(timerOf(form)); // the window that comes up waits, and the timer is set off once more
        }
    });
    form = &splash;
    splash.show();
    expire(timerOf(&splash));
    QCOMPARE(handOvers, 1);
}

void TestSplash::theHandOverMayUnloadTheSplash()
{
    quillon::FormRegistry forms;
    bool handedOver = false;
    forms.add(u"frmPubSplash"_s, [&] {
        return new frmPubSplash([&] {
            handedOver = true;
            forms.unload(u"frmPubSplash"_s);
        });
    });
    QWidget *splash = forms.form(u"frmPubSplash"_s);
    splash->show();
    expire(timerOf(splash));
    QVERIFY(handedOver);
    QVERIFY(!forms.isLoaded(u"frmPubSplash"_s));
}

void TestSplash::anUnloadedSplashHandsOverNoMore()
{
    quillon::FormRegistry forms;
    forms.add(u"frmPubSplash"_s, [] { return new frmPubSplash([] {}); });
    QWidget *splash = forms.form(u"frmPubSplash"_s);
    QTimer *timer = timerOf(splash);
    splash->show();
    QVERIFY(timer->isActive());
    forms.unload(u"frmPubSplash"_s);
    QVERIFY(!timer->isActive());
}

void TestSplash::aUsersCloseBeforeItsTimeIsRefused()
{
    int handedOver = 0;
    frmPubSplash splash([&] { ++handedOver; });
    splash.show();
    QCloseEvent close;
    QSpontaneKeyEvent::setSpontaneous(&close);
    qApp->notify(&splash, &close); // sendEvent() would make it the program's own
    QVERIFY(!close.isAccepted());
    QVERIFY(timerOf(&splash)->isActive());
    expire(timerOf(&splash));
    QCOMPARE(handedOver, 1);
    QCloseEvent late;
    QSpontaneKeyEvent::setSpontaneous(&late);
    qApp->notify(&splash, &late);
    QVERIFY(late.isAccepted());
}

void TestSplash::aPictureFillsTheWindow()
{
    QPixmap picture(120, 80);
    picture.fill(Qt::red);
    frmPubSplash splash([] {}, picture);
    QCOMPARE(splash.size(), QSize(120, 80));
    const QImage shown = splash.grab().toImage();
    QCOMPARE(shown.pixelColor(1, 1), QColor(Qt::red));
    QCOMPARE(shown.pixelColor(118, 78), QColor(Qt::red));
}

void TestSplash::withoutAPictureTheNameIsDrawn()
{
    QCoreApplication::setApplicationName(QString());
    QGuiApplication::setApplicationDisplayName(u" "_s);
    frmPubSplash splash([] {});
    const QImage nameless = splash.grab().toImage();
    QGuiApplication::setApplicationDisplayName(u"Corvane"_s);
    const QImage named = splash.grab().toImage();
    QVERIFY(named != nameless);
    QVERIFY(named.pixelColor(0, 0) != named.pixelColor(named.width() - 1, 0));
}

void TestSplash::aHandOverThatIsNotSetIsAFault()
{
    const int before = quillon::faultCount();
    QTest::ignoreMessage(QtWarningMsg, "hook not set: frmPubSplash::handOver");
    frmPubSplash splash({});
    QCOMPARE(quillon::faultCount() - before, 1);
    splash.show();
    expire(timerOf(&splash));
    QCOMPARE(quillon::faultCount() - before, 1);
}

void TestSplash::itStandsInTheMiddleOfTheScreen()
{
    QPixmap picture(121, 81);
    picture.fill(Qt::red);
    const frmPubSplash splash([] {}, picture);
    QCOMPARE(splash.geometry().center(), splash.screen()->availableGeometry().center());
    QCOMPARE(splash.minimumSize(), splash.maximumSize());
    QCOMPARE(splash.objectName(), u"frmPubSplash"_s);
    QCOMPARE(splash.windowTitle(), QGuiApplication::applicationDisplayName());
}

void TestSplash::aSharpPictureKeepsItsSize()
{
    QPixmap picture(240, 160);
    picture.setDevicePixelRatio(2);
    const frmPubSplash splash([] {}, picture);
    QCOMPARE(splash.size(), QSize(120, 80));
}

void TestSplash::theVersionIsDrawn()
{
    QCoreApplication::setApplicationVersion(QString());
    frmPubSplash splash([] {});
    const QImage without = splash.grab().toImage();
    QCoreApplication::setApplicationVersion(u"5.22"_s);
    QImage with = splash.grab().toImage();
    QCoreApplication::setApplicationVersion(QString());
    QVERIFY(with != without);
    const QRect corner(with.width() / 2, with.height() / 2, with.width() / 2, with.height() / 2);
    for (int y = 0; y < with.height(); ++y) {
        for (int x = 0; x < with.width(); ++x) {
            if (!corner.contains(x, y)) {
                QCOMPARE(with.pixel(x, y), without.pixel(x, y));
            }
        }
    }
}

QTEST_MAIN(TestSplash)
#include "test_splash.moc"
