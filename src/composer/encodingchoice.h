#pragma once

#include <QObject>
#include <QString>

class QAction;
class QComboBox;
class QMenu;

namespace corvane {

/// The encoding of the message: the visible box with display names, the hidden box with pairs of code and display
/// name, and the menu with a radio mark on the one in use.
class EncodingChoice : public QObject {
    Q_OBJECT

public:
    /// @p base is the menu's hidden first item, `menoesa(0)`; the offered ones follow it.
    EncodingChoice(QComboBox *shown, QComboBox *hidden, QMenu *menu, QAction *base);

    /// Fills boxes and menu with those encodings of a list that are offered; see quillon::offeredEncodings().
    void fill(const QString &entries);

    /// The display name of a code: selects the hidden entries one by one up to the match, or all when there is none,
    /// which gives an empty name. An empty code is that of the default encoding.
    QString displayName(const QString &code);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void mark(const QString &name);

    QComboBox *m_shown;
    QComboBox *m_hidden;
    QMenu *m_menu;
    QAction *m_base;
};

} // namespace corvane
