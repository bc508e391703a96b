#include "quillon/mail/smtpbody.h"

#include "quillon/mail/mailtexts.h"
#include "quillon/mail/smtpreply.h"

#include <QFileInfo>

#include <algorithm>
#include <cstring>

namespace quillon {

namespace {
constexpr qsizetype octetsPerLine = 57; // 76 characters of Base64
constexpr qsizetype lineLength = 76;
constexpr qsizetype linesPerPiece = 1000;
constexpr qsizetype pieceLength = 64 * 1024;
} // namespace

QByteArray SmtpBody::next()
{
    while (m_fault.isEmpty() && m_index < m_stretches.size()) {
        const MailStretch &stretch = m_stretches.at(m_index);
        QByteArray piece;
        if (!stretch.File.isEmpty()) {
            piece = nextOfFile(stretch);
        } else {
            const qsizetype length = qMin(pieceLength, stretch.Bytes.size() - qsizetype(m_offset));
            piece = stuffed(stretch.Bytes.constData() + m_offset, length);
            m_offset += length;
            m_given += length;
        }
        const bool finished = stretch.File.isEmpty() ? m_offset == stretch.Bytes.size() : m_file == nullptr;
        if (finished) {
            ++m_index;
            m_offset = 0;
        }
        if (!m_fault.isEmpty()) {
            return {};
        }
        if (!piece.isEmpty()) {
            return piece;
        }
    }
    if (!m_fault.isEmpty() || m_atEnd) {
        return {};
    }
    m_atEnd = true;
    return m_last == '\n' && m_lastButOne == '\r' ? QByteArray(".\r\n") : QByteArray("\r\n.\r\n");
}

// The next lines of a file; the file is closed and forgotten with its last line, or on a fault.
QByteArray SmtpBody::nextOfFile(const MailStretch &stretch)
{
    const QString name = printableText(QFileInfo(stretch.File).fileName(), 120);
    const auto fail = [this](const QString &fault) {
        m_file.reset();
        m_fault = fault;
        return QByteArray();
    };
    if (!m_file) {
        m_file = std::make_unique<QFile>(stretch.File);
        if (!QFileInfo(stretch.File).isFile() || !m_file->open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
            return fail(say(mailtexts::fileUnreadable, name));
        }
    }
    const qint64 wanted = qMin<qint64>(octetsPerLine * linesPerPiece, stretch.FileSize - m_offset);
    QByteArray octets(wanted, Qt::Uninitialized);
    for (qint64 got = 0; got < wanted;) {
        const qint64 read = m_file->read(octets.data() + got, wanted - got);
        if (read <= 0) {
            return fail(say(mailtexts::fileShorter, name));
        }
        got += read;
    }
    m_offset += wanted;
    if (m_offset == stretch.FileSize) {
        char beyond = 0;
        if (m_file->read(&beyond, 1) != 0) {
            return fail(say(mailtexts::fileLonger, name));
        }
        m_file.reset();
    }
    // All lines of a piece but the file's last are full, so the whole piece is coded at once and then cut.
    const QByteArray coded = octets.toBase64();
    QByteArray piece;
    piece.reserve(coded.size() + (coded.size() / lineLength + 1) * 2 + 3);
    // Base64 has no dots, so that nothing needs stuffing here.
    for (qsizetype at = 0; at < coded.size(); at += lineLength) {
        piece.append(coded.constData() + at, qMin(lineLength, coded.size() - at));
        piece.append("\r\n", 2);
    }
    if (!piece.isEmpty()) {
        m_lastButOne = '\r';
        m_last = '\n';
    }
    m_given += piece.size();
    return piece;
}

// Doubles the dot at each line's start, looking back across pieces. Lines end in CR LF; a line feed alone is taken
// for one too, so that no server can read it as an end that we did not mean.
QByteArray SmtpBody::stuffed(const char *octets, qsizetype length)
{
    QByteArray out;
    out.reserve(length + 64);
    const char *from = octets;
    const char *const end = octets + length;
    while (from < end) {
        if (*from == '.' && m_last == '\n') {
            out.append('.');
        }
        const void *found = std::memchr(from, '\n', static_cast<size_t>(end - from));
        const char *to = found == nullptr ? end : static_cast<const char *>(found) + 1;
        out.append(from, to - from);
        m_lastButOne = to - from > 1 ? *(to - 2) : m_last;
        m_last = *(to - 1);
        from = to;
    }
    return out;
}

int SmtpBody::percent() const
{
    return m_total <= 0 ? 100 : static_cast<int>(std::min<qint64>(m_given * 100 / m_total, 100));
}

} // namespace quillon
