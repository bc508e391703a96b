#include "optionsbench.h"

#include <array>
#include <sys/inotify.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace corvane;
using Tab = OptionsTab;

namespace {

/// Counts how often a file was put in place or written since this was made.
class RewriteCounter {
public:
    explicit RewriteCounter(const QString &path)
        : m_name(QFileInfo(path).fileName().toUtf8()), m_notes(::inotify_init1(IN_NONBLOCK))
    {
        const QByteArray folder = QFileInfo(path).path().toUtf8();
        if (::inotify_add_watch(m_notes, folder.constData(), IN_MOVED_TO | IN_CLOSE_WRITE) < 0) {
            qFatal("cannot watch %s", folder.constData());
        }
    }
    ~RewriteCounter() { ::close(m_notes); }
    RewriteCounter(const RewriteCounter &) = delete;
    RewriteCounter &operator=(const RewriteCounter &) = delete;

    /// Since the last call.
    int count()
    {
        int found = 0;
        alignas(inotify_event) std::array<char, 4096> notes;
        for (ssize_t size = ::read(m_notes, notes.data(), notes.size()); size > 0;
             size = ::read(m_notes, notes.data(), notes.size())) {
            for (ssize_t at = 0; at < size;) {
                const auto *note = reinterpret_cast<const inotify_event *>(&notes[static_cast<std::size_t>(at)]);
                found += note->len > 0 && m_name == note->name ? 1 : 0;
                at += static_cast<ssize_t>(sizeof(inotify_event) + note->len);
            }
        }
        return found;
    }

private:
    QByteArray m_name;
    int m_notes;
};

} // namespace

class TestOptionSave : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void saveWritesTheKeysInTheirOrder();
    void saveIsOneRewrite();
    void saveLeavesAllOtherKeysAlone();
    void saveReloadsAndStaysOpen();
    void savedSettingsComeBack();
    void theProxyTickIsSaved();
    void useOfAProxyWithoutOneWritesNothing();
    void aFormatIsOneOfTwoWords();
    void startupIsOneOfThreeWords();
    void oddRuleAnUnknownStartupIsSavedAsSys();
    void saveSelectsTheEncodingsOneByOneToTheFirstMatch();
    void anEncodingThatIsNotFoundLeavesItsKey();
    void noEncodingLeavesItsKey();
    void anEncodingsNameMayHoldTheSeparator();
    void aFontThatIsNotInstalledSurvives();
    void aNumberLeftEmptyIsSavedEmptyAndShownAsItsDefault();
    void oddRuleSaveChecksNoNumber();
};

void TestOptionSave::saveWritesTheKeysInTheirOrder()
{
    OptionsBench bench;
    bench.form();
    writeFile(bench.globals().paths.optionsFile, "");
    bench.changeAll();
    bench.save();
    QCOMPARE(bench.options(), QByteArray("[Proxy Server]\r\nUse=False\r\n"
                                         "[Signature]\r\nAutoAdd=False\r\n"
                                         "[Other]\r\nStartup=Max\r\nFont Name=B\303\274ro Grotesk\r\nFont Size=13.5\r\n"
                                         "Format=Rich\r\nEncoding=utf-8\r\nInterval=30\r\nTimes=2\r\nOBO Interval=7\r\n"
                                         "Del Folder=True\r\n"));
}

void TestOptionSave::saveIsOneRewrite()
{
    OptionsBench bench;
    bench.changeAll();
    RewriteCounter rewrites(bench.globals().paths.optionsFile);
    storeSetting(bench.globals(), Setting::Times, u"5"_s);
    QCOMPARE(rewrites.count(), 1); // it is seen
    bench.save();
    QCOMPARE(rewrites.count(), 1);
}

void TestOptionSave::saveLeavesAllOtherKeysAlone()
{
    OptionsBench bench;
    bench.form();
    writeFile(bench.globals().paths.optionsFile,
              "; kept by hand\r\n[Position]\r\nLeft=15\r\n\r\n[Other]\r\nMine=yes\r\n"
              "Times=4\r\nUpgraded=Yes\r\n[Proxy Server]\r\nDefault=x\ty\r\n");
    bench.save();
    QCOMPARE(bench.options(),
             QByteArray("; kept by hand\r\n[Position]\r\nLeft=15\r\n\r\n[Other]\r\nMine=yes\r\n"
                        "Times=1\r\nUpgraded=Yes\r\nStartup=Last\r\nFont Name=Courier New\r\nFont Size=10\r\n"
                        "Format=Plain\r\nEncoding=utf-8\r\nInterval=26\r\nOBO Interval=0\r\nDel Folder=False\r\n"
                        "[Proxy Server]\r\nDefault=x\ty\r\nUse=False\r\n[Signature]\r\nAutoAdd=True\r\n"));
}

