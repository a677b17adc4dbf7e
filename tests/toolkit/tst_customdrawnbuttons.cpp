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

const QSize buttonSize(120, 24);
const QColor grey(128, 128, 128);

// The widget's drawing over a background. Drawn as a child of a window, the way it is used:
// Qt's graphics effects, which draw the shadows, do not work on windows.
QImage picture(QWidget &widget, const QColor &background = Qt::transparent)
{
    QWidget window;
    window.resize(buttonSize);
    widget.setParent(&window);
    widget.setGeometry(window.rect());
    QImage image(window.size(), QImage::Format_ARGB32);
    image.fill(background);
    window.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    widget.setParent(nullptr);
    return image;
}

int distance(QRgb a, QRgb b)
{
    return qAbs(qRed(a) - qRed(b)) + qAbs(qGreen(a) - qGreen(b)) + qAbs(qBlue(a) - qBlue(b));
}

// Where the drawing lies, weighted by its opacity.
QPointF inkCentre(const QImage &drawing)
{
    QPointF sum;
    qreal weight = 0;
    for (int y = 0; y < drawing.height(); ++y)
        for (int x = 0; x < drawing.width(); ++x) {
            const int alpha = qAlpha(drawing.pixel(x, y));
            sum += QPointF(x, y) * alpha;
            weight += alpha;
        }
    return weight ? sum / weight : QPointF();
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

} // namespace

Q_DECLARE_METATYPE(Factory)

