#include "records/forms/recorddialog.h"

#include "core/recordline.h"
#include "core/texts.h"
#include "quillon/forms/formkeys.h"
#include "quillon/forms/formtexts.h"
#include "quillon/hook.h"
#include "quillon/text/quillonaddress.h"
#include "records/forms/fieldboxes.h"
#include "records/recordtexts.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>

#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

RecordDialog::RecordDialog() = default;

void RecordDialog::setUp(Form form, std::function<void()> help)
{
    quillon::requireHook(help, objectName() + u"::help"_s);
    m_form = std::move(form);
    quillon::QuillonFormTexts().ApplyControlTexts(this, languageFolder() + u"/tips.dll"_s);
    prepareBoxes();
    connectButtons(std::move(help));
    begin({});
}

void RecordDialog::prepareBoxes()
{
    const QList<QLineEdit *> boxes = findChildren<QLineEdit *>();
    for (QLineEdit *box : boxes) {
        box->setMaxLength(std::numeric_limits<int>::max()); // a long text of the file is not cut
        keepOneLine(box);
        quillon::selectAllOnFocus(box);
    }
}

void RecordDialog::connectButtons(std::function<void()> help)
{
    const Buttons &buttons = m_form.buttons;
    connect(buttons.saveAndAdd, &QPushButton::clicked, this, [this] {
        if (save()) {
            beginNext();
        }
    });
    connect(buttons.saveAndClose, &QPushButton::clicked, this, [this] {
        if (save()) {
            close();
        }
    });
    connect(buttons.close, &QPushButton::clicked, this, &QWidget::close);
    connect(buttons.help, &QPushButton::clicked, this, [open = std::move(help)] { open(); });

    auto *keys = new quillon::FormKeys(this);
    keys->on(Qt::Key_F1, [this] { m_form.buttons.help->click(); });
    keys->on(Qt::ALT | buttons.saveAndAddKey, [this] { m_form.buttons.saveAndAdd->click(); });
    keys->on(Qt::ALT | buttons.saveAndCloseKey, [this] { m_form.buttons.saveAndClose->click(); });
}

void RecordDialog::begin(Task task)
{
    m_task = std::move(task);
    setCaption();
    setTips();
    showRecord(m_task.line.isEmpty() ? m_form.newRecord : m_task.line);
    (m_task.completes ? firstEmptyBox() : m_form.first)->setFocus();
}

QLineEdit *RecordDialog::firstEmptyBox() const
{
    QWidget *widget = m_form.first;
    do {
        auto *box = qobject_cast<QLineEdit *>(widget);
        if (box && box->isEnabled() && box->text().isEmpty()) {
            return box;
        }
        widget = widget->nextInFocusChain();
    } while (widget != m_form.first);
    return m_form.first;
}

/// In an edit the button's tip says what becomes of the record: what is entered next takes its place once more.
void RecordDialog::setTips()
{
    QPushButton *button = m_form.buttons.saveAndAdd;
    const QString kind = m_task.mode == Mode::Add ? u".tip"_s : u".tip.edit"_s;
    button->setToolTip(formText(objectName(), button->objectName() + kind, button->toolTip()));
}

void RecordDialog::beginNext()
{
    showRecord(m_form.newRecord);
    m_form.first->setFocus();
}

// Captions are the same in every language.
void RecordDialog::setCaption()
{
    setWindowTitle(m_task.mode == Mode::Add
                       ? QString::fromUtf16(addCaption) + m_form.what
                       : QString::fromUtf16(editCaption) + m_form.what + u" - "_s + m_form.nameOf(m_task.line));
}

void RecordDialog::showRecord(const QString &line)
{
    for (int i = 0; i < m_form.fields.size(); ++i) {
        m_form.fields.at(i).show(recordField(line, i));
    }
}

QString RecordDialog::line() const
{
    QStringList values;
    for (const RecordFieldView &field : m_form.fields) {
        values.append(field.value());
    }
    return recordLine(values);
}

bool RecordDialog::save()
{
    if (!m_task.save) {
        return false;
    }
    for (const FieldCheck &check : std::as_const(m_form.checks)) {
        if (check.fails()) {
            tell(check.fault);
            return false;
        }
    }
    const QString entered = line();
    if (m_task.exists && m_task.exists(entered)) {
        tell(m_form.duplicate);
        return false;
    }
    return m_task.save(entered);
}

void RecordDialog::tell(const FieldFault &fault)
{
    showMessage(QString::fromUtf16(fault.message), fault.style);
    fault.control->setFocus();
    if (fault.selectsText) {
        fault.control->selectAll();
    }
}

RecordFieldView RecordDialog::textField(QLineEdit *box)
{
    return {[box] { return box->text(); }, [box](const QString &value) { box->setText(value); }};
}

RecordFieldView RecordDialog::tickField(QCheckBox *tick)
{
    return {[tick] { return tick->isChecked() ? u"Y"_s : u"N"_s; },
            [tick](const QString &value) { tick->setChecked(value == "Y"_L1); }};
}

RecordFieldView RecordDialog::fixedField(const QString &text)
{
    return {[text] { return text; }, [](const QString &) {}};
}

FieldCheck RecordDialog::needs(QLineEdit *box, const char16_t *message)
{
    return {[box] { return box->text().trimmed().isEmpty(); }, {message, quillon::InformationBox, box}};
}

FieldCheck RecordDialog::needsUser(QLineEdit *box, QCheckBox *tick)
{
    FieldCheck check = needs(box, u"NEED_USER");
    check.fails = [tick, empty = std::move(check.fails)] { return tick->isChecked() && empty(); };
    return check;
}

FieldCheck RecordDialog::needsAddress(QLineEdit *box, int style)
{
    return {[box] {
                const QString address = box->text().trimmed();
                return !address.isEmpty() && !quillon::QuillonAddress().IsEmailAddress(address);
            },
            {u"VALID_ADDRESS", style, box, true}};
}

} // namespace corvane
