#pragma once

#include <QWidget>

namespace corvane {

/// The HTML document of a message: its source, as text.
class RichEditor : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString DocumentHTML READ documentHtml WRITE setDocumentHtml)

public:
    explicit RichEditor(QWidget *parent = nullptr);

    /// The document's source, with CR LF at its line ends.
    [[nodiscard]] QString documentHtml() const;
    void setDocumentHtml(const QString &source);

private:
    QString m_source;
};

} // namespace corvane
