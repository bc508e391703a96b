#include "composer/recipientbox.h"
#include "core/recipiententry.h"

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QMimeData>
#include <QTest>
#include <QUrl>

using namespace Qt::StringLiterals;
using namespace corvane;

/// What is pasted into a recipient box or dropped on it.
class TestRecipientBox : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void severalLinesBecomeEntries_data();
    void severalLinesBecomeEntries();
    void aSingleLineIsPastedAsItIs();
    void aVeryLongTextComesInLines_data();
    void aVeryLongTextComesInLines();
    void pastedEntriesAreSeparatedFromWhatStandsThere();
    void linksToAddressesAreTaken();
};

namespace {

void drop(RecipientBox *box, const QMimeData &data)
{
    QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(box->viewport(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent event(QPointF(1, 1), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(box->viewport(), &event);
}

} // namespace

void TestRecipientBox::severalLinesBecomeEntries_data()
{
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("entries");
    QTest::newRow("line feeds") << u"a@x.org\nb@x.org\n"_s << u"a@x.org, b@x.org"_s;
    QTest::newRow("CR LF") << u"a@x.org\r\nB <b@x.org>\r\n\r\nc@x.org"_s << u"a@x.org, B <b@x.org>, c@x.org"_s;
    QTest::newRow("blanks and commas at the ends") << u"  a@x.org , \n\t b@x.org,,\n"_s << u"a@x.org, b@x.org"_s;
    QTest::newRow("what is no address stays") << u"a@x.org\nthe club; all\nb"_s << u"a@x.org, the club; all, b"_s;
    QTest::newRow("a line with several") << u"a@x.org, b@x.org\nc@x.org"_s << u"a@x.org, b@x.org, c@x.org"_s;
}

void TestRecipientBox::severalLinesBecomeEntries()
{
    QFETCH(const QString, pasted);
    RecipientBox box;
    QApplication::clipboard()->setText(pasted);
    box.paste();
    QTEST(box.toPlainText(), "entries");
}

void TestRecipientBox::aSingleLineIsPastedAsItIs()
{
    RecipientBox box;
    box.setPlainText(u"ann@"_s);
    box.moveCursor(QTextCursor::End);
    QApplication::clipboard()->setText(u"example.com"_s);
    box.paste();
    QCOMPARE(box.toPlainText(), u"ann@example.com"_s);
}

void TestRecipientBox::aVeryLongTextComesInLines_data()
{
    QTest::addColumn<QString>("separator");
    QTest::newRow("lines") << u"\n"_s;
    QTest::newRow("one line") << u", "_s;
    QTest::newRow("one line without blanks") << u","_s;
}

void TestRecipientBox::aVeryLongTextComesInLines()
{
    QFETCH(const QString, separator);
    QStringList entries;
    for (int i = 0; i < 5000; ++i) {
        entries.append(u"Recipient <user%1@example.org>"_s.arg(i));
    }
    RecipientBox box;
    QApplication::clipboard()->setText(entries.join(separator));
    box.paste();
    const QString text = box.toPlainText();
    QCOMPARE(splitRecipients(text), entries);
    for (const QString &line : text.split(u'\n')) {
        QVERIFY(line.size() < 4100);
    }
    QVERIFY(text.count(u'\n') < 60); // and no shorter than that
    // What has no comma stays as it is, and so does what is of usual length.
    box.clear();
    QApplication::clipboard()->setText(QString(9000, u'x'));
    box.paste();
    QCOMPARE(box.toPlainText(), QString(9000, u'x'));
    box.clear();
    QApplication::clipboard()->setText(entries.first(200).join(u", "_s));
    box.paste();
    QCOMPARE(box.toPlainText(), entries.first(200).join(u", "_s));
}

void TestRecipientBox::pastedEntriesAreSeparatedFromWhatStandsThere()
{
    RecipientBox box;
    QApplication::clipboard()->setText(u"a@x.org\nb@x.org"_s);
    box.setPlainText(u"z@x.org"_s);
    box.moveCursor(QTextCursor::End);
    box.paste();
    QCOMPARE(box.toPlainText(), u"z@x.org, a@x.org, b@x.org"_s);
    box.setPlainText(u"z@x.org, "_s);
    box.moveCursor(QTextCursor::End);
    box.paste();
    QCOMPARE(box.toPlainText(), u"z@x.org, a@x.org, b@x.org"_s);
    box.setPlainText(u"z@x.org"_s);
    box.moveCursor(QTextCursor::Start);
    box.paste();
    QCOMPARE(box.toPlainText(), u"a@x.org, b@x.org, z@x.org"_s);
    box.undo();
    QCOMPARE(box.toPlainText(), u"z@x.org"_s);
    box.selectAll(); // and takes the place of what is marked
    box.paste();
    QCOMPARE(box.toPlainText(), u"a@x.org, b@x.org"_s);
}

void TestRecipientBox::linksToAddressesAreTaken()
{
    RecipientBox box;
    box.setPlainText(u"z@x.org"_s);
    QMimeData links;
    links.setUrls({QUrl(u"mailto:a%2Bb@x.org?subject=x"_s), QUrl(u"mailto:c@x.org"_s)});
    drop(&box, links);
    QCOMPARE(box.toPlainText(), u"z@x.org, a+b@x.org, c@x.org"_s);
    QMimeData text;
    text.setText(u"d@x.org"_s);
    drop(&box, text);
    QCOMPARE(box.toPlainText(), u"z@x.org, a+b@x.org, c@x.org, d@x.org"_s);
}

QTEST_MAIN(TestRecipientBox)
#include "test_recipientbox.moc"
