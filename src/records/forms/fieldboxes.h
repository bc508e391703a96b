#pragma once

#include <QString>

class QAbstractButton;
class QLineEdit;
class QWidget;

#include <initializer_list>

namespace corvane {

/// Keeps tabs, line ends and other control characters out of a text box, since they would cut a record's line: each
/// becomes a blank as soon as it is in the box. The caret stays where it was. To be called before anything else
/// listens to the box, so that others see clean text only.
void keepOneLine(QLineEdit *box);

/// What a port's text counts as: its value when it is plain digits, blanks around them aside, 0 for any other text.
[[nodiscard]] quint64 portValue(const QString &text);

/// Watches a box for a port: as soon as its text is not empty and its value is below 1 or above 65535, PORT_LIMIT is
/// shown and @p putBack stands in the box, selected, so that the next digit replaces it.
void limitPort(QLineEdit *box, const QString &putBack);

/// Enables the controls while @p tick is ticked, and disables them while it is not, from now on.
void enableWith(QAbstractButton *tick, std::initializer_list<QWidget *> controls);

} // namespace corvane
