#include "core/launcher.h"
#include "quillon/text/owntexts.h"
#include "support/treefixture.h"
#include "support/waitfor.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

constexpr quillon::OwnText silence{u"Hall", u"SILENCE", u"Nobody speaks."};

class RecordedPrompts : public quillon::Prompts {
public:
    RecordedPrompts() : m_before(quillon::setPrompts(this)) {}
    ~RecordedPrompts() override { quillon::setPrompts(m_before); }
    RecordedPrompts(const RecordedPrompts &) = delete;
    RecordedPrompts &operator=(const RecordedPrompts &) = delete;

    quillon::BoxAnswer box(const quillon::BoxRequest &request) override
    {
        boxes.append(request);
        return quillon::BoxAnswer::Yes;
    }
    QString input(const quillon::InputRequest &) override { return {}; }
    QStringList openFiles(const quillon::FileRequest &) override { return {}; }
    QString saveFile(const quillon::FileRequest &) override { return {}; }
    QString selectFolder(const QString &) override { return {}; }
    long chooseColor() override { return -1; }
    void showModalForm(const QString &, int) override {}

    QList<quillon::BoxRequest> boxes;

private:
    quillon::Prompts *m_before;
};

} // namespace

class TestTexts : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeBareTree(); }
    void cleanup()
    {
        quillon::setTextSource(nullptr);
        dropTree();
    }

    void textIsReadAtEachUse();
    void boxesAreAskedForByKeyTextValueAndStyle();
    void aFormsTextIsThatOfTheFileEvenWhenItIsEmpty();
    void keyThatIsNotThereGivesAnEmptyBoxThatStillWaits();
    void missingFileGivesAnEmptyBoxThatStillWaits();
    void valueStandsInFrontInSingleQuotes();
    void sentencesFollowTheFileOnceItHasChanged();
    void sentencesAreEnglishWhereTheFileIsMissing();
    void sentencesAreThoseOfTheFolderThatIsSet();

private:
    [[nodiscard]] QString tips() const { return m_tree->globals.programFolder + u"/tips.dll"_s; }
};

void TestTexts::textIsReadAtEachUse()
{
    writeFile(tips(), "[Message & Text]\r\nNO_LOG=one\r\n");
    QCOMPARE(LookupText(u"NO_LOG"_s), u"one"_s);
    writeFile(tips(), "[Message & Text]\r\nNO_LOG=two\r\n");
    QCOMPARE(LookupText(u"NO_LOG"_s), u"two"_s);
}

void TestTexts::boxesAreAskedForByKeyTextValueAndStyle()
{
    writeFile(tips(), "[Message & Text]\r\nK=text\r\n");
    RecordedPrompts prompts;
    QCOMPARE(showMessage(u"K"_s, quillon::OkCancelQuestionBox, u"v"_s), quillon::BoxAnswer::Yes);
    QCOMPARE(showMessage(u"K"_s, quillon::YesNoBox), quillon::BoxAnswer::Yes);
    QCOMPARE(showText(u"said"_s, quillon::WarningBox), quillon::BoxAnswer::Yes);
    QCOMPARE(waitFor(messageShown(u"K"_s, quillon::YesNoCancelBox, u"w"_s)), quillon::BoxAnswer::Yes);
    QCOMPARE(waitFor(textShown(u"told"_s, quillon::InformationBox, u"L"_s)), quillon::BoxAnswer::Yes);
    QStringList asked;
    for (const quillon::BoxRequest &box : std::as_const(prompts.boxes)) {
        asked.append(QStringList{box.Key, box.Text, box.Value, QString::number(box.Style)}.join(u'/'));
    }
    const auto style = [](int number) { return u'/' + QString::number(number); };
    QCOMPARE(asked, (QStringList{u"K/'v' text/v"_s + style(quillon::OkCancelQuestionBox),
                                 u"K/text/"_s + style(quillon::YesNoBox), u"/said/"_s + style(quillon::WarningBox),
                                 u"K/'w' text/w"_s + style(quillon::YesNoCancelBox),
                                 u"L/told/"_s + style(quillon::InformationBox)}));
}

