#include "optionsbench.h"
#include "quillon/files/settingsfile.h"
#include "support/doublefont.h"

#include <QAccessible>
#include <QGroupBox>

using namespace Qt::StringLiterals;
using namespace corvane;
using Tab = OptionsTab;

namespace {

QString languageSource()
{
    return QStringLiteral(TEST_SOURCE_DIR "/../../../language/en");
}

/// The controls by which a user works, with names of their own.
QList<QWidget *> controlsOf(QWidget *form)
{
    QList<QWidget *> controls;
    const QList<QWidget *> all = form->findChildren<QWidget *>();
    for (QWidget *control : all) {
        const QString name = control->objectName();
        const bool ours = name.endsWith(u')') || name == "utbSign"_L1 || name == "sst"_L1;
        if (ours && control->focusPolicy() != Qt::NoFocus && !qobject_cast<QLabel *>(control)) {
            controls.append(control);
        }
    }
    return controls;
}

/// By what an assistive tool calls a control. A box with a list tells what it holds as its name, so the label counts.
QString nameOf(QWidget *control)
{
    QAccessibleInterface *seen = QAccessible::queryAccessibleInterface(control);
    if (!qobject_cast<QComboBox *>(control)) {
        return seen->text(QAccessible::Name);
    }
    const auto labels = seen->relations(QAccessible::Label);
    return labels.isEmpty() ? QString() : labels.constFirst().first->text(QAccessible::Name);
}

QString captionOf(const QWidget *control)
{
    if (const auto *box = qobject_cast<const QGroupBox *>(control)) {
        return box->title();
    }
    const auto *label = qobject_cast<const QLabel *>(control);
    const auto *button = qobject_cast<const QAbstractButton *>(control);
    return label ? label->text() : button ? button->text() : QString();
}

} // namespace

class TestOptionLooks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyControlHasANameForAssistiveTools();
    void everyControlHasAToolTip();
    void everyTextOfTheLanguageFileHasItsControl();
    void withoutALanguageFileItReadsTheSame();
    void theTabKeyFollowsTheReadingOrder();
    void withADoubleFontItFitsASmallScreen();
    void atItsSmallestNothingIsCutOff();
    void itGrowsWithItsWindow();
};

void TestOptionLooks::everyControlHasANameForAssistiveTools()
{
    OptionsBench bench;
    bench.setOther(Setting::FontName, QString());
    for (int tab = 0; tab < 5; ++tab) {
        bench.open(tab);
        QMap<QString, QString> names;
        const QList<QWidget *> controls = controlsOf(bench.form());
        QVERIFY(controls.size() > 50);
        for (QWidget *control : controls) {
            const QString name = nameOf(control);
            QVERIFY2(!name.isEmpty(), qPrintable(control->objectName()));
            if (control->isVisible()) {
                QVERIFY2(!names.contains(name), qPrintable(control->objectName() + u" is called as "_s + names[name]));
                names.insert(name, control->objectName());
            }
        }
    }
}

void TestOptionLooks::everyControlHasAToolTip()
{
    OptionsBench bench;
    const QList<QWidget *> controls = controlsOf(bench.form());
    for (const QWidget *control : controls) {
        QVERIFY2(!control->toolTip().isEmpty() || control == bench.sst(), qPrintable(control->objectName()));
    }
}

