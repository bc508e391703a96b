#pragma once

#include "composer/frmpubmain.h"
#include "core/globals.h"
#include "measures.h"
#include "quillon/system/prompts.h"
#include "recipients/inputprompts.h"

#include <QTemporaryDir>

#include <memory>

/// The real main window, shown over a data tree of its own with one account; nobody sits at it.
struct BenchWindow {
    /// Boxes are answered at once, as nobody sits here. A run that shows any but its closing box has gone wrong.
    class NobodyThere : public quillon::HarmlessPrompts {
    public:
        quillon::BoxAnswer box(const quillon::BoxRequest &request) override
        {
            if (request.Style != quillon::InformationBox) {
                qFatal("%s", qPrintable(request.Text));
            }
            closing = request.Text;
            return quillon::BoxAnswer::Ok;
        }
        void showModalForm(const QString &form, int) override { qFatal("%s was shown", qPrintable(form)); }

        QString closing;
    };

    explicit BenchWindow(const BenchTask &task);
    ~BenchWindow();
    BenchWindow(const BenchWindow &) = delete;
    BenchWindow &operator=(const BenchWindow &) = delete;

    QTemporaryDir folder;
    corvane::ApplicationGlobals globals;
    corvane::InputPrompts recipients{globals};
    NobodyThere nobody;
    std::unique_ptr<corvane::frmPubMain> main;
};

/// The resident memory of this process in KB.
double residentMemory();
