#include "records/recordstore.h"

#include "core/settings.h"
#include "records/recordfields.h"

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

/// How one kind's file is changed.
struct Store {
    const QString &path;
    QString delimiter; ///< empty: a key is the whole line
    int keyField;
    void (*storeDefault)(ApplicationGlobals &globals, const QString &line);
};

void saveRecord(ApplicationGlobals &globals, const Store &store, RecordChange change, const QStringList &keys,
                const RecordEdit &edit)
{
    if (change == RecordChange::Delete) {
        globals.lines.DeleteLinesByKeys(store.path, keys, store.delimiter, store.keyField);
        return;
    }
    globals.lines.ReplaceLine(store.path, edit.oldLine, edit.newLine, QString(), 0);
    if (change == RecordChange::EditDefault) {
        store.storeDefault(globals, edit.newLine);
    }
}

/// Where there is no section yet, it is spelled otherwise than where accounts are chosen.
void storeEditedAccount(ApplicationGlobals &globals, const QString &line)
{
    storeSettings(globals, {{Setting::DefaultAccount, line, sectionOfEditedAccount}});
}

} // namespace

void SaveSmtpRecord(ApplicationGlobals &globals, RecordChange change, const QStringList &keys, const RecordEdit &edit)
{
    saveRecord(globals, {globals.paths.smtpFile, {}, 0, &storeEditedAccount}, change, keys, edit);
}

void SaveProxyRecord(ApplicationGlobals &globals, RecordChange change, const QStringList &keys, const RecordEdit &edit)
{
    saveRecord(globals, {globals.paths.proxyFile, {}, 0, &storeDefaultProxy}, change, keys, edit);
}

void SaveSenderRecord(ApplicationGlobals &globals, RecordChange change, const QStringList &keys, const RecordEdit &edit)
{
    saveRecord(globals, {globals.paths.sendersFile, u"\t"_s, SenderAddress, &storeDefaultSender}, change, keys, edit);
}

void storeDefaultAccount(ApplicationGlobals &globals, const QString &line)
{
    storeSetting(globals, Setting::DefaultAccount, line);
}

void storeDefaultProxy(ApplicationGlobals &globals, const QString &line)
{
    storeSetting(globals, Setting::DefaultProxy, line);
}

void storeDefaultSender(ApplicationGlobals &globals, const QString &line)
{
    storeSettings(globals, {{Setting::DefaultSenderName, recordField(line, SenderName)},
                            {Setting::DefaultSenderAddress, recordField(line, SenderAddress)}});
}

void storeDefaultSignature(ApplicationGlobals &globals, const QString &line)
{
    storeSetting(globals, Setting::DefaultSignature, recordField(line, SignatureName));
}

} // namespace corvane