void TestOptionLooks::everyTextOfTheLanguageFileHasItsControl()
{
    OptionsBench bench;
    const quillon::SettingsFile tips(languageSource() + u"/tips.dll"_s);
    bench.open(Tab::OtherTab);
    const QStringList keys = tips.keys(u"frmPubOptions"_s);
    for (const QString &key : keys) {
        const QString name = key.section(u'.', 0, 0);
        const QString text = tips.value(u"frmPubOptions"_s, key);
        if (key == "frmPubOptions"_L1) {
            QCOMPARE(bench.form()->windowTitle(), text);
        } else if (name.startsWith("tab"_L1)) {
            QCOMPARE(bench.sst()->tabText(bench.sst()->indexOf(bench.get<QWidget>(name))), text);
        } else if (key.endsWith(".tip"_L1)) {
            QCOMPARE(bench.get<QWidget>(name)->toolTip(), text);
        } else if (key.endsWith(".columns"_L1)) {
            const QAbstractItemModel *model = bench.get<QTreeView>(name)->model();
            QStringList headings;
            for (int column = 0; column < model->columnCount(); ++column) {
                headings.append(model->headerData(column, Qt::Horizontal).toString());
            }
            QCOMPARE(headings.join(u'|'), text);
        } else if (!key.contains(u'.')) {
            QCOMPARE(bench.get<QWidget>(name)->property("Tag").toString(), text);
        }
    }
    const QList<QWidget *> controls = bench.form()->findChildren<QWidget *>();
    for (const QWidget *control : controls) {
        QVERIFY2(captionOf(control).isEmpty() || keys.contains(control->objectName()),
                 qPrintable(control->objectName()));
    }
}

void TestOptionLooks::withoutALanguageFileItReadsTheSame()
{
    const auto texts = [](const QString &folder) {
        OptionsBench bench;
        setLanguageFolder(folder);
        QStringList all = {bench.form()->windowTitle()};
        for (int tab = 0; tab < 5; ++tab) {
            all.append(bench.sst()->tabText(tab));
        }
        const QList<QWidget *> widgets = bench.form()->findChildren<QWidget *>();
        for (const QWidget *widget : widgets) {
            all.append({widget->objectName(), widget->toolTip(), captionOf(widget)});
        }
        return all;
    };
    QCOMPARE(texts(u"/nowhere"_s), texts(languageSource()));
}

