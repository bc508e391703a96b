#pragma once

#include "quillon/mail/smtptls.h"
#include "quillon/smtp/client.h"
#include "support/certificates.h"
#include "support/childserver.h"
#include "support/scriptedserver.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// What the tests against other people's servers need: certificates for them, and a folder for the mail they get.
class RealServerBench {
protected:
    const QByteArray text = "Subject: x\r\n\r\nhello\r\n";

    void prepare()
    {
        m_certificates = std::make_unique<testsupport::Certificates>();
        QVERIFY2(m_certificates->isValid(), qPrintable(m_certificates->fault()));
    }

    void renew()
    {
        m_out = std::make_unique<QTemporaryDir>();
        quillon::MailTransport::setTimeouts(60'000, 60'000, 60'000);
        quillon::SmtpTls::setAuthorities({m_certificates->authority()});
    }

    [[nodiscard]] QStringList tlsArguments(const QString &kind, bool elsewhere = false) const
    {
        using namespace Qt::StringLiterals;
        QStringList arguments = {u"--out"_s, m_out->path(), u"--tls"_s, kind};
        if (kind != u"none") {
            arguments +=
                {u"--certificate"_s, elsewhere ? m_certificates->elsewhereFile() : m_certificates->localhostFile(),
                 u"--key"_s, elsewhere ? m_certificates->elsewhereKeyFile() : m_certificates->localhostKeyFile()};
        }
        return arguments;
    }

    [[nodiscard]] QByteArray received(int number) const
    {
        using namespace Qt::StringLiterals;
        QFile file(m_out->filePath(u"%1.eml"_s.arg(number)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    [[nodiscard]] QJsonObject facts(int number) const
    {
        using namespace Qt::StringLiterals;
        QFile file(m_out->filePath(u"%1.json"_s.arg(number)));
        return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
    }

    /// Columns with the two ways to TLS.
    static void addLinks()
    {
        using namespace Qt::StringLiterals;
        using quillon::MailTransport;
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("security");
        QTest::newRow("STARTTLS") << u"starttls"_s << int(MailTransport::StartTls);
        QTest::newRow("implicit TLS") << u"implicit"_s << int(MailTransport::Ssl);
    }

    std::unique_ptr<testsupport::Certificates> m_certificates;
    std::unique_ptr<QTemporaryDir> m_out;
};
