#include "message/plainmessage.h"
#include "message/saveflow.h"
#include "message/templatename.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = Message::Field;

/// Names of templates, the titles that tell them, and what the saving of a message decides.
class TestTemplateName : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theNineForbiddenCharactersAreLeftOut();
    void theTitleTellsWhichTemplateIsOpen();
    void aNameComesBackOutOfItsTitle();
    void aTitleWithoutANameHasNone();
    void aNewMessageProposesItsSubject();
    void aBlankSubjectProposesAStandardName();
    void aTemplateProposesItsOwnName();
    void aSubjectOfForbiddenCharactersProposesNothing();
    void aMessageIsBlankWhenAllIsBlank();
    void noAnswerEndsTheSave();
    void aNameThatIsNotListedIsNew();
    void theOwnNameIsOverwrittenWithoutAQuestion();
    void anotherNameOfTheListIsAskedFor();
    void namesAreComparedTrimmedAndInAnyCase();
    void anAnswerOfForbiddenCharactersOnlyIsAnEmptyNewName();
};

void TestTemplateName::theNineForbiddenCharactersAreLeftOut()
{
    QCOMPARE(withoutForbiddenCharacters(u"a\\b/c:d*e?f\"g<h>i|j"_s), u"abcdefghij"_s);
    QCOMPARE(withoutForbiddenCharacters(u"\\/:*?\"<>|"_s), QString());
    const QString allowed = u" Ünder-line_(1) [x] {y} 'z' & 100% #@!;,.~` "_s;
    QCOMPARE(withoutForbiddenCharacters(allowed), allowed);
}

void TestTemplateName::theTitleTellsWhichTemplateIsOpen()
{
    QCOMPARE(newMessageTitle(), u"Corvane - New Message"_s);
    QCOMPARE(editTitle(u"May news"_s), u"Corvane - Edit \"May news\""_s);
    QCOMPARE(previewTitle(u"May news"_s), u"Corvane - Preview \"May news\""_s);
    QVERIFY(isNewMessageTitle(u"Corvane - New Message"_s));
    QVERIFY(!isNewMessageTitle(u"Corvane - new message"_s));
    QVERIFY(!isNewMessageTitle(u"Corvane - New Message "_s));
    QVERIFY(!isNewMessageTitle(editTitle(u"New Message"_s)));
}

void TestTemplateName::aNameComesBackOutOfItsTitle()
{
    for (const QString &name : {u"May news"_s, u" a "_s, u"\u4f60"_s, QString(), u"New Message"_s}) {
        QCOMPARE(nameInTitle(editTitle(name)), name);
        QCOMPARE(nameInTitle(previewTitle(name)), name);
    }
}

void TestTemplateName::aTitleWithoutANameHasNone()
{
    QCOMPARE(nameInTitle(newMessageTitle()), QString());
    QCOMPARE(nameInTitle(QString()), QString());
    QCOMPARE(nameInTitle(u"Corvane - Edit \""_s), QString());
}

void TestTemplateName::aNewMessageProposesItsSubject()
{
    QCOMPARE(proposedName(newMessageTitle(), u"  a/b:c  "_s), u"abc"_s);
    QCOMPARE(proposedName(newMessageTitle(), u"May news"_s), u"May news"_s);
}

void TestTemplateName::aBlankSubjectProposesAStandardName()
{
    QCOMPARE(proposedName(newMessageTitle(), QString()), u"New Template"_s);
    QCOMPARE(proposedName(newMessageTitle(), u" \t "_s), u"New Template"_s);
}

void TestTemplateName::aTemplateProposesItsOwnName()
{
    QCOMPARE(proposedName(editTitle(u"May news"_s), u"Another"_s), u"May news"_s);
    QCOMPARE(proposedName(editTitle(u" x/y "_s), QString()), u" xy "_s);
}

void TestTemplateName::aSubjectOfForbiddenCharactersProposesNothing()
{
    QCOMPARE(proposedName(newMessageTitle(), u"?*<>"_s), QString());
}

void TestTemplateName::aMessageIsBlankWhenAllIsBlank()
{
    PlainMessage message;
    QVERIFY(isBlank(message, QString()));
    QVERIFY(isBlank(message, u" \r\n\t"_s));
    QVERIFY(!isBlank(message, u" a "_s));
    for (const Field field : {Field::To, Field::CC, Field::BCC, Field::Subject}) {
        PlainMessage one;
        one.setText(field, u"  "_s);
        QVERIFY(isBlank(one, QString()));
        one.setText(field, u"x"_s);
        QVERIFY(!isBlank(one, QString()));
    }
    message.setText(Field::Account, u"ada@x.org"_s); // says nothing about what was written
    QVERIFY(isBlank(message, QString()));
}

void TestTemplateName::noAnswerEndsTheSave()
{
    QCOMPARE(decideName(QString(), QString(), u"May"_s, {}), NameAnswer::End);
    QCOMPARE(decideName(QString(), QString(), QString(), {QString()}), NameAnswer::End);
}

void TestTemplateName::aNameThatIsNotListedIsNew()
{
    QCOMPARE(decideName(u"May"_s, u"May"_s, u"May"_s, {u"June"_s, u"May 2"_s}), NameAnswer::New);
}

void TestTemplateName::theOwnNameIsOverwrittenWithoutAQuestion()
{
    QCOMPARE(decideName(u"May"_s, u"May"_s, u"May"_s, {u"June"_s, u"May"_s}), NameAnswer::Overwrite);
}

void TestTemplateName::anotherNameOfTheListIsAskedFor()
{
    QCOMPARE(decideName(u"June"_s, u"June"_s, u"May"_s, {u"June"_s, u"May"_s}), NameAnswer::Ask);
    QCOMPARE(decideName(u"OLD"_s, u"OLD"_s, u"old"_s, {u"old"_s}), NameAnswer::Ask);
}

void TestTemplateName::namesAreComparedTrimmedAndInAnyCase()
{
    QCOMPARE(decideName(u" may "_s, u" may "_s, u"x"_s, {u"MAY"_s}), NameAnswer::Ask);
    QCOMPARE(decideName(u"may"_s, u"may"_s, u"x"_s, {u"  May  "_s}), NameAnswer::Ask);
}

void TestTemplateName::anAnswerOfForbiddenCharactersOnlyIsAnEmptyNewName()
{
    QCOMPARE(decideName(u"?"_s, QString(), u"May"_s, {u"May"_s}), NameAnswer::New);
}

QTEST_GUILESS_MAIN(TestTemplateName)
#include "test_templatename.moc"
