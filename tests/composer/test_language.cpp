#include "composer/menuitemarray.h"
#include "mainfixture.h"
#include "quillon/files/settingsfile.h"

#include <QFile>
#include <QMenuBar>
#include <QRegularExpression>
#include <QTabWidget>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

const QString program = QStringLiteral(PROGRAM_FOLDER);
const QString messages = u"Message & Text"_s;

/// Every key that the program looks a message up by.
const QStringList messageKeys = {
    u"CANNOT_CD"_s,
    u"CHECK_ADDRESS"_s,
    u"CLEAR_PROXY"_s,
    u"CLEAR_RECIP"_s,
    u"CLEAR_SENDER"_s,
    u"CLEAR_SIGN"_s,
    u"CLEAR_SMTP"_s,
    u"CLS_SCHE_PROMPT"_s,
    u"CONN_FAILED"_s,
    u"CONN_PROXY"_s,
    u"CONN_PROXY_SUCC"_s,
    u"CONN_PROXY_UNSU"_s,
    u"CONN_SMTP"_s,
    u"CONN_SMTP_SUCC"_s,
    u"CONN_SMTP_UNSU"_s,
    u"CSF"_s,
    u"DATA_EXIST"_s,
    u"DEL_MACRO_PROMPT"_s,
    u"DEL_PROXY_PROMPT"_s,
    u"DEL_RECI_PROMPT"_s,
    u"DEL_SCHE_PROMPT"_s,
    u"DEL_SENDER_PROMPT"_s,
    u"DEL_SIGN_PROMPT"_s,
    u"DEL_SMTP_PROMPT"_s,
    u"DEL_TEMP_PROMPT"_s,
    u"DRIVE_ATT"_s,
    u"ERR_MACRO_DELIMITER"_s,
    u"EXPORT_SUCC"_s,
    u"EXP_SUCCB"_s,
    u"FAIL_ADDR"_s,
    u"FILE_DELETED"_s,
    u"FIND_FOCUS"_s,
    u"FIND_RECI"_s,
    u"FIND_WHAT"_s,
    u"IMPORT_SUCC"_s,
    u"INPUT_COL"_s,
    u"INPUT_NAME"_s,
    u"INPUT_NEW_NAME"_s,
    u"INPUT_RECIP"_s,
    u"INPUT_SEP"_s,
    u"INSERT_MACRO"_s,
    u"INTERVAL_LIMIT"_s,
    u"INVALID_BCC"_s,
    u"INVALID_CC"_s,
    u"INVALID_MSG"_s,
    u"INVALID_REPLY"_s,
    u"INVALID_SENDER"_s,
    u"INVALID_TO"_s,
    u"ITEM EXIST"_s,
    u"ITEM_EXIST"_s,
    u"MACRO_EXISTS"_s,
    u"NEED FIELD"_s,
    u"NEED_ADDR"_s,
    u"NEED_DATA"_s,
    u"NEED_FILE"_s,
    u"NEED_INFO"_s,
    u"NEED_MAIL"_s,
    u"NEED_PORT"_s,
    u"NEED_PROXY"_s,
    u"NEED_PROXY_C"_s,
    u"NEED_PROXY_COPY"_s,
    u"NEED_PROXY_E"_s,
    u"NEED_PROXY_T"_s,
    u"NEED_PROXY_TEST"_s,
    u"NEED_RECEIVERS"_s,
    u"NEED_RECIP"_s,
    u"NEED_RECIP_S"_s,
    u"NEED_SENDER_C"_s,
    u"NEED_SENDER_COPY"_s,
    u"NEED_SENDER_E"_s,
    u"NEED_SHEET"_s,
    u"NEED_SIGN"_s,
    u"NEED_SMTP"_s,
    u"NEED_SMTP_C"_s,
    u"NEED_SMTP_COPY"_s,
    u"NEED_SMTP_E"_s,
    u"NEED_SMTP_S"_s,
    u"NEED_SMTP_SET"_s,
    u"NEED_SMTP_T"_s,
    u"NEED_TEMP_D"_s,
    u"NEED_TEMP_R"_s,
    u"NEED_TEMP_S"_s,
    u"NEED_TEXT"_s,
    u"NEED_USER"_s,
    u"NET_FAILED"_s,
    u"NO_EXPORTED_DATA"_s,
    u"NO_LOG"_s,
    u"NO_MACRO"_s,
    u"NO_NEWVER"_s,
    u"NO_PRINT"_s,
    u"NO_PROMPT"_s,
    u"NO_RECIP"_s,
    u"NO_RECI_DEL"_s,
    u"NO_RECI_EDIT"_s,
    u"NO_SCHE"_s,
    u"NO_TEMP"_s,
    u"NO_V3_DATA"_s,
    u"OBO_LIMIT"_s,
    u"OTHER_RUN"_s,
    u"PAST_TIME"_s,
    u"PLAY_SOUND"_s,
    u"PORT_LIMIT"_s,
    u"PROMPT_SHEETS_SEL"_s,
    u"PROXY_ADDRESS"_s,
    u"PROXY_EXISTS"_s,
    u"PROXY_USER"_s,
    u"REPLACE_DATA"_s,
    u"REPLY"_s,
    u"RESTORE_SET"_s,
    u"RICH_TO_PLAIN"_s,
    u"SAVE_MAIL_PROMPT"_s,
    u"SAVE_REC_SUCC"_s,
    u"SAVE_SUCC"_s,
    u"SELECT_PATH"_s,
    u"SELE_TEMP"_s,
    u"SELE_TEMP_R"_s,
    u"SEL_WIN_CON"_s,
    u"SENDER"_s,
    u"SENDER_EXISTS"_s,
    u"SEND_EXISTS"_s,
    u"SENT_SUCC"_s,
    u"SENT_SUCCA"_s,
    u"SENT_SUCCB"_s,
    u"SENT_UNSUCC"_s,
    u"SENT_UNSUCCB"_s,
    u"SIGN_NOT_EXIST"_s,
    u"SMTP_EXISTS"_s,
    u"SMTP_NOT_OK"_s,
    u"TEMP_EXISTS"_s,
    u"TEMP_NOT_CHANGE"_s,
    u"TIMES_LIMIT"_s,
    u"UPGRADE"_s,
    u"VALID_ADDRESS"_s,
};

