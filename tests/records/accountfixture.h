#pragma once

#include "support/temporarytree.h"

#include <memory>

inline const QString ada = QStringLiteral("mail.x.org\t25\tN\tN\t\t\tAda\tada@x.org\t\t\t/SAEND");
inline const QString bea = QStringLiteral("mail.y.org\t465\tS\tY\tbea\tsecret\t\tBea@Y.org\tBea\tbea@y.org\t/SAEND");

/// Accounts in a data tree that each test gets anew.
class AccountFixture {
protected:
    void makeTree()
    {
        m_tree = std::make_unique<TemporaryTree>();
        m_tree->prepare();
    }
    void accounts(const QStringList &lines) const
    {
        writeFile(m_tree->globals.paths.smtpFile,
                  (lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")).toUtf8());
    }

    std::unique_ptr<TemporaryTree> m_tree;
};
