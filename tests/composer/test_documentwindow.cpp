#include "mainfixture.h"
#include "message/documentflow.h"
#include "message/templatefiles.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::BoxAnswer;

/// New, Open and Save in the real window: what the fields hold afterwards, and what marks a change.
class TestDocumentWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void newMakesEveryFieldANewMessages();
    void newAddsTheSignatureToItsBody_data();
    void newAddsTheSignatureToItsBody();
    void newAsksAfterAChangeAndStaysOnCancel();
    void saveAndOpenBringBackEveryField();
    void thePopUpsMarkNothing();
    void whatMarksAChange_data();
    void whatMarksAChange();
    void loadingMarksAChangeThatOpenClears();
    void aSaveRemembersTheRecipients();
};

namespace {

void fillEverything(MainFixture &main, const QString &attachment)
{
    Message &message = main.message();
    message.setText(Message::Field::Account, u"office@example.com"_s);
    message.setActual(Message::Choice::Sender, false);
    message.setText(Message::Field::Sender, u"Club <club@example.com>"_s);
    message.setActual(Message::Choice::ReplyReceiver, false);
    message.setText(Message::Field::ReplyReceiver, u"desk@example.com"_s);
    message.setText(Message::Field::To, u"a@example.com,\r\nB <b@example.com>"_s);
    message.setText(Message::Field::CC, u"c@example.com"_s);
    message.setText(Message::Field::BCC, u"d@example.com"_s);
    message.setText(Message::Field::Subject, u"Grüße – 你好"_s);
    message.setText(Message::Field::PlainContent, u"Dear {Recipient Name},\r\n\r\n=[x]; \"y\"\r\n"_s);
    message.setAttachmentPaths({attachment});
    message.setActual(Message::Choice::Date, false);
    message.setCustomDateTime(QDate(2026, 12, 24), QTime(18, 30, 5));
    message.setPriority(Message::Priority::High);
    message.setOneByOne(true);
    message.setReceipt(true);
}

QStringList valuesOf(Message &message)
{
    using Field = Message::Field;
    QStringList values;
    for (const Field field : {Field::Account, Field::Sender, Field::ReplyReceiver, Field::Encoding, Field::To,
                              Field::CC, Field::BCC, Field::Subject, Field::PlainContent}) {
        values.append(message.text(field));
    }
    using Choice = Message::Choice;
    for (const Choice choice : {Choice::Sender, Choice::ReplyReceiver, Choice::Date}) {
        values.append(message.isActual(choice) ? u"actual"_s : u"custom"_s);
    }
    if (!message.isActual(Choice::Date)) {
        values.append(message.customDate().toString(Qt::ISODate) + message.customTime().toString(Qt::ISODate));
    }
    values.append(QString::number(static_cast<int>(message.format())));
    values.append(QString::number(static_cast<int>(message.priority())));
    values.append(message.oneByOne() ? u"one"_s : u"all"_s);
    values.append(message.receipt() ? u"receipt"_s : u"none"_s);
    values.append(message.attachmentPaths());
    return values;
}

} // namespace

void TestDocumentWindow::newMakesEveryFieldANewMessages()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    const QStringList fresh = valuesOf(main.message());
    const QString attachment = main.tree.path(u"list.txt"_s);
    writeFile(attachment, "x");
    fillEverything(main, attachment);
    main.view().setTitle(u"Corvane - Edit \"May\""_s);
    main.message().pblnChanged = false; // nothing that is to be asked
    main.item(u"menfn"_s)->trigger();
    QCOMPARE(valuesOf(main.message()), fresh);
    QCOMPARE(main.window->windowTitle(), u"Corvane - New Message"_s);
    QVERIFY(!main.message().pblnChanged);
    QVERIFY(main.view().mblnReady);
    QVERIFY(!main.item(u"tlbOBO"_s)->isChecked());
    QVERIFY(!main.combo(0)->isEnabled());
}

void TestDocumentWindow::newAddsTheSignatureToItsBody_data()
{
    QTest::addColumn<QString>("automatic");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("content");
    QTest::newRow("added") << u"True"_s << u"ann"_s << u"Yours, Ann"_s;
    QTest::newRow("unset is added") << QString() << u"ann"_s << u"Yours, Ann"_s;
    QTest::newRow("switched off") << u"False"_s << u"ann"_s << QString();
    QTest::newRow("no default") << u"True"_s << u" "_s << QString();
}

void TestDocumentWindow::newAddsTheSignatureToItsBody()
{
    QFETCH(const QString, automatic);
    QFETCH(const QString, name);
    QFETCH(const QString, content);
    MainFixture main([](MainFixture &m) {
        m.hooks.findSignature = [](const QString &wanted) {
            return wanted == u"ann" ? SignatureText{true, false, u"Yours, Ann"_s} : SignatureText{};
        };
    });
    main.globals().settings.set(Setting::AutoAddSignature, automatic);
    main.globals().settings.set(Setting::DefaultSignature, name);
    main.message().setText(Message::Field::RichContent, QString());
    main.item(u"menfn"_s)->trigger();
    QCOMPARE(main.message().text(Message::Field::PlainContent), content);
    QCOMPARE(main.message().text(Message::Field::RichContent), QString());
    QVERIFY(!main.message().pblnChanged);
}

