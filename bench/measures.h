#pragma once

#include <QJsonObject>
#include <QString>

/// What a measurement is given.
struct BenchTask {
    quint16 port = 0;
    int count = 0;
    bool starttls = false;
    QString authority; ///< the file of the one authority to trust
    QString document;  ///< the file of the HTML document, with a macro for the recipient's full name
};

/// @p count personal mails over fresh connections with nothing but the transport: {"seconds"}.
QJsonObject measureTransport(const BenchTask &task);

/// The encoding of @p count such mails alone: {"seconds"}.
QJsonObject measureEncoding(const BenchTask &task);

/// A whole run to @p count recipients with the main window, the progress dialog and the log: {"seconds", "first" and
/// "last": seconds a mail at the run's two ends, "memoryEarly" and "memoryLate": KB after a hundred mails and at the
/// end}.
QJsonObject measureProgram(const BenchTask &task);

/// One pass of 500 macros over a content of 1 MB: {"seconds"}.
QJsonObject measureMacros();

/// Saving 1000 recipients beside 100,000 that are remembered: {"seconds"}.
QJsonObject measurePrompts();

/// Typing into To beside 100,000 earlier recipients: {"memory": KB of their list, "median" and "worst": milliseconds of
/// a key; the same as "lines…" and "oneLine…" into a text of 1 MB that was pasted, in lines or as one}.
QJsonObject measureTyping(const BenchTask &task);

/// The i-th recipient, from 1.
QString benchName(int i);
QString benchAddress(int i);

/// The text of a file; ends the program when there is none.
QString benchText(const QString &path);
