#include "quillon/fault.h"
#include "quillon/forms/formtexts.h"

#include <QAction>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// A form of each kind of control, with its design captions.
struct Sample {
    Sample()
    {
        form.setObjectName(u"frmPubX"_s);
        form.setWindowTitle(u"Design"_s);
        label = named(new QLabel(u"design"_s, &form), u"lbl(0)"_s);
        button = named(new QPushButton(u"design"_s, &form), u"sbtA"_s);
        box = named(new QGroupBox(u"design"_s, &form), u"fraA"_s);
        edit = named(new QLineEdit(u"content"_s, &form), u"txt(0)"_s);
        tabs = named(new QTabWidget(&form), u"sst"_s);
        page = named(new QWidget, u"tab(0)"_s);
        tabs->addTab(page, u"design"_s);
        menu = named(new QMenu(u"design"_s, &form), u"menf"_s);
        item = named(new QAction(u"design"_s, &form), u"menfs"_s);
    }

    template <typename T> static T *named(T *object, const QString &name)
    {
        object->setObjectName(name);
        return object;
    }

    QWidget form;
    QLabel *label;
    QPushButton *button;
    QGroupBox *box;
    QLineEdit *edit;
    QTabWidget *tabs;
    QWidget *page;
    QMenu *menu;
    QAction *item;
};

} // namespace

class TestFormTexts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void captionsAndTipsComeFromTheFormsSection();
    void keysThatAreMissingLeaveTheDesign();
    void aMissingFileLeavesTheDesign();
    void aCaptionIsNeverAnEditsContent();
    void menusAndItemsTakeTheirCaptions();
    void aMenuOutsideItsFormNamesItsSection();
    void eachPageOfATabAndEachActionHasItsOwnTexts();

private:
    QString write(const QString &text);

    QTemporaryDir m_folder;
};

QString TestFormTexts::write(const QString &text)
{
    const QString path = m_folder.filePath(u"tips.dll"_s);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(text.toUtf8()) < 0) {
        return {};
    }
    return path;
}

void TestFormTexts::captionsAndTipsComeFromTheFormsSection()
{
    Sample sample;
    const QString path =
        write(u"[frmPubX]\r\nfrmPubX=Titel\r\nlbl(0)=&Empfänger\r\nsbtA=&Senden\r\nsbtA.tip=Jetzt senden\r\n"
              "fraA=Rahmen\r\ntab(0)=Seite\r\ntab(0).tip=Erste Seite\r\n"
              "[frmPubY]\r\nsbtA=anders\r\n"_s);
    quillon::QuillonFormTexts().ApplyControlTexts(&sample.form, path);
    QCOMPARE(sample.form.windowTitle(), u"Titel"_s);
    QCOMPARE(sample.label->text(), u"&Empfänger"_s);
    QCOMPARE(sample.button->text(), u"&Senden"_s);
    QCOMPARE(sample.button->toolTip(), u"Jetzt senden"_s);
    QCOMPARE(sample.box->title(), u"Rahmen"_s);
    QCOMPARE(sample.tabs->tabText(0), u"Seite"_s);
    QCOMPARE(sample.tabs->tabToolTip(0), u"Erste Seite"_s);
}

void TestFormTexts::keysThatAreMissingLeaveTheDesign()
{
    Sample sample;
    quillon::QuillonFormTexts().ApplyControlTexts(&sample.form, write(u"[frmPubX]\r\nsbtA.tip=Tip\r\n"_s));
    QCOMPARE(sample.form.windowTitle(), u"Design"_s);
    QCOMPARE(sample.button->text(), u"design"_s);
    QCOMPARE(sample.button->toolTip(), u"Tip"_s);
    QCOMPARE(sample.label->text(), u"design"_s);
}

void TestFormTexts::aMissingFileLeavesTheDesign()
{
    Sample sample;
    const int faults = quillon::faultCount();
    const QString path = m_folder.filePath(u"none.dll"_s);
    quillon::QuillonFormTexts().ApplyControlTexts(&sample.form, path);
    quillon::QuillonFormTexts().ApplyMenuTexts(&sample.form, path);
    QCOMPARE(sample.form.windowTitle(), u"Design"_s);
    QCOMPARE(sample.button->text(), u"design"_s);
    QCOMPARE(sample.menu->title(), u"design"_s);
    QCOMPARE(sample.item->text(), u"design"_s);
    QCOMPARE(quillon::faultCount(), faults);
    QVERIFY(!QFile::exists(path));
}

void TestFormTexts::aCaptionIsNeverAnEditsContent()
{
    Sample sample;
    quillon::QuillonFormTexts().ApplyControlTexts(&sample.form,
                                                  write(u"[frmPubX]\r\ntxt(0)=wrong\r\ntxt(0).tip=Tip\r\n"_s));
    QCOMPARE(sample.edit->text(), u"content"_s);
    QCOMPARE(sample.edit->toolTip(), u"Tip"_s);
}

void TestFormTexts::menusAndItemsTakeTheirCaptions()
{
    Sample sample;
    quillon::QuillonFormTexts().ApplyMenuTexts(&sample.form,
                                               write(u"[frmPubX]\r\nmenf=&Datei\r\nmenfs=&Senden\r\nsbtA=nicht\r\n"_s));
    QCOMPARE(sample.menu->title(), u"&Datei"_s);
    QCOMPARE(sample.item->text(), u"&Senden"_s);
    QCOMPARE(sample.button->text(), u"design"_s);
}

void TestFormTexts::aMenuOutsideItsFormNamesItsSection()
{
    QMenu menu;
    QAction *item = menu.addAction(u"design"_s);
    item->setObjectName(u"ments"_s);
    menu.setObjectName(u"ment"_s);
    QAction *nameless = menu.addAction(u"design"_s);
    quillon::applyMenuSection(&menu, u"frmPubX"_s,
                              write(u"[frmPubX]\r\nments=&Zeigen\r\nment=Symbol\r\n=nichts\r\n"_s));
    QCOMPARE(item->text(), u"&Zeigen"_s);
    QCOMPARE(menu.title(), u"Symbol"_s);
    QCOMPARE(nameless->text(), u"design"_s);
}

void TestFormTexts::eachPageOfATabAndEachActionHasItsOwnTexts()
{
    Sample sample;
    auto *second = Sample::named(new QWidget, u"tab(1)"_s);
    auto *inside = Sample::named(new QWidget(second), u"inside"_s);
    sample.tabs->addTab(second, u"design"_s);
    quillon::QuillonFormTexts().ApplyControlTexts(
        &sample.form, write(u"[frmPubX]\r\ntab(1)=Zwei\r\ntab(1).tip=Zweite\r\nmenfs=Senden\r\nmenfs.tip=Jetzt\r\n"
                            "menf=Datei\r\ninside=nicht\r\ninside.tip=Innen\r\n"_s));
    QCOMPARE(sample.tabs->tabText(0), u"design"_s);
    QCOMPARE(sample.tabs->tabToolTip(0), QString());
    QCOMPARE(sample.tabs->tabText(1), u"Zwei"_s);
    QCOMPARE(sample.tabs->tabToolTip(1), u"Zweite"_s);
    QCOMPARE(second->toolTip(), QString());
    QCOMPARE(inside->toolTip(), u"Innen"_s);
    QCOMPARE(sample.item->text(), u"Senden"_s);
    QCOMPARE(sample.item->toolTip(), u"Jetzt"_s);
    QCOMPARE(sample.menu->title(), u"Datei"_s);
}

QTEST_MAIN(TestFormTexts)
#include "test_formtexts.moc"
