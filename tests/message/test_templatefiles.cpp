#include "message/plainmessage.h"
#include "message/templatefiles.h"
#include "message/templatemessage.h"
#include "support/treefixture.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using Choice = Message::Choice;
using Field = Message::Field;

/// The files of a template, to the byte, and what a message gets from them.
class TestTemplateFiles : public QObject, private TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeTree(); }
    void cleanup() { dropTree(); }

    void theKeysStandInTheirOrder();
    void theContentIsTheBodyOfTheFormat();
    void aNewNameJoinsTheListAndAKnownOneDoesNot();
    void theListIsReadInItsOrder();
    void namesOfTheListCompareTrimmedAndInAnyCase();
    void theAccountIsTrimmedAndTheSendersAreNot();
    void aKeyThatIsNotWrittenKeepsItsValueAndOthersStay();
    void attachmentsThatAreGoneAreNotStored();
    void noAttachmentIsAnEmptyValue();
    void recipientsAreRememberedBeforeTheFilesAreWritten();
    void anUnknownWordIsTheLastChoice();
    void aMomentIsReadFromItsPlaces();
    void aMomentThatIsNoneLeavesWhatStood();
    void attachmentsThatAreGoneAreNotLoadedAndOfOneNameTheFirst();
    void anEncodingIsReadByItsCodeAndKeptWhenItIsNotOffered();
    void aTemplateThatIsNotThereBlanksTheMessageAndLeavesTheRest();
    void aMissingContentIsAnEmptyBody();
    void loadingLooksAfterNoFlag();
    void theTypeDecidesWhichBodyGetsTheContent();
    void theWholeEncodingListIsOfferedWithoutAWindow();
    void ofOneNameInTwoCasesTheFilesAreOne();
    void aRenamedFileTakesNobodysPlace();

private:
    [[nodiscard]] const ApplicationGlobals &globals() const { return m_tree->globals; }
    [[nodiscard]] QByteArray head(const QString &name = u"a"_s) const { return contentOf(headPath(globals(), name)); }
    void putHead(const QByteArray &lines, const QString &name = u"a"_s) const
    {
        writeFile(headPath(globals(), name), "[Head]\r\n" + lines);
    }
    void write(Message &message, bool isNew = true, const QString &name = u"a"_s) const
    {
        writeTemplate(globals(), name, isNew, message, [] {});
    }
    static PlainMessage offering()
    {
        PlainMessage message;
        message.encodings = {u"big5 | Chinese"_s, u"utf-8 | Unicode (UTF-8)"_s, u"koi8-r | Cyrillic"_s};
        return message;
    }
};

void TestTemplateFiles::theKeysStandInTheirOrder()
{
    PlainMessage message = offering();
    const QString file = m_tree->path(u"list.txt"_s);
    writeFile(file, "x");
    message.setText(Field::Account, u" ada@x.org "_s);
    message.setActual(Choice::Sender, false);
    message.setText(Field::Sender, u" Ada <ada@x.org> "_s);
    message.setText(Field::ReplyReceiver, u"r@x.org"_s);
    message.setText(Field::To, u" Bob <bob@y.org>, "_s);
    message.setText(Field::CC, u"c@y.org"_s);
    message.setText(Field::BCC, u"d@y.org"_s);
    message.setText(Field::Subject, u"Hello"_s);
    message.setAttachmentPaths({file, m_tree->path()});
    message.setActual(Choice::Date, false);
    message.setCustomDateTime(QDate(2024, 12, 31), QTime(23, 59, 0));
    message.setText(Field::Encoding, u"Cyrillic"_s);
    message.setPriority(Message::Priority::High);
    message.setOneByOne(true);
    write(message);
    const QByteArray expected = "[Head]\r\n"
                                "SMTP Account=ada@x.org\r\n"
                                "Sender Type=Custom\r\n"
                                "Sender= Ada <ada@x.org> \r\n"
                                "Reply Receiver Type=Actual\r\n"
                                "Reply Receiver=r@x.org\r\n"
                                "To= Bob <bob@y.org>, \r\n"
                                "CC=c@y.org\r\n"
                                "BCC=d@y.org\r\n"
                                "Subject=Hello\r\n"
                                "Attachments=" +
                                file.toUtf8() + '|' + m_tree->path().toUtf8() +
                                "\r\n"
                                "Date & Time=20241231 23:59:00\r\n"
                                "Type=Plain\r\n"
                                "Encoding=koi8-r\r\n"
                                "Priority=High\r\n"
                                "One By One=True\r\n"
                                "Receipt=False\r\n";
    QCOMPARE(head(), expected);
    QCOMPARE(message.selectedEncoding(), u"koi8-r | Cyrillic"_s);
}

