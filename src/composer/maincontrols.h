#pragma once

#include "message/message.h"

#include <array>

class QAbstractButton;
class QAction;
class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QListView;
class QListWidget;
class QMainWindow;
class QPlainTextEdit;
class QTabWidget;
class QTimeEdit;
class QWidget;

namespace corvane {

class RichEditor;

/// The main window's controls by their names, collected once; each concern is handed those that it works on.
struct MainControls {
    explicit MainControls(QMainWindow *form);

    /// The control that holds a field of the message.
    [[nodiscard]] QWidget *holderOf(Message::Field field) const;

    QMainWindow *form;
    std::array<QComboBox *, 7> cbb;
    std::array<QPlainTextEdit *, 3> txt;
    std::array<QAbstractButton *, 10> opt; ///< 6 and 7 do not exist
    std::array<QAction *, 3> menosh;
    std::array<QLabel *, 3> panel; ///< of the status bar, 1 and 2
    QDateEdit *date;               ///< dtp(0)
    QTimeEdit *time;               ///< dtp(1)
    QListWidget *attachments;      ///< lsv(0)
    QLineEdit *utbSubject;
    QPlainTextEdit *utbContent;
    QPlainTextEdit *utbSource;
    QTabWidget *sst;
    RichEditor *dhe;
    QWidget *header;        ///< fra(0)
    QWidget *formattingBar; ///< fra(3)
    QWidget *colorPopUp;    ///< fra(4)
    QListView *lstFilter;
    QAction *menfb;
    QAction *mentr;
    QAction *menop;
    QAction *menor;
    QAction *menve;
    QAction *tlbExpand;
};

} // namespace corvane
