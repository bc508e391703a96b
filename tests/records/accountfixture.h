#pragma once

#include "support/treefixture.h"

inline const QString ada = QStringLiteral("mail.x.org\t25\tN\tN\t\t\tAda\tada@x.org\t\t\t/SAEND");
inline const QString bea = QStringLiteral("mail.y.org\t465\tS\tY\tbea\tsecret\t\tBea@Y.org\tBea\tbea@y.org\t/SAEND");

/// Accounts in a data tree that each test gets anew.
class AccountFixture : protected TreeFixture {
protected:
    void accounts(const QStringList &lines) const
    {
        writeFile(m_tree->globals.paths.smtpFile,
                  (lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")).toUtf8());
    }
};
