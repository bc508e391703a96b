#include "composer/recipientbox.h"

namespace corvane {

RecipientBox::RecipientBox(QWidget *parent) : QPlainTextEdit(parent)
{
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

} // namespace corvane
