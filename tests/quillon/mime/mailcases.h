#pragma once

#include "quillon/mail/mailmessage.h"

#include <QList>
#include <QString>
#include <QTemporaryDir>

/// A mail that is built, and read back by somebody else.
struct MailCase {
    QString Name;
    quillon::MailMessage Message;
    QString TextCharset; ///< what the text part has to say; empty: not looked at
    QString Html;        ///< the document as it has to arrive; empty: there is none, or it is not looked at
};

/// Every charset that the program offers, each with all the characters of its own that fit it, as plain text and as
/// HTML; the latter also with characters that do not fit. Subject, names and file names are made of the same letters.
QList<MailCase> charsetCases(const QTemporaryDir &files);

/// Bodies that break careless builders: long lines, lines of one dot, bare line ends, control characters, nothing.
QList<MailCase> awkwardBodies();

/// Line ends, NUL and other control characters in every field, aimed at writing a header of their own.
QList<MailCase> headerInjections(const QTemporaryDir &files);

/// Subjects, names and file names of every kind.
QList<MailCase> awkwardNames(const QTemporaryDir &files);
