#include "support/fakewindow.h"

using namespace Qt::StringLiterals;

QString FakeWindow::text(Field field) const
{
    if (beforeRead) {
        beforeRead(field);
    }
    QString text = texts.value(field);
    text.replace(u"\r\n"_s, u"\n"_s);
    return text.replace(u'\n', u"\r\n"_s);
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
