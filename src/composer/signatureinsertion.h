#pragma once

#include "core/globals.h"
#include "message/window.h"
#include "records/signaturerecords.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

class QAction;
class QMenu;

namespace corvane {

class EditCommands;

/// The signatures of the main window: their menu, and how one gets into the content.
class SignatureInsertion : public QObject {
    Q_OBJECT

public:
    using Find = std::function<SignatureText(const QString &name)>;

    /// @p menu is menis, @p base its item menissa(0).
    SignatureInsertion(QMenu *menu, QAction *base, Message &message, Window &window, EditCommands &edit, Find find);

    /// Makes an item for each name; that of the default says so. Without names the menu is disabled.
    void setMenu(const QStringList &names, const QString &defaultName);
    /// Makes the default signature the content of a new message, if it is to be added: the plain body, the rich, or
    /// both.
    void addAutomatic(const SettingsMemory &settings, bool plain, bool rich);

private:
    void insert(const QString &caption);

    QMenu *m_menu;
    QAction *m_base;
    Message &m_message;
    Window &m_window;
    EditCommands &m_edit;
    Find m_find;
};

} // namespace corvane
