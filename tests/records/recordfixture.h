#pragma once

#include "quillon/files/settingsfile.h"
#include "records/recordlist.h"
#include "support/temporarytree.h"

#include <QTest>

#include <array>
#include <memory>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

/// One key of the settings in which a kind keeps its default.
struct DefaultKey {
    QString section;
    QString key;
    int field; ///< of the record; -1: the whole line
};

/// What the tests know of one kind of records.
struct KindFacts {
    QString name;
    const corvane::RecordKind &(*kind)();
    QString corvane::DataPaths::*file;
    QStringList records; ///< three, not in the order of any column
    QString edited;      ///< what the second one becomes by an edit
    QList<DefaultKey> defaults;
    QStringList keys; ///< to edit, to copy, asks to delete, to clear, asks to clear
};

inline KindFacts accountFacts()
{
    return {QStringLiteral("accounts"),
            corvane::accountKind,
            &corvane::DataPaths::smtpFile,
            {QStringLiteral("smtp.ann.example\t587\tT\tY\tann\tpass-of-ann\tAnn Lee\tzann@one.example\tAnn\t\t/SAEND"),
             QStringLiteral("mail.bob.example\t25\tN\tN\t\t\tBob\tbob@two.example\t\t\t/SAEND"),
             QStringLiteral("post.cy.example\t465\tS\tY\tcy\tpass-of-cy\tCy\tcy@three.example\t\t\t/SAEND")},
            QStringLiteral("mail.bob.example\t26\tN\tY\tbob\tpass-of-bob\tBob\tbob@two.example\t\t\t/SAEND"),
            {{QStringLiteral("SMTP Account"), QStringLiteral("Default"), -1}},
            {QStringLiteral("NEED_SMTP_E"), QStringLiteral("NEED_SMTP_COPY"), QStringLiteral("DEL_SMTP_PROMPT"),
             QStringLiteral("NEED_SMTP_C"), QStringLiteral("CLEAR_SMTP")}};
}

inline KindFacts proxyFacts()
{
    return {QStringLiteral("proxies"),
            corvane::proxyKind,
            &corvane::DataPaths::proxyFile,
            {QStringLiteral("Socks5\tzeta.example\t1080\tY\tann\tpass-of-ann\t/PSEND"),
             QStringLiteral("Socks5\talpha.example\t1081\tN\t\t\t/PSEND"),
             QStringLiteral("Socks5\tmid.example\t9050\tY\tcy\tpass-of-cy\t/PSEND")},
            QStringLiteral("Socks5\talpha.example\t1082\tY\tbob\tpass-of-bob\t/PSEND"),
            {{QStringLiteral("Proxy Server"), QStringLiteral("Default"), -1}},
            {QStringLiteral("NEED_PROXY_E"), QStringLiteral("NEED_PROXY_COPY"), QStringLiteral("DEL_PROXY_PROMPT"),
             QStringLiteral("NEED_PROXY_C"), QStringLiteral("CLEAR_PROXY")}};
}

inline KindFacts senderFacts()
{
    return {QStringLiteral("senders"),
            corvane::senderKind,
            &corvane::DataPaths::sendersFile,
            {QStringLiteral("Zoe\tzoe@one.example\tfirst"), QStringLiteral("Ann\tann@two.example\t"),
             QStringLiteral("Mia\tmia@three.example\tthe shop")},
            QStringLiteral("Ann Lee\tann.lee@two.example\tfriend"),
            {{QStringLiteral("Sender"), QStringLiteral("Default.DispName"), 0},
             {QStringLiteral("Sender"), QStringLiteral("Default.EmailAddr"), 1}},
            {QStringLiteral("NEED_SENDER_E"), QStringLiteral("NEED_SENDER_COPY"), QStringLiteral("DEL_SENDER_PROMPT"),
             QStringLiteral("NEED_SENDER_C"), QStringLiteral("CLEAR_SENDER")}};
}

/// Signatures are edited in their tab, so they have neither an edited record nor keys to edit and copy.
inline KindFacts signatureFacts()
{
    return {QStringLiteral("signatures"),
            corvane::signatureKind,
            &corvane::DataPaths::signsFile,
            {QStringLiteral("Work\t"), QStringLiteral("Home\t"), QStringLiteral("Club\t/home/ann/club.html")},
            {},
            {{QStringLiteral("Signature"), QStringLiteral("Default"), 0}},
            {{}, {}, QStringLiteral("DEL_SIGN_PROMPT"), {}, QStringLiteral("CLEAR_SIGN")}};
}

inline KindFacts factsOf(const QString &name)
{
    for (const KindFacts &facts : {accountFacts(), proxyFacts(), senderFacts(), signatureFacts()}) {
        if (facts.name == name) {
            return facts;
        }
    }
    qFatal("no kind is called %s", qPrintable(name));
}

/// A row of test data for each kind that has a dialog; with @p signaturesToo for all four.
inline void addKinds(bool signaturesToo = false)
{
    QTest::addColumn<QString>("kind");
    for (const KindFacts &facts : {accountFacts(), proxyFacts(), senderFacts()}) {
        QTest::newRow(qPrintable(facts.name)) << facts.name;
    }
    if (signaturesToo) {
        QTest::newRow("signatures") << signatureFacts().name;
    }
}

/// A row for each kind of which a row keeps the whole line.
inline void addKindsOfWholeLines()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("accounts") << accountFacts().name;
    QTest::newRow("proxies") << proxyFacts().name;
}

/// The kind of the present row of test data.
inline QString kindOfRow()
{
    QFETCH(QString, kind);
    return kind;
}

