#include "message/plainmessage.h"
#include "message/templatefiles.h"
#include "support/treefixture.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using Choice = Message::Choice;
using Field = Message::Field;

/// Any message that can be written, saved and loaded, is the same message.
class TestTemplateRoundTrip : public QObject, private TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeTree(); }
    void cleanup() { dropTree(); }

    void anyMessageComesBackAsItWas();
    void aLaterSaveTakesThePlaceOfAllOfIt();
    void whatIsNotKept();

private:
    QString text(int most, bool lines);
    PlainMessage message();
    [[nodiscard]] static QStringList values(const PlainMessage &message);

    QRandomGenerator m_random{20261121};
    QStringList m_files;
};

namespace {

const QStringList encodings{u"utf-8 | Unicode (UTF-8)"_s, u"koi8-r | Cyrillic"_s, u"big5 | Chinese"_s};

} // namespace

/// Of what a keyboard gives and what files trip over.
QString TestTemplateRoundTrip::text(int most, bool lines)
{
    static const QStringList pieces{u"a"_s,       u"Z"_s,
                                    u"7"_s,       u" "_s,
                                    u"  "_s,      u"\t"_s,
                                    u"ü"_s,       u"ß"_s,
                                    u"你"_s,      u"🦋"_s,
                                    u"e\u0301"_s, u"="_s,
                                    u";"_s,       u"#"_s,
                                    u"["_s,       u"]"_s,
                                    u"\""_s,      u"'"_s,
                                    u"\\"_s,      u"\\n"_s,
                                    u"%41"_s,     u"{x}"_s,
                                    u"|"_s,       u"<a@b>"_s,
                                    u","_s,       u"=?utf-8?B?YQ==?="_s,
                                    u"\u00a0"_s,  u"\ufeff"_s,
                                    u"\u2028"_s,  u"\u200f"_s,
                                    u"True"_s,    u"[Head]"_s};
    QString result;
    for (int i = static_cast<int>(m_random.bounded(most + 1)); i > 0; --i) {
        const bool lineEnd = lines && m_random.bounded(8) == 0;
        result += lineEnd ? u"\r\n"_s : pieces.at(m_random.bounded(static_cast<int>(pieces.size())));
    }
    return result;
}

PlainMessage TestTemplateRoundTrip::message()
{
    PlainMessage message;
    message.encodings = encodings;
    message.setText(Field::Account, text(10, false).trimmed());
    message.setActual(Choice::Sender, m_random.bounded(2) == 0);
    message.setText(Field::Sender, text(12, false));
    message.setActual(Choice::ReplyReceiver, m_random.bounded(2) == 0);
    message.setText(Field::ReplyReceiver, text(12, false));
    for (const Field field : {Field::To, Field::CC, Field::BCC}) {
        message.setText(field, text(60, true));
    }
    message.setText(Field::Subject, text(40, false));
    QStringList paths;
    for (const QString &file : std::as_const(m_files)) {
        if (m_random.bounded(2) == 0) {
            paths.append(file);
        }
    }
    message.setAttachmentPaths(paths);
    message.setActual(Choice::Date, m_random.bounded(2) == 0);
    if (!message.isActual(Choice::Date)) {
        message.setCustomDateTime(QDate(1970, 1, 1).addDays(m_random.bounded(40000)),
                                  QTime(0, 0).addSecs(m_random.bounded(86400)));
    }
    message.setFormat(m_random.bounded(2) == 0 ? Message::Format::Plain : Message::Format::Rich);
    message.setText(message.format() == Message::Format::Plain ? Field::PlainContent : Field::RichContent,
                    text(300, true));
    message.setText(Field::Encoding, encodings.at(m_random.bounded(3)).section(u" | "_s, 1));
    message.setPriority(static_cast<Message::Priority>(m_random.bounded(3)));
    message.setOneByOne(m_random.bounded(2) == 0);
    message.setReceipt(m_random.bounded(2) == 0);
    return message;
}

