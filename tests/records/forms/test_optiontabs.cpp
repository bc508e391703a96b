#include "optionsbench.h"

#include <QGroupBox>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace corvane;
using Tab = OptionsTab;

namespace {

/// The options and ticks of each tab.
const QList<QStringList> ticksOfTabs = {
    {u"cbx(0)"_s},
    {},
    {},
    {u"opt(0)"_s, u"opt(1)"_s, u"cbx(4)"_s},
    {u"opt(2)"_s, u"opt(3)"_s, u"opt(4)"_s, u"opt(5)"_s, u"opt(6)"_s, u"cbx(1)"_s},
};

/// Which button of its tab each letter with Alt presses.
const QList<QMap<QString, QString>> keysOfTabs = {
    {{u"A"_s, u"sbtProxy(0)"_s},
     {u"E"_s, u"sbtProxy(1)"_s},
     {u"C"_s, u"sbtProxy(5)"_s},
     {u"L"_s, u"sbtProxy(3)"_s},
     {u"D"_s, u"sbtProxy(4)"_s}},
    {{u"A"_s, u"sbtSMTP(0)"_s},
     {u"E"_s, u"sbtSMTP(1)"_s},
     {u"C"_s, u"sbtSMTP(2)"_s},
     {u"L"_s, u"sbtSMTP(4)"_s},
     {u"D"_s, u"sbtSMTP(5)"_s}},
    {{u"A"_s, u"sbtSender(0)"_s},
     {u"E"_s, u"sbtSender(1)"_s},
     {u"C"_s, u"sbtSender(2)"_s},
     {u"L"_s, u"sbtSender(4)"_s},
     {u"D"_s, u"sbtSender(5)"_s}},
    {{u"E"_s, u"sbtSign(2)"_s},
     {u"L"_s, u"sbtSign(3)"_s},
     {u"D"_s, u"sbtSign(0)"_s},
     {u"R"_s, u"sbtSign(1)"_s},
     {u"U"_s, u"sbtSign(4)"_s},
     {u"M"_s, u"sbtSign(7)"_s}},
    {},
};

QString captionOf(const QWidget *control)
{
    if (const auto *label = qobject_cast<const QLabel *>(control)) {
        return label->text();
    }
    if (const auto *box = qobject_cast<const QGroupBox *>(control)) {
        return box->title();
    }
    const auto *button = qobject_cast<const QAbstractButton *>(control);
    return button ? button->text() : QString();
}

QStringList mnemonicsOf(const QString &caption)
{
    static const QRegularExpression pattern(u"&([^&])"_s);
    QStringList letters;
    auto found = pattern.globalMatch(QString(caption).remove(u"&&"_s));
    while (found.hasNext()) {
        letters.append(found.next().captured(1).toUpper());
    }
    return letters;
}

} // namespace

class TestOptionTabs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void captionsAreKeptInTheTags();
    void onlyThePresentTabsTicksHaveMnemonics();
    void theTabOfOtherSettingsHasThreeFixedCaptions();
    void theLanguageFileDoesNotChangeTheFixedCaptions();
    void mnemonicsAreMadeForATabThatIsShownByName();
    void noLetterBelongsToTwoControlsOfATab();
    void aMnemonicMovesTheFocusOnItsOwnTabOnly();
    void enterAndEscapePressNothing();
    void keysOfATabDoNothingOnAnother();
};

void TestOptionTabs::captionsAreKeptInTheTags()
{
    OptionsBench bench;
    QCOMPARE(bench.opt(2)->property("Tag").toString(), u"&Maximized"_s);
    QCOMPARE(bench.opt(2)->text(), u"Maximized"_s);
    QCOMPARE(bench.sbt(0)->property("Tag").toString(), bench.sbt(0)->text());
    QCOMPARE(bench.get<QLabel>(u"lblEncoding"_s)->property("Tag").toString(), u"En&coding"_s);
    QCOMPARE(bench.get<QGroupBox>(u"grpSending"_s)->property("Tag").toString(), u"Sending"_s);
}

