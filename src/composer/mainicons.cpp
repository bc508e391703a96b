#include "composer/mainicons.h"

#include "core/forms/artwork.h"

#include <QAbstractButton>
#include <QAction>
#include <QMainWindow>
#include <QStyle>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

struct Picture {
    const char16_t *control;
    const char16_t *icon;
};

constexpr Picture pictures[] = {
    {u"tlbNew", u"new"},
    {u"tlbOpen", u"open"},
    {u"tlbSave", u"save"},
    {u"tlbSend", u"send"},
    {u"tlbSchedule", u"schedule"},
    {u"tlbOBO", u"obo"},
    {u"tlbUndo", u"undo"},
    {u"tlbRedo", u"redo"},
    {u"tlbCut", u"cut"},
    {u"tlbCopy", u"copy"},
    {u"tlbPaste", u"paste"},
    {u"tlbDelete", u"delete"},
    {u"tlbFind", u"find"},
    {u"tlbExpand", u"expand"},
    {u"tlbOptions", u"options"},
    {u"tlbTemplate", u"template"},
    {u"tlbMacro", u"macro"},
    {u"tlbContacts", u"contacts"},
    {u"tlbFlowchart", u"flowchart"},
    {u"sbtMain(0)", u"options"},
    {u"sbtMain(1)", u"options"},
    {u"sbtMain(2)", u"options"},
    {u"sbt(0)", u"contactadd"},
    {u"sbt(1)", u"fileadd"},
    {u"sbt(12)", u"save"},
    {u"sbt(13)", u"clear"},
    {u"sbt(2)", u"attach"},
    {u"sbt(21)", u"folderadd"},
    {u"sbt(3)", u"remove"},
    {u"sbt(4)", u"clear"},
    {u"sbt(5)", u"open"},
    {u"sbt(6)", u"bold"},
    {u"sbt(7)", u"italic"},
    {u"sbt(8)", u"underline"},
    {u"sbt(9)", u"textcolor"},
    {u"sbt(10)", u"backcolor"},
    {u"sbt(14)", u"numbers"},
    {u"sbt(15)", u"bullets"},
    {u"sbt(16)", u"outdent"},
    {u"sbt(17)", u"indent"},
    {u"sbt(18)", u"left"},
    {u"sbt(19)", u"center"},
    {u"sbt(20)", u"right"},
    {u"sbt(22)", u"link"},
    {u"sbt(23)", u"unlink"},
    {u"sbt(24)", u"picture"},
    {u"menfn", u"new"},
    {u"menfo", u"open"},
    {u"menfa", u"save"},
    {u"menfs", u"send"},
    {u"menfc", u"schedule"},
    {u"meneu", u"undo"},
    {u"mener", u"redo"},
    {u"menet", u"cut"},
    {u"menec", u"copy"},
    {u"menep", u"paste"},
    {u"mened", u"delete"},
    {u"menef", u"find"},
    {u"meniaa", u"attach"},
    {u"meniaf", u"folderadd"},
    {u"mento", u"options"},
    {u"mentt", u"template"},
    {u"mentm", u"macro"},
    {u"menta", u"contacts"},
    {u"menho", u"flowchart"},
};

} // namespace

void setMainIcons(QMainWindow *form)
{
    initResources();
    form->setWindowIcon(QIcon(u":/corvane.svg"_s));
    // Pictures grow with the font: a reader of large letters needs large pictures too.
    const int side = std::max(form->style()->pixelMetric(QStyle::PM_SmallIconSize), form->fontMetrics().height());
    form->setIconSize(QSize(side * 3 / 2, side * 3 / 2));
    for (const Picture &picture : pictures) {
        const QString name = QString::fromUtf16(picture.control);
        const QIcon icon = themeIcon(QString::fromUtf16(picture.icon));
        if (auto *action = form->findChild<QAction *>(name)) {
            action->setIcon(icon);
        } else if (auto *button = form->findChild<QAbstractButton *>(name)) {
            button->setIcon(icon);
            button->setIconSize(QSize(side, side));
        }
    }
}

} // namespace corvane