/// Names of forms with captions in tips.dll.
const QStringList forms = {u"frmPubMain"_s,  u"frmPubProgress"_s,    u"frmPubSplash"_s, u"frmPubOptions"_s,
                           u"frmPubMacro"_s, u"frmPubMacroDetail"_s, u"frmPubPrompt"_s};

/// The text that a control or item shows, whatever kind it is.
QString captionOf(const MainFixture &main, const QString &name)
{
    if (name == u"frmPubMain") {
        return main.window->windowTitle();
    }
    auto *object = main.window->findChild<QObject *>(name);
    if (auto *action = qobject_cast<QAction *>(object)) {
        return action->text();
    }
    if (auto *menu = qobject_cast<QMenu *>(object)) {
        return menu->title();
    }
    if (auto *label = qobject_cast<QLabel *>(object)) {
        return label->text();
    }
    if (auto *button = qobject_cast<QAbstractButton *>(object)) {
        return button->text();
    }
    const auto *tabs = main.get<QTabWidget>(u"sst"_s);
    return object ? tabs->tabText(tabs->indexOf(qobject_cast<QWidget *>(object))) : QString();
}

QString tipOf(const MainFixture &main, const QString &name)
{
    auto *object = main.window->findChild<QObject *>(name);
    if (auto *action = qobject_cast<QAction *>(object)) {
        return action->toolTip();
    }
    auto *widget = qobject_cast<QWidget *>(object);
    const auto *tabs = main.get<QTabWidget>(u"sst"_s);
    const int tab = widget ? tabs->indexOf(widget) : -1;
    return tab >= 0 ? tabs->tabToolTip(tab) : widget ? widget->toolTip() : QString();
}

} // namespace

class TestLanguage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyMessageKeyHasAText();
    void theTwoSpellingsWithABlankStand();
    void noMessageKeyIsUnknown();
    void questionsEndWithAQuestionMark();
    void textsBehindAValueGoOnInTheSentence();
    void theNumberOfMailsStandsBehindAColon();
    void placeholderRowsEqualNoEntry();
    void theFilesAreUtf8WithCrLf();
    void siteSettingsLieBesideTheLanguageFiles();
    void everyCaptionKeyIsOnItsForm();
    void everyMenuCaptionIsInTheFile();
    void everyHelpLineBelongsToAMenuItem();
    void theTrayMenuHasAllItsItems();
    void captionsComeFromTheFile();
    void withoutLanguageFilesTheWindowKeepsItsCaptions();
};

void TestLanguage::everyMessageKeyHasAText()
{
    const quillon::SettingsFile tips(program + u"/tips.dll"_s);
    QCOMPARE(messageKeys.size(), 133);
    for (const QString &key : messageKeys) {
        QVERIFY2(!tips.value(messages, key).trimmed().isEmpty(), qPrintable(key));
    }
}

