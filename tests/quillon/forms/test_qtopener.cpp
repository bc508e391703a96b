#include "quillon/forms/qtopener.h"

#include <QDesktopServices>
#include <QTest>
#include <QUrl>

using namespace Qt::StringLiterals;

class TestQtOpener : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void take(const QUrl &url) { m_opened.append(url); }

private Q_SLOTS:
    void pathsBecomeFileUrlsAndAddressesStay();
    void openedIsHandedToTheDesktopWhileItLives();

private:
    QList<QUrl> m_opened;
};

void TestQtOpener::pathsBecomeFileUrlsAndAddressesStay()
{
    QCOMPARE(quillon::openableUrl(u"/tmp/50 % of #1?.log"_s), u"file:///tmp/50%20%25%20of%20%231%3F.log"_s);
    QCOMPARE(quillon::openableUrl(u"https://x.org/a?b#c"_s), u"https://x.org/a?b#c"_s);
    QCOMPARE(quillon::openableUrl(u"mailto:a@x.org?subject=Hi"_s), u"mailto:a@x.org?subject=Hi"_s);
}

void TestQtOpener::openedIsHandedToTheDesktopWhileItLives()
{
    QDesktopServices::setUrlHandler(u"file"_s, this, "take");
    {
        const quillon::QtOpener opener;
        QVERIFY(quillon::desktopOpener().open(u"/tmp/a b"_s));
    }
    QDesktopServices::unsetUrlHandler(u"file"_s);
    QCOMPARE(m_opened, QList<QUrl>{QUrl::fromLocalFile(u"/tmp/a b"_s)});
    QVERIFY(!quillon::desktopOpener().open(u"/tmp/a b"_s));
}

QTEST_MAIN(TestQtOpener)
#include "test_qtopener.moc"