void TestTemplateFiles::theContentIsTheBodyOfTheFormat()
{
    PlainMessage message = offering();
    message.setText(Field::PlainContent, u"Dear\nÄrzte"_s);
    message.setText(Field::RichContent, u"<p>Dear</p>"_s);
    write(message);
    QCOMPARE(::contentOf(contentPath(globals(), u"a"_s)), QByteArray("Dear\r\nÄrzte"));
    QVERIFY(head().contains("\r\nType=Plain\r\n"));
    message.setFormat(Message::Format::Rich);
    write(message, false);
    QCOMPARE(::contentOf(contentPath(globals(), u"a"_s)), QByteArray("<p>Dear</p>"));
    QVERIFY(head().contains("\r\nType=HTML\r\n"));
}

void TestTemplateFiles::aNewNameJoinsTheListAndAKnownOneDoesNot()
{
    PlainMessage message = offering();
    write(message, true, u"b"_s);
    write(message, true, u"a"_s);
    write(message, false, u"A"_s);
    QCOMPARE(::contentOf(globals().paths.templatesFile), QByteArray("b\r\na\r\n"));
}

void TestTemplateFiles::theListIsReadInItsOrder()
{
    writeFile(globals().paths.templatesFile, "b\r\n a \r\nc");
    QCOMPARE(templateNames(globals()), (QStringList{u"b"_s, u" a "_s, u"c"_s}));
}

void TestTemplateFiles::namesOfTheListCompareTrimmedAndInAnyCase()
{
    writeFile(globals().paths.templatesFile, "May\r\n \xC3\x84rzte \r\n");
    QVERIFY(isListed(globals(), u" mAY "_s));
    QVERIFY(isListed(globals(), u"ärzte"_s));
    QVERIFY(!isListed(globals(), u"Ma"_s));
    QVERIFY(!isListed(globals(), u"May 2"_s));
}

void TestTemplateFiles::theAccountIsTrimmedAndTheSendersAreNot()
{
    PlainMessage message = offering();
    for (const Field field : {Field::Account, Field::Sender, Field::ReplyReceiver}) {
        message.setText(field, u"  x  "_s);
    }
    write(message);
    QVERIFY(head().contains("\r\nSMTP Account=x\r\n"));
    QVERIFY(head().contains("\r\nSender=  x  \r\n"));
    QVERIFY(head().contains("\r\nReply Receiver=  x  \r\n"));
}

void TestTemplateFiles::aKeyThatIsNotWrittenKeepsItsValueAndOthersStay()
{
    putHead("Remark=mine\r\nEncoding=big5\r\nTo=old@y.org\r\n[Other]\r\nTo=kept\r\n");
    PlainMessage message = offering();
    message.setText(Field::To, u"new@y.org"_s);
    message.setText(Field::Encoding, u"Martian"_s);
    write(message, false);
    QVERIFY(head().startsWith("[Head]\r\nRemark=mine\r\nEncoding=big5\r\nTo=new@y.org\r\n"));
    QVERIFY(head().endsWith("[Other]\r\nTo=kept\r\n"));
}

void TestTemplateFiles::attachmentsThatAreGoneAreNotStored()
{
    const QString file = m_tree->path(u"here.txt"_s);
    writeFile(file, "x");
    PlainMessage message = offering();
    const QStringList paths = {m_tree->path(u"gone"_s), file, m_tree->path(u"gone too"_s)};
    message.setAttachmentPaths(paths);
    write(message);
    QVERIFY(head().contains("\r\nAttachments=" + file.toUtf8() + "\r\n"));
    QCOMPARE(message.attachmentPaths(), paths); // they stay on the screen
}

void TestTemplateFiles::noAttachmentIsAnEmptyValue()
{
    PlainMessage message = offering();
    write(message);
    QVERIFY(head().contains("\r\nAttachments=\r\n"));
    message.setAttachmentPaths({m_tree->path()});
    LoadTemplate(globals(), u"a"_s, message);
    QCOMPARE(message.attachmentPaths(), QStringList());
}

void TestTemplateFiles::recipientsAreRememberedBeforeTheFilesAreWritten()
{
    PlainMessage message = offering();
    int calls = 0;
    bool before = false;
    writeTemplate(globals(), u"a"_s, true, message, [&] {
        ++calls;
        before = !QFile::exists(contentPath(globals(), u"a"_s));
    });
    QCOMPARE(calls, 1);
    QVERIFY(before);
}

