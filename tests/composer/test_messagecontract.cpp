#include "mainfixture.h"
#include "message/plainmessage.h"
#include "message/templatefiles.h"
#include "message/templatemessage.h"
#include "support/fakewindow.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using Choice = Message::Choice;
using Field = Message::Field;

namespace {

/// One implementation of a message, with what it needs around it.
class Subject {
public:
    virtual ~Subject() = default;
    virtual Message &message() = 0;
    /// Lets what was set go where it is kept, and come back from there.
    virtual void keep() {}
};

class WindowSubject : public Subject {
public:
    Message &message() override { return m_main.message(); }

private:
    MainFixture m_main{[](MainFixture &main) { main.addAccounts(); }};
};

template <typename Kind> class PlainSubject : public Subject {
public:
    PlainSubject()
    {
        m_message.encodings = {u"big5 | Chinese Traditional (Big5)"_s, u"utf-8 | Unicode (UTF-8)"_s};
        m_message.selectEncoding(1);
    }
    Message &message() override { return m_message; }

private:
    Kind m_message;
};

/// Every keeping writes the files and makes the message anew from them.
class TemplateSubject : public Subject {
public:
    TemplateSubject()
    {
        m_tree.prepare();
        m_message = std::make_unique<TemplateMessage>(m_tree.globals, u"club"_s);
    }
    Message &message() override { return *m_message; }
    void keep() override
    {
        m_message->save();
        m_message = std::make_unique<TemplateMessage>(m_tree.globals, u"club"_s);
    }

private:
    TemporaryTree m_tree;
    std::unique_ptr<TemplateMessage> m_message;
};

using Maker = std::unique_ptr<Subject> (*)();

template <typename Kind> std::unique_ptr<Subject> make()
{
    return std::make_unique<Kind>();
}

} // namespace

Q_DECLARE_METATYPE(Maker)

/// What everybody who is handed a message relies on, for each implementation of it.
class TestMessageContract : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_subject.reset(); }

    void textsComeBackAsTheyWereSet_data() { addImplementations(); }
    void textsComeBackAsTheyWereSet();
    void theRichContentComesBack_data() { addImplementations(); }
    void theRichContentComesBack();
    void everyFieldStartsEmptyAndIsItsOwn_data() { addImplementations(); }
    void everyFieldStartsEmptyAndIsItsOwn();
    void lineEndsComeAsCrLf_data() { addImplementations(); }
    void lineEndsComeAsCrLf();
    void aFieldOfOneLineHoldsOneLine_data() { addImplementations(); }
    void aFieldOfOneLineHoldsOneLine();
    void aNewMessageIsActualNormalAndForAll_data() { addImplementations(); }
    void aNewMessageIsActualNormalAndForAll();
    void choicesAndMarksComeBackAsTheyWereSet_data() { addImplementations(); }
    void choicesAndMarksComeBackAsTheyWereSet();
    void eachPriorityIsKept_data() { addImplementations(); }
    void eachPriorityIsKept();
    void theCustomMomentComesBackToTheSecond_data() { addImplementations(); }
    void theCustomMomentComesBackToTheSecond();
    void attachmentsKeepTheirOrder_data() { addImplementations(); }
    void attachmentsKeepTheirOrder();
    void theListOfEncodingsIsWalkedByIndex_data() { addImplementations(); }
    void theListOfEncodingsIsWalkedByIndex();
    void anotherTextMarksTheMessageAsChanged_data() { addImplementations(); }
    void anotherTextMarksTheMessageAsChanged();
    void marksDateAndPriorityMarkNothing_data() { addImplementations(); }
    void marksDateAndPriorityMarkNothing();

private:
    static void addImplementations()
    {
        QTest::addColumn<Maker>("maker");
        QTest::newRow("the main window") << Maker(make<WindowSubject>);
        QTest::newRow("plain values") << Maker(make<PlainSubject<PlainMessage>>);
        QTest::newRow("the files of a template") << Maker(make<TemplateSubject>);
        QTest::newRow("the window's stand-in in tests") << Maker(make<PlainSubject<FakeWindow>>);
    }
    Message &message() { return m_subject->message(); }

    std::unique_ptr<Subject> m_subject;
};

void TestMessageContract::init()
{
    QFETCH(const Maker, maker);
    m_subject = maker();
}

