#pragma once

#include "quillon/forms/boxtext.h"

#include <QString>

class QComboBox;

namespace corvane {

using quillon::textOf;

/// Sets the text of an editable combo box, listed or not, and says so once, if the text is another one.
void setComboText(QComboBox *box, const QString &text);

/// Replaces the entries of a combo box without touching, or telling a change of, its text.
void setComboList(QComboBox *box, const QStringList &entries);

} // namespace corvane