void TestOptionLooks::theTabKeyFollowsTheReadingOrder()
{
    const QStringList bottom = {u"sbt(0)"_s, u"sbt(1)"_s, u"sbt(2)"_s, u"sbt(3)"_s};
    const QStringList connection = QStringList{u"sbt(15)"_s} + bottom;
    const auto row = [](const QString &group, const QList<int> &order) {
        QStringList names;
        for (const int index : order) {
            names.append(u"%1(%2)"_s.arg(group).arg(index));
        }
        return names;
    };
    const QList<QStringList> orders = {
        QStringList{u"lsv(2)"_s} + row(u"sbtProxy"_s, {0, 1, 5, 2, 3, 4}) + QStringList{u"cbx(0)"_s} + connection,
        QStringList{u"lsv(3)"_s} + row(u"sbtSMTP"_s, {0, 1, 2, 3, 4, 5}) + connection,
        QStringList{u"lsv(0)"_s} + row(u"sbtSender"_s, {0, 1, 2, 3, 4, 5}) + bottom,
        QStringList{u"lsv(1)"_s} + row(u"sbtSign"_s, {0, 1, 2, 3, 4}) +
            QStringList{u"opt(0)"_s, u"utbSign"_s, u"sbtSign(7)"_s, u"cbx(4)"_s} + bottom,
        // Of options that belong together the one that is on has the focus.
        QStringList{u"opt(3)"_s, u"cbb(1)"_s, u"cbb(2)"_s, u"opt(5)"_s, u"cbb(3)"_s, u"txt(14)"_s, u"txt(15)"_s,
                    u"txt(0)"_s, u"cbx(1)"_s} +
            bottom,
    };
    OptionsBench bench;
    bench.help = [] {};
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, "Ann"}});
    for (int tab = 0; tab < 5; ++tab) {
        bench.open(tab);
        const QStringList &order = orders.at(tab);
        bench.focus(bench.get<QWidget>(order.first()));
        for (const QString &name : order) {
            QCOMPARE(bench.focused(), name);
            QTest::keyClick(bench.form()->focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(bench.focused(), u"qt_tabwidget_tabbar"_s); // and from there on again
        QTest::keyClick(bench.form()->focusWidget(), Qt::Key_Tab);
        QCOMPARE(bench.focused(), order.first());
    }
}

void TestOptionLooks::withADoubleFontItFitsASmallScreen()
{
    QSize usual;
    {
        OptionsBench bench;
        usual = bench.form()->sizeHint();
    }
    const DoubleFont font;
    OptionsBench bench;
    bench.setOther(Setting::FontName, QString(60, u'W'));
    bench.open(Tab::ProxyTab);
    auto *reason = bench.get<QLabel>(u"lblReason"_s);
    reason->setText(u"Connecting to smtp.example.com, port 587, failed: the server did not answer in time."_s);
    for (int tab = 0; tab < 5; ++tab) {
        bench.form()->showTab(tab);
        if (const QWidget *wrapped = bench.cbx(1); wrapped->isVisible()) {
            QTRY_VERIFY(wrapped->height() >= wrapped->heightForWidth(wrapped->width())); // the form grows for it
            QVERIFY(wrapped->height() > 1.5 * bench.opt(2)->height());
        }
        QCoreApplication::processEvents();
        const QSize size = bench.form()->size();
        QVERIFY2(size.width() <= 1024 && size.height() <= 768 - 60, // a title bar and a task bar are there, too
                 qPrintable(u"tab %1: %2x%3"_s.arg(tab).arg(size.width()).arg(size.height())));
        QCOMPARE(reason->isVisible(), tab < Tab::SenderTab); // where it belongs to
        const QList<QWidget *> controls = controlsOf(bench.form());
        for (const QWidget *control : controls) {
            // The pages take no more than the tallest of them needs, and give way to a reason where they have room.
            if (control->isVisible() && control != bench.sst()) {
                QVERIFY2(control->height() >= control->minimumSizeHint().height(), qPrintable(control->objectName()));
            }
        }
    }
    QVERIFY(bench.form()->sizeHint().height() > usual.height()); // it grew with the font
}

void TestOptionLooks::atItsSmallestNothingIsCutOff()
{
    OptionsBench bench;
    bench.open(Tab::ProxyTab);
    for (const QSize size : {bench.form()->minimumSizeHint(), bench.form()->sizeHint()}) {
        bench.form()->resize(size);
        for (int tab = 0; tab < 5; ++tab) {
            bench.form()->showTab(tab);
            QCoreApplication::processEvents();
            const QList<QWidget *> widgets = bench.form()->findChildren<QWidget *>();
            for (const QWidget *widget : widgets) {
                if (widget->isVisible() && !captionOf(widget).isEmpty()) {
                    QVERIFY2(widget->width() >= widget->minimumSizeHint().width(), qPrintable(widget->objectName()));
                    const QRect place(widget->mapTo(bench.form(), QPoint()), widget->size());
                    QVERIFY2(bench.form()->rect().contains(place), qPrintable(widget->objectName()));
                }
            }
        }
    }
}

void TestOptionLooks::itGrowsWithItsWindow()
{
    OptionsBench bench;
    bench.open(Tab::ProxyTab);
    const QList<QString> growing = {u"lsv(2)"_s, u"lsv(3)"_s, u"lsv(0)"_s, u"utbSign"_s};
    for (int tab = 0; tab < 4; ++tab) {
        bench.form()->showTab(tab);
        bench.form()->resize(bench.form()->sizeHint());
        QCoreApplication::processEvents();
        const QSize before = bench.get<QWidget>(growing.at(tab))->size();
        bench.form()->resize(bench.form()->sizeHint() + QSize(200, 200));
        QCoreApplication::processEvents();
        const QSize after = bench.get<QWidget>(growing.at(tab))->size();
        QVERIFY(after.width() > before.width() && after.height() > before.height());
    }
}

QTEST_MAIN(TestOptionLooks)
#include "test_optionlooks.moc"
