#include "quillon/mail/mailheaders.h"

#include <QTest>
#include <QTimeZone>

#include <ctime>

using namespace quillon;
using namespace Qt::StringLiterals;

/// A chosen date where the clocks are changed: what they leave out, and what they show twice.
class TestMailDate : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aGapGivesTheMomentBehindItAndAnOverlapTheEarlierOne_data();
    void aGapGivesTheMomentBehindItAndAnOverlapTheEarlierOne();
    void theSystemsZoneIsNoOtherCase_data() { aGapGivesTheMomentBehindItAndAnOverlapTheEarlierOne_data(); }
    void theSystemsZoneIsNoOtherCase();
    void everyMinuteOfTheYearGoesOutAsChosenOrBehindTheGap();
};

void TestMailDate::aGapGivesTheMomentBehindItAndAnOverlapTheEarlierOne_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("date");
    QTest::addColumn<QByteArray>("expected");
    const auto row = [](const char *zone, const QString &date, const char *expected) {
        QTest::addRow("%s %s", zone, qPrintable(date)) << QByteArray(zone) << date << QByteArray(expected);
    };
    row("Europe/Berlin", u"29 Mar 2026 01:59:59"_s, "Sun, 29 Mar 2026 01:59:59 +0100");
    row("Europe/Berlin", u"29 Mar 2026 02:00:00"_s, "Sun, 29 Mar 2026 03:00:00 +0200");
    row("Europe/Berlin", u"29 Mar 2026 02:30:00"_s, "Sun, 29 Mar 2026 03:00:00 +0200");
    row("Europe/Berlin", u"29 Mar 2026 02:59:59"_s, "Sun, 29 Mar 2026 03:00:00 +0200");
    row("Europe/Berlin", u"29 Mar 2026 03:00:00"_s, "Sun, 29 Mar 2026 03:00:00 +0200");
    row("Europe/Berlin", u"25 Oct 2026 01:59:59"_s, "Sun, 25 Oct 2026 01:59:59 +0200");
    row("Europe/Berlin", u"25 Oct 2026 02:00:00"_s, "Sun, 25 Oct 2026 02:00:00 +0200");
    row("Europe/Berlin", u"25 Oct 2026 02:59:59"_s, "Sun, 25 Oct 2026 02:59:59 +0200");
    row("Europe/Berlin", u"25 Oct 2026 03:00:00"_s, "Sun, 25 Oct 2026 03:00:00 +0100");
    row("America/New_York", u"8 Mar 2026 01:59:59"_s, "Sun, 8 Mar 2026 01:59:59 -0500");
    row("America/New_York", u"8 Mar 2026 02:30:00"_s, "Sun, 8 Mar 2026 03:00:00 -0400");
    row("America/New_York", u"1 Nov 2026 01:30:00"_s, "Sun, 1 Nov 2026 01:30:00 -0400");
    row("America/New_York", u"1 Nov 2026 02:00:00"_s, "Sun, 1 Nov 2026 02:00:00 -0500");
    row("Australia/Lord_Howe", u"4 Oct 2026 02:15:00"_s, "Sun, 4 Oct 2026 02:30:00 +1100");
    row("Australia/Lord_Howe", u"5 Apr 2026 01:45:00"_s, "Sun, 5 Apr 2026 01:45:00 +1100");
    // A whole day that the clocks left out, and the last and the first moment beside it.
    row("Pacific/Apia", u"29 Dec 2011 23:59:59"_s, "Thu, 29 Dec 2011 23:59:59 -1000");
    row("Pacific/Apia", u"30 Dec 2011 00:00:00"_s, "Sat, 31 Dec 2011 00:00:00 +1400");
    row("Pacific/Apia", u"30 Dec 2011 23:59:59"_s, "Sat, 31 Dec 2011 00:00:00 +1400");
    row("Pacific/Apia", u"31 Dec 2011 00:00:00"_s, "Sat, 31 Dec 2011 00:00:00 +1400");
    row("Asia/Kolkata", u"29 Mar 2026 02:30:00"_s, "Sun, 29 Mar 2026 02:30:00 +0530");
}

void TestMailDate::aGapGivesTheMomentBehindItAndAnOverlapTheEarlierOne()
{
    QFETCH(const QByteArray, zone);
    QFETCH(const QString, date);
    QFETCH(const QByteArray, expected);
    QVERIFY2(QTimeZone(zone).isValid(), "the system knows no time zones");
    QCOMPARE(mailDate(date, QDateTime(QDate(2026, 11, 21), QTime(14, 5, 9), QTimeZone(zone))), expected);
}

void TestMailDate::theSystemsZoneIsNoOtherCase()
{
    QFETCH(const QByteArray, zone);
    QFETCH(const QString, date);
    QFETCH(const QByteArray, expected);
    qputenv("TZ", zone);
    tzset();
    const QDateTime now = QDateTime::currentDateTime();
    QCOMPARE(now.timeSpec(), Qt::LocalTime);
    QCOMPARE(mailDate(date, now), expected);
}

void TestMailDate::everyMinuteOfTheYearGoesOutAsChosenOrBehindTheGap()
{
    const QDateTime now(QDate(2026, 11, 21), QTime(14, 5, 9), QTimeZone("Europe/Berlin"));
    const QDateTime gap(QDate(2026, 3, 29), QTime(2, 0), Qt::UTC); // as a face of the clock, whatever the zone
    const QDateTime firstBehind = gap.addSecs(60 * 60);
    const QLocale english = QLocale::c();
    for (QDateTime face(QDate(2026, 1, 1), QTime(0, 0), Qt::UTC); face.date().year() == 2026; face = face.addSecs(60)) {
        const QDateTime expected = face >= gap && face < firstBehind ? firstBehind : face;
        const QByteArray sent = mailDate(english.toString(face, u"d MMM yyyy HH:mm:ss"_s), now);
        const QByteArray wanted = english.toString(expected, u"ddd, d MMM yyyy HH:mm:ss "_s).toUtf8();
        if (!sent.startsWith(wanted)) {
            QCOMPARE(sent, wanted);
        }
    }
}

QTEST_GUILESS_MAIN(TestMailDate)
#include "test_maildate.moc"
