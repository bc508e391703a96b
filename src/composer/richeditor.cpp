#include "composer/richeditor.h"

#include "quillon/text/lineends.h"

namespace corvane {

RichEditor::RichEditor(QWidget *parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
}

QString RichEditor::documentHtml() const
{
    return m_source;
}

void RichEditor::setDocumentHtml(const QString &source)
{
    m_source = quillon::withCrLf(source);
}

} // namespace corvane
