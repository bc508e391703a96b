#include "composer/accountfields.h"

#include "composer/controltext.h"
#include "core/recipiententry.h"
#include "records/accountrecords.h"
#include "records/recordfields.h"

#include <QAbstractButton>
#include <QComboBox>

using namespace Qt::StringLiterals;

namespace corvane {

AccountFields::AccountFields(QComboBox *account, const std::array<Follower, 2> &followers, FindRecord findRecord,
                             const quillon::QuillonSenderInfo &standard)
    : QObject(account), m_account(account), m_followers(followers), m_findRecord(std::move(findRecord)),
      m_standard(standard)
{
    // A text that is set or typed counts as a pick too; picking the same entry again looks its record up afresh.
    connect(account, &QComboBox::editTextChanged, this, &AccountFields::follow);
    connect(account, &QComboBox::activated, this, &AccountFields::follow);
    for (const Follower &follower : m_followers) {
        connect(follower.actual, &QAbstractButton::toggled, this, [this, follower](bool on) {
            if (on) {
                showActual(follower);
            } else {
                showCustom(follower);
            }
        });
        showActual(follower);
    }
}

void AccountFields::follow()
{
    m_record = m_findRecord(m_account->currentText());
    m_account->setProperty("Tag", m_record);
    for (const Follower &follower : m_followers) {
        if (follower.actual->isChecked()) {
            showActual(follower);
        }
    }
}

void AccountFields::showActual(const Follower &follower) const
{
    follower.box->setEnabled(false);
    setComboText(follower.box, accountSender(m_record));
}

void AccountFields::showCustom(const Follower &follower) const
{
    follower.box->setEnabled(true);
    QString text;
    if (!m_standard.DispName.isEmpty() || !m_standard.EmailAddr.isEmpty()) {
        text = toRecipientEntry(m_standard.DispName, m_standard.EmailAddr);
    } else {
        text = follower.box->itemText(0);
        if (text.isEmpty()) {
            text = accountSender(m_record);
        }
    }
    setComboText(follower.box, text.startsWith(u' ') ? recordField(m_record, AccountSenderAddress) : text);
}

} // namespace corvane
