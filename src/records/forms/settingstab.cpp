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

QString orStandard(const QString &value, const QString &standard)
{
    return value.isEmpty() ? standard : value;
}

QString truth(const QCheckBox *tick)
{
    return tick->isChecked() ? u"True"_s : u"False"_s;
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
    const auto &other = globals.settings.other;
    m_cbx[UseProxy]->setChecked(proxyInUse(globals));
    m_cbx[AutoAddSignature]->setChecked(globals.settings.signature[SignatureAutoAdd] == "True"_L1);
    m_cbx[EmptyFolder]->setChecked(other[DelFolder] == "True"_L1);

    const QString startup = orStandard(other[Startup], u"Last"_s);
    int chosen = -1; // a value that nobody knows chooses none
    if (startup == "Last"_L1) {
        chosen = LastPosition;
    } else if (startup == "Max"_L1) {
        chosen = Maximized;
    } else if (startup == "Sys"_L1) {
        chosen = SystemTray;
    }
    choose(m_opt, {Maximized, LastPosition, SystemTray}, chosen);
    choose(m_opt, {PlainText, RichText}, other[Format] == "Rich"_L1 ? RichText : PlainText);

    m_cbb[FontNames]->setCurrentText(orStandard(other[FontName], u"Courier New"_s));
    m_cbb[FontSizes]->setCurrentText(orStandard(other[FontSize], u"10"_s));
    m_cbb[EncodingNames]->setCurrentIndex(m_cbb[EncodingNames]->findText(m_encodings.displayName()));
    m_interval->setText(orStandard(other[Interval], u"26"_s));
    m_times->setText(orStandard(other[Times], u"1"_s));
    m_obo->setText(orStandard(other[OboInterval], u"0"_s));
}

QList<SettingChange> SettingsTab::changes() const
{
    const auto other = [](const QString &key, const QString &value) { return SettingChange{u"Other"_s, key, value}; };
    QList<SettingChange> changes = {
        {u"Proxy Server"_s, u"Use"_s, truth(m_cbx[UseProxy])},
        {u"Signature"_s, u"AutoAdd"_s, truth(m_cbx[AutoAddSignature])},
        other(u"Startup"_s, startup()),
        other(u"Font Name"_s, m_cbb[FontNames]->currentText()),
        other(u"Font Size"_s, m_cbb[FontSizes]->currentText()),
        other(u"Format"_s, m_opt[RichText]->isChecked() ? u"Rich"_s : u"Plain"_s),
    };
    const QString code = m_encodings.codeOf(m_cbb[EncodingNames]->currentText());
    if (!code.isEmpty()) {
        changes.append(other(u"Encoding"_s, code));
    }
    changes.append({other(u"Interval"_s, m_interval->text()), other(u"Times"_s, m_times->text()),
                    other(u"OBO Interval"_s, m_obo->text()), other(u"Del Folder"_s, truth(m_cbx[EmptyFolder]))});
    return changes;
}

bool SettingsTab::usesProxy() const
{
    return m_cbx[UseProxy]->isChecked();
}

QString SettingsTab::startup() const
{
    if (m_opt[Maximized]->isChecked()) {
        return u"Max"_s;
    }
    return m_opt[LastPosition]->isChecked() ? u"Last"_s : u"Sys"_s;
}

} // namespace corvane
