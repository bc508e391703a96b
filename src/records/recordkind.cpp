#include "records/recordkind.h"

#include "macros/myinformation.h"
#include "records/recordfields.h"
#include "records/signaturerecords.h"

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int noNumber = -1;

QString wholeLine(const QString &line)
{
    return line;
}

/// A row of a sender holds its three fields and no more, whatever the file's line has.
QString senderRow(const QString &line)
{
    return QStringList(
               {recordField(line, SenderName), recordField(line, SenderAddress), recordField(line, SenderRemark)})
        .join(u'\t');
}

QString senderAddress(const QString &line)
{
    return recordField(line, SenderAddress);
}

QString signatureName(const QString &line)
{
    return recordField(line, SignatureName);
}

bool equalInAnyCase(const QString &line, const QString &other, int field)
{
    return recordField(line, field).toLower() == recordField(other, field).toLower();
}

bool sameAccount(const QString &line, const QString &other)
{
    return equalInAnyCase(line, other, AccountSenderAddress);
}

bool sameProxy(const QString &line, const QString &other)
{
    return equalInAnyCase(line, other, ProxyAddress) && recordField(line, ProxyPort) == recordField(other, ProxyPort) &&
           equalInAnyCase(line, other, ProxyUser);
}

bool sameSender(const QString &line, const QString &other)
{
    return recordField(line, SenderName) == recordField(other, SenderName) &&
           equalInAnyCase(line, other, SenderAddress);
}

bool sameSignature(const QString &line, const QString &other)
{
    return signatureName(line) == signatureName(other);
}

bool equalsDefault(const QString &standard, const QString &line)
{
    return !standard.isEmpty() && standard.toLower() == line.toLower();
}

bool isDefaultAccount(const ApplicationGlobals &globals, const QString &line)
{
    return equalsDefault(globals.settings.text(Setting::DefaultAccount), line);
}

bool isDefaultProxy(const ApplicationGlobals &globals, const QString &line)
{
    return equalsDefault(globals.settings.text(Setting::DefaultProxy), line);
}

bool isDefaultSender(const ApplicationGlobals &globals, const QString &line)
{
    const quillon::QuillonSenderInfo &standard = globals.settings.sender();
    return !(standard.DispName.isEmpty() && standard.EmailAddr.isEmpty()) &&
           recordField(line, SenderName) == standard.DispName && recordField(line, SenderAddress) == standard.EmailAddr;
}

bool isDefaultSignature(const ApplicationGlobals &globals, const QString &line)
{
    const QString &standard = globals.settings.text(Setting::DefaultSignature);
    return !standard.isEmpty() && signatureName(line) == standard;
}

bool saveSignature(ApplicationGlobals &globals, RecordChange change, const QStringList &keys, const RecordEdit &edit)
{
    Q_UNUSED(edit)
    return change != RecordChange::Delete || deleteSignatures(globals, keys);
}

/// The default account is in the settings' memory by now. A line that has no sender names nobody.
void syncMyInformation(const ApplicationGlobals &globals)
{
    const QString record = globals.settings.text(Setting::DefaultAccount);
    if (record.count(u'\t') >= AccountSenderAddress) {
        SyncMyInformation(globals, recordField(record, AccountSenderName), recordField(record, AccountSenderAddress));
    }
}

/// The file stands again, empty, where it was deleted; as one rewrite there is no moment without it.
template <QString DataPaths::*File> bool emptyFile(const ApplicationGlobals &globals)
{
    return globals.lines.WriteTextFile(globals.paths.*File, QString(), u"utf-8"_s);
}

template <QString DataPaths::*File> bool appendLine(const ApplicationGlobals &globals, const QString &line)
{
    return globals.lines.AppendLine(globals.paths.*File, line);
}

bool appendSignature(const ApplicationGlobals &globals, const QString &line)
{
    return addSignature(globals, signatureName(line));
}

bool clearSignatures(const ApplicationGlobals &globals)
{
    return SaveSignatureRecord(globals, SignatureChange::Clear, {}, {}, {}, {});
}

} // namespace

const RecordKind &senderKind()
{
    static const RecordKind kind = {
        &DataPaths::sendersFile,
        {SenderName, SenderAddress, SenderRemark},
        noNumber,
        {u"NEED_SENDER_E", u"NEED_SENDER_COPY", u"DEL_SENDER_PROMPT", u"NEED_SENDER_C", u"CLEAR_SENDER"},
        DefaultMarker::BoldRow,
        senderRow,
        sameSender,
        senderAddress,
        appendLine<&DataPaths::sendersFile>,
        SaveSenderRecord,
        emptyFile<&DataPaths::sendersFile>,
        isDefaultSender,
        storeDefaultSender,
        nullptr};
    return kind;
}

const RecordKind &signatureKind()
{
    static const RecordKind kind = {&DataPaths::signsFile,
                                    {SignatureName},
                                    noNumber,
                                    {nullptr, nullptr, u"DEL_SIGN_PROMPT", nullptr, u"CLEAR_SIGN"},
                                    DefaultMarker::Name,
                                    signatureName,
                                    sameSignature,
                                    signatureName,
                                    appendSignature,
                                    saveSignature,
                                    clearSignatures,
                                    isDefaultSignature,
                                    storeDefaultSignature,
                                    nullptr};
    return kind;
}

const RecordKind &proxyKind()
{
    static const RecordKind kind = {
        &DataPaths::proxyFile,
        {ProxyAddress, ProxyPort, ProxyUser},
        ProxyPort,
        {u"NEED_PROXY_E", u"NEED_PROXY_COPY", u"DEL_PROXY_PROMPT", u"NEED_PROXY_C", u"CLEAR_PROXY"},
        DefaultMarker::BoldRow,
        wholeLine,
        sameProxy,
        wholeLine,
        appendLine<&DataPaths::proxyFile>,
        SaveProxyRecord,
        emptyFile<&DataPaths::proxyFile>,
        isDefaultProxy,
        storeDefaultProxy,
        nullptr};
    return kind;
}

const RecordKind &accountKind()
{
    static const RecordKind kind = {
        &DataPaths::smtpFile,
        {AccountServer, AccountPort, AccountSenderAddress},
        AccountPort,
        {u"NEED_SMTP_E", u"NEED_SMTP_COPY", u"DEL_SMTP_PROMPT", u"NEED_SMTP_C", u"CLEAR_SMTP"},
        DefaultMarker::BoldRow,
        wholeLine,
        sameAccount,
        wholeLine,
        appendLine<&DataPaths::smtpFile>,
        SaveSmtpRecord,
        emptyFile<&DataPaths::smtpFile>,
        isDefaultAccount,
        storeDefaultAccount,
        syncMyInformation};
    return kind;
}

} // namespace corvane
