#include "QVDoubleDrawShadowedTextField.h"
#include "QVLightBlueTintedButton.h"
#include "QVShadowedButton.h"
#include "QVShadowedTextField.h"
#include "QVStaticBorderGradientButton.h"
#include "QVTintedButton.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QStyleFactory>
#include <QTest>

#include <functional>
#include <memory>

namespace
{

const QColor grey(128, 128, 128);

// The widget's drawing over a background. Drawn as a child of a window, the way it is used:
// Qt's graphics effects, which draw the shadows, do not work on windows.
QImage picture(QWidget &widget, const QColor &background = Qt::transparent)
{
    QWidget window;
    window.resize(120, 24);
    widget.setParent(&window);
    widget.setGeometry(window.rect());
    QImage image(window.size(), QImage::Format_ARGB32);
    image.fill(background);
    window.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    widget.setParent(nullptr);
    return image;
}

using Factory = std::function<std::unique_ptr<QWidget>()>;

template<typename Widget> Factory make(const std::function<void(Widget &)> &setUp = {})
{
    return [setUp] {
        auto widget = std::make_unique<Widget>(QStringLiteral("Reposition"));
        if (setUp)
            setUp(*widget);
        return std::unique_ptr<QWidget>(std::move(widget));
    };
}

template<typename Widget> Factory tagged(int tag)
{
    return make<Widget>([tag](Widget &widget) { widget.setTag(tag); });
}

} // namespace

Q_DECLARE_METATYPE(Factory)

