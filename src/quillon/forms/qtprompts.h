#pragma once

#include "quillon/system/prompts.h"

namespace quillon {

class FormRegistry;

/// The prompts as a user meets them: boxes, dialogs and forms on the screen. Boxes and input boxes bear the
/// application's title.
class QtPrompts : public Prompts {
public:
    /// Modal forms come from @p forms, which must outlive this object.
    explicit QtPrompts(FormRegistry &forms) : m_forms(forms) {}

    BoxAnswer box(const BoxRequest &request) override;
    QString input(const InputRequest &request) override;
    QStringList openFiles(const FileRequest &request) override;
    QString saveFile(const FileRequest &request) override;
    QString selectFolder(const QString &title) override;
    long chooseColor() override;
    /// Loads the form, shows it and waits until it closes, then unloads it. A form that is on the screen already, from
    /// a call that is still waiting, comes to the front instead and the call returns at once.
    void showModalForm(const QString &form, int tab) override;

private:
    FormRegistry &m_forms;
};

/// A filter in the notation of QFileDialog: "Text Files (*.txt)" with "*.txt; *.text" becomes
/// "Text Files (*.txt *.text)". "*.*" means every file, those without a dot included.
[[nodiscard]] QString qtFileFilter(const FileFilter &filter);

} // namespace quillon
