#include "mainfixture.h"

#include <QAccessible>
#include <QTabWidget>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

/// The controls below @p root that have a name of ours and are shown, in the order in which assistive tools read them.
QList<QWidget *> readingOrder(QAccessibleInterface *root)
{
    QList<QWidget *> found;
    for (int i = 0; i < root->childCount(); ++i) {
        QAccessibleInterface *child = root->child(i);
        auto *widget = child ? qobject_cast<QWidget *>(child->object()) : nullptr;
        if (!widget || !widget->isVisible()) {
            continue;
        }
        const QString name = widget->objectName();
        if (name.contains(u'(') || name.startsWith(u"utb"_s) || name.startsWith(u"lbl"_s)) {
            found.append(widget);
        }
        found.append(readingOrder(child));
    }
    return found;
}

/// Rows from the top, each from the left; controls of one row differ in height.
bool standsBefore(const QWidget *a, const QWidget *b)
{
    const QRect one(a->mapToGlobal(QPoint(0, 0)), a->size());
    const QRect other(b->mapToGlobal(QPoint(0, 0)), b->size());
    if (one.contains(other.center()) || other.contains(one.center())) {
        return false; // one lies within the other
    }
    const bool sameRow = one.top() <= other.center().y() && other.top() <= one.center().y();
    return sameRow ? one.left() < other.left() : one.top() < other.top();
}

QStringList labelsOf(QWidget *widget)
{
    QStringList found;
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(widget);
    const auto relations = interface->relations(QAccessible::Label);
    for (const auto &[other, relation] : relations) {
        found.append(other->text(QAccessible::Name));
    }
    return found;
}

} // namespace

class TestAccessibleTree : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theHeaderIsReadAsItStands();
    void everyLabelIsKnownToItsField_data();
    void everyLabelIsKnownToItsField();
    void theOrderStaysAfterBoxesHaveGrown();
    void theContentFollowsTheHeader();
};

void TestAccessibleTree::theHeaderIsReadAsItStands()
{
    MainFixture main;
    main.recipients(0)->setPlainText(u"a@example.com, b@example.com"_s);
    QTRY_VERIFY(main.get(u"lblSeen"_s)->isVisible());
    const QList<QWidget *> order = readingOrder(QAccessible::queryAccessibleInterface(main.get(u"fra(0)"_s)));
    QVERIFY(order.size() > 25);
    for (qsizetype i = 1; i < order.size(); ++i) {
        QVERIFY2(!standsBefore(order.at(i), order.at(i - 1)),
                 qPrintable(order.at(i - 1)->objectName() + u" is read before "_s + order.at(i)->objectName()));
    }
}

void TestAccessibleTree::everyLabelIsKnownToItsField_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("label");
    QTest::newRow("account") << u"cbb(6)"_s << u"SMTP account"_s;
    QTest::newRow("sender") << u"cbb(0)"_s << u"Sender"_s;
    QTest::newRow("reply") << u"cbb(1)"_s << u"Reply to"_s;
    QTest::newRow("to") << u"txt(0)"_s << u"To"_s;
    QTest::newRow("cc") << u"txt(1)"_s << u"CC"_s;
    QTest::newRow("bcc") << u"txt(2)"_s << u"BCC"_s;
    QTest::newRow("subject") << u"utbSubject"_s << u"Subject"_s;
    QTest::newRow("attachments") << u"lsv(0)"_s << u"Attachments"_s;
    QTest::newRow("date") << u"dtp(0)"_s << u"Date"_s;
    QTest::newRow("encoding") << u"cbb(2)"_s << u"Encoding"_s;
}

void TestAccessibleTree::everyLabelIsKnownToItsField()
{
    QFETCH(const QString, field);
    QFETCH(const QString, label);
    MainFixture main;
    if (field != u"lsv(0)") { // the library tells no relation of a list; its name is all that is read of it
        const QStringList labels = labelsOf(main.get(field));
        QCOMPARE(labels.size(), 1);
        QVERIFY2(QString(labels.first()).remove(u'&').startsWith(label), qPrintable(labels.first()));
    }
    QCOMPARE(main.get(field)->accessibleName(), label);
}

void TestAccessibleTree::theOrderStaysAfterBoxesHaveGrown()
{
    MainFixture main;
    const QList<QWidget *> before = readingOrder(QAccessible::queryAccessibleInterface(main.get(u"fra(0)"_s)));
    for (int box = 0; box < 3; ++box) {
        QTest::mouseDClick(main.recipients(box)->viewport(), Qt::LeftButton);
        QTest::mouseDClick(main.recipients(box)->viewport(), Qt::LeftButton);
    }
    auto *list = main.get<QListWidget>(u"lsv(0)"_s);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton);
    QCOMPARE(readingOrder(QAccessible::queryAccessibleInterface(main.get(u"fra(0)"_s))), before);
}

void TestAccessibleTree::theContentFollowsTheHeader()
{
    MainFixture main;
    const QList<QWidget *> order = readingOrder(QAccessible::queryAccessibleInterface(main.window->centralWidget()));
    const qsizetype content = order.indexOf(main.get(u"utbContent"_s));
    QVERIFY(content > 0);
    for (const QString &name : {u"txt(0)"_s, u"txt(1)"_s, u"txt(2)"_s, u"lsv(0)"_s, u"utbSubject"_s}) {
        const qsizetype field = order.indexOf(main.get(name));
        QVERIFY2(field >= 0 && field < content, qPrintable(name));
    }
    QCOMPARE(main.get(u"sst"_s)->accessibleName(), u"Views of the email content"_s);
    QCOMPARE(main.get(u"dhe"_s)->accessibleName(), u"Email content"_s);
    QCOMPARE(main.get(u"web"_s)->accessibleName(), u"Preview of the email content"_s);
}

QTEST_MAIN(TestAccessibleTree)
#include "test_accessibletree.moc"
