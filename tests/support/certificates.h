#pragma once

#include <QSslCertificate>
#include <QSslKey>
#include <QString>
#include <QTemporaryDir>

namespace testsupport {

/// An authority and two server certificates under it, made by the openssl command for one test run and thrown away.
class Certificates {
public:
    /// Makes them; isValid() is false, with the reason in fault(), when the command is missing or fails.
    Certificates();

    [[nodiscard]] bool isValid() const { return m_fault.isEmpty(); }
    [[nodiscard]] QString fault() const { return m_fault; }

    [[nodiscard]] QSslCertificate authority() const { return load("authority.pem"); }
    /// PEM files of the certificate for "localhost" and 127.0.0.1, and of one for "elsewhere.example", for all
    /// names right below "wild.example", and for those below "some.example" that begin with "part".
    [[nodiscard]] QString localhostFile() const { return m_folder.filePath(QStringLiteral("localhost.pem")); }
    [[nodiscard]] QString localhostKeyFile() const { return m_folder.filePath(QStringLiteral("localhost.key")); }
    [[nodiscard]] QString elsewhereFile() const { return m_folder.filePath(QStringLiteral("elsewhere.pem")); }
    [[nodiscard]] QString elsewhereKeyFile() const { return m_folder.filePath(QStringLiteral("elsewhere.key")); }
    [[nodiscard]] QSslCertificate localhost() const { return load("localhost.pem"); }
    [[nodiscard]] QSslKey localhostKey() const;

private:
    void run(const QStringList &arguments);
    void makeServer(const QString &name, const QString &alternatives);
    [[nodiscard]] QSslCertificate load(const char *name) const;

    QTemporaryDir m_folder;
    QString m_fault;
};

} // namespace testsupport
