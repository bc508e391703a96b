#pragma once

#include "macros/macrocatalogue.h"
#include "quillon/system/platform.h"
#include "recipients/inputprompts.h"
#include "sending/sendrun.h"
#include "support/expectedprompts.h"
#include "support/fakewindow.h"
#include "support/temporarytree.h"

#include <QCoreApplication>
#include <QLocale>

/// What a send run needs around it: a data tree with message texts that name their keys, and a filled message.
class SendBench {
public:
    SendBench()
    {
        using namespace Qt::StringLiterals;
        tree.prepare();
        corvane::seedMacros(tree.globals);
        QByteArray texts = "[Message & Text]\r\n";
        for (const char *key :
             {"OTHER_RUN", "PROXY_ADDRESS", "PROXY_USER", "NEED_SMTP_S", "SENDER", "INVALID_SENDER", "REPLY",
              "INVALID_REPLY", "NEED_RECEIVERS", "INVALID_TO", "INVALID_CC", "INVALID_BCC", "CONN_FAILED", "SENT_SUCC",
              "SENT_UNSUCC", "SENT_SUCCA", "SENT_SUCCB", "SENT_UNSUCCB", "FAIL_ADDR"}) {
            texts += QByteArray(key) + "=text of " + key + "\r\n";
        }
        writeFile(tree.globals.programFolder + u"/tips.dll"_s, texts);
        window.setText(Field::Account, u"ada@x.org"_s);
        window.setText(Field::Sender, u"Ada King <ada@x.org>"_s);
        window.setText(Field::ReplyReceiver, u"reply@x.org"_s);
        window.setText(Field::To, u"Bob <bob@y.org>"_s);
        window.setText(Field::Encoding, u"Unicode (UTF-8)"_s);
        window.setText(Field::Subject, u" Hello "_s);
        window.setText(Field::PlainContent, u"Dear {First Name of The Recipient},\r\nhello."_s);
        window.pblnChanged = false;
    }

    /// Makes the one account, on a server of this machine; @p login is "Y" and a user and password, tab-separated.
    void useServer(const QString &server, quint16 port, const QString &security = QStringLiteral("N"),
                   const QString &login = QStringLiteral("N\t\t"))
    {
        const QString line = QStringList{server,
                                         QString::number(port),
                                         security,
                                         login,
                                         QStringLiteral("Ada King"),
                                         QStringLiteral("ada@x.org"),
                                         QStringLiteral("Ada's desk"),
                                         QStringLiteral("receipts@x.org"),
                                         QStringLiteral("/SAEND")}
                                 .join(u'\t');
        writeFile(tree.globals.paths.smtpFile, line.toUtf8() + "\r\n");
    }

    /// A whole run, as far as the event loop carries it.
    void run() { run(sender); }
    static void run(corvane::SendRun &run)
    {
        run.run();
        while (run.state().Sending()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }
    [[nodiscard]] corvane::SendRun::Rooms rooms() { return {tree.globals, window, window, progress, prompts}; }

    [[nodiscard]] QString logPath() const { return corvane::logPathAt(tree.globals, quillon::systemClock().now()); }
    /// The log's lines, with the moments behind Begin and End taken out after a look at their shape.
    [[nodiscard]] QStringList log() const
    {
        QStringList lines = tree.globals.lines.ReadLines(logPath());
        for (QString &line : lines) {
            for (const QString &heading : {QStringLiteral("Begin: "), QStringLiteral("End: ")}) {
                const bool moment = QLocale::system()
                                        .toDateTime(line.sliced(qMin(heading.size(), line.size())),
                                                    QStringLiteral("MMM dd yyyy HH:mm:ss"))
                                        .isValid();
                if (line.startsWith(heading) && moment) {
                    line = heading + QStringLiteral("(moment)");
                }
            }
        }
        return lines;
    }

    using Field = corvane::Message::Field;

    TemporaryTree tree;
    FakeWindow window;
    FakeProgress progress;
    corvane::InputPrompts prompts{tree.globals};
    corvane::SendRun sender{rooms()};
};
