#include "quillon/system/prompts.h"

#include "quillon/fault.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

/// In force before any other: nobody is there to answer.
class NoPrompts : public HarmlessPrompts {
protected:
    void unanswered(const QString &what) override { reportFault(u"nobody to answer: "_s + what); }
};

NoPrompts nobody;
Prompts *present = &nobody;

} // namespace

BoxAnswer HarmlessPrompts::box(const BoxRequest &request)
{
    unanswered(request.Key + u' ' + request.Text);
    switch (request.Style) {
    case YesNoBox:
        return BoxAnswer::No;
    case YesNoCancelBox:
    case OkCancelQuestionBox:
    case OkCancelInformationBox:
        return BoxAnswer::Cancel;
    default:
        return BoxAnswer::Ok;
    }
}

QString HarmlessPrompts::input(const InputRequest &request)
{
    unanswered(request.Key + u' ' + request.Prompt);
    return {};
}

QStringList HarmlessPrompts::openFiles(const FileRequest &request)
{
    unanswered(request.Title);
    return {};
}

QString HarmlessPrompts::saveFile(const FileRequest &request)
{
    unanswered(request.Title);
    return {};
}

QString HarmlessPrompts::selectFolder(const QString &title)
{
    unanswered(title);
    return {};
}

long HarmlessPrompts::chooseColor()
{
    unanswered(u"which colour"_s);
    return -1;
}

void HarmlessPrompts::showModalForm(const QString &form, int tab)
{
    Q_UNUSED(tab)
    unanswered(form);
}

Prompts &prompts()
{
    return *present;
}

Prompts *setPrompts(Prompts *next)
{
    Prompts *before = std::exchange(present, next ? next : &nobody);
    return before == &nobody ? nullptr : before;
}

} // namespace quillon