void TestTemplateFiles::anUnknownWordIsTheLastChoice()
{
    putHead("Sender Type=actual\r\nReply Receiver Type=\r\nDate & Time=x\r\nType=plain\r\nPriority=high\r\n"
            "One By One=true\r\nReceipt=1\r\n");
    PlainMessage message = offering();
    message.setOneByOne(true);
    message.setReceipt(true);
    LoadTemplate(globals(), u"a"_s, message);
    for (const Choice choice : {Choice::Sender, Choice::ReplyReceiver, Choice::Date}) {
        QVERIFY(!message.isActual(choice));
    }
    QCOMPARE(message.format(), Message::Format::Rich);
    QCOMPARE(message.priority(), Message::Priority::Low);
    QVERIFY(!message.oneByOne());
    QVERIFY(!message.receipt());
    putHead(
        "Sender Type=Actual\r\nReply Receiver Type=Actual\r\nDate & Time=Actual\r\nType=Plain\r\nPriority=Normal\r\n"
        "One By One=True\r\nReceipt=True\r\n");
    LoadTemplate(globals(), u"a"_s, message);
    for (const Choice choice : {Choice::Sender, Choice::ReplyReceiver, Choice::Date}) {
        QVERIFY(message.isActual(choice));
    }
    QCOMPARE(message.format(), Message::Format::Plain);
    QCOMPARE(message.priority(), Message::Priority::Normal);
    QVERIFY(message.oneByOne());
    QVERIFY(message.receipt());
}

void TestTemplateFiles::aMomentIsReadFromItsPlaces()
{
    putHead("Date & Time=20241231 23:59:00\r\n");
    PlainMessage message = offering();
    LoadTemplate(globals(), u"a"_s, message);
    QVERIFY(!message.isActual(Choice::Date));
    QCOMPARE(message.customDate(), QDate(2024, 12, 31));
    QCOMPARE(message.customTime(), QTime(23, 59, 0));
}

void TestTemplateFiles::aMomentThatIsNoneLeavesWhatStood()
{
    PlainMessage message = offering();
    message.setCustomDateTime(QDate(2026, 1, 2), QTime(3, 4, 5));
    for (const QByteArray &text : {QByteArray("20241331 25:00:00"), QByteArray("x"), QByteArray()}) {
        putHead("Date & Time=" + text + "\r\n");
        LoadTemplate(globals(), u"a"_s, message);
        QCOMPARE(message.customDate(), QDate(2026, 1, 2));
        QCOMPARE(message.customTime(), QTime(3, 4, 5));
    }
    putHead("Date & Time=20250228 xx:00:00\r\n");
    LoadTemplate(globals(), u"a"_s, message);
    QCOMPARE(message.customDate(), QDate(2025, 2, 28));
    QCOMPARE(message.customTime(), QTime(3, 4, 5));
}

void TestTemplateFiles::attachmentsThatAreGoneAreNotLoadedAndOfOneNameTheFirst()
{
    QVERIFY(QDir().mkpath(m_tree->path(u"one"_s)));
    QVERIFY(QDir().mkpath(m_tree->path(u"two"_s)));
    const QString first = m_tree->path(u"one/list.txt"_s);
    const QString second = m_tree->path(u"two/list.txt"_s);
    writeFile(first, "x");
    writeFile(second, "y");
    const QString folder = m_tree->path(u"two"_s);
    putHead("Attachments=" +
            QStringList{m_tree->path(u"gone"_s), first, QString(), second, folder}.join(u'|').toUtf8() + "\r\n");
    PlainMessage message = offering();
    LoadTemplate(globals(), u"a"_s, message);
    QCOMPARE(message.attachmentPaths(), (QStringList{first, folder}));
}

void TestTemplateFiles::anEncodingIsReadByItsCodeAndKeptWhenItIsNotOffered()
{
    PlainMessage message = offering();
    message.setText(Field::Encoding, u"Chinese"_s);
    putHead("Encoding=koi8-r\r\n");
    LoadTemplate(globals(), u"a"_s, message);
    QCOMPARE(message.text(Field::Encoding), u"Cyrillic"_s);
    for (const QByteArray &code : {QByteArray("KOI8-R"), QByteArray("Cyrillic"), QByteArray()}) {
        putHead("Encoding=" + code + "\r\n");
        LoadTemplate(globals(), u"a"_s, message);
        QCOMPARE(message.text(Field::Encoding), u"Cyrillic"_s);
    }
}