void TestOptionSave::saveReloadsAndStaysOpen()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    bench.changeAll();
    QCOMPARE(bench.globals().settings.text(Setting::Times), u"1"_s);
    storeSetting(bench.globals(), Setting::Left, u"15"_s);
    bench.globals().settings.set(Setting::Left, u"another"_s);
    bench.prompts.expectBox(u"SAVE_SUCC"_s, 64, quillon::BoxAnswer::Ok, std::nullopt, [&bench] {
        QCOMPARE(bench.globals().settings.text(Setting::Times), u"2"_s);
        QCOMPARE(bench.globals().settings.text(Setting::Left), u"15"_s); // all is read again, not only what was saved
    });
    bench.sbt(0)->click();
    QVERIFY(bench.isLoaded() && bench.form()->isVisible());
    QCOMPARE(bench.sst()->currentIndex(), 4);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
}

void TestOptionSave::savedSettingsComeBack()
{
    OptionsBench bench;
    bench.changeAll();
    bench.save();
    bench.sbt(2)->click();
    LoadSettings(bench.globals());
    QVERIFY(!bench.isLoaded());
    QVERIFY(!bench.cbx(0)->isChecked() && bench.cbx(1)->isChecked() && !bench.cbx(4)->isChecked());
    QVERIFY(bench.opt(2)->isChecked() && bench.opt(6)->isChecked());
    QCOMPARE(bench.cbb(1)->currentText(), u"Büro Grotesk"_s);
    QCOMPARE(bench.cbb(2)->currentText(), u"13.5"_s);
    QCOMPARE(bench.cbb(3)->currentText(), u"Unicode (UTF-8)"_s);
    QCOMPARE(bench.txt(14)->text() + bench.txt(15)->text() + bench.txt(0)->text(), u"3027"_s);
}

void TestOptionSave::theProxyTickIsSaved()
{
    OptionsBench bench;
    writeFile(bench.globals().paths.proxyFile, oneProxy.toUtf8() + "\r\n");
    bench.cbx(0)->setChecked(true);
    bench.save();
    QCOMPARE(bench.stored(u"Proxy Server"_s, u"Use"_s), u"True"_s);
    QVERIFY(proxyInUse(bench.globals()));
}

void TestOptionSave::useOfAProxyWithoutOneWritesNothing()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    bench.changeAll();
    bench.cbx(0)->setChecked(true);
    const QByteArray before = bench.options();
    bench.prompts.expectBox(u"NEED_PROXY"_s, 64, quillon::BoxAnswer::Ok, std::nullopt,
                            [&bench] { QCOMPARE(bench.sst()->currentIndex(), 4); });
    bench.sbt(0)->click();
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.sst()->currentIndex(), 0);
    QCOMPARE(bench.options(), before);
    QCOMPARE(bench.globals().settings.text(Setting::Times), u"1"_s);
    QVERIFY(!proxyInUse(bench.globals()));
    QVERIFY(bench.window.selected.isEmpty());
    QCOMPARE(bench.txt(15)->text(), u"2"_s); // what was entered waits for another Save
}

void TestOptionSave::aFormatIsOneOfTwoWords()
{
    OptionsBench bench;
    bench.opt(6)->click();
    bench.save();
    QCOMPARE(bench.other(u"Format"_s), u"Rich"_s);
    bench.opt(5)->click();
    bench.save();
    QCOMPARE(bench.other(u"Format"_s), u"Plain"_s);
}

void TestOptionSave::startupIsOneOfThreeWords()
{
    OptionsBench bench;
    const QStringList words = {u"Max"_s, u"Last"_s, u"Sys"_s};
    for (int i = 0; i < 3; ++i) {
        bench.opt(i + 2)->click();
        bench.save();
        QCOMPARE(bench.other(u"Startup"_s), words.at(i));
    }
}

