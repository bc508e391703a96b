#pragma once

#include "core/globals.h"
#include "core/settings.h"
#include "records/forms/numberfields.h"

#include <QObject>

#include <array>
#include <functional>

class QCheckBox;
class QComboBox;
class QRadioButton;

namespace corvane {

/// The settings of the options dialog that wait for its Save button: the tab of other settings, and the ticks of the
/// proxy and signature tabs.
class SettingsTab : public QObject {
    Q_OBJECT

public:
    struct Encodings {
        std::function<QString()> displayName; ///< of the encoding in the settings; may be empty
        /// The code of an encoding by its display name; empty when there is none of that name.
        std::function<QString(const QString &displayName)> codeOf;
    };

    /// Finds its controls on @p form, to which it belongs.
    SettingsTab(QWidget *form, Encodings encodings);

    /// Shows the settings as they are in memory.
    void load(const ApplicationGlobals &globals);
    /// What the controls say, in the order in which it is written.
    [[nodiscard]] QList<SettingChange> changes() const;

    [[nodiscard]] bool usesProxy() const;

private:
    void fillLists();
    void addLimits(QWidget *form);
    [[nodiscard]] QStringView startup() const;

    Encodings m_encodings;
    std::array<QCheckBox *, 5> m_cbx;
    std::array<QComboBox *, 4> m_cbb;
    std::array<QRadioButton *, 7> m_opt;
    QLineEdit *m_interval;
    QLineEdit *m_times;
    QLineEdit *m_obo;
};

} // namespace corvane
