#include "connectionbench.h"
#include "core/texts.h"
#include "quillon/text/owntexts.h"
#include "support/temporarytree.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::MailTransport;
using testsupport::ScriptedServer;

/// What a connection that fails says comes from the language file.
class TestConnectionLanguage : public ConnectionBench {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        MailTransport::setTimeouts(longTime, longTime, longTime);
        m_tree = std::make_unique<TemporaryTree>();
        useLanguageTexts();
    }
    void cleanup()
    {
        quillon::setTextSource(nullptr);
        m_tree.reset();
    }

    void refusalIsToldInTheLanguageOfTheFile();
    void changeOfTheFileCountsFromTheNextConnection();
    void withoutTheFileTheSentenceIsEnglish();
    void fileThatLacksTheSentenceGivesTheEnglishOne();
    void recordThatCannotBeUsedIsToldInTheLanguageOfTheFile();
    void englishFileSaysWhatTheProgramSaysWithoutIt();

private:
    void translate(const QByteArray &lines) { writeFile(m_tree->globals.programFolder + u"/tips.dll"_s, lines); }
    QString refusal()
    {
        ScriptedServer server;
        server.Greeting = "554 go away\r\n";
        return smtp(accountLine(server.port(), u"N"_s, noLogin)) ? QString() : m_reason;
    }
    const QString m_english = u"Waiting for the greeting of 127.0.0.1 failed: the server answered “554 go away”."_s;
    std::unique_ptr<TemporaryTree> m_tree;
};

void TestConnectionLanguage::refusalIsToldInTheLanguageOfTheFile()
{
    translate("[Transport]\r\n"
              "AWAITING_GREETING=Warten auf den Gruß von %1\r\n"
              "FAILED_BY_ANSWER=Die Antwort „%2“ beendete: %1.\r\n");
    QCOMPARE(refusal(), u"Die Antwort „554 go away“ beendete: Warten auf den Gruß von 127.0.0.1."_s);
}

void TestConnectionLanguage::changeOfTheFileCountsFromTheNextConnection()
{
    translate("[Transport]\r\nFAILED_BY_ANSWER=Erst: %1, %2\r\n");
    QVERIFY(refusal().startsWith(u"Erst: "_s));
    translate("[Transport]\r\nFAILED_BY_ANSWER=Dann: %1, %2\r\n");
    QVERIFY(refusal().startsWith(u"Dann: "_s));
}

void TestConnectionLanguage::withoutTheFileTheSentenceIsEnglish()
{
    QCOMPARE(refusal(), m_english);
}

void TestConnectionLanguage::fileThatLacksTheSentenceGivesTheEnglishOne()
{
    translate("[Transport]\r\nFAILED_BY_ANSWER=\r\nNO_SERVER=Kein Server.\r\n");
    QCOMPARE(refusal(), m_english);
}

void TestConnectionLanguage::recordThatCannotBeUsedIsToldInTheLanguageOfTheFile()
{
    translate("[Connection Test]\r\nACCOUNT_FIELDS=%2 Felder, nicht %1.\r\n"
              "PROXY_WITHOUT_ADDRESS=Ohne Adresse.\r\n[Transport]\r\nNO_SERVER=Kein Server.\r\n");
    QVERIFY(!smtp(u"one\ttwo"_s));
    QCOMPARE(m_reason, u"11 Felder, nicht 2."_s);
    QVERIFY(!reach(proxyLine(QString(), u"1080"_s, noLogin), 1));
    QCOMPARE(m_reason, u"Ohne Adresse."_s);
    QVERIFY(!smtp(accountLine(QString(), u"25"_s, u"N"_s, noLogin)));
    QCOMPARE(m_reason, u"Kein Server."_s);
}

void TestConnectionLanguage::englishFileSaysWhatTheProgramSaysWithoutIt()
{
    setLanguageFolder(u"" TEST_SOURCE_DIR "/../../language/en"_s);
    QVERIFY(QFile::exists(languageFolder() + u"/tips.dll"_s));
    QCOMPARE(refusal(), m_english);
}

QTEST_GUILESS_MAIN(TestConnectionLanguage)
#include "test_connectionlanguage.moc"
