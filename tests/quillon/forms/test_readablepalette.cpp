#include "quillon/forms/readablepalette.h"

#include <QApplication>
#include <QLineEdit>
#include <QStyle>
#include <QStyleFactory>
#include <QTest>

using namespace Qt::StringLiterals;
using quillon::contrastRatio;
using quillon::readableContrast;
using quillon::withReadableTexts;

namespace {

using P = QPalette;

P lightPalette()
{
    P palette(QColor(0xefefef));
    palette.setColor(P::Disabled, P::Text, QColor(0xbebebe));
    palette.setColor(P::Disabled, P::WindowText, QColor(0xbebebe));
    palette.setColor(P::Disabled, P::ButtonText, QColor(0xbebebe));
    palette.setColor(P::Disabled, P::HighlightedText, QColor(0xaaaaaa));
    palette.setColor(P::Disabled, P::Highlight, QColor(0x919191));
    palette.setColor(P::PlaceholderText, QColor(0, 0, 0, 128));
    return palette;
}

P darkPalette()
{
    P palette(QColor(0x313336));
    for (const auto group : {P::Active, P::Inactive, P::Disabled}) {
        palette.setColor(group, P::Base, QColor(0x1e1f21));
        for (const auto role : {P::Text, P::WindowText, P::ButtonText}) {
            palette.setColor(group, role, group == P::Disabled ? QColor(0x6f7073) : QColor(0xfcfcfc));
        }
    }
    palette.setColor(P::PlaceholderText, QColor(255, 255, 255, 60));
    return palette;
}

} // namespace

class TestReadablePalette : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void contrastIsThatOfTheStandard_data();
    void contrastIsThatOfTheStandard();
    void faintTextsBecomeReadableAndStayTheFainter_data();
    void faintTextsBecomeReadableAndStayTheFainter();
    void whatIsReadableStaysAsItIs();
    void aTextIsMovedNoFurtherThanItMust();
    void theApplicationFollowsTheDesktop();
    void whatIsNotMendedStaysTheDesktops();
};

void TestReadablePalette::contrastIsThatOfTheStandard_data()
{
    QTest::addColumn<QColor>("one");
    QTest::addColumn<QColor>("other");
    QTest::addColumn<double>("ratio");
    QTest::newRow("the most") << QColor(Qt::black) << QColor(Qt::white) << 21.0;
    QTest::newRow("none") << QColor(0x808080) << QColor(0x808080) << 1.0;
    QTest::newRow("the grey that is just enough on white") << QColor(0x767676) << QColor(Qt::white) << 4.542;
    QTest::newRow("the grey that is not") << QColor(0x777777) << QColor(Qt::white) << 4.478;
    QTest::newRow("red on white") << QColor(0xff0000) << QColor(Qt::white) << 3.998;
    QTest::newRow("green on white") << QColor(0x00ff00) << QColor(Qt::white) << 1.372;
    QTest::newRow("blue on white") << QColor(0x0000ff) << QColor(Qt::white) << 8.592;
    QTest::newRow("nearly black") << QColor(0x0a0a0a) << QColor(Qt::black) << 1.061;
}

void TestReadablePalette::contrastIsThatOfTheStandard()
{
    QFETCH(const QColor, one);
    QFETCH(const QColor, other);
    QFETCH(const double, ratio);
    QVERIFY2(std::abs(contrastRatio(one, other) - ratio) < 0.001,
             qPrintable(QString::number(contrastRatio(one, other))));
    QCOMPARE(contrastRatio(other, one), contrastRatio(one, other));
}

void TestReadablePalette::faintTextsBecomeReadableAndStayTheFainter_data()
{
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("light") << lightPalette();
    QTest::newRow("dark") << darkPalette();
    QTest::newRow("fusion") << QStyleFactory::create(u"fusion"_s)->standardPalette();
    QTest::newRow("amid") << QPalette(QColor(0x808080));
}

