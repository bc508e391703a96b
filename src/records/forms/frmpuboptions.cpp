#include "records/forms/frmpuboptions.h"

#include "core/texts.h"
#include "quillon/forms/formkeys.h"
#include "quillon/text/quillontext.h"

#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvane {

frmPubOptions::frmPubOptions(const DataPaths &paths) : m_tabs(new QTabWidget(this))
{
    setObjectName(u"frmPubOptions"_s);
    setWindowTitle(u"Options"_s);
    m_tabs->setObjectName(u"sst"_s);

    const auto addTab = [this](const QString &caption, const QString &what, const QString &file) {
        auto *page = new QWidget;
        auto *line = new QLabel(what + u" are kept in the file \""_s + file + u"\". This tab cannot edit them yet."_s);
        line->setTextFormat(Qt::PlainText);
        line->setWordWrap(true);
        line->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        line->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        auto *column = new QVBoxLayout(page);
        column->addWidget(line);
        m_tabs->addTab(page, caption);
    };
    addTab(u"Proxy"_s, u"The proxy servers"_s, paths.proxyFile);
    addTab(u"Accounts"_s, u"The SMTP accounts"_s, paths.smtpFile);
    addTab(u"Senders"_s, u"The senders"_s, paths.sendersFile);
    addTab(u"Signatures"_s, u"The signatures"_s, paths.signsFile);
    addTab(u"Other settings"_s, u"The other settings"_s, paths.optionsFile);

    auto *close = new QPushButton(u"&Close"_s);
    close->setObjectName(u"sbt(2)"_s);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(close);

    auto *column = new QVBoxLayout(this);
    column->addWidget(m_tabs);
    column->addLayout(buttons);

    quillon::QuillonText().ApplyControlTexts(this, languageFolder() + u"/tips.dll"_s);
    quillon::QuillonText().ApplyMenuTexts(this, languageFolder() + u"/menus.dll"_s);
    new quillon::FormKeys(this);
}

void frmPubOptions::showTab(int tab)
{
    m_tabs->setCurrentIndex(tab);
}

} // namespace corvane
