#include "message/plainmessage.h"
#include "message/templatefiles.h"
#include "support/treefixture.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QTest>
#include <QThread>

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = Message::Field;

/// What is on the disk when a program that saves and renames templates is killed.
class TestTemplateKills : public QObject, private TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeTree(); }
    void cleanup() { dropTree(); }

    void everyFileIsOldOrNewAndNoTemplateIsLost();

private:
    [[nodiscard]] const ApplicationGlobals &globals() const { return m_tree->globals; }
    void lookAtTheSaved() const;
    void lookAtTheRenamed() const;
};

namespace {

/// A text between two equal marks is whole.
bool isWhole(const QString &text, QChar filling, int length)
{
    const QString mark = text.section(filling, 0, 0);
    return text == mark + QString(length, filling) + mark;
}

} // namespace

void TestTemplateKills::lookAtTheSaved() const
{
    if (!isListed(globals(), u"saved"_s)) {
        return; // killed before the first save
    }
    QCOMPARE(templateNames(globals()).count(u"saved"_s), 1);
    PlainMessage message;
    LoadTemplate(globals(), u"saved"_s, message);
    const QString to = message.text(Field::To);
    const QString content = message.text(Field::PlainContent);
    QVERIFY(to.isEmpty() || isWhole(to, u'x', 3000));
    QVERIFY(content.isEmpty() || isWhole(content, u'y', 4000));
    // The head is one write: its keys are those of one save.
    QVERIFY(message.text(Field::Subject) == to.section(u'x', 0, 0));
    // The content follows its head.
    if (!content.isEmpty()) {
        const int behind = to.section(u'x', 0, 0).toInt() - content.section(u'y', 0, 0).toInt();
        QVERIFY(behind == 0 || behind == 1);
    }
}

void TestTemplateKills::lookAtTheRenamed() const
{
    // The one that was there before all of it is listed under one of its two names, with all that it had.
    const QStringList names = templateNames(globals());
    QCOMPARE(names.count(u"one"_s) + names.count(u"other"_s), 1);
    QVERIFY(names.contains(u"beside"_s));
    PlainMessage message;
    LoadTemplate(globals(), names.contains(u"one"_s) ? u"one"_s : u"other"_s, message);
    QCOMPARE(message.text(Field::Subject), u"kept"_s);
    QCOMPARE(message.text(Field::PlainContent), u"Kept text"_s);
}

void TestTemplateKills::everyFileIsOldOrNewAndNoTemplateIsLost()
{
    PlainMessage kept;
    kept.setFormat(Message::Format::Plain);
    kept.setText(Field::Subject, u"kept"_s);
    kept.setText(Field::PlainContent, u"Kept text"_s);
    writeTemplate(globals(), u"one"_s, true, kept, [] {});
    writeTemplate(globals(), u"beside"_s, true, kept, [] {});
    QRandomGenerator random(12);
    bool saved = false;
    bool renamed = false;
    for (int round = 0; round < 300; ++round) {
        QProcess writer;
        writer.start(u"" WRITE_TEMPLATES ""_s, {m_tree->userFolder()});
        const int changes = round % 4; // so that each change is the one that is hit, however busy the machine is
        while (writer.bytesAvailable() < changes) {
            QVERIFY(writer.waitForReadyRead());
        }
        QThread::usleep(random.bounded(3000)); // the random moment, not a wait for anything
        writer.kill();
        QVERIFY(writer.waitForFinished());
        lookAtTheSaved();
        lookAtTheRenamed();
        if (QTest::currentTestFailed()) {
            return;
        }
        saved = saved || isListed(globals(), u"saved"_s);
        if (isListed(globals(), u"other"_s)) {
            renamed = true;
            renameTemplate(globals(), u"other"_s, u"one"_s); // the writer begins with that name
        }
    }
    QVERIFY(saved && renamed); // the kills did meet the changes
}

QTEST_GUILESS_MAIN(TestTemplateKills)
#include "test_templatekills.moc"
