#include "quillon/text/owntexts.h"

#include <QHash>
#include <QTest>

#include <optional>

using namespace Qt::StringLiterals;
using quillon::OwnText;
using quillon::say;

namespace {

constexpr OwnText greeting{u"Hall", u"GREETING", u"%1 greets %2."};
constexpr OwnText silence{u"Hall", u"SILENCE", u"Nobody speaks."};

/// A language of which a test decides what it has, and that counts how often it is asked.
class Language : public quillon::TextSource {
public:
    Language() : m_before(quillon::setTextSource(this)) {}
    ~Language() override { quillon::setTextSource(m_before); }
    Language(const Language &) = delete;
    Language &operator=(const Language &) = delete;

    QString text(const QString &section, const QString &key) override
    {
        ++asked;
        return texts.value(section + u'/' + key);
    }
    bool hasChanged() override { return changed; }

    QHash<QString, QString> texts;
    bool changed = false;
    int asked = 0;

private:
    quillon::TextSource *m_before;
};

} // namespace

class TestOwnTexts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutALanguageTheEnglishTextIsSaid();
    void aTranslationPutsTheWordsWhereItNeedsThem();
    void aTextThatTheLanguageLacksIsSaidInEnglish();
    void anEmptyTextIsNoTranslation();
    void whatAWordHoldsIsNotTakenForAPlace();
    void aTextIsLookedUpOnceUntilTheLanguageHasChanged();
    void anotherLanguageCountsAtOnce();
};

void TestOwnTexts::withoutALanguageTheEnglishTextIsSaid()
{
    QCOMPARE(say(silence), u"Nobody speaks."_s);
    QCOMPARE(say(greeting, u"Ada"_s, u"Bob"_s), u"Ada greets Bob."_s);
}

void TestOwnTexts::aTranslationPutsTheWordsWhereItNeedsThem()
{
    Language language;
    language.texts[u"Hall/GREETING"_s] = u"%2 wird von %1 begrüßt."_s;
    QCOMPARE(say(greeting, u"Ada"_s, u"Bob"_s), u"Bob wird von Ada begrüßt."_s);
}

void TestOwnTexts::aTextThatTheLanguageLacksIsSaidInEnglish()
{
    Language language;
    language.texts[u"Cellar/SILENCE"_s] = u"Alles schweigt."_s;
    QCOMPARE(say(silence), u"Nobody speaks."_s);
}

void TestOwnTexts::anEmptyTextIsNoTranslation()
{
    Language language;
    language.texts[u"Hall/SILENCE"_s] = u"  "_s;
    QCOMPARE(say(silence), u"Nobody speaks."_s);
}

void TestOwnTexts::whatAWordHoldsIsNotTakenForAPlace()
{
    QCOMPARE(say(greeting, u"fe80::1%2"_s, u"%1"_s), u"fe80::1%2 greets %1."_s);
}

void TestOwnTexts::aTextIsLookedUpOnceUntilTheLanguageHasChanged()
{
    Language language;
    language.texts[u"Hall/SILENCE"_s] = u"Alles schweigt."_s;
    QCOMPARE(say(silence), u"Alles schweigt."_s);
    QCOMPARE(say(silence), u"Alles schweigt."_s);
    quillon::refreshTexts();
    QCOMPARE(say(silence), u"Alles schweigt."_s);
    QCOMPARE(language.asked, 1);
    language.texts[u"Hall/SILENCE"_s] = u"Stille."_s;
    language.changed = true;
    quillon::refreshTexts();
    QCOMPARE(say(silence), u"Stille."_s);
    QCOMPARE(language.asked, 2);
}

void TestOwnTexts::anotherLanguageCountsAtOnce()
{
    QCOMPARE(say(silence), u"Nobody speaks."_s);
    {
        Language language;
        language.texts[u"Hall/SILENCE"_s] = u"Alles schweigt."_s;
        QCOMPARE(say(silence), u"Alles schweigt."_s);
    }
    QCOMPARE(say(silence), u"Nobody speaks."_s);
}

QTEST_GUILESS_MAIN(TestOwnTexts)
#include "test_owntexts.moc"
