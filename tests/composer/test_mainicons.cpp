#include "composer/mainicons.h"
#include "core/forms/artwork.h"

#include <QAction>
#include <QImage>
#include <QMainWindow>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestMainIcons : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachControlShowsItsOwnPicture_data();
    void eachControlShowsItsOwnPicture();
    void otherControlsStayWithoutOne();
    void picturesGrowWithTheFont();
};

namespace {

QImage drawn(const QIcon &icon)
{
    return icon.pixmap(32, 32).toImage();
}

} // namespace

void TestMainIcons::eachControlShowsItsOwnPicture_data()
{
    QTest::addColumn<QString>("icon");
    const auto rows = [](const QString &icon, const QString &controls) {
        for (const QString &control : controls.split(u' ')) {
            QTest::newRow(qPrintable(control)) << icon;
        }
    };
    rows(u"new"_s, u"tlbNew menfn"_s);
    rows(u"open"_s, u"tlbOpen menfo sbt(5)"_s);
    rows(u"save"_s, u"tlbSave menfa sbt(12)"_s);
    rows(u"send"_s, u"tlbSend menfs"_s);
    rows(u"schedule"_s, u"tlbSchedule menfc"_s);
    rows(u"obo"_s, u"tlbOBO"_s);
    rows(u"undo"_s, u"tlbUndo meneu"_s);
    rows(u"redo"_s, u"tlbRedo mener"_s);
    rows(u"cut"_s, u"tlbCut menet"_s);
    rows(u"copy"_s, u"tlbCopy menec"_s);
    rows(u"paste"_s, u"tlbPaste menep"_s);
    rows(u"delete"_s, u"tlbDelete mened"_s);
    rows(u"find"_s, u"tlbFind menef"_s);
    rows(u"expand"_s, u"tlbExpand"_s);
    rows(u"options"_s, u"tlbOptions mento sbtMain(0) sbtMain(1) sbtMain(2)"_s);
    rows(u"template"_s, u"tlbTemplate mentt"_s);
    rows(u"macro"_s, u"tlbMacro mentm"_s);
    rows(u"contacts"_s, u"tlbContacts menta"_s);
    rows(u"flowchart"_s, u"tlbFlowchart menho"_s);
    rows(u"contactadd"_s, u"sbt(0)"_s);
    rows(u"fileadd"_s, u"sbt(1)"_s);
    rows(u"attach"_s, u"sbt(2) meniaa"_s);
    rows(u"folderadd"_s, u"sbt(21) meniaf"_s);
    rows(u"remove"_s, u"sbt(3)"_s);
    rows(u"clear"_s, u"sbt(4) sbt(13)"_s);
    rows(u"bold"_s, u"sbt(6)"_s);
    rows(u"italic"_s, u"sbt(7)"_s);
    rows(u"underline"_s, u"sbt(8)"_s);
    rows(u"textcolor"_s, u"sbt(9)"_s);
    rows(u"backcolor"_s, u"sbt(10)"_s);
    rows(u"numbers"_s, u"sbt(14)"_s);
    rows(u"bullets"_s, u"sbt(15)"_s);
    rows(u"outdent"_s, u"sbt(16)"_s);
    rows(u"indent"_s, u"sbt(17)"_s);
    rows(u"left"_s, u"sbt(18)"_s);
    rows(u"center"_s, u"sbt(19)"_s);
    rows(u"right"_s, u"sbt(20)"_s);
    rows(u"link"_s, u"sbt(22)"_s);
    rows(u"unlink"_s, u"sbt(23)"_s);
    rows(u"picture"_s, u"sbt(24)"_s);
}

void TestMainIcons::eachControlShowsItsOwnPicture()
{
    QFETCH(QString, icon);
    const QString control = QString::fromLatin1(QTest::currentDataTag());
    QMainWindow form;
    auto *action = new QAction(&form);
    action->setObjectName(control);
    setMainIcons(&form);
    const QImage expected = drawn(themeIcon(icon));
    QVERIFY(!expected.isNull() && expected != drawn(themeIcon(u"no such picture"_s)));
    QCOMPARE(drawn(action->icon()), expected);

    action->setObjectName(QString());
    auto *button = new QPushButton(&form);
    button->setObjectName(control);
    setMainIcons(&form);
    QCOMPARE(drawn(button->icon()), expected);
}

void TestMainIcons::otherControlsStayWithoutOne()
{
    QMainWindow form;
    auto *action = new QAction(&form);
    action->setObjectName(u"menfx"_s);
    auto *button = new QPushButton(&form);
    button->setObjectName(u"sbt(11)"_s);
    setMainIcons(&form);
    QVERIFY(action->icon().isNull());
    QVERIFY(button->icon().isNull());
    QVERIFY(!form.windowIcon().isNull());
}

void TestMainIcons::picturesGrowWithTheFont()
{
    QMainWindow form;
    auto *button = new QPushButton(&form);
    button->setObjectName(u"sbt(6)"_s);
    setMainIcons(&form);
    const QSize before = button->iconSize();
    QFont large = form.font();
    large.setPointSizeF(large.pointSizeF() * 4);
    form.setFont(large);
    setMainIcons(&form);
    const int side = QFontMetrics(large).height();
    QCOMPARE(button->iconSize(), QSize(side, side));
    QCOMPARE(form.iconSize(), QSize(side * 3 / 2, side * 3 / 2));
    QVERIFY(side > before.height());
}

QTEST_MAIN(TestMainIcons)
#include "test_mainicons.moc"
