#include "records/recordstore.h"

#include "core/settings.h"
#include "records/recordfields.h"

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

/// Stores a default in memory and in the settings; where these cannot be written, memory goes on to say what they do.
bool storeDefault(ApplicationGlobals &globals, const QList<SettingChange> &changes)
{
    QList<SettingChange> before;
    for (const SettingChange &change : changes) {
        before.append({change.key, globals.settings.text(change.key)});
    }
    if (storeSettings(globals, changes)) {
        return true;
    }
    for (const SettingChange &old : before) {
        globals.settings.set(old.key, old.value);
    }
    return false;
}

/// How one kind's file is changed.
struct Store {
    const QString &path;
    QString delimiter; ///< empty: a key is the whole line
    int keyField;
    bool (*storeDefault)(ApplicationGlobals &globals, const QString &line);
};

bool saveRecord(ApplicationGlobals &globals, const Store &store, RecordChange change, const QStringList &keys,
                const RecordEdit &edit)
{
    if (change == RecordChange::Delete) {
        return globals.lines.DeleteLinesByKeys(store.path, keys, store.delimiter, store.keyField);
    }
    if (!globals.lines.ReplaceLine(store.path, edit.oldLine, edit.newLine, QString(), 0)) {
        return false;
    }
    if (change == RecordChange::EditDefault && !store.storeDefault(globals, edit.newLine)) {
        // The settings still hold the old line, so that the new one would be the default no more.
        globals.lines.ReplaceLine(store.path, edit.newLine, edit.oldLine, QString(), 0);
        return false;
    }
    return true;
}

/// Where there is no section yet, it is spelled otherwise than where accounts are chosen.
bool storeEditedAccount(ApplicationGlobals &globals, const QString &line)
{
    return storeDefault(globals, {{Setting::DefaultAccount, line, sectionOfEditedAccount}});
}

} // namespace

bool SaveSmtpRecord(ApplicationGlobals &globals, RecordChange change, const QStringList &keys, const RecordEdit &edit)
{
    return saveRecord(globals, {globals.paths.smtpFile, {}, 0, &storeEditedAccount}, change, keys, edit);
}

bool SaveProxyRecord(ApplicationGlobals &globals, RecordChange change, const QStringList &keys, const RecordEdit &edit)
{
    return saveRecord(globals, {globals.paths.proxyFile, {}, 0, &storeDefaultProxy}, change, keys, edit);
}

bool SaveSenderRecord(ApplicationGlobals &globals, RecordChange change, const QStringList &keys, const RecordEdit &edit)
{
    return saveRecord(globals, {globals.paths.sendersFile, u"\t"_s, SenderAddress, &storeDefaultSender}, change, keys,
                      edit);
}

bool storeDefaultAccount(ApplicationGlobals &globals, const QString &line)
{
    return storeDefault(globals, {{Setting::DefaultAccount, line}});
}

bool storeDefaultProxy(ApplicationGlobals &globals, const QString &line)
{
    return storeDefault(globals, {{Setting::DefaultProxy, line}});
}

bool storeDefaultSender(ApplicationGlobals &globals, const QString &line)
{
    return storeDefault(globals, {{Setting::DefaultSenderName, recordField(line, SenderName)},
                                  {Setting::DefaultSenderAddress, recordField(line, SenderAddress)}});
}

bool storeDefaultSignature(ApplicationGlobals &globals, const QString &line)
{
    return storeDefault(globals, {{Setting::DefaultSignature, recordField(line, SignatureName)}});
}

} // namespace corvane
