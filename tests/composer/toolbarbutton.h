#pragma once

#include "mainfixture.h"

#include <QToolBar>

/// The toolbar button with that caption.
inline QAction *tool(const MainFixture &main, const QString &caption)
{
    for (QAction *action : main.get<QToolBar>(QStringLiteral("tlb"))->actions()) {
        if (action->text() == caption) {
            return action;
        }
    }
    return nullptr;
}

/// Presses the toolbar button with that caption by the mouse; the test fails where there is none to be pressed.
inline void press(const MainFixture &main, const QString &caption)
{
    QAction *action = tool(main, caption);
    QVERIFY2(action, qPrintable(caption));
    QWidget *button = main.get<QToolBar>(QStringLiteral("tlb"))->widgetForAction(action);
    QVERIFY2(button && button->isVisible() && button->isEnabled(), qPrintable(caption));
    QTest::mouseClick(button, Qt::LeftButton);
}
