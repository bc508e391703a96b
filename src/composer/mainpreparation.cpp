#include "composer/mainpreparation.h"

#include "composer/composertexts.h"
#include "composer/richeditor.h"
#include "core/texts.h"

#include <QAction>
#include <QActionGroup>
#include <QComboBox>
#include <QFontDatabase>
#include <QFrame>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QStatusBar>
#include <QStyle>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int bodyLines = 4;      // are seen of the content, however small the window
constexpr int encodingWidth = 40; // characters
const QString versionText = u"5.22"_s;

void addControls(QMainWindow *form)
{
    for (const int number : {1, 2}) {
        auto *panel = new QLabel(form);
        panel->setObjectName(u"stb(%1)"_s.arg(number));
        panel->setContentsMargins(4, 0, 4, 0);
        // A long help line is cut, it does not make the window wider.
        panel->setSizePolicy(number == 1 ? QSizePolicy::Ignored : QSizePolicy::Preferred, QSizePolicy::Preferred);
        form->statusBar()->addPermanentWidget(panel, number == 1 ? 1 : 0);
        panel->setText(number == 1 ? QString::fromUtf16(readyText)
                                   : QString::fromUtf16(programTitle) + u' ' + versionText);
    }
    const auto hiddenChild = [](QWidget *child, const QString &name) {
        child->setObjectName(name);
        child->hide();
    };
    hiddenChild(new QComboBox(form), u"cbb(3)"_s);
    hiddenChild(new RichEditor(form), u"dheTmp"_s);
    hiddenChild(new QListView(form), u"lstFilter"_s);
    auto *palette = new QFrame(form);
    palette->setFrameShape(QFrame::StyledPanel);
    palette->setAutoFillBackground(true);
    auto *more = new QToolButton(palette);
    more->setObjectName(u"sbt(11)"_s);
    more->setText(quillon::say(moreColors));
    more->setToolTip(quillon::say(moreColorsTip));
    hiddenChild(palette, u"fra(4)"_s);
}

void prepareContent(QMainWindow *form)
{
    auto *encoding = form->findChild<QComboBox *>(u"cbb(2)"_s);
    encoding->setMaximumWidth(form->fontMetrics().averageCharWidth() * encodingWidth);
    for (const QString &content : {u"utbContent"_s, u"sst"_s}) {
        form->findChild<QWidget *>(content)->setMinimumHeight(form->fontMetrics().lineSpacing() * bodyLines);
    }
    auto *attachments = form->findChild<QListWidget *>(u"lsv(0)"_s);
    attachments->setFlow(QListView::LeftToRight);
    attachments->setWrapping(true);
    attachments->setResizeMode(QListView::Adjust);
    attachments->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const int icon = form->style()->pixelMetric(QStyle::PM_SmallIconSize);
    attachments->setIconSize(QSize(icon, icon));
    attachments->setSelectionMode(QAbstractItemView::SingleSelection);
    form->findChild<QComboBox *>(u"cbb(4)"_s)->addItems(QFontDatabase::families());
    form->findChild<QComboBox *>(u"cbb(5)"_s)->addItems({u"8"_s, u"10"_s, u"12"_s, u"14"_s, u"18"_s, u"24"_s, u"36"_s});
    const QList<QComboBox *> combos = form->findChildren<QComboBox *>();
    for (QComboBox *combo : combos) {
        combo->setCurrentIndex(-1);
        if (combo->isEditable()) {
            combo->setCompleter(nullptr); // what stands in a field is what was typed or picked
        }
    }
    auto *priorities = new QActionGroup(form);
    for (const int item : {0, 1, 2}) {
        priorities->addAction(form->findChild<QAction *>(u"menosh(%1)"_s.arg(item)));
    }
}

} // namespace

void prepareMainControls(QMainWindow *form)
{
    addControls(form);
    prepareContent(form);
}

} // namespace corvane