void TestOptionTabs::onlyThePresentTabsTicksHaveMnemonics()
{
    OptionsBench bench;
    bench.open(Tab::ProxyTab);
    for (const int present : {0, 1, 2, 3, 4, 3, 0}) {
        bench.sst()->setCurrentIndex(present);
        for (int tab = 0; tab < 5; ++tab) {
            for (const QString &name : ticksOfTabs.at(tab)) {
                const QString caption = bench.button(name)->text();
                QCOMPARE(caption.count(u'&'), tab == present ? 1 : 0);
                const QString kept = bench.button(name)->property("Tag").toString();
                QCOMPARE(kept.count(u'&'), 1);
                QCOMPARE(caption, tab == present ? kept : QString(kept).remove(u'&'));
            }
        }
    }
}

void TestOptionTabs::theTabOfOtherSettingsHasThreeFixedCaptions()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    QCOMPARE(bench.get<QLabel>(u"lblFontSize"_s)->text(), u"F&ont Size"_s);
    QCOMPARE(bench.get<QLabel>(u"lblFontSize"_s)->buddy(), bench.cbb(2));
    QCOMPARE(bench.get<QLabel>(u"lblObo"_s)->text(), u"Se&nding Interval (Seconds) for One-by-one Mode"_s);
    QCOMPARE(bench.get<QLabel>(u"lblObo"_s)->buddy(), bench.txt(0));
    QCOMPARE(bench.cbx(1)->text(),
             u"Empty Folder &After Sent This Folder Attachment Successfully (ONLY for Automatic Mode)"_s);
}

void TestOptionTabs::theLanguageFileDoesNotChangeTheFixedCaptions()
{
    OptionsBench bench;
    writeFile(bench.tree.path(u"tips.dll"_s), "[frmPubOptions]\r\nlblFontSize=Gr\303\266\303\237e\r\nlblObo=Abstand\r\n"
                                              "cbx(1)=L&eeren\r\nopt(2)=Ma&ximiert\r\n");
    setLanguageFolder(bench.tree.path());
    bench.open(Tab::ProxyTab);
    QCOMPARE(bench.cbx(1)->text(), u"Leeren"_s);
    bench.sst()->setCurrentIndex(Tab::OtherTab);
    QCOMPARE(bench.get<QLabel>(u"lblFontSize"_s)->text(), u"F&ont Size"_s);
    QCOMPARE(bench.get<QLabel>(u"lblObo"_s)->text(), u"Se&nding Interval (Seconds) for One-by-one Mode"_s);
    QCOMPARE(bench.cbx(1)->text(),
             u"Empty Folder &After Sent This Folder Attachment Successfully (ONLY for Automatic Mode)"_s);
    QCOMPARE(bench.opt(2)->text(), u"Ma&ximiert"_s); // all others are the file's
}

void TestOptionTabs::mnemonicsAreMadeForATabThatIsShownByName()
{
    OptionsBench bench;
    bench.form()->showTab(Tab::SignaturesTab);
    QVERIFY(bench.opt(0)->text().contains(u'&'));
    QVERIFY(!bench.cbx(0)->text().contains(u'&'));
}

void TestOptionTabs::noLetterBelongsToTwoControlsOfATab()
{
    OptionsBench bench;
    bench.help = [] {};
    bench.open(Tab::ProxyTab);
    for (int tab = 0; tab < 5; ++tab) {
        bench.form()->showTab(tab);
        QMap<QString, QString> owners = keysOfTabs.at(tab);
        const QStringList keys = owners.keys();
        const QList<QWidget *> controls = bench.form()->findChildren<QWidget *>();
        for (const QWidget *control : controls) {
            const QStringList letters = mnemonicsOf(captionOf(control));
            QVERIFY(letters.size() <= 1);
            if (letters.isEmpty() || !control->isVisible()) {
                continue;
            }
            const QString owner = owners.value(letters.constFirst(), control->objectName());
            QVERIFY2(owner == control->objectName(), qPrintable(u"tab %1, %2: %3 and %4"_s.arg(tab).arg(
                                                         letters.constFirst(), owner, control->objectName())));
            owners.insert(letters.constFirst(), owner);
        }
        for (int other = 0; other < 5; ++other) {
            QVERIFY(mnemonicsOf(bench.sst()->tabText(other)).isEmpty());
        }
        // Each key of the tab can be seen on its button.
        for (const QString &key : keys) {
            QCOMPARE(mnemonicsOf(bench.button(owners.value(key))->text()), QStringList{key});
        }
        QVERIFY(owners.size() >= keys.size() + 4);
    }
}

