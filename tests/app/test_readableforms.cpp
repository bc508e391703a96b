#include "programfixture.h"
#include "quillon/forms/readablepalette.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTreeWidget>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

QPalette darkPalette()
{
    QPalette palette(QColor(0x313336));
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        palette.setColor(group, QPalette::Base, QColor(0x1e1f21));
        for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
            palette.setColor(group, role, group == QPalette::Disabled ? QColor(0x6f7073) : QColor(0xfcfcfc));
        }
    }
    return palette;
}

/// What a control's text is drawn with; none for what has no text.
std::optional<QPalette::ColorRole> textRole(const QWidget *widget)
{
    const auto *combo = qobject_cast<const QComboBox *>(widget);
    const auto *button = qobject_cast<const QAbstractButton *>(widget);
    if (qobject_cast<const QLineEdit *>(widget) || qobject_cast<const QPlainTextEdit *>(widget) ||
        qobject_cast<const QAbstractSpinBox *>(widget) || (combo && combo->isEditable())) {
        return QPalette::Text;
    }
    if (combo ||
        (button && !button->text().isEmpty() && (button->inherits("QPushButton") || button->inherits("QToolButton")))) {
        return QPalette::ButtonText;
    }
    const auto *label = qobject_cast<const QLabel *>(widget);
    if ((label && !label->text().isEmpty()) || button || qobject_cast<const QGroupBox *>(widget)) {
        return QPalette::WindowText;
    }
    return {};
}

/// The colour that a control is filled with: half of its pixels are darker, half of them lighter.
QColor groundOf(QWidget *widget)
{
    const QImage picture = widget->grab().toImage();
    QList<QRgb> pixels;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            pixels.append(picture.pixel(x, y));
        }
    }
    const auto middle = pixels.begin() + pixels.size() / 2;
    std::nth_element(pixels.begin(), middle, pixels.end(), [](QRgb a, QRgb b) { return qGray(a) < qGray(b); });
    return QColor(*middle);
}

QStringList unreadable(QWidget *form)
{
    QStringList found;
    const QList<QWidget *> widgets = form->findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        const std::optional<QPalette::ColorRole> role = textRole(widget);
        if (!role || !widget->isVisibleTo(form) || widget->size().isEmpty()) {
            continue;
        }
        const QColor text = widget->palette().color(widget->isEnabled() ? QPalette::Active : QPalette::Disabled, *role);
        const QColor ground = groundOf(widget);
        const double ratio = quillon::contrastRatio(text, ground);
        if (ratio < quillon::readableContrast - 0.05) {
            found += u"%1.%2: %3 on %4"_s.arg(form->objectName(), widget->objectName(), text.name(), ground.name());
        }
    }
    return found;
}

} // namespace

class TestReadableForms : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyTextHasEnoughContrast_data();
    void everyTextHasEnoughContrast();
    void predefinedMacrosCanBeReadAndAreToldFromOthers_data();
    void predefinedMacrosCanBeReadAndAreToldFromOthers();
    void cleanup() { QApplication::setPalette(QPalette()); }
};

void TestReadableForms::everyTextHasEnoughContrast_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void TestReadableForms::everyTextHasEnoughContrast()
{
    QFETCH(const bool, dark);
    ProgramFixture p;
    p.run();
    if (dark) {
        QApplication::setPalette(darkPalette());
        QCoreApplication::processEvents();
    }
    // Who the mail is from stands in boxes that the account fills.
    QVERIFY(!p.get<QComboBox>(p.main(), u"cbb(0)"_s)->isEnabled());
    QVERIFY(!p.get<QComboBox>(p.main(), u"cbb(1)"_s)->isEnabled());
    QStringList found = unreadable(p.main());
    for (const QString &name :
         {optionsForm, accountForm, proxyForm, senderForm, macrosForm, macroDetailForm, promptsForm, progressForm}) {
        QWidget *form = p.form(name);
        auto *tabs = form->findChild<QTabWidget *>();
        for (int tab = 0; tab < (tabs ? tabs->count() : 1); ++tab) {
            if (tabs) {
                tabs->setCurrentIndex(tab);
            }
            form->setEnabled(true);
            form->show();
            found += unreadable(form);
            form->setEnabled(false); // as during a test of a connection
            found += unreadable(form);
        }
        form->hide();
    }
    QCOMPARE(found.join(u'\n'), QString());
}

void TestReadableForms::predefinedMacrosCanBeReadAndAreToldFromOthers_data()
{
    everyTextHasEnoughContrast_data();
}

void TestReadableForms::predefinedMacrosCanBeReadAndAreToldFromOthers()
{
    QFETCH(const bool, dark);
    ProgramFixture p;
    p.run();
    auto *rows = p.get<QTreeWidget>(p.form(macrosForm), u"lsv"_s);
    p.form(macrosForm)->show();
    if (dark) {
        QApplication::setPalette(darkPalette());
        QCoreApplication::processEvents();
    }
    int users = 0;
    const QColor ground = rows->palette().color(QPalette::Active, QPalette::Base);
    const QColor usual = rows->palette().color(QPalette::Active, QPalette::Text);
    for (int i = 0; i < rows->topLevelItemCount(); ++i) {
        if (rows->topLevelItem(i)->foreground(0).style() == Qt::NoBrush) {
            ++users;
            continue;
        }
        const QColor text = rows->topLevelItem(i)->foreground(0).color();
        QVERIFY(quillon::contrastRatio(text, ground) >= quillon::readableContrast - 0.05);
        QVERIFY2(quillon::contrastRatio(text, ground) < quillon::contrastRatio(usual, ground) * 0.75,
                 qPrintable(u"%1 %2 %3"_s.arg(text.name(), usual.name(), ground.name())));
    }
    QVERIFY(users < rows->topLevelItemCount());
}

QTEST_MAIN(TestReadableForms)
#include "test_readableforms.moc"
