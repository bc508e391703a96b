#include "support/fakewindow.h"

#include "quillon/text/lineends.h"
#include "sending/sendingtexts.h"

QString FakeWindow::text(Field field) const
{
    if (beforeRead) {
        beforeRead(field);
    }
    return PlainMessage::text(field);
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

void FakeProgress::setActivity(const QString &text)
{
    activities.append(text);
    if (afterActivity) {
        afterActivity(text);
    }
}
