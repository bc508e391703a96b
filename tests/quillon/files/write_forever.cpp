// Writes settings and records until it is killed; the test looks at what is then on the disk.
#include "quillon/files/quillonlines.h"
#include "quillon/files/safefile.h"
#include "quillon/system/quillonsystem.h"

#include <QString>

#include <cstdio>

using namespace Qt::StringLiterals;

int main(int count, char **values)
{
    if (count != 2) {
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(values[1]);
    quillon::setTemporaryFolder(folder + u"/writing"_s);
    const quillon::QuillonSystem system;
    const quillon::QuillonLines lines;
    for (int i = 0;; ++i) {
        const QString mark = QString::number(i);
        system.WriteSetting(folder + u"/options.dll"_s, u"Other"_s, u"Font Name"_s, mark + QString(4000, u'x') + mark);
        lines.AppendLine(folder + u"/smtp.dll"_s, mark + u'\t' + QString(300, u'y') + u'\t' + mark);
        lines.ReplaceLine(folder + u"/proxy.dll"_s, u"key"_s, u"key"_s, u"\t"_s, 0);
        lines.WriteTextFile(folder + u"/sign.dll"_s, mark + QString(9000, u'z') + mark, u"utf-8"_s);
        if (i == 0) {
            std::puts("at work");
            std::fflush(stdout);
        }
    }
}
