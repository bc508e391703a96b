#pragma once

#include <QDialog>
#include <QList>
#include <QString>

#include <functional>

class QCheckBox;
class QLineEdit;
class QPushButton;

namespace corvane {

/// What is shown when a check of a record's fields fails.
struct FieldFault {
    const char16_t *message;  ///< key of the text
    int style;                ///< of the box, see quillon::BoxStyle
    QLineEdit *control;       ///< gets the focus
    bool selectsText = false; ///< whether the whole text of the control is selected then
};

/// A check of one field.
struct FieldCheck {
    std::function<bool()> fails;
    FieldFault fault;
};

/// One field of a record's line, as a form shows it.
struct RecordFieldView {
    std::function<QString()> value;
    std::function<void(const QString &value)> show;
};

/// The common part of the dialogs in which one record of a list is added or edited. It holds no list and touches no
/// file: what it is opened for tells it by functions what else there is, and where a line goes.
class RecordDialog : public QDialog {
    Q_OBJECT

public:
    enum class Mode { Add, Edit };

    /// What the dialog is opened for.
    struct Task {
        Mode mode = Mode::Add;
        /// The record whose fields are shown, to edit or to copy; without one a new record begins.
        QString line;
        /// Whether another record of the list is the same by the rule of its kind; none is without this function. In
        /// edit mode the record under edit does not count.
        std::function<bool(const QString &line)> exists;
        /// Stores a line: added in add mode, in place of the one that is edited otherwise.
        /// False when it could not be written: what was entered stays in the dialog.
        std::function<bool(const QString &line)> save;
        /// The line is the beginning of a record, which is completed in the first box that it leaves empty.
        bool completes = false;
    };

    /// Sets caption and fields; to be called before the form is shown.
    void begin(Task task);

    /// The mode stays through Save & Add: an edited record is replaced once more by what is entered next.
    [[nodiscard]] Mode mode() const { return m_task.mode; }

protected:
    struct Buttons {
        QPushButton *saveAndAdd;
        Qt::Key saveAndAddKey; ///< with Alt
        QPushButton *saveAndClose;
        Qt::Key saveAndCloseKey; ///< with Alt
        QPushButton *close;
        QPushButton *help;
    };

    /// What makes a form out of this dialog.
    struct Form {
        Buttons buttons;
        QString what; ///< the kind of record, as the caption names it after "Add " and "Edit "
        std::function<QString(const QString &line)> nameOf; ///< what an edit's caption names the record by
        QString newRecord;                                  ///< the line with which a new record begins
        /// In the order of the line. They are shown in this order, so a field that a form proposes from an earlier one
        /// ends as the record has it.
        QList<RecordFieldView> fields;
        QList<FieldCheck> checks; ///< in the order in which they are made
        FieldFault duplicate;     ///< what a record gives that exists already
        QLineEdit *first;         ///< where a new record is begun
    };

    RecordDialog();

    /// To be called by a form's constructor when its controls are there, and before it listens to them itself. Gives
    /// the form its texts, keys and buttons, and shows a new record. @p help opens the manual.
    void setUp(Form form, std::function<void()> help);

    // Fields as most forms have them.
    [[nodiscard]] static RecordFieldView textField(QLineEdit *box);
    [[nodiscard]] static RecordFieldView tickField(QCheckBox *tick);      ///< "Y" or "N"
    [[nodiscard]] static RecordFieldView fixedField(const QString &text); ///< the same in each record, not shown

    // Checks as most forms make them, on texts without the blanks around them.
    [[nodiscard]] static FieldCheck needs(QLineEdit *box, const char16_t *message);
    [[nodiscard]] static FieldCheck needsUser(QLineEdit *box, QCheckBox *tick); ///< only while it is ticked
    /// That the text is an address; an empty one passes, to be told by needs() where it may not be.
    [[nodiscard]] static FieldCheck needsAddress(QLineEdit *box, int style);

private:
    void prepareBoxes();
    void connectButtons(std::function<void()> help);
    void setCaption();
    void setTips();
    void showRecord(const QString &line);
    void beginNext();
    [[nodiscard]] QLineEdit *firstEmptyBox() const;
    [[nodiscard]] QString line() const;
    /// Checks the fields and stores the line; the first fault is shown, and nothing is stored then.
    bool save();
    static void tell(const FieldFault &fault);

    Form m_form{};
    Task m_task;
};

} // namespace corvane
