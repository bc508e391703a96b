#include "quillon/system/prompts.h"

#include "quillon/fault.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

/// In force before any other: nobody is there to answer.
class NoPrompts : public Prompts {
public:
    BoxAnswer box(const BoxRequest &request) override
    {
        reportFault(u"nobody to answer the box '"_s + request.Key + u'\'');
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
    QString input(const InputRequest &request) override
    {
        reportFault(u"nobody to answer the input box '"_s + request.Key + u'\'');
        return {};
    }
    QStringList openFiles(const FileRequest &request) override
    {
        reportFault(u"nobody to choose: "_s + request.Title);
        return {};
    }
    QString saveFile(const FileRequest &request) override
    {
        reportFault(u"nobody to choose: "_s + request.Title);
        return {};
    }
    QString selectFolder(const QString &title) override
    {
        reportFault(u"nobody to choose: "_s + title);
        return {};
    }
    long chooseColor() override
    {
        reportFault(u"nobody to choose a colour"_s);
        return -1;
    }
    void showModalForm(const QString &form, int tab) override
    {
        Q_UNUSED(tab)
        reportFault(u"nobody to show the form '"_s + form + u'\'');
    }
};

NoPrompts nobody;
Prompts *present = &nobody;

} // namespace

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
