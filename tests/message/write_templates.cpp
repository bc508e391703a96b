// Saves and renames templates until it is killed, and tells each change; the test looks at what is then on the disk.
#include "core/datatree.h"
#include "message/plainmessage.h"
#include "message/templatefiles.h"
#include "quillon/files/safefile.h"

#include <QString>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace corvane;

int main(int count, char **values)
{
    if (count != 2) {
        return 2;
    }
    ApplicationGlobals globals;
    globals.paths = dataPathsBelow(QString::fromLocal8Bit(values[1]), QString());
    quillon::setTemporaryFolder(globals.paths.root);
    const auto tell = [] {
        std::putchar('.');
        std::fflush(stdout);
    };
    PlainMessage message;
    LoadTemplate(globals, u"saved"_s, message);
    // Behind the content of the one before, which may have been killed between its head and its content.
    const int first = message.text(Message::Field::PlainContent).section(u'y', 0, 0).toInt() + 1;
    message.setFormat(Message::Format::Plain);
    for (int i = first;; ++i) {
        const QString mark = QString::number(i);
        message.setText(Message::Field::Subject, mark);
        message.setText(Message::Field::To, mark + QString(3000, u'x') + mark);
        message.setText(Message::Field::PlainContent, mark + QString(4000, u'y') + mark);
        writeTemplate(globals, u"saved"_s, !isListed(globals, u"saved"_s), message, [] {});
        tell();
        renameTemplate(globals, u"one"_s, u"other"_s);
        tell();
        renameTemplate(globals, u"other"_s, u"one"_s);
        tell();
    }
}
