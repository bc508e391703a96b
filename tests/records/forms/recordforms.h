#pragma once

#include <QList>
#include <QStringList>

/// Where the three forms differ in what is tested for all of them.
struct FormFacts {
    QString name;
    QString record; ///< can be saved as it stands
    QStringList boxes;
    QString saveAndAdd;
    QString help;
    QStringList keys; ///< letters that belong to a button, each with that button
};

inline QList<FormFacts> allForms()
{
    const QStringList boxes = {QStringLiteral("txt(0)"), QStringLiteral("txt(1)"), QStringLiteral("txt(2)"),
                               QStringLiteral("txt(3)")};
    return {{QStringLiteral("frmPubSMTP"),
             QStringLiteral("mail\t25\tN\tY\tu\tsecret word\tn\ta@b.example\tr\tc@d.example\t/SAEND"),
             boxes + QStringList{QStringLiteral("txt(4)"), QStringLiteral("txt(5)"), QStringLiteral("txt(6)"),
                                 QStringLiteral("txt(7)")},
             QStringLiteral("sbtSA"),
             QStringLiteral("sbtHelp"),
             {QStringLiteral("A sbtSA"), QStringLiteral("C sbtSC")}},
            {QStringLiteral("frmPubProxy"),
             QStringLiteral("Socks5\tproxy\t1080\tY\tu\tsecret word\t/PSEND"),
             boxes,
             QStringLiteral("sbtSA"),
             QStringLiteral("sbtHelp"),
             {QStringLiteral("A sbtSA"), QStringLiteral("C sbtSC")}},
            {QStringLiteral("frmPubSender"),
             QStringLiteral("n\ta@b.example\tr"),
             {QStringLiteral("txtDisp"), QStringLiteral("txtEmail"), QStringLiteral("txtRemark")},
             QStringLiteral("sbt(0)"),
             QStringLiteral("sbt(3)"),
             {QStringLiteral("S sbt(0)"), QStringLiteral("C sbt(1)")}}};
}
