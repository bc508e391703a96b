#pragma once

#include "core/globals.h"
#include "message/message.h"
#include "message/window.h"

#include <QString>

#include <functional>

namespace corvane {

/// The flows that replace or store the one message of the window: New, Open, Save, and the question that stands before
/// what would lose a change. The window's title is the only place that says which template is open.
class DocumentFlow {
public:
    /// What the flows need of the window beyond its message; each is required.
    struct Hooks {
        /// Lays out a new message: choices, account, fonts, empty fields, the automatic signature.
        std::function<void()> layOutNew;
        /// The rich body as text, as copying all of it would give.
        std::function<QString()> richText;
        /// Shows frmPubTemplates modally; it may set psTempName.
        std::function<void()> showTemplates;
        /// Adds the recipients of the three fields to the input prompts, and reads those again.
        std::function<void()> rememberRecipients;
    };

    /// All outlive this object.
    DocumentFlow(const ApplicationGlobals &globals, Message &message, Window &window, Hooks hooks);

    /// Offers to save a changed message. True: the user cancelled, and all is to stay as it is.
    bool ConfirmSave();
    /// Asks for a name and writes the template. True: it was saved.
    bool SaveAsTemplate();
    void New();
    void Open();
    /// Shows the dialog that renames and deletes templates.
    void manage();

    /// Whether frmPubTemplates is to manage templates; otherwise one is to be chosen.
    [[nodiscard]] bool isManaging() const { return m_managing; }

    /// A click on a template in the dialog shows it in the window.
    void preview(const QString &name);
    /// The window as it is with that template open.
    void show(const QString &name);
    /// The name of the open template, or NoTemplateMark for a new message.
    [[nodiscard]] QString openName() const;
    /// Stands for a new message where the name of a template is remembered.
    static QString noTemplateMark();

    QString psTempName; ///< the choice that the dialog hands over to Open; not the name of the open template

private:
    [[nodiscard]] QString bodyText(bool withSource) const;
    void showDialog(bool managing);

    const ApplicationGlobals &m_globals;
    Message &m_message;
    Window &m_window;
    Hooks m_hooks;
    bool m_managing = false;
};

} // namespace corvane