/// Lines as a file holds them.
inline QByteArray octetsOf(const QStringList &lines)
{
    QByteArray octets;
    for (const QString &line : lines) {
        octets += line.toUtf8() + "\r\n";
    }
    return octets;
}

/// What a whole write replaces.
inline ino_t inodeOf(const QString &path)
{
    struct stat status {};
    ::stat(QFile::encodeName(path).constData(), &status);
    return status.st_ino;
}

/// Counts how often files are replaced whole while it lives.
class Rewrites {
public:
    explicit Rewrites(const QString &path) : m_name(QFile::encodeName(QFileInfo(path).fileName()))
    {
        m_watched = ::inotify_add_watch(m_events, QFile::encodeName(QFileInfo(path).path()).constData(),
                                        IN_MOVED_TO | IN_MODIFY);
        if (m_watched < 0) {
            qFatal("the folder cannot be watched");
        }
    }
    ~Rewrites() { ::close(m_events); }
    Rewrites(const Rewrites &) = delete;
    Rewrites &operator=(const Rewrites &) = delete;

    /// How often the file was replaced or written to since the last call.
    [[nodiscard]] int count() const
    {
        int found = 0;
        alignas(inotify_event) std::array<char, 65536> buffer{};
        for (;;) {
            const ssize_t size = ::read(m_events, buffer.data(), buffer.size());
            if (size <= 0) {
                return found;
            }
            for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
                inotify_event event{};
                std::memcpy(&event, buffer.data() + at, sizeof event);
                found += QByteArray(buffer.data() + at + sizeof event) == m_name ? 1 : 0;
                at += sizeof event + event.len;
            }
        }
    }

private:
    int m_events = ::inotify_init1(IN_NONBLOCK);
    int m_watched = -1;
    QByteArray m_name;
};

/// The list of one kind over a data tree of its own.
class RecordFixture {
public:
    explicit RecordFixture(KindFacts kindFacts) : facts(std::move(kindFacts)) { tree.prepare(); }
    explicit RecordFixture(const QString &kind) : RecordFixture(factsOf(kind)) {}

    [[nodiscard]] corvane::ApplicationGlobals &globals() { return tree.globals; }
    [[nodiscard]] QString path() { return globals().paths.*facts.file; }
    [[nodiscard]] QByteArray file() { return contentOf(path()); }
    [[nodiscard]] QString optionsPath() { return globals().paths.optionsFile; }
    [[nodiscard]] QByteArray options() { return contentOf(optionsPath()); }

    /// Fills the file with these records and loads the list from it.
    void load(const QStringList &lines)
    {
        writeFile(path(), octetsOf(lines));
        list = std::make_unique<corvane::RecordList>(facts.kind(), QStringList(), globals());
        list->load();
    }
    /// The same with the three records, of which the one with that index is the default.
    void loadAll(int standard)
    {
        setDefault(facts.records.value(standard));
        load(facts.records);
    }

    /// Puts a default into the settings, as an earlier session left it.
    void setDefault(const QString &record)
    {
        quillon::SettingsFile settings(optionsPath());
        for (const DefaultKey &place : facts.defaults) {
            settings.setValue(place.section, place.key, valueOf(place, record));
        }
        settings.save();
        corvane::LoadSettings(globals());
    }

    /// Sees that a record is the default, in the settings' file and in memory; an empty one stands for none.
    void verifyDefault(const QString &record)
    {
        const quillon::SettingsFile settings(optionsPath());
        for (const DefaultKey &place : facts.defaults) {
            QCOMPARE(settings.value(place.section, place.key), valueOf(place, record));
            QCOMPARE(inMemory(place), valueOf(place, record));
        }
    }

    [[nodiscard]] corvane::RecordModel &model() { return list->model(); }
    /// The rows that show as the default.
    [[nodiscard]] QList<int> marked()
    {
        QList<int> rows;
        for (int row = 0; row < model().rowCount(); ++row) {
            if (model().index(row, 0).data(corvane::RecordModel::DefaultRole).toBool()) {
                rows.append(row);
            }
        }
        return rows;
    }
    [[nodiscard]] QStringList cells(int row)
    {
        QStringList texts;
        for (int column = 0; column < model().columnCount(); ++column) {
            texts.append(model().index(row, column).data().toString());
        }
        return texts;
    }
    [[nodiscard]] QStringList column(int index)
    {
        QStringList texts;
        for (int row = 0; row < model().rowCount(); ++row) {
            texts.append(model().index(row, index).data().toString());
        }
        return texts;
    }
    [[nodiscard]] QList<int> selected()
    {
        QList<int> rows;
        const QModelIndexList indexes = list->selection().selectedRows();
        for (const QModelIndex &index : indexes) {
            rows.append(index.row());
        }
        return rows;
    }
    /// Selects these rows and no others; the last one is the present one.
    void select(const QList<int> &rows)
    {
        list->selection().clear();
        for (const int row : rows) {
            list->selection().setCurrentIndex(model().index(row, 0),
                                              QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
    }

    const KindFacts facts;
    TemporaryTree tree;
    std::unique_ptr<corvane::RecordList> list;

private:
    static QString valueOf(const DefaultKey &place, const QString &record)
    {
        return place.field < 0 ? record : record.section(u'\t', place.field, place.field);
    }
    [[nodiscard]] QString inMemory(const DefaultKey &place)
    {
        for (const corvane::SettingRow &row : corvane::settingRows) {
            if (row.section == place.section && row.key == place.key) {
                return globals().settings.text(row.setting);
            }
        }
        qFatal("no setting is called %s", qPrintable(place.key));
    }
};