void TestLanguage::theTwoSpellingsWithABlankStand()
{
    const quillon::SettingsFile tips(program + u"/tips.dll"_s);
    const QStringList keys = tips.keys(messages);
    QVERIFY(keys.contains(u"NEED FIELD"_s));
    QVERIFY(keys.contains(u"ITEM EXIST"_s));
    QVERIFY(keys.contains(u"ITEM_EXIST"_s));
    QVERIFY(!keys.contains(u"NEED_FIELD"_s));
}

void TestLanguage::noMessageKeyIsUnknown()
{
    const QStringList keys = quillon::SettingsFile(program + u"/tips.dll"_s).keys(messages);
    QCOMPARE(keys.size(), messageKeys.size());
    for (const QString &key : keys) {
        QVERIFY2(messageKeys.contains(key), qPrintable(key));
    }
}

void TestLanguage::questionsEndWithAQuestionMark()
{
    const quillon::SettingsFile tips(program + u"/tips.dll"_s);
    for (const QString &key : messageKeys) {
        const bool question = key.startsWith(u"CLEAR_"_s) || key.startsWith(u"DEL_"_s) || key.endsWith(u"_PROMPT"_s) ||
                              QStringList{u"DATA_EXIST"_s,  u"REPLACE_DATA"_s, u"RESTORE_SET"_s,   u"SMTP_NOT_OK"_s,
                                          u"TEMP_EXISTS"_s, u"UPGRADE"_s,      u"RICH_TO_PLAIN"_s, u"SEL_WIN_CON"_s}
                                  .contains(key);
        if (question && key != u"NO_PROMPT") {
            QVERIFY2(tips.value(messages, key).endsWith(u'?'), qPrintable(key));
        }
    }
}

void TestLanguage::textsBehindAValueGoOnInTheSentence()
{
    const quillon::SettingsFile tips(program + u"/tips.dll"_s);
    for (const char16_t *key : {u"INVALID_SENDER", u"INVALID_REPLY", u"INVALID_TO", u"INVALID_CC", u"INVALID_BCC",
                                u"INVALID_MSG", u"TEMP_EXISTS", u"SENDER_EXISTS", u"SIGN_NOT_EXIST", u"FILE_DELETED",
                                u"EXP_SUCCB", u"SENT_SUCCB", u"SENT_UNSUCCB"}) {
        const QString text = tips.value(messages, QString::fromUtf16(key));
        QVERIFY2(!text.isEmpty() && text.at(0).isLower(), qPrintable(text));
    }
}

void TestLanguage::theNumberOfMailsStandsBehindAColon()
{
    // It may be any number, so that no word beside it may depend on it.
    const quillon::SettingsFile tips(program + u"/tips.dll"_s);
    QVERIFY(tips.value(messages, u"SENT_SUCCA"_s).endsWith(u':'));
    for (const char16_t *key : {u"SENT_SUCCB", u"SENT_UNSUCCB"}) {
        const QString text = tips.value(messages, QString::fromUtf16(key));
        QVERIFY2(!text.contains(u"mail"), qPrintable(text));
    }
}

void TestLanguage::placeholderRowsEqualNoEntry()
{
    const quillon::SettingsFile tips(program + u"/tips.dll"_s);
    // No address ends with a bracket, no template's name holds "<", no schedule entry begins with a bracket.
    QVERIFY(tips.value(messages, u"NO_PROMPT"_s).endsWith(u')'));
    QVERIFY(tips.value(messages, u"NO_TEMP"_s).contains(u'<'));
    QVERIFY(tips.value(messages, u"NO_SCHE"_s).startsWith(u'('));
}

void TestLanguage::theFilesAreUtf8WithCrLf()
{
    for (const char *name : {"/tips.dll", "/menus.dll", "/menutips.dll"}) {
        const QByteArray bytes = contentOf(program + QString::fromLatin1(name));
        QVERIFY(!bytes.isEmpty());
        QCOMPARE(bytes.count('\n'), bytes.count("\r\n"));
        QCOMPARE(QString::fromUtf8(bytes).toUtf8(), bytes);
    }
}

void TestLanguage::siteSettingsLieBesideTheLanguageFiles()
{
    const QByteArray bytes = contentOf(program + u"/site.dll"_s);
    QVERIFY(bytes.contains("[Site]\r\n"));
    QCOMPARE(bytes, contentOf(u"" TEST_SOURCE_DIR "/../../resources/site.dll"_s));
}

void TestLanguage::everyCaptionKeyIsOnItsForm()
{
    const quillon::SettingsFile tips(program + u"/tips.dll"_s);
    for (const QString &form : forms) {
        QVERIFY2(tips.contains(form, form), qPrintable(form));
    }
    MainFixture main;
    for (const QString &key : tips.keys(u"frmPubMain"_s)) {
        QString name = key;
        const bool tip = name.endsWith(u".tip"_s);
        const bool forReaders = name.endsWith(u".name"_s);
        name.remove(QRegularExpression(u"\\.(tip|name)$"_s));
        QVERIFY2(name == u"frmPubMain" || main.window->findChild<QObject *>(name), qPrintable(key));
        const QString shown = forReaders ? main.get(name)->accessibleName()
                              : tip      ? tipOf(main, name)
                                         : captionOf(main, name);
        QCOMPARE(shown, tips.value(u"frmPubMain"_s, key));
    }
}