class TestCustomDrawnButtons final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion"))); }

    // Against the plain Qt widget: without shadow it draws the same; a shadow only lightens
    // (white: tags 1 and -2) or only darkens (black: 2 and -1) the background, and leans to the
    // side of its tag (positive: below, negative: above).
    void shadows_data()
    {
        QTest::addColumn<Factory>("made");
        QTest::addColumn<int>("shadowTag"); // 0: none
        QTest::newRow("tinted button whose tint was taken away") << make<QVTintedButton>([](QVTintedButton &b) {
            b.setTintColor(QColor(Qt::red));
            b.setTintGradient(QGradientStops { { 0, Qt::red }, { 1, Qt::blue } });
            b.setTintColor(std::nullopt);
            b.setTintGradient(std::nullopt);
        }) << 0;
        QTest::newRow("label, tag without shadow") << tagged<QVShadowedTextField>(3) << 0;
        QTest::newRow("label whose shadow was taken away") << make<QVShadowedTextField>([](QVShadowedTextField &f) {
            f.setTag(2);
            f.setTag(0);
        }) << 0;
        QTest::newRow("button, tag without shadow") << tagged<QVShadowedButton>(-3) << 0;
        for (const int tag : { 1, 2, -2, -1 }) {
            QTest::addRow("label, tag %d", tag) << tagged<QVShadowedTextField>(tag) << tag;
            QTest::addRow("button, tag %d", tag) << tagged<QVShadowedButton>(tag) << tag;
        }
    }

    void shadows()
    {
        QFETCH(Factory, made);
        QFETCH(int, shadowTag);
        const std::unique_ptr<QWidget> widget = made();
        const auto plainWidget = widget->inherits("QPushButton") ? make<QPushButton>()() : make<QLabel>()();
        const QImage plain = picture(*plainWidget, grey);
        const QImage shadowed = picture(*widget, grey);
        if (shadowTag == 0) {
            QCOMPARE(shadowed, plain);
            return;
        }
        const int side = shadowTag > 0 ? 1 : -1;
        const bool light = shadowTag == 1 || shadowTag == -2;
        const QImage ink = picture(*plainWidget);
        // Where the shadow shows, weighted by how much it changes the picture, against where the ink is.
        QPointF shadowSum, inkSum;
        qreal shadowWeight = 0, inkWeight = 0;
        for (int y = 0; y < plain.height(); ++y)
            for (int x = 0; x < plain.width(); ++x) {
                const int change = qGray(shadowed.pixel(x, y)) - qGray(plain.pixel(x, y));
                const int alpha = qAlpha(ink.pixel(x, y));
                if (alpha == 0)
                    QVERIFY2(light ? change >= 0 : change <= 0,
                        qPrintable(QStringLiteral("%1 at %2,%3").arg(change).arg(x).arg(y)));
                if (light ? change > 0 : change < 0) {
                    shadowSum += QPointF(x, y) * qAbs(change);
                    shadowWeight += qAbs(change);
                }
                inkSum += QPointF(x, y) * alpha;
                inkWeight += alpha;
            }
        QVERIFY(shadowWeight > 0 && inkWeight > 0);
        const QPointF lean = shadowSum / shadowWeight - inkSum / inkWeight;
        QVERIFY2(lean.y() * side > 0.5 && qAbs(lean.x()) < 2,
            qPrintable(QStringLiteral("lean %1,%2").arg(lean.x()).arg(lean.y())));
    }

    void tintsFillTheBezel()
    {
        QPushButton plainButton(QStringLiteral("Reposition"));
        QVLightBlueTintedButton lightBlue(QStringLiteral("Reposition"));
        QVTintedButton gradient(QStringLiteral("Reposition"));
        gradient.setTintGradient(QGradientStops { { 0, QColor(255, 0, 0) }, { 1, QColor(0, 0, 255) } });
        const QImage plain = picture(plainButton, grey);
        const QImage blue = picture(lightBlue, grey);
        const QImage rising = picture(gradient, grey);
        lightBlue.setTintColor(QColor(Qt::red)); // ignored
        QCOMPARE(picture(lightBlue, grey), blue);
        const int middle = plain.width() / 2;
        const int bottom = plain.height() - 1;
        // Light blue: in the middle of the bezel its shading shows through, multiplied by the
        // light blue; the capsule leaves the bezel's corners as they were.
        const QRgb bezel = plain.pixel(middle, 3);
        const QRgb tinted = blue.pixel(middle, 3);
        QVERIFY(qAbs(qRed(tinted) - qRed(bezel) * 0.85) <= 2);
        QVERIFY(qAbs(qGreen(tinted) - qGreen(bezel) * 0.92) <= 2);
        QVERIFY(qAbs(qBlue(tinted) - qBlue(bezel)) <= 1);
        QCOMPARE(blue.pixel(2, 2), plain.pixel(2, 2));
        QCOMPARE(blue.pixel(middle * 2 - 3, bottom - 2), plain.pixel(middle * 2 - 3, bottom - 2));
        // A gradient rises from the bottom of the bezel.
        QVERIFY(qRed(rising.pixel(middle, bottom - 1)) > 200 && qBlue(rising.pixel(middle, bottom - 1)) < 50);
        QVERIFY(qBlue(rising.pixel(middle, 1)) > 200 && qRed(rising.pixel(middle, 1)) < 50);
    }

    // Its shadow is the single-drawn one's (whose side is checked above); the glyphs drawn
    // again on top come nearer the text colour.
    void doubleDrawingKeepsTheGlyphsCrisp()
    {
        QLabel plainLabel(QStringLiteral("Reposition"));
        const QImage glyphs = picture(plainLabel);
        const QRgb text = plainLabel.palette().color(QPalette::WindowText).rgb();
        const auto distance = [text](QRgb c) {
            return qAbs(qRed(c) - qRed(text)) + qAbs(qGreen(c) - qGreen(text)) + qAbs(qBlue(c) - qBlue(text));
        };
        for (const int tag : { 1, -1 }) {
            const QImage once = picture(*tagged<QVShadowedTextField>(tag)(), grey);
            const QImage twice = picture(*tagged<QVDoubleDrawShadowedTextField>(tag)(), grey);
            int crisper = 0;
            for (int y = 0; y < glyphs.height(); ++y)
                for (int x = 0; x < glyphs.width(); ++x) {
                    const QRgb single = once.pixel(x, y);
                    const QRgb doubled = twice.pixel(x, y);
                    if (qAlpha(glyphs.pixel(x, y)) == 0)
                        QCOMPARE(doubled, single);
                    else
                        QVERIFY(distance(doubled) <= distance(single));
                    crisper += distance(doubled) < distance(single);
                }
            QVERIFY2(crisper > 0, qPrintable(QStringLiteral("tag %1").arg(tag)));
        }
    }

    void staticBorderButtonIsOutlinedInGrey()
    {
        QVStaticBorderGradientButton outlined;
        outlined.setText(QStringLiteral("+"));
        QPushButton flat(QStringLiteral("+"));
        flat.setFlat(true);
        const QImage made = picture(outlined, grey);
        const QImage plain = picture(flat, grey);
        const int right = made.width() - 1;
        const int bottom = made.height() - 1;
        for (int y = 0; y <= bottom; ++y)
            for (int x = 0; x <= right; ++x) {
                const bool onOutline = y >= 1 && y <= bottom - 1 && (x == 0 || x == right || y == 1 || y == bottom - 1);
                QCOMPARE(made.pixel(x, y), onOutline ? qRgb(153, 153, 153) : plain.pixel(x, y));
            }
    }
};

QTEST_MAIN(TestCustomDrawnButtons)
#include "tst_customdrawnbuttons.moc"
