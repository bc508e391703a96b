#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace quillon {

/// Styles of a message box, by the numbers that the program uses for them.
enum BoxStyle {
    PlainBox = 0,
    CriticalBox = 16,
    OkCancelQuestionBox = 33,
    YesNoCancelBox = 35,
    YesNoBox = 36,
    WarningBox = 48,
    InformationBox = 64,
    OkCancelInformationBox = 65,
};

enum class BoxAnswer { Ok, Cancel, Yes, No };

/// A message box, asked for by the key of its text. @ref Value stands in front of the text, in single quotes.
struct BoxRequest {
    QString Key;  ///< message key; empty for a text that comes from elsewhere, such as the transport's
    QString Text; ///< the whole text as it is shown, the value included
    QString Value;
    int Style = PlainBox;
    QString Details = {}; ///< what else is known, such as a server's own words; stands below the text
};

struct InputRequest {
    QString Key;
    QString Prompt;
    QString Default;
};

/// One entry of a file dialog's filter: its name and its patterns, as in "Text Files (*.txt)" and "*.txt; *.text".
struct FileFilter {
    QString Name;
    QString Pattern;
};

struct FileRequest {
    QString Title;
    QList<FileFilter> Filters;
    QString DefaultPath;
    bool Many = false; ///< more than one file may be chosen
};

/// Everything that asks the user, and every showing of a modal form, goes through here, so that a test can expect
/// it, answer it, and name what was shown.
class Prompts {
public:
    virtual ~Prompts() = default;

    /// Shows a box and waits for the answer. Boxes with one button always answer Ok.
    virtual BoxAnswer box(const BoxRequest &request) = 0;
    /// Asks for a line of text; empty when the user cancels.
    virtual QString input(const InputRequest &request) = 0;
    /// Existing files to open; empty on cancel.
    virtual QStringList openFiles(const FileRequest &request) = 0;
    /// A file to save to; empty on cancel.
    virtual QString saveFile(const FileRequest &request) = 0;
    virtual QString selectFolder(const QString &title) = 0;
    /// A colour as 0xBBGGRR, or -1 on cancel.
    virtual long chooseColor() = 0;
    /// Shows the form of that name modally, on the tab of that index when it is 0 or more, and returns when it closes.
    virtual void showModalForm(const QString &form, int tab) = 0;
};

/// Answers every prompt with its harmless answer and shows nothing: for a program that is ending, where nobody is asked
/// any more.
class HarmlessPrompts : public Prompts {
public:
    BoxAnswer box(const BoxRequest &request) override;
    QString input(const InputRequest &request) override;
    QStringList openFiles(const FileRequest &request) override;
    QString saveFile(const FileRequest &request) override;
    QString selectFolder(const QString &title) override;
    long chooseColor() override;
    void showModalForm(const QString &form, int tab) override;

protected:
    /// Told of every prompt.
    virtual void unanswered(const QString &what) { Q_UNUSED(what) }
};

/// The prompts in force. Before any were set, every prompt is a fault and is answered with its harmless answer.
Prompts &prompts();

/// Puts @p next in force and returns what was in force before; nullptr stands for none. The caller keeps ownership.
Prompts *setPrompts(Prompts *next);

} // namespace quillon
