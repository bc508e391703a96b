#pragma once

#include "sending/servedbench.h"

#include <QRegularExpression>

/// A send run in one-by-one mode to three people.
class OneByOneBench : protected ServedBench {
protected:
    void begin()
    {
        ServedBench::begin();
        m_bench->window.setOneByOne(true);
        m_bench->window.setText(Field::To, QStringLiteral("Bob B <bob@y.org>, cy@y.org"));
        m_bench->window.setText(Field::BCC, QStringLiteral("Bea <bea@y.org>"));
    }

    void runAndExpect(int total)
    {
        ExpectedPrompts asked;
        asked.expectBox(boxText(total), quillon::InformationBox);
        m_bench->run();
    }
    static QString boxText(int total)
    {
        using namespace Qt::StringLiterals;
        return u"text of SENT_SUCCA "_s + QString::number(total) + u" text of SENT_SUCCB!"_s;
    }
    void refuse(const QByteArray &address) const { m_server->answer("RCPT TO:<" + address, "550 unknown\r\n"); }
    /// The log from the result entry on, or from the end line where there is none.
    [[nodiscard]] QStringList result() const
    {
        const QStringList log = m_bench->log();
        const qsizetype begin = log.indexOf(QRegularExpression(QStringLiteral("^(text of|End: ).*")));
        return log.sliced(begin);
    }
};
