#pragma once

#include "quillon/mail/mailmessage.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

/// What a reader of its own found in a mail.
struct ReadMail {
    struct File {
        QString Name;
        QByteArray Type;
        QByteArray Id;
        QByteArray Sha256;
    };
    QString Subject;
    QList<quillon::MailAddress> From;
    QList<quillon::MailAddress> ReplyTo;
    QList<quillon::MailAddress> To;
    QList<quillon::MailAddress> Cc;
    QString Text;
    QString TextCharset;
    QString Html;
    QList<File> Files;
    QStringList Headers; ///< names in lower case
    QStringList Defects; ///< what the reader complained of
};

/// A program that reads mails and is not ours.
class MailReader {
public:
    static MailReader python();
    static MailReader gmime();
    static MailReader mailparser();

    /// Not empty: the reader is not at hand, for this reason.
    [[nodiscard]] QString missing() const { return m_missing; }

    /// Reads the files @p paths; fewer mails than files, with the reason in fault(), when the reader fails.
    QList<ReadMail> read(const QStringList &paths);
    [[nodiscard]] QString fault() const { return m_fault; }

    /// Whether texts come out with "\n" for every line end, and without a line end at their end.
    bool NormalisesLines = false;

    /// Whether a file name that looks like an encoded word is decoded although nothing says that it is one.
    bool DecodesWordsInFileNames = false;

private:
    QString m_program;
    QStringList m_arguments;
    QString m_missing;
    QString m_fault;
};