void TestReadablePalette::faintTextsBecomeReadableAndStayTheFainter()
{
    QFETCH(const QPalette, palette);
    const P better = withReadableTexts(palette);
    struct Pair {
        P::ColorGroup group;
        P::ColorRole text;
        QList<P::ColorRole> grounds;
    };
    const QList<Pair> pairs{{P::Disabled, P::Text, {P::Base, P::Window, P::Button}},
                            {P::Disabled, P::WindowText, {P::Base, P::Window, P::Button}},
                            {P::Disabled, P::ButtonText, {P::Button, P::Window}},
                            {P::Disabled, P::HighlightedText, {P::Highlight}},
                            {P::Active, P::PlaceholderText, {P::Base}},
                            {P::Inactive, P::PlaceholderText, {P::Base}},
                            {P::Disabled, P::PlaceholderText, {P::Base}},
                            {P::Active, P::Link, {P::Window}},
                            {P::Inactive, P::Link, {P::Window}}};
    for (const Pair &pair : pairs) {
        const QColor text = better.color(pair.group, pair.text);
        QCOMPARE(text.alpha(), 255);
        for (const P::ColorRole ground : pair.grounds) {
            // The colours are kept in eight bits.
            QVERIFY2(contrastRatio(text, better.color(pair.group, ground)) >= readableContrast - 0.05,
                     qPrintable(u"%1 on %2"_s.arg(pair.text).arg(ground)));
        }
        const QColor base = better.color(P::Disabled, P::Base);
        const double enabled = contrastRatio(better.color(P::Active, P::Text), base);
        if (pair.group == P::Disabled && pair.text == P::Text && enabled > readableContrast * 1.5) {
            QVERIFY(contrastRatio(text, base) < enabled * 0.75); // it is still told from what is enabled
        }
    }
    // Nothing else is changed.
    for (const auto role : {P::Window, P::Base, P::Button, P::Highlight, P::Text, P::WindowText}) {
        QCOMPARE(better.color(P::Active, role), palette.color(P::Active, role));
    }
    QCOMPARE(better.color(P::Disabled, P::Base), palette.color(P::Disabled, P::Base));
}

void TestReadablePalette::whatIsReadableStaysAsItIs()
{
    P palette(QColor(0xffffff));
    palette.setColor(P::Disabled, P::Base, Qt::white);
    palette.setColor(P::Disabled, P::Window, Qt::white);
    palette.setColor(P::Disabled, P::Button, Qt::white);
    palette.setColor(P::Disabled, P::Text, QColor(0x446644));
    QCOMPARE(withReadableTexts(palette).color(P::Disabled, P::Text), QColor(0x446644));
    const P once = withReadableTexts(lightPalette());
    QCOMPARE(withReadableTexts(once), once);
}

void TestReadablePalette::aTextIsMovedNoFurtherThanItMust()
{
    const P better = withReadableTexts(lightPalette());
    const QColor text = better.color(P::Disabled, P::Text);
    QVERIFY(contrastRatio(text, better.color(P::Disabled, P::Window)) < readableContrast + 0.4);
}

void TestReadablePalette::theApplicationFollowsTheDesktop()
{
    QApplication::setPalette(lightPalette());
    const quillon::ReadablePalette readable;
    const auto faintest = [] {
        const P palette = QApplication::palette();
        return std::min(
            contrastRatio(palette.color(P::Disabled, P::Text), palette.color(P::Disabled, P::Base)),
            contrastRatio(palette.color(P::Disabled, P::WindowText), palette.color(P::Disabled, P::Window)));
    };
    QLineEdit field;
    field.setEnabled(false);
    field.show();
    QVERIFY(faintest() >= readableContrast - 0.05);
    QCOMPARE(field.palette().color(P::Disabled, P::Text), QApplication::palette().color(P::Disabled, P::Text));

    QApplication::setPalette(darkPalette());
    QTRY_VERIFY(faintest() >= readableContrast - 0.05);
    QVERIFY(QApplication::palette().color(P::Window).lightness() < 80);
    QVERIFY(QApplication::palette().color(P::Disabled, P::Text).lightness() > 100);
    QCOMPARE(field.palette().color(P::Disabled, P::Text), QApplication::palette().color(P::Disabled, P::Text));

    QApplication::setPalette(lightPalette());
    QTRY_VERIFY(faintest() >= readableContrast - 0.05);
    QVERIFY(QApplication::palette().color(P::Window).lightness() > 200);
}

void TestReadablePalette::whatIsNotMendedStaysTheDesktops()
{
    QApplication::setPalette(QPalette());
    const quillon::ReadablePalette readable;
    const P palette = QApplication::palette();
    QVERIFY(palette.isBrushSet(P::Disabled, P::Text));
    for (const auto group : {P::Active, P::Inactive, P::Disabled}) {
        for (const auto role : {P::Window, P::Base, P::Button, P::Highlight, P::BrightText}) {
            QVERIFY(!palette.isBrushSet(group, role));
        }
    }
    QVERIFY(!palette.isBrushSet(P::Active, P::Text));
}

QTEST_MAIN(TestReadablePalette)
#include "test_readablepalette.moc"
