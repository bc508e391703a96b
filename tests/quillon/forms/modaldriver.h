#pragma once

#include "quillon/forms/formregistry.h"
#include "quillon/forms/qtprompts.h"

#include <QApplication>
#include <QDialog>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

/// Runs @p act on the dialog of that kind that is modal once the event loop turns; one of another kind is closed, so
/// that the test fails and does not hang.
template <typename Dialog> void meet(std::function<void(Dialog *)> act)
{
    QTimer::singleShot(0, qApp, [act = std::move(act)] {
        QWidget *modal = QApplication::activeModalWidget();
        if (auto *dialog = qobject_cast<Dialog *>(modal)) {
            act(dialog);
        } else {
            QTest::qFail("another window than the expected one is modal", __FILE__, __LINE__);
            if (auto *other = qobject_cast<QDialog *>(modal)) {
                other->done(0);
            }
        }
    });
}

/// The prompts under test and the forms that they show.
class QtPromptsBench {
protected:
    void begin()
    {
        QCoreApplication::setApplicationName(QStringLiteral("Corvane"));
        m_forms = std::make_unique<quillon::FormRegistry>();
        m_prompts = std::make_unique<quillon::QtPrompts>(*m_forms);
    }
    void end()
    {
        m_prompts.reset();
        m_forms.reset();
    }

    std::unique_ptr<quillon::FormRegistry> m_forms;
    std::unique_ptr<quillon::QtPrompts> m_prompts;
};