QStringList TestTemplateRoundTrip::values(const PlainMessage &message)
{
    QStringList all;
    for (const Field field : {Field::Account, Field::Sender, Field::ReplyReceiver, Field::To, Field::CC, Field::BCC,
                              Field::Subject, Field::PlainContent, Field::RichContent, Field::Encoding}) {
        all.append(message.text(field));
    }
    for (const Choice choice : {Choice::Sender, Choice::ReplyReceiver, Choice::Date}) {
        all.append(message.isActual(choice) ? u"actual"_s : u"custom"_s);
    }
    if (!message.isActual(Choice::Date)) {
        all.append(message.customDate().toString(Qt::ISODate) + message.customTime().toString(Qt::ISODate));
    }
    all.append(QString::number(static_cast<int>(message.format())));
    all.append(QString::number(static_cast<int>(message.priority())));
    all.append(message.oneByOne() ? u"one"_s : u"all"_s);
    all.append(message.receipt() ? u"receipt"_s : u"none"_s);
    all.append(message.attachmentPaths());
    return all;
}

void TestTemplateRoundTrip::anyMessageComesBackAsItWas()
{
    for (const QString &name : {u"list.txt"_s, u"Übersicht = 1;.txt"_s, u"你好.pdf"_s, u" blank .txt"_s}) {
        m_files.append(m_tree->path(name));
        writeFile(m_files.last(), "x");
    }
    for (int i = 0; i < 400; ++i) {
        PlainMessage written = message();
        const QString name = u"t%1"_s.arg(i % 20);
        writeTemplate(m_tree->globals, name, i < 20, written, [] {});
        PlainMessage loaded = message(); // whatever stood there before
        loaded.encodings = encodings;
        LoadTemplate(m_tree->globals, name, loaded);
        QCOMPARE(values(loaded), values(written));
    }
}

void TestTemplateRoundTrip::aLaterSaveTakesThePlaceOfAllOfIt()
{
    PlainMessage first = message();
    first.setText(Field::To, u"a@example.com,\r\nb@example.com"_s);
    writeTemplate(m_tree->globals, u"t"_s, true, first, [] {});
    PlainMessage second;
    second.encodings = encodings;
    second.setText(Field::Encoding, u"Cyrillic"_s);
    writeTemplate(m_tree->globals, u"t"_s, false, second, [] {});
    PlainMessage loaded = message();
    LoadTemplate(m_tree->globals, u"t"_s, loaded);
    QCOMPARE(values(loaded), values(second));
}

void TestTemplateRoundTrip::whatIsNotKept()
{
    PlainMessage written;
    written.encodings = encodings;
    const QString bar = m_tree->path(u"a|b.txt"_s);
    writeFile(bar, "x");
    const QString gone = m_tree->path(u"gone.txt"_s);
    written.setAttachmentPaths({bar, gone});
    written.setText(Field::Account, u" a@example.com "_s);
    written.setText(Field::Encoding, u"no such encoding"_s);
    written.setFormat(Message::Format::Plain);
    written.setText(Field::RichContent, u"<p>hidden</p>"_s);
    written.setText(Field::Source, u"hidden"_s);
    writeTemplate(m_tree->globals, u"t"_s, true, written, [] {});
    PlainMessage loaded;
    loaded.encodings = encodings;
    loaded.setText(Field::Encoding, u"Chinese"_s);
    LoadTemplate(m_tree->globals, u"t"_s, loaded);
    QCOMPARE(loaded.attachmentPaths(), QStringList()); // two paths that are none
    QCOMPARE(loaded.text(Field::Account), u"a@example.com"_s);
    QCOMPARE(loaded.text(Field::Encoding), u"Chinese"_s);
    QCOMPARE(loaded.text(Field::RichContent), QString());
    QCOMPARE(loaded.text(Field::Source), QString());
}

QTEST_GUILESS_MAIN(TestTemplateRoundTrip)
#include "test_templateroundtrip.moc"