class TestCustomDrawnButtons final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion"))); }

    void undecoratedDrawsLikeItsQtClass_data()
    {
        QTest::addColumn<Factory>("made");
        QTest::addColumn<Factory>("qt");
        const Factory label = make<QLabel>();
        const Factory button = make<QPushButton>();
        QTest::newRow("tinted button without tint") << make<QVTintedButton>() << button;
        QTest::newRow("tinted button whose tint was taken away") << make<QVTintedButton>([](QVTintedButton &b) {
            b.setTintColor(QColor(Qt::red));
            b.setTintGradient(QGradientStops { { 0, Qt::red }, { 1, Qt::blue } });
            b.setTintColor(std::nullopt);
            b.setTintGradient(std::nullopt);
        }) << button;
        QTest::newRow("shadowed label, tag 0") << make<QVShadowedTextField>() << label;
        QTest::newRow("shadowed label, tag without shadow")
            << make<QVShadowedTextField>([](QVShadowedTextField &f) { f.setTag(3); }) << label;
        QTest::newRow("shadowed label whose shadow was taken away") << make<QVShadowedTextField>(
            [](QVShadowedTextField &f) {
                f.setTag(2);
                f.setTag(0);
            }) << label;
        QTest::newRow("shadowed button, tag 0") << make<QVShadowedButton>() << button;
        QTest::newRow("shadowed button, tag without shadow")
            << make<QVShadowedButton>([](QVShadowedButton &b) { b.setTag(-3); }) << button;
    }

    void undecoratedDrawsLikeItsQtClass()
    {
        QFETCH(Factory, made);
        QFETCH(Factory, qt);
        QCOMPARE(picture(*made(), grey), picture(*qt(), grey));
    }

    void lightBlueIgnoresTintAndOnlyDarkens()
    {
        QPushButton plainButton(QStringLiteral("Reposition"));
        QVLightBlueTintedButton lightBlue(QStringLiteral("Reposition"));
        QVLightBlueTintedButton redAsked(QStringLiteral("Reposition"));
        redAsked.setTintColor(QColor(Qt::red));
        const QImage plain = picture(plainButton, grey);
        const QImage blue = picture(lightBlue, grey);
        QCOMPARE(picture(redAsked, grey), blue);
        QVERIFY(blue != plain);
        for (int y = 0; y < plain.height(); ++y)
            for (int x = 0; x < plain.width(); ++x) {
                const QRgb before = plain.pixel(x, y);
                const QRgb after = blue.pixel(x, y);
                QVERIFY2(
                    qRed(after) <= qRed(before) && qGreen(after) <= qGreen(before) && qBlue(after) <= qBlue(before),
                    qPrintable(QStringLiteral("lighter at %1,%2").arg(x).arg(y)));
            }
        // In the middle of the bezel its shading shows through, scaled by red 0.85, green 0.92, blue 1.
        const QPoint middle(plain.width() / 2, 3);
        const QRgb bezel = plain.pixel(middle);
        const QRgb tinted = blue.pixel(middle);
        QVERIFY(qAbs(qRed(tinted) - qRed(bezel) * 0.85) <= 2);
        QVERIFY(qAbs(qGreen(tinted) - qGreen(bezel) * 0.92) <= 2);
        QVERIFY(qAbs(qBlue(tinted) - qBlue(bezel)) <= 1);
        // The capsule leaves the bezel's corners as they were.
        QCOMPARE(blue.pixel(2, 2), plain.pixel(2, 2));
        QCOMPARE(blue.pixel(plain.width() - 3, plain.height() - 3), plain.pixel(plain.width() - 3, plain.height() - 3));
    }

    void gradientRisesFromTheBottomOfTheBezel()
    {
        QVTintedButton button(QStringLiteral("Reposition"));
        button.setTintGradient(QGradientStops { { 0, QColor(255, 0, 0) }, { 1, QColor(0, 0, 255) } });
        const QImage image = picture(button, grey);
        const QRgb bottom = image.pixel(image.width() / 2, image.height() - 2);
        const QRgb top = image.pixel(image.width() / 2, 1);
        QVERIFY(qRed(bottom) > 200 && qBlue(bottom) < 50);
        QVERIFY(qBlue(top) > 200 && qRed(top) < 50);
    }

    void shadowFallsOnTheSideOfItsTag_data()
    {
        QTest::addColumn<Factory>("made");
        QTest::addColumn<Factory>("qt");
        QTest::addColumn<int>("side");
        QTest::addColumn<bool>("light");
        const Factory label = make<QLabel>();
        const Factory button = make<QPushButton>();
        struct Tag {
            int tag;
            const char *name;
            int side;
            bool light;
        };
        for (const Tag &tag : { Tag { 1, "white below", 1, true }, Tag { 2, "black below", 1, false },
                 Tag { -2, "white above", -1, true }, Tag { -1, "black above", -1, false } }) {
            const int value = tag.tag;
            QTest::addRow("label, %s", tag.name)
                << make<QVShadowedTextField>([value](QVShadowedTextField &f) { f.setTag(value); }) << label << tag.side
                << tag.light;
            QTest::addRow("double-drawn label, %s", tag.name)
                << make<QVDoubleDrawShadowedTextField>([value](QVDoubleDrawShadowedTextField &f) { f.setTag(value); })
                << label << tag.side << tag.light;
            QTest::addRow("button, %s", tag.name)
                << make<QVShadowedButton>([value](QVShadowedButton &b) { b.setTag(value); }) << button << tag.side
                << tag.light;
        }
    }

    void shadowFallsOnTheSideOfItsTag()
    {
        QFETCH(Factory, made);
        QFETCH(Factory, qt);
        QFETCH(int, side);
        QFETCH(bool, light);
        const auto plainWidget = qt();
        const QImage plain = picture(*plainWidget, grey);
        const QImage ink = picture(*plainWidget);
        const QImage shadowed = picture(*made(), grey);
        // Where the shadow shows, weighted by how much it changes the picture.
        QPointF sum;
        qreal weight = 0;
        for (int y = 0; y < plain.height(); ++y)
            for (int x = 0; x < plain.width(); ++x) {
                const int change = qGray(shadowed.pixel(x, y)) - qGray(plain.pixel(x, y));
                if (qAlpha(ink.pixel(x, y)) == 0)
                    QVERIFY2(light ? change >= 0 : change <= 0,
                        qPrintable(QStringLiteral("%1 at %2,%3").arg(change).arg(x).arg(y)));
                if (light ? change > 0 : change < 0) {
                    sum += QPointF(x, y) * qAbs(change);
                    weight += qAbs(change);
                }
            }
        QVERIFY(weight > 0);
        const QPointF lean = sum / weight - inkCentre(ink);
        QVERIFY2(lean.y() * side > 0.5 && qAbs(lean.x()) < 2,
            qPrintable(QStringLiteral("lean %1,%2").arg(lean.x()).arg(lean.y())));
    }

    void doubleDrawingKeepsTheGlyphsCrisp_data()
    {
        QTest::addColumn<int>("tag");
        QTest::newRow("white below") << 1;
        QTest::newRow("black above") << -1;
    }

    void doubleDrawingKeepsTheGlyphsCrisp()
    {
        QFETCH(int, tag);
        QLabel plainLabel(QStringLiteral("Reposition"));
        QVShadowedTextField shadowedLabel(QStringLiteral("Reposition"));
        QVDoubleDrawShadowedTextField doubleLabel(QStringLiteral("Reposition"));
        shadowedLabel.setTag(tag);
        doubleLabel.setTag(tag);
        const QImage glyphs = picture(plainLabel);
        const QImage once = picture(shadowedLabel, grey);
        const QImage twice = picture(doubleLabel, grey);
        const QRgb text = plainLabel.palette().color(QPalette::WindowText).rgb();
        int crisper = 0;
        for (int y = 0; y < glyphs.height(); ++y)
            for (int x = 0; x < glyphs.width(); ++x) {
                const int alpha = qAlpha(glyphs.pixel(x, y));
                const QRgb single = once.pixel(x, y);
                const QRgb doubled = twice.pixel(x, y);
                if (alpha == 0) {
                    // The halo around the glyphs is the same.
                    QCOMPARE(doubled, single);
                    continue;
                }
                QVERIFY(distance(doubled, text) <= distance(single, text));
                crisper += distance(doubled, text) < distance(single, text);
            }
        QVERIFY(crisper > 0);
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
        const QRgb outline = qRgb(153, 153, 153);
        for (int y = 0; y <= bottom; ++y)
            for (int x = 0; x <= right; ++x) {
                const bool onOutline = y >= 1 && y <= bottom - 1 && (x == 0 || x == right || y == 1 || y == bottom - 1);
                QCOMPARE(made.pixel(x, y), onOutline ? outline : plain.pixel(x, y));
            }
    }
};

QTEST_MAIN(TestCustomDrawnButtons)
#include "tst_customdrawnbuttons.moc"
