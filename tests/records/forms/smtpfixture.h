#pragma once

#include "recorddialogfixture.h"

#include <QRadioButton>

/// The dialog of SMTP accounts.
class SmtpFixture : public RecordDialogFixture {
public:
    SmtpFixture() : RecordDialogFixture(QStringLiteral("frmPubSMTP"))
    {
        saves = {QStringLiteral("sbtSA"), QStringLiteral("sbtSC")};
    }

    /// Fills a new account so that it could be saved.
    void fillNew()
    {
        begin();
        txt(0)->setText(QStringLiteral("smtp.example.com"));
        txt(2)->setText(QStringLiteral("ann"));
    }
    QRadioButton *opt(int index) { return get<QRadioButton>(QStringLiteral("opt(%1)").arg(index)); }
    /// All text boxes, in order.
    QStringList texts()
    {
        QStringList all;
        for (int i = 0; i < 8; ++i) {
            all.append(txt(i)->text());
        }
        return all;
    }
};

/// An account's line with all its fields.
inline const QString annsAccount =
    QStringLiteral("smtp.example.com\t587\tT\tY\tann\tsecret\tAnn Lee\tann@example.com\tBob\tbob@example.org\t/SAEND");