void TestTemplateFiles::aTemplateThatIsNotThereBlanksTheMessageAndLeavesTheRest()
{
    PlainMessage message = offering();
    for (const Field field : {Field::To, Field::CC, Field::BCC, Field::Subject, Field::Source, Field::PlainContent,
                              Field::RichContent, Field::Account, Field::Sender}) {
        message.setText(field, u"x"_s);
    }
    message.setPriority(Message::Priority::High);
    message.setAttachmentPaths({m_tree->path()});
    LoadTemplate(globals(), u"none"_s, message);
    for (const Field field :
         {Field::To, Field::CC, Field::BCC, Field::Subject, Field::Source, Field::PlainContent, Field::RichContent}) {
        QCOMPARE(message.text(field), QString());
    }
    QCOMPARE(message.text(Field::Account), u"x"_s);
    QCOMPARE(message.text(Field::Sender), u"x"_s);
    QCOMPARE(message.priority(), Message::Priority::High);
    QCOMPARE(message.attachmentPaths(), QStringList{m_tree->path()});
}

void TestTemplateFiles::aMissingContentIsAnEmptyBody()
{
    putHead("Type=Plain\r\nTo=bob@y.org\r\n");
    PlainMessage message = offering();
    message.setText(Field::PlainContent, u"old"_s);
    const int faults = quillon::faultCount();
    LoadTemplate(globals(), u"a"_s, message);
    QCOMPARE(message.text(Field::PlainContent), QString());
    QCOMPARE(message.text(Field::To), u"bob@y.org"_s);
    QCOMPARE(quillon::faultCount(), faults);
}

void TestTemplateFiles::loadingLooksAfterNoFlag()
{
    putHead("To=bob@y.org\r\n");
    PlainMessage message = offering();
    LoadTemplate(globals(), u"a"_s, message);
    QVERIFY(message.pblnChanged); // the texts have changed; whoever loads clears it
    QVERIFY(!TemplateMessage(globals(), u"a"_s).pblnChanged);
}

void TestTemplateFiles::theTypeDecidesWhichBodyGetsTheContent()
{
    writeFile(contentPath(globals(), u"a"_s), "<p>x</p>");
    putHead("Type=HTML\r\n");
    PlainMessage message = offering();
    LoadTemplate(globals(), u"a"_s, message);
    QCOMPARE(message.text(Field::RichContent), u"<p>x</p>"_s);
    QCOMPARE(message.text(Field::PlainContent), QString());
    putHead("Type=Plain\r\n"); // shown as text then
    LoadTemplate(globals(), u"a"_s, message);
    QCOMPARE(message.text(Field::RichContent), QString());
    QCOMPARE(message.text(Field::PlainContent), u"<p>x</p>"_s);
}

void TestTemplateFiles::theWholeEncodingListIsOfferedWithoutAWindow()
{
    putHead("Encoding=shift_jis\r\n");
    TemplateMessage message(globals(), u"a"_s);
    QCOMPARE(message.name(), u"a"_s);
    QCOMPARE(message.text(Field::Encoding), u"Japanese (Shift-JIS)"_s);
    QVERIFY(message.encodingCount() > 30);
    QVERIFY(message.encodings.filter(QRegularExpression(u"^_"_s)).isEmpty());
}

void TestTemplateFiles::ofOneNameInTwoCasesTheFilesAreOne()
{
    PlainMessage message = offering();
    message.setText(Field::To, u"old@y.org"_s);
    write(message, true, u"old"_s);
    message.setText(Field::To, u"new@y.org"_s);
    write(message, false, u"OLD"_s);
    QCOMPARE(QDir(globals().paths.templates).entryList(QDir::Files, QDir::Name),
             (QStringList{u"content_OLD.dll"_s, u"head_OLD.dll"_s, u"templates.dll"_s}));
    PlainMessage loaded = offering();
    LoadTemplate(globals(), u"old"_s, loaded); // as the list has it
    QCOMPARE(loaded.text(Field::To), u"new@y.org"_s);
}

void TestTemplateFiles::aRenamedFileTakesNobodysPlace()
{
    PlainMessage message = offering();
    message.setFormat(Message::Format::Plain);
    message.setText(Field::PlainContent, u"Text of a"_s);
    write(message);
    const QByteArray own = head();
    const QByteArray another = "[Head]\r\nTo=left@y.org\r\n";
    writeFile(headPath(globals(), u"b"_s), another); // of a template that the list has lost
    renameTemplate(globals(), u"a"_s, u"b"_s);
    QCOMPARE(templateNames(globals()), QStringList{u"b"_s});
    QCOMPARE(head(u"b"_s), another);
    QCOMPARE(head(), own);
    // The other file has its name to itself.
    QCOMPARE(contentOf(contentPath(globals(), u"b"_s)), QByteArray("Text of a"));
    QVERIFY(!QFile::exists(contentPath(globals(), u"a"_s)));
}

QTEST_GUILESS_MAIN(TestTemplateFiles)
#include "test_templatefiles.moc"