void TestTexts::aFormsTextIsThatOfTheFileEvenWhenItIsEmpty()
{
    writeFile(tips(), "[frmA]\r\nk=text\r\nempty=\r\n[Message & Text]\r\nm=1\r\n");
    QCOMPARE(formText(u"frma"_s, u"K"_s, u"standard"_s), u"text"_s);
    QCOMPARE(formText(u"frmA"_s, u"empty"_s, u"standard"_s), QString());
    QCOMPARE(formText(u"frmA"_s, u"m"_s, u"standard"_s), u"standard"_s);
    QCOMPARE(formText(u"frmB"_s, u"k"_s, QString()), QString());
}

void TestTexts::keyThatIsNotThereGivesAnEmptyBoxThatStillWaits()
{
    writeFile(tips(), "[Message & Text]\r\nNO_LOG=one\r\n");
    RecordedPrompts prompts;
    QCOMPARE(showMessage(u"RESTORE_SET"_s, quillon::YesNoCancelBox), quillon::BoxAnswer::Yes);
    QCOMPARE(prompts.boxes.size(), 1);
    QCOMPARE(prompts.boxes.constFirst().Text, QString());
    QCOMPARE(prompts.boxes.constFirst().Style, static_cast<int>(quillon::YesNoCancelBox));
}

void TestTexts::missingFileGivesAnEmptyBoxThatStillWaits()
{
    RecordedPrompts prompts;
    QCOMPARE(LookupText(u"NO_LOG"_s), QString());
    showMessage(u"NO_LOG"_s, quillon::InformationBox);
    QCOMPARE(prompts.boxes.size(), 1);
}

void TestTexts::valueStandsInFrontInSingleQuotes()
{
    writeFile(tips(), "[Message & Text]\r\nINVALID_TO=is no address.\r\n");
    RecordedPrompts prompts;
    showMessage(u"INVALID_TO"_s, quillon::WarningBox, u"Ada <x"_s);
    showMessage(u"INVALID_TO"_s, quillon::WarningBox, QString());
    QCOMPARE(prompts.boxes.at(0).Text, u"'Ada <x' is no address."_s);
    QCOMPARE(prompts.boxes.at(1).Text, u"'' is no address."_s);
}

void TestTexts::sentencesFollowTheFileOnceItHasChanged()
{
    useLanguageTexts();
    writeFile(tips(), "[Hall]\r\nSILENCE=Alles schweigt.\r\n");
    QCOMPARE(quillon::say(silence), u"Alles schweigt."_s);
    writeFile(tips(), "[Hall]\r\nSILENCE=Stille.\r\n");
    quillon::refreshTexts();
    QCOMPARE(quillon::say(silence), u"Stille."_s);
    QVERIFY(QFile::remove(tips()));
    quillon::refreshTexts();
    QCOMPARE(quillon::say(silence), u"Nobody speaks."_s);
}

void TestTexts::sentencesAreEnglishWhereTheFileIsMissing()
{
    useLanguageTexts();
    QVERIFY(!QFile::exists(tips()));
    QCOMPARE(quillon::say(silence), u"Nobody speaks."_s);
}

void TestTexts::sentencesAreThoseOfTheFolderThatIsSet()
{
    prepareProgram(m_tree->globals); // the start puts the language file in force
    writeFile(tips(), "[Hall]\r\nSILENCE=Alles schweigt.\r\n");
    QCOMPARE(quillon::say(silence), u"Alles schweigt."_s);
    setLanguageFolder(m_tree->path(u"nowhere"_s));
    QCOMPARE(quillon::say(silence), u"Nobody speaks."_s);
}

QTEST_GUILESS_MAIN(TestTexts)
#include "test_texts.moc"