void TestMessageContract::textsComeBackAsTheyWereSet()
{
    const QMap<Field, QString> texts = {
        {Field::Account, u"office@example.com"_s},
        {Field::To, u" Bob B <bob@y.org>,  cy@y.org,"_s},
        {Field::CC, u"=\"x\", [a]"_s},
        {Field::BCC, u"Zoë <zoe@y.org>\r\nbea@y.org"_s},
        {Field::Subject, u" Über 100 %: \u4f60\u597d \U0001F600 "_s},
        {Field::PlainContent, u"  Dear {x},\r\n\r\n\tindented\u00a0text \r\n"_s},
        {Field::Encoding, u"Unicode (UTF-8)"_s},
    };
    message().setActual(Choice::Sender, false);
    message().setActual(Choice::ReplyReceiver, false);
    message().setText(Field::Sender, u"Ann \"A\" Lee <ann@example.com>"_s);
    message().setText(Field::ReplyReceiver, u"reply@example.com"_s);
    for (auto it = texts.cbegin(); it != texts.cend(); ++it) {
        message().setText(it.key(), it.value());
    }
    m_subject->keep();
    QCOMPARE(message().text(Field::Sender), u"Ann \"A\" Lee <ann@example.com>"_s);
    QCOMPARE(message().text(Field::ReplyReceiver), u"reply@example.com"_s);
    for (auto it = texts.cbegin(); it != texts.cend(); ++it) {
        QCOMPARE(message().text(it.key()), it.value());
    }
}

void TestMessageContract::theRichContentComesBack()
{
    const QString html = u"<p>Dear {x}, \u00a0\u4f60 &amp; <b>you</b></p>\r\n"_s;
    message().setFormat(Message::Format::Rich); // as far as there is an editor for it
    message().pblnChanged = false;
    message().setText(Field::RichContent, html);
    QVERIFY2(!message().pblnChanged, "a document that the editor is given is nothing that was typed");
    m_subject->keep();
    QCOMPARE(message().text(Field::RichContent), html);
    QCOMPARE(contentOf(message(), Message::Format::Rich), html);
    message().setFormat(Message::Format::Plain);
    message().setText(Field::PlainContent, u"plain"_s);
    m_subject->keep();
    QCOMPARE(message().format(), Message::Format::Plain);
    QCOMPARE(contentOf(message(), Message::Format::Plain), u"plain"_s);
}

void TestMessageContract::everyFieldStartsEmptyAndIsItsOwn()
{
    const QList<Field> fields = {Field::Account, Field::Sender,       Field::ReplyReceiver, Field::Encoding,
                                 Field::To,      Field::CC,           Field::BCC,           Field::Subject,
                                 Field::Source,  Field::PlainContent, Field::RichContent};
    for (const Field field :
         {Field::To, Field::CC, Field::BCC, Field::Subject, Field::Source, Field::PlainContent, Field::RichContent}) {
        QCOMPARE(message().text(field), QString());
    }
    message().setActual(Choice::Sender, false);
    message().setActual(Choice::ReplyReceiver, false);
    const auto textOf = [](Field field) { return u" text %1 "_s.arg(static_cast<int>(field)); };
    for (const Field field : fields) {
        message().setText(field, textOf(field));
    }
    for (const Field field : fields) {
        QCOMPARE(message().text(field), textOf(field));
    }
    for (const Field field : fields) {
        message().setText(field, QString());
        QCOMPARE(message().text(field), QString());
    }
}

void TestMessageContract::lineEndsComeAsCrLf()
{
    for (const Field field : {Field::Source, Field::RichContent}) {
        message().setText(field, u"a\nb\r\nc"_s);
        QCOMPARE(message().text(field), u"a\r\nb\r\nc"_s);
    }
    for (const Field field : {Field::To, Field::CC, Field::BCC, Field::PlainContent}) {
        message().setText(field, u"a\nb\r\nc"_s);
        QCOMPARE(message().text(field), u"a\r\nb\r\nc"_s);
    }
    m_subject->keep();
    for (const Field field : {Field::To, Field::CC, Field::BCC, Field::PlainContent}) {
        QCOMPARE(message().text(field), u"a\r\nb\r\nc"_s);
    }
}

void TestMessageContract::aFieldOfOneLineHoldsOneLine()
{
    message().setActual(Choice::Sender, false);
    message().setActual(Choice::ReplyReceiver, false);
    for (const Field field : {Field::Account, Field::Sender, Field::ReplyReceiver, Field::Encoding, Field::Subject}) {
        message().setText(field, u"one\ntwo\r\nthree\rfour"_s);
        QCOMPARE(message().text(field), u"one two three four"_s);
    }
    m_subject->keep();
    for (const Field field : {Field::Account, Field::Sender, Field::ReplyReceiver, Field::Subject}) {
        QCOMPARE(message().text(field), u"one two three four"_s);
    }
}