void TestOptionSave::oddRuleAnUnknownStartupIsSavedAsSys()
{
    OptionsBench bench;
    bench.setOther(Setting::Startup, u"Min"_s);
    bench.save();
    QCOMPARE(bench.other(u"Startup"_s), u"Sys"_s);
}

void TestOptionSave::saveSelectsTheEncodingsOneByOneToTheFirstMatch()
{
    OptionsBench bench;
    bench.window.encodings = {u"a | One"_s, u"x-mine | Unicode (UTF-8)"_s, u"utf-8 | Unicode (UTF-8)"_s, u"b | Two"_s};
    bench.window.encodingIndex = 3;
    QCOMPARE(bench.cbb(3)->currentText(), u"Unicode (UTF-8)"_s);
    bench.save();
    QCOMPARE(bench.window.selected, (QList<int>{0, 1}));
    QCOMPARE(bench.window.encodingIndex, 1); // and leaves it selected
    QCOMPARE(bench.other(u"Encoding"_s), u"x-mine"_s);
    QCOMPARE(bench.globals().settings.text(Setting::Encoding), u"x-mine"_s);
}

void TestOptionSave::anEncodingThatIsNotFoundLeavesItsKey()
{
    OptionsBench bench;
    bench.form();
    bench.window.encodings = {u"a | One"_s, u"utf-8 | unicode (utf-8)"_s, u"Unicode (UTF-8) | b"_s};
    storeSetting(bench.globals(), Setting::Encoding, u"x-before"_s);
    bench.save();
    QCOMPARE(bench.window.selected, (QList<int>{0, 1, 2}));
    QCOMPARE(bench.other(u"Encoding"_s), u"x-before"_s);
    QCOMPARE(bench.other(u"Interval"_s), u"26"_s); // what comes behind it is written
}

void TestOptionSave::noEncodingLeavesItsKey()
{
    OptionsBench bench;
    storeSetting(bench.globals(), Setting::Encoding, u"x-unknown"_s);
    bench.save();
    QCOMPARE(bench.other(u"Encoding"_s), u"x-unknown"_s);
    QCOMPARE(bench.window.selected.size(), bench.window.encodings.size());
}

void TestOptionSave::anEncodingsNameMayHoldTheSeparator()
{
    OptionsBench bench;
    bench.cbb(3)->addItem(u"One | Two"_s);
    bench.cbb(3)->setCurrentIndex(bench.cbb(3)->count() - 1);
    bench.window.encodings = {u"a | One"_s, u"b | Two"_s, u"c | One | Two"_s};
    bench.save();
    QCOMPARE(bench.other(u"Encoding"_s), u"c"_s);
}

void TestOptionSave::aFontThatIsNotInstalledSurvives()
{
    OptionsBench bench;
    bench.setOther(Setting::FontName, u"Büro Grotesk 3000"_s);
    bench.save();
    QCOMPARE(bench.other(u"Font Name"_s), u"Büro Grotesk 3000"_s);
    bench.sbt(2)->click();
    QCOMPARE(bench.cbb(1)->currentText(), u"Büro Grotesk 3000"_s);
}

void TestOptionSave::aNumberLeftEmptyIsSavedEmptyAndShownAsItsDefault()
{
    OptionsBench bench;
    for (const int box : {14, 15, 0}) {
        bench.txt(box)->clear();
    }
    bench.save();
    for (const QString &key : {u"Interval="_s, u"Times="_s, u"OBO Interval="_s}) {
        QVERIFY2(bench.options().contains("\r\n" + key.toUtf8() + "\r\n"), qPrintable(key));
    }
    QCOMPARE(bench.txt(14)->text(), QString()); // Save does not fill the boxes anew
    bench.sbt(2)->click();
    QCOMPARE(bench.txt(14)->text(), u"26"_s);
    QCOMPARE(bench.txt(15)->text(), u"1"_s);
    QCOMPARE(bench.txt(0)->text(), u"0"_s);
}

void TestOptionSave::oddRuleSaveChecksNoNumber()
{
    OptionsBench bench;
    bench.txt(14)->setText(u"3"_s);
    bench.txt(0)->setText(u"999"_s);
    bench.save();
    QCOMPARE(bench.other(u"Interval"_s), u"3"_s);
    QCOMPARE(bench.other(u"OBO Interval"_s), u"999"_s);
}

QTEST_MAIN(TestOptionSave)
#include "test_optionsave.moc"
