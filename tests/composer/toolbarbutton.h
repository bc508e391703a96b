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