void TestOptionTabs::aMnemonicMovesTheFocusOnItsOwnTabOnly()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    QTest::keyClick(bench.form(), Qt::Key_M, Qt::AltModifier);
    QTRY_VERIFY(bench.opt(2)->isChecked());
    bench.sst()->setCurrentIndex(Tab::ProxyTab);
    QTest::keyClick(bench.form(), Qt::Key_Y, Qt::AltModifier);
    QTest::keyClick(bench.form(), Qt::Key_X, Qt::AltModifier);
    QTRY_VERIFY(bench.cbx(0)->isChecked());
    QVERIFY(bench.opt(2)->isChecked()); // and not the tray's option, whose letter Y is
}

void TestOptionTabs::enterAndEscapePressNothing()
{
    OptionsBench bench;
    writeFile(bench.globals().paths.proxyFile, oneProxy.toUtf8() + "\r\n");
    writeFile(bench.globals().paths.smtpFile, oneAccount.toUtf8() + "\r\n");
    writeFile(bench.globals().paths.sendersFile, "Bob\tbob@b.example\t\r\n");
    bench.putSignatures("Short\t\r\n", {{u"Short"_s, "text"}});
    bench.help = [] { QFAIL("help was pressed"); };
    bench.open(Tab::ProxyTab);
    const QByteArray before = bench.options();
    int tried = 0;
    for (int tab = 0; tab < 5; ++tab) {
        bench.form()->showTab(tab);
        const QList<QWidget *> controls = bench.form()->findChildren<QWidget *>();
        for (QWidget *control : controls) {
            if (!control->isVisible() || !control->isEnabled() || !(control->focusPolicy() & Qt::TabFocus)) {
                continue;
            }
            ++tried;
            for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Enter, Qt::Key_Return}) {
                if (control == bench.utbSign() && key != Qt::Key_Escape) {
                    continue; // there it is a new line
                }
                bench.focus(control);
                QTest::keyClick(control, key);
                QCoreApplication::processEvents();
                QVERIFY2(bench.isLoaded() && bench.form()->isVisible(), qPrintable(control->objectName()));
                QCOMPARE(bench.sst()->currentIndex(), tab);
                QVERIFY(!QApplication::activePopupWidget());
            }
        }
    }
    QVERIFY(tried > 50);
    QCOMPARE(bench.options(), before);
    QCOMPARE(bench.signText(u"Short"_s), QByteArray("text"));
}

void TestOptionTabs::keysOfATabDoNothingOnAnother()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    bench.focus(bench.sst());
    // Each of them asks or opens something on its own tab.
    QTest::keyClick(bench.form()->focusWidget(), Qt::Key_E, Qt::AltModifier);
    QTest::keyClick(bench.form()->focusWidget(), Qt::Key_U, Qt::AltModifier);
    QTest::keyClick(bench.form()->focusWidget(), Qt::Key_Delete);
    bench.sst()->setCurrentIndex(Tab::SignaturesTab);
    QTest::keyClick(bench.form()->focusWidget(), Qt::Key_Delete);
    QTest::keyClick(bench.form()->focusWidget(), Qt::Key_C, Qt::AltModifier);
    QVERIFY(bench.rows(1).isEmpty());
}

QTEST_MAIN(TestOptionTabs)
#include "test_optiontabs.moc"
