#include "records/forms/settingstab.h"

#include "quillon/forms/arraynames.h"
#include "quillon/mail/encodinglist.h"
#include "quillon/text/quillontext.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QRadioButton>

#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr double minutesOfDay = 1440;
constexpr double leastInterval = 6;
constexpr double longestObo = 300;

enum Tick { UseProxy = 0, EmptyFolder = 1, AutoAddSignature = 4 };
enum List { FontNames = 1, FontSizes = 2, EncodingNames = 3 };
enum Option { Maximized = 2, LastPosition = 3, SystemTray = 4, PlainText = 5, RichText = 6 };

/// The option that shows a place at the start; a value that nobody knows chooses none.
int optionOf(const QString &startup)
{
    if (startup == startupLast) {
        return LastPosition;
    }
    if (startup == startupMaximised) {
        return Maximized;
    }
    return startup == startupTray ? SystemTray : -1;
}

/// Options that belong together let one of them be on always; this turns all of them off.
void choose(const std::array<QRadioButton *, 7> &options, std::initializer_list<Option> group, int chosen)
{
    for (const Option option : group) {
        options[option]->setAutoExclusive(false);
        options[option]->setChecked(option == chosen);
    }
    for (const Option option : group) {
        options[option]->setAutoExclusive(true);
    }
}

} // namespace

SettingsTab::SettingsTab(QWidget *form, Encodings encodings)
    : QObject(form), m_encodings(std::move(encodings)), m_cbx(quillon::controlArray<QCheckBox, 5>(form, u"cbx"_s)),
      m_cbb(quillon::controlArray<QComboBox, 4>(form, u"cbb"_s)),
      m_opt(quillon::controlArray<QRadioButton, 7>(form, u"opt"_s)),
      m_interval(form->findChild<QLineEdit *>(u"txt(14)"_s)), m_times(form->findChild<QLineEdit *>(u"txt(15)"_s)),
      m_obo(form->findChild<QLineEdit *>(u"txt(0)"_s))
{
    addLimits(form);
    fillLists();
}

void SettingsTab::fillLists()
{
    m_cbb[FontNames]->addItems(QFontDatabase::families());
    for (const int size : {8, 9, 10, 11, 12, 14, 16, 18, 20, 22, 24, 26, 28, 36, 48, 72}) {
        m_cbb[FontSizes]->addItem(QString::number(size));
    }
    const auto encodings = quillon::offeredEncodings(quillon::QuillonText().GetEncodingList());
    for (const quillon::EncodingEntry &entry : encodings) {
        m_cbb[EncodingNames]->addItem(entry.Name);
    }
}

void SettingsTab::addLimits(QWidget *form)
{
    auto *fields = new NumberFields(form);
    fields->add(m_interval, u"INTERVAL_LIMIT", [](double value) { return value < leastInterval; });
    fields->add(m_times, u"TIMES_LIMIT", [this](double value) {
        const double interval = NumberFields::valueOf(m_interval);
        return value < 1 || value * interval > minutesOfDay - interval; // all repeats fit into one day
    });
    fields->add(m_obo, u"OBO_LIMIT", [](double value) { return value > longestObo; });
}

void SettingsTab::load(const ApplicationGlobals &globals)
{
    const SettingsMemory &settings = globals.settings;
    m_cbx[UseProxy]->setChecked(proxyInUse(globals));
    m_cbx[AutoAddSignature]->setChecked(settings.isTrue(Setting::AutoAddSignature));
    m_cbx[EmptyFolder]->setChecked(settings.isTrue(Setting::EmptyFolder));

    choose(m_opt, {Maximized, LastPosition, SystemTray}, optionOf(settings.textOrStandard(Setting::Startup)));
    choose(m_opt, {PlainText, RichText}, settings.is(Setting::Format, formatRich) ? RichText : PlainText);

    m_cbb[FontNames]->setCurrentText(settings.textOrStandard(Setting::FontName));
    m_cbb[FontSizes]->setCurrentText(settings.textOrStandard(Setting::FontSize));
    m_cbb[EncodingNames]->setCurrentIndex(m_cbb[EncodingNames]->findText(m_encodings.displayName()));
    m_interval->setText(settings.textOrStandard(Setting::Interval));
    m_times->setText(settings.textOrStandard(Setting::Times));
    m_obo->setText(settings.textOrStandard(Setting::OboInterval));
}

QList<SettingChange> SettingsTab::changes() const
{
    QList<SettingChange> changes = {
        {Setting::ProxyUse, flagText(m_cbx[UseProxy]->isChecked())},
        {Setting::AutoAddSignature, flagText(m_cbx[AutoAddSignature]->isChecked())},
        {Setting::Startup, startup().toString()},
        {Setting::FontName, m_cbb[FontNames]->currentText()},
        {Setting::FontSize, m_cbb[FontSizes]->currentText()},
        {Setting::Format, (m_opt[RichText]->isChecked() ? formatRich : formatPlain).toString()},
    };
    const QString code = m_encodings.codeOf(m_cbb[EncodingNames]->currentText());
    if (!code.isEmpty()) {
        changes.append({Setting::Encoding, code});
    }
    changes.append({{Setting::Interval, m_interval->text()},
                    {Setting::Times, m_times->text()},
                    {Setting::OboInterval, m_obo->text()},
                    {Setting::EmptyFolder, flagText(m_cbx[EmptyFolder]->isChecked())}});
    return changes;
}

bool SettingsTab::usesProxy() const
{
    return m_cbx[UseProxy]->isChecked();
}

QStringView SettingsTab::startup() const
{
    if (m_opt[Maximized]->isChecked()) {
        return startupMaximised;
    }
    return m_opt[LastPosition]->isChecked() ? startupLast : startupTray;
}

} // namespace corvane
