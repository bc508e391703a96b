#include "sending/forms/frmpubprogress.h"

#include "core/texts.h"
#include "quillon/forms/formkeys.h"
#include "quillon/forms/formtexts.h"
#include "quillon/forms/screenfit.h"
#include "quillon/hook.h"
#include "sending/progressview.h"
#include "sending/sendingtexts.h"
#include "ui_frmpubprogress.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int marginPixels = 6; // 90 twips
constexpr int activityCharacters = 64;
constexpr int activityLines = 2;
constexpr std::chrono::milliseconds rest{40}; // nobody reads faster, and a fast run has several texts for each mail

} // namespace

frmPubProgress::frmPubProgress(Hooks hooks) : m_hooks(std::move(hooks)), m_ui(std::make_unique<Ui::frmPubProgress>())
{
    quillon::requireHook(m_hooks.requestStop, u"frmPubProgress::requestStop"_s);
    quillon::requireHook(m_hooks.unload, u"frmPubProgress::unload"_s);
    quillon::requireHook(m_hooks.help, u"frmPubProgress::help"_s);
    m_ui->setupUi(this);
    quillon::QuillonFormTexts().ApplyControlTexts(this, languageFolder() + u"/tips.dll"_s);
    // The rest text is compared with, so it is the same in every language.
    m_ui->lblQty->setText(QString::fromUtf16(progressRestText));
    setModal(false);
    // As large as two lines of usual length, whatever the transport reports, where the screen has the room.
    const QFontMetrics metrics = m_ui->lblProg->fontMetrics();
    const int room =
        quillon::roomFor({}, quillon::screenRooms()).width() - 2 * (marginPixels + quillon::frameMargins(this).left());
    m_ui->lblProg->setFixedSize(qMin(metrics.averageCharWidth() * activityCharacters, room),
                                metrics.lineSpacing() * activityLines);
    new quillon::FormKeys(this);
    m_drawn.setSingleShot(true);
    connect(&m_drawn, &QTimer::timeout, this, [this] { drawTexts(true); });
    connect(m_ui->sbtCancel, &QPushButton::clicked, this, &frmPubProgress::cancel);
    connect(m_ui->sbtHelp, &QPushButton::clicked, this, [this] { m_hooks.help(); });
    layOutAnew();
}

frmPubProgress::~frmPubProgress() = default;

QString frmPubProgress::activity() const
{
    return m_ui->lblProg->text();
}

void frmPubProgress::setActivity(const QString &text)
{
    m_ui->lblProg->setText(text);
    m_ui->lblProg->setToolTip(text);
    restFromDrawing();
}

QString frmPubProgress::counter() const
{
    return m_ui->lblQty->text();
}

void frmPubProgress::setCounter(const QString &text)
{
    m_ui->lblQty->setText(text);
    restFromDrawing();
}

void frmPubProgress::restFromDrawing()
{
    if (!m_drawn.isActive()) {
        drawTexts(false);
        m_drawn.start(rest);
    }
}

void frmPubProgress::drawTexts(bool drawn)
{
    m_ui->lblProg->setUpdatesEnabled(drawn);
    m_ui->lblQty->setUpdatesEnabled(drawn);
}

void frmPubProgress::setProgress(int taken, int total)
{
    m_ui->sbtCancel->setEnabled(true);
    m_ui->prg->setRange(0, qMax(total, 0));
    m_ui->prg->setTextVisible(total > 0);
    if (total > 0) {
        m_ui->prg->setValue(qBound(0, taken, total));
    } else {
        m_ui->prg->reset();
    }
}

void frmPubProgress::setAtRest()
{
    if (m_ui->prg->maximum() == 0) {
        m_ui->prg->setMaximum(1); // without an end the bar would go on moving
        m_ui->prg->setValue(0);
    }
    m_ui->sbtCancel->setEnabled(false);
}

void frmPubProgress::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    // A window manager that insists on another size although ours is the only one allowed is not fought.
    if (minimumSize() != maximumSize()) {
        layOutAnew();
    }
}

void frmPubProgress::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    layOutAnew(); // only now the style and the font of the screen are sure
}

void frmPubProgress::cancel()
{
    m_hooks.requestStop();
    m_hooks.unload();
}

void frmPubProgress::layOutAnew()
{
    if (m_layingOut) {
        return;
    }
    m_layingOut = true;
    setMinimumSize(0, 0);
    setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    resize(layout()->totalSizeHint());
    layout()->activate();
    fitToContents();
    m_layingOut = false;
}

void frmPubProgress::fitToContents()
{
    const QRect prog = m_ui->lblProg->geometry();
    const QRect button = m_ui->sbtCancel->geometry();
    const QSize fitted(prog.x() + prog.width() + marginPixels, button.y() + button.height() + marginPixels);
    if (size() != fitted || minimumSize() != fitted) {
        setFixedSize(fitted);
    }
}

} // namespace corvane