void TestDocumentWindow::newAsksAfterAChangeAndStaysOnCancel()
{
    MainFixture main;
    main.get<QLineEdit>(u"utbSubject"_s)->setText(u"May"_s);
    main.prompts.expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::Cancel);
    main.item(u"menfn"_s)->trigger();
    QCOMPARE(main.message().text(Message::Field::Subject), u"May"_s);
    main.prompts.expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::No);
    main.item(u"menfn"_s)->trigger();
    QCOMPARE(main.message().text(Message::Field::Subject), QString());
    main.item(u"menfn"_s)->trigger(); // and nothing is left to ask
}

void TestDocumentWindow::saveAndOpenBringBackEveryField()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    const QString attachment = main.tree.path(u"list.txt"_s);
    writeFile(attachment, "x");
    fillEverything(main, attachment);
    const QStringList written = valuesOf(main.message());
    main.prompts.expectInput(u"INPUT_NAME"_s, u"Grüße – 你好"_s, u"Xmas"_s);
    main.item(u"menfa"_s)->trigger();
    QCOMPARE(main.window->windowTitle(), u"Corvane - Edit \"Xmas\""_s);
    QVERIFY(!main.message().pblnChanged);
    main.item(u"menfn"_s)->trigger();
    QVERIFY(valuesOf(main.message()) != written);
    // The choice in the dialog, as it hands it over.
    main.window->flow().psTempName = u"of before"_s;
    main.whenShown = [&main](const QString &form) {
        QCOMPARE(form, u"frmPubTemplates"_s);
        QVERIFY(!main.view().mblnReady);
        main.window->flow().psTempName = u"Xmas"_s;
    };
    main.item(u"menfo"_s)->trigger();
    QCOMPARE(valuesOf(main.message()), written);
    QCOMPARE(main.window->windowTitle(), u"Corvane - Edit \"Xmas\""_s);
    QVERIFY(!main.message().pblnChanged);
    QVERIFY(main.view().mblnReady);
}

void TestDocumentWindow::thePopUpsMarkNothing()
{
    MainFixture main;
    main.message().pblnChanged = false;
    main.message().setPriority(Message::Priority::Low);
    main.message().setOneByOne(true);
    main.message().setReceipt(true);
    main.message().setActual(Message::Choice::Date, false);
    main.message().setCustomDateTime(QDate(2026, 12, 24), QTime(18, 30, 5));
    QVERIFY(!main.message().pblnChanged);
}

void TestDocumentWindow::whatMarksAChange_data()
{
    QTest::addColumn<QString>("control");
    for (const char *name : {"cbb(0)", "cbb(1)", "cbb(2)", "cbb(6)", "txt(0)", "txt(1)", "txt(2)", "utbSubject",
                             "utbContent", "utbSource"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void TestDocumentWindow::whatMarksAChange()
{
    QFETCH(const QString, control);
    MainFixture main;
    auto *widget = main.get(control);
    const auto change = [widget](const QString &text) {
        if (auto *combo = qobject_cast<QComboBox *>(widget)) {
            combo->setEditText(text);
        } else if (auto *box = qobject_cast<QPlainTextEdit *>(widget)) {
            box->setPlainText(text);
        } else {
            qobject_cast<QLineEdit *>(widget)->setText(text);
        }
    };
    main.message().pblnChanged = false;
    main.optionsOpen = true;
    change(u"refilled"_s);
    QVERIFY(!main.message().pblnChanged);
    main.optionsOpen = false;
    change(u"typed"_s);
    QVERIFY(main.message().pblnChanged);
}

void TestDocumentWindow::loadingMarksAChangeThatOpenClears()
{
    MainFixture main;
    writeFile(headPath(main.globals(), u"May"_s), "[Head]\r\nTo=a@example.com\r\nType=Plain\r\n");
    main.message().pblnChanged = false;
    main.window->flow().preview(u"May"_s);
    QVERIFY(main.message().pblnChanged);
    QCOMPARE(main.window->windowTitle(), u"Corvane - Preview \"May\""_s);
}

void TestDocumentWindow::aSaveRemembersTheRecipients()
{
    MainFixture main;
    main.recipients(0)->setPlainText(u"a@example.com"_s);
    main.prompts.expectInput(u"INPUT_NAME"_s, u"New Template"_s, u"May"_s);
    main.item(u"menfa"_s)->trigger();
    QCOMPARE(main.remembered, 1);
}

QTEST_MAIN(TestDocumentWindow)
#include "test_documentwindow.moc"
