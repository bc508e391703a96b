#include "composer/maincontrols.h"

#include "composer/richeditor.h"
#include "quillon/forms/arraynames.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace corvane {

MainControls::MainControls(QMainWindow *window)
    : form(window), cbb(quillon::controlArray<QComboBox, 7>(form, u"cbb"_s)),
      txt(quillon::controlArray<QPlainTextEdit, 3>(form, u"txt"_s)),
      opt(quillon::controlArray<QAbstractButton, 10>(form, u"opt"_s)),
      menosh(quillon::controlArray<QAction, 3>(form, u"menosh"_s)),
      panel(quillon::controlArray<QLabel, 3>(form, u"stb"_s)), date(form->findChild<QDateEdit *>(u"dtp(0)"_s)),
      time(form->findChild<QTimeEdit *>(u"dtp(1)"_s)), attachments(form->findChild<QListWidget *>(u"lsv(0)"_s)),
      utbSubject(form->findChild<QLineEdit *>(u"utbSubject"_s)),
      utbContent(form->findChild<QPlainTextEdit *>(u"utbContent"_s)),
      utbSource(form->findChild<QPlainTextEdit *>(u"utbSource"_s)), sst(form->findChild<QTabWidget *>(u"sst"_s)),
      dhe(form->findChild<RichEditor *>(u"dhe"_s)), header(form->findChild<QWidget *>(u"fra(0)"_s)),
      formattingBar(form->findChild<QWidget *>(u"fra(3)"_s)), colorPopUp(form->findChild<QWidget *>(u"fra(4)"_s)),
      lstFilter(form->findChild<QListView *>(u"lstFilter"_s)), menfb(form->findChild<QAction *>(u"menfb"_s)),
      mentr(form->findChild<QAction *>(u"mentr"_s)), menop(form->findChild<QAction *>(u"menop"_s)),
      menor(form->findChild<QAction *>(u"menor"_s)), menve(form->findChild<QAction *>(u"menve"_s)),
      tlbExpand(form->findChild<QAction *>(u"tlbExpand"_s))
{
}

QWidget *MainControls::holderOf(Message::Field field) const
{
    using Field = Message::Field;
    switch (field) {
    case Field::Account:
        return cbb[6];
    case Field::Sender:
        return cbb[0];
    case Field::ReplyReceiver:
        return cbb[1];
    case Field::Encoding:
        return cbb[2];
    case Field::To:
        return txt[0];
    case Field::CC:
        return txt[1];
    case Field::BCC:
        return txt[2];
    case Field::Subject:
        return utbSubject;
    case Field::PlainContent:
        return utbContent;
    case Field::RichContent:
        return dhe;
    case Field::Source:
        return utbSource;
    }
    return nullptr;
}

} // namespace corvane
