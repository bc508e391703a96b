#pragma once

#include "message/plainmessage.h"
#include "message/window.h"
#include "sending/progressview.h"

#include <QList>
#include <QMap>

#include <functional>

/// The main window over plain values: the message that it holds, and what the window around it was told.
class FakeWindow : public corvane::PlainMessage, public corvane::Window {
public:
    FakeWindow() { encodings = QStringList{QStringLiteral("utf-8 | Unicode (UTF-8)")}; }

    [[nodiscard]] QString text(Field field) const override;

    void setFocus(Field field) override { focused.append(field); }
    [[nodiscard]] QStringList list(Field field) const override { return lists.value(field); }
    void setList(Field field, const QStringList &entries) override { lists.insert(field, entries); }
    [[nodiscard]] QString title() const override { return windowTitle; }
    void setTitle(const QString &title) override { windowTitle = title; }
    [[nodiscard]] QString statusText() const override { return statusTexts.isEmpty() ? QString() : statusTexts.last(); }
    void setStatusText(const QString &text) override { statusTexts.append(text); }

    QMap<Field, QStringList> lists;
    QString windowTitle;
    QList<Field> focused;    ///< every field that was given the focus, in order
    QStringList statusTexts; ///< every text that the status panel showed, in order

    /// Runs before a field is read, so that a test can edit the message between two readings.
    std::function<void(Field)> beforeRead;
};

/// The progress dialog over plain values, with a record of what it showed.
class FakeProgress : public corvane::ProgressView {
public:
    [[nodiscard]] bool isVisible() const override { return visible; }
    void makeVisible() override { visible = true; }
    void hide() override { visible = false; }
    [[nodiscard]] QString activity() const override { return activities.isEmpty() ? QString() : activities.last(); }
    void setActivity(const QString &text) override;
    [[nodiscard]] QString counter() const override;
    void setCounter(const QString &text) override;
    void setProgress(int taken, int total) override { steps.append({taken, total}); }
    void setAtRest() override { steps.append(rest); }

    bool visible = false;
    QStringList activities;
    QStringList counters;
    static constexpr std::pair<int, int> rest{-1, -1};
    QList<std::pair<int, int>> steps; ///< mails taken and their total, or rest
    /// Runs after the counter line has changed, as a user who acts on what it shows.
    std::function<void(const QString &)> afterCounter;
    std::function<void(const QString &)> afterActivity; ///< the same for the activity line
};
