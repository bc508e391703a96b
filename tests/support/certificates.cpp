#include "support/certificates.h"

#include <QFile>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace testsupport {

Certificates::Certificates()
{
    run({u"req"_s, u"-x509"_s, u"-newkey"_s, u"ec"_s, u"-pkeyopt"_s, u"ec_paramgen_curve:P-256"_s, u"-nodes"_s,
         u"-days"_s, u"2"_s, u"-subj"_s, u"/CN=Throw-away authority"_s, u"-keyout"_s, u"authority.key"_s, u"-out"_s,
         u"authority.pem"_s});
    makeServer(u"localhost"_s, u"DNS:localhost,IP:127.0.0.1"_s);
    makeServer(u"elsewhere"_s, u"DNS:elsewhere.example,DNS:*.wild.example,DNS:part*.some.example"_s);
}

void Certificates::makeServer(const QString &name, const QString &alternatives)
{
    QFile extension(m_folder.filePath(name + u".ext"_s));
    if (extension.open(QIODevice::WriteOnly)) {
        extension.write("subjectAltName=" + alternatives.toLatin1() + "\n");
        extension.close();
    }
    run({u"req"_s, u"-newkey"_s, u"ec"_s, u"-pkeyopt"_s, u"ec_paramgen_curve:P-256"_s, u"-nodes"_s, u"-subj"_s,
         u"/CN="_s + name, u"-keyout"_s, name + u".key"_s, u"-out"_s, name + u".csr"_s});
    run({u"x509"_s, u"-req"_s, u"-in"_s, name + u".csr"_s, u"-CA"_s, u"authority.pem"_s, u"-CAkey"_s,
         u"authority.key"_s, u"-CAcreateserial"_s, u"-days"_s, u"2"_s, u"-extfile"_s, name + u".ext"_s, u"-out"_s,
         name + u".pem"_s});
}

void Certificates::run(const QStringList &arguments)
{
    if (!m_fault.isEmpty()) {
        return;
    }
    QProcess openssl;
    openssl.setWorkingDirectory(m_folder.path());
    openssl.setProcessChannelMode(QProcess::MergedChannels);
    openssl.start(u"openssl"_s, arguments);
    if (!openssl.waitForFinished() || openssl.exitCode() != 0) {
        m_fault = u"openssl: %1 %2"_s.arg(openssl.errorString(), QString::fromLocal8Bit(openssl.readAll()));
    }
}

QSslCertificate Certificates::load(const char *name) const
{
    return QSslCertificate::fromPath(m_folder.filePath(QString::fromLatin1(name))).value(0);
}

QSslKey Certificates::localhostKey() const
{
    QFile file(localhostKeyFile());
    return file.open(QIODevice::ReadOnly) ? QSslKey(&file, QSsl::Ec) : QSslKey();
}

} // namespace testsupport
