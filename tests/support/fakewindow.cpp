#include "support/fakewindow.h"

#include "quillon/text/lineends.h"

QString FakeWindow::text(Field field) const
{
    if (beforeRead) {
        beforeRead(field);
    }
    return quillon::withCrLf(texts.value(field));
}

void FakeWindow::setText(Field field, const QString &text)
{
    change(texts[field], text);
}

void FakeWindow::setActual(Choice choice, bool value)
{
    if (isActual(choice) != value) {
        actual.insert(choice, value);
        pblnChanged = true;
    }
}

void FakeWindow::setCustomDateTime(const QDate &newDate, const QTime &newTime)
{
    change(date, newDate);
    change(time, newTime);
}

QString FakeProgress::counter() const
{
    return counters.isEmpty() ? QString::fromUtf16(corvane::progressRestText) : counters.last();
}

void FakeProgress::setCounter(const QString &text)
{
    counters.append(text);
    if (afterCounter) {
        afterCounter(text);
    }
}
