#pragma once

#include "quillon/text/quillonsenderinfo.h"

#include <QObject>
#include <QString>

#include <array>
#include <functional>

class QAbstractButton;
class QComboBox;

namespace corvane {

/// The account box and the two boxes that may follow it, sender and reply receiver.
class AccountFields : public QObject {
    Q_OBJECT

public:
    /// Gives the first line of the accounts' file that holds the text between two tabs, without regard to case.
    using FindRecord = std::function<QString(const QString &)>;

    struct Follower {
        QComboBox *box;
        QAbstractButton *actual; ///< off: the user's own choice
    };

    /// @p standard is the default sender, read at the moment of use.
    AccountFields(QComboBox *account, const std::array<Follower, 2> &followers, FindRecord findRecord,
                  const quillon::QuillonSenderInfo &standard);

    /// What a pick in the account box does: takes the account's record, which also stands in the box's property "Tag",
    /// and lets the boxes follow whose option is Actual.
    void follow();
    /// The whole record of the chosen account, or empty.
    [[nodiscard]] QString record() const { return m_record; }

private:
    void showActual(const Follower &follower) const;
    void showCustom(const Follower &follower) const;

    QComboBox *m_account;
    std::array<Follower, 2> m_followers;
    FindRecord m_findRecord;
    const quillon::QuillonSenderInfo &m_standard;
    QString m_record;
};

} // namespace corvane