void TestMessageContract::aNewMessageIsActualNormalAndForAll()
{
    for (const Choice choice : {Choice::Sender, Choice::ReplyReceiver, Choice::Date}) {
        QVERIFY(message().isActual(choice));
    }
    QCOMPARE(message().priority(), Message::Priority::Normal);
    QVERIFY(!message().oneByOne());
    QVERIFY(!message().receipt());
    QVERIFY(message().attachmentPaths().isEmpty());
    QVERIFY(!message().pblnChanged);
}

void TestMessageContract::choicesAndMarksComeBackAsTheyWereSet()
{
    // One of the five differs from the others, each in turn, in both directions.
    for (int turn = 0; turn < 10; ++turn) {
        const auto on = [turn](int mark) { return (mark == turn % 5) == (turn < 5); };
        message().setActual(Choice::Sender, on(0));
        message().setActual(Choice::ReplyReceiver, on(1));
        message().setActual(Choice::Date, on(2));
        message().setOneByOne(on(3));
        message().setReceipt(on(4));
        m_subject->keep();
        QCOMPARE(message().isActual(Choice::Sender), on(0));
        QCOMPARE(message().isActual(Choice::ReplyReceiver), on(1));
        QCOMPARE(message().isActual(Choice::Date), on(2));
        QCOMPARE(message().oneByOne(), on(3));
        QCOMPARE(message().receipt(), on(4));
    }
}

void TestMessageContract::eachPriorityIsKept()
{
    using Priority = Message::Priority;
    for (const Priority priority : {Priority::Low, Priority::High, Priority::Normal}) {
        message().setPriority(priority);
        m_subject->keep();
        QCOMPARE(message().priority(), priority);
    }
}

void TestMessageContract::theCustomMomentComesBackToTheSecond()
{
    message().setActual(Choice::Date, false);
    message().setCustomDateTime(QDate(2027, 12, 31), QTime(23, 59, 58));
    m_subject->keep();
    QCOMPARE(message().customDate(), QDate(2027, 12, 31));
    QCOMPARE(message().customTime(), QTime(23, 59, 58));
}

void TestMessageContract::attachmentsKeepTheirOrder()
{
    const QTemporaryDir folder;
    QStringList paths;
    for (const QString &name : {u"b.txt"_s, u"a.txt"_s, u"c d.txt"_s}) {
        paths.append(folder.filePath(name));
        writeFile(paths.last(), "x");
    }
    paths.append(folder.path());
    message().setAttachmentPaths(paths);
    m_subject->keep();
    QCOMPARE(message().attachmentPaths(), paths);
}

void TestMessageContract::theListOfEncodingsIsWalkedByIndex()
{
    QVERIFY(message().encodingCount() > 1);
    QStringList entries;
    for (int i = 0; i < message().encodingCount(); ++i) {
        message().selectEncoding(i);
        entries.append(message().selectedEncoding());
        QVERIFY2(entries.last().contains(u" | "_s), qPrintable(entries.last()));
    }
    QCOMPARE(entries.count(u"utf-8 | Unicode (UTF-8)"_s), 1);
    QVERIFY(!message().pblnChanged);
}

void TestMessageContract::anotherTextMarksTheMessageAsChanged()
{
    message().setActual(Choice::Sender, false);
    message().setActual(Choice::ReplyReceiver, false);
    for (const Field field : {Field::Account, Field::Sender, Field::ReplyReceiver, Field::Encoding, Field::To,
                              Field::CC, Field::BCC, Field::Subject, Field::PlainContent, Field::Source}) {
        message().pblnChanged = false;
        message().setText(field, u"another"_s);
        QVERIFY(message().pblnChanged);
        message().pblnChanged = false;
        message().setText(field, u"another"_s);
        QVERIFY2(!message().pblnChanged, qPrintable(u"field %1"_s.arg(static_cast<int>(field))));
    }
}

void TestMessageContract::marksDateAndPriorityMarkNothing()
{
    message().pblnChanged = false;
    message().setActual(Choice::Date, false);
    message().setCustomDateTime(QDate(2030, 1, 2), QTime(3, 4, 5));
    message().setPriority(Message::Priority::High);
    message().setOneByOne(true);
    message().setReceipt(true);
    QVERIFY(!message().pblnChanged);
}

QTEST_MAIN(TestMessageContract)
#include "test_messagecontract.moc"