void TestLanguage::everyMenuCaptionIsInTheFile()
{
    MainFixture main;
    const quillon::SettingsFile menus(program + u"/menus.dll"_s);
    for (const QString &key : menus.keys(u"frmPubMain"_s)) {
        QCOMPARE(captionOf(main, key), menus.value(u"frmPubMain"_s, key));
    }
    static const QRegularExpression ours(u"^men"_s); // the bar has a menu of its own for what does not fit
    for (const QMenu *menu : main.window->menuBar()->findChildren<QMenu *>(ours)) {
        QVERIFY2(menus.contains(u"frmPubMain"_s, menu->objectName()), qPrintable(menu->objectName()));
        for (const QAction *action : menu->actions()) {
            const bool arrayItem = action->objectName().contains(u"sa("_s) && !action->objectName().endsWith(u"(0)"_s);
            if (!action->isSeparator() && !action->menu<QMenu *>() && !arrayItem) {
                QVERIFY2(menus.contains(u"frmPubMain"_s, action->objectName()), qPrintable(action->objectName()));
            }
        }
    }
}

void TestLanguage::everyHelpLineBelongsToAMenuItem()
{
    MainFixture main;
    QStringList captions = {u"Restore"_s};
    for (const QMenu *menu : main.window->menuBar()->findChildren<QMenu *>()) {
        for (const QAction *action : menu->actions()) {
            captions.append(itemCaption(action));
        }
    }
    for (const QString &key : quillon::SettingsFile(program + u"/menutips.dll"_s).keys(u"frmPubMain"_s)) {
        QVERIFY2(captions.contains(key), qPrintable(key));
    }
}

void TestLanguage::theTrayMenuHasAllItsItems()
{
    const quillon::SettingsFile menus(program + u"/menus.dll"_s);
    for (const char16_t *item : {u"ments", u"menth", u"mento", u"mentf", u"mentw", u"mentb", u"mentr", u"mentc",
                                 u"mentl", u"mentt", u"mente", u"menta", u"mentx", u"mentu"}) {
        QVERIFY2(!menus.value(u"frmPubSender"_s, QString::fromUtf16(item)).isEmpty(),
                 qPrintable(QString::fromUtf16(item)));
    }
}

void TestLanguage::captionsComeFromTheFile()
{
    MainFixture main([](MainFixture &m) {
        const QString folder = m.tree.path(u"dutch"_s);
        QDir().mkpath(folder);
        writeFile(folder + u"/tips.dll"_s,
                  "[frmPubMain]\r\nlblSubject=&Onderwerp:\r\nutbSubject.tip=Het onderwerp.\r\n");
        writeFile(folder + u"/menus.dll"_s, "[frmPubMain]\r\nmenfs=&Verzenden\r\n");
        writeFile(folder + u"/menutips.dll"_s, "[frmPubMain]\r\nVerzenden=Verzendt dit bericht.\r\n");
        setLanguageFolder(folder);
    });
    QCOMPARE(main.get<QLabel>(u"lblSubject"_s)->text(), u"&Onderwerp:"_s);
    QCOMPARE(main.get(u"utbSubject"_s)->toolTip(), u"Het onderwerp."_s);
    QCOMPARE(main.get(u"utbSubject"_s)->accessibleName(), u"Onderwerp"_s);
    main.item(u"menfs"_s)->hover();
    QCOMPARE(main.panel(), u" Verzendt dit bericht."_s);
}

void TestLanguage::withoutLanguageFilesTheWindowKeepsItsCaptions()
{
    MainFixture with;
    MainFixture without([](MainFixture &m) { setLanguageFolder(m.tree.path(u"nowhere"_s)); });
    for (const QLabel *label : with.window->findChildren<QLabel *>()) {
        if (label->buddy()) {
            QCOMPARE(without.get<QLabel>(label->objectName())->text(), label->text());
        }
    }
    for (const QAction *action : with.window->findChildren<QAction *>()) {
        if (action->objectName().startsWith(u"men"_s)) {
            QCOMPARE(without.item(action->objectName())->text(), action->text());
        }
    }
    QCOMPARE(LookupText(u"CLEAR_RECIP"_s), QString());
}

QTEST_MAIN(TestLanguage)
#include "test_language.moc"
