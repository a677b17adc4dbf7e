// What the overlay windows paint: the one-point frame, the rounded bezels and the
// screen-section picture, read back pixel by pixel.
#include "QVActionCodes.h"
#include "QVBezel.h"
#include "QVFakePlatform.h"
#include "QVScreenOverlayPanel.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QRegion>
#include <QTest>

#include <cmath>

namespace {

QImage transparentImage(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

// Pixels by how many times a colour of alpha 100 was laid over them: 0, 1, 2 or more.
QList<int> coverageHistogram(const QImage &image)
{
    QList<int> histogram(4, 0);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const int alpha = qAlpha(image.pixel(x, y));
            histogram[alpha == 0 ? 0 : alpha == 100 ? 1 : alpha < 180 ? 3 : 2]++;
        }
    return histogram;
}

} // namespace

class TestOverlayDrawing final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void borderFramePaintsEachPixelOnce_data()
    {
        QTest::addColumn<QRectF>("rect");
        QTest::addColumn<int>("framePixels");
        QTest::newRow("10 x 10") << QRectF(0, 0, 10, 10) << 36;
        QTest::newRow("inset 5 x 4") << QRectF(2, 3, 5, 4) << 14;
        QTest::newRow("2 x 2: corners only") << QRectF(4, 4, 2, 2) << 4;
    }

    void borderFramePaintsEachPixelOnce()
    {
        QFETCH(QRectF, rect);
        QFETCH(int, framePixels);

        QImage image = transparentImage(10, 10);
        QPainter painter(&image);
        QVDrawBorderFrameInRect(painter, QColor(255, 0, 0, 100), {rect.x(), rect.y(), rect.width(), rect.height()});
        painter.end();
        const QList<int> histogram = coverageHistogram(image);
        QCOMPARE(histogram[1], framePixels);
        QCOMPARE(histogram[2] + histogram[3], 0);
        QCOMPARE(histogram[0], 100 - framePixels);
        QCOMPARE(qAlpha(image.pixel(int(rect.x()), int(rect.y()))), 100);
        QCOMPARE(qAlpha(image.pixel(int(rect.right()) - 1, int(rect.bottom()) - 1)), 100);
    }

    void bezelCorners()
    {
        // y grows upwards: the top corners lie at maxY.
        const QPainterPath path = QVBezel({0, 0, 100, 50}, /*topLeft*/ 10, /*topRight*/ 0, /*bottomLeft*/ 0.5,
                                          /*bottomRight*/ 20);
        QCOMPARE(path.boundingRect(), QRectF(0, 0, 100, 50));
        QVERIFY(!path.contains(QPointF(0.5, 49.5))); // rounded top left
        QVERIFY(path.contains(QPointF(99.5, 49.5))); // square top right
        QVERIFY(path.contains(QPointF(0.5, 0.5)));   // a radius under 1 is square
        QVERIFY(!path.contains(QPointF(99, 1)));     // rounded bottom right ...
        QVERIFY(!path.contains(QPointF(95, 5)));
        QVERIFY(path.contains(QPointF(93, 7))); // ... with a radius of 20
        QVERIFY(path.contains(QPointF(99.5, 21)));
        QVERIFY(!path.contains(QPointF(2, 48)));
    }

    void identicalRadiiMakeACircle()
    {
        QImage image = transparentImage(40, 40);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        QVDrawIdenticalRadiiBevel(painter, Qt::black, nullptr, QColor(), {4, 4, 32, 32}, 16.0, 1.0);
        painter.end();
        for (int degrees = 0; degrees < 360; degrees += 15) {
            const double radians = degrees * M_PI / 180.0;
            const QPoint onRing(int(std::floor(20 + 16 * std::cos(radians))), int(std::floor(20 + 16 * std::sin(radians))));
            const QRect around = QRect(onRing - QPoint(1, 1), QSize(3, 3)).intersected(image.rect());
            int inked = 0;
            for (int y = around.top(); y <= around.bottom(); ++y)
                for (int x = around.left(); x <= around.right(); ++x)
                    inked = std::max(inked, qAlpha(image.pixel(x, y)));
            QVERIFY2(inked > 100, qPrintable(QStringLiteral("no ink at %1 degrees").arg(degrees)));
        }
        QCOMPARE(qAlpha(image.pixel(20, 20)), 0);
        QCOMPARE(qAlpha(image.pixel(5, 5)), 0);
    }

    void sectionPictureAndFocusPoint()
    {
        // A 1440 x 900 display narrowed right, top, right, top: a cross hair on each of
        // the five levels, the last one in the second colour on a pale halo.
        QVFakePlatform platform;
        platform.displayList = QVFakeDisplays({{0, 0, 1440, 900}});
        QVScreenOverlayPanel panel(platform, {0, 0, 1440, 900});
        for (const qint64 step : {QVPosition::Right, QVPosition::Top, QVPosition::Right, QVPosition::Top})
            panel.addStep(step);
        const QImage picture = panel.grab().toImage();
        QCOMPARE(picture.size(), QSize(1440, 900));

        const QRgb line = QVScreenOverlayPanel::selectedControlColor().rgba();
        const QRgb current = QVScreenOverlayPanel::alternateSelectedControlColor().rgba();
        // Rows count from the top; window coordinates from the bottom.
        QCOMPARE(picture.pixel(720, 600), line);  // the display's own halves
        QCOMPARE(picture.pixel(300, 449), line);
        QCOMPARE(picture.pixel(1080, 800), line); // the right half
        QCOMPARE(picture.pixel(1200, 224), line); // its top quarter
        QCOMPARE(picture.pixel(1260, 300), line); // the eighth on its right
        QCOMPARE(picture.pixel(1260, 10), current);
        QCOMPARE(picture.pixel(1100, 112), current);
        const QRgb halo = picture.pixel(1261, 10);
        QVERIFY(qAlpha(halo) > 100 && qAlpha(halo) < 160);
        QCOMPARE(qAlpha(picture.pixel(1262, 10)), 0);
        QCOMPARE(qAlpha(picture.pixel(1259, 10)), qAlpha(halo));
        QCOMPARE(qAlpha(picture.pixel(300, 300)), 0);
        QCOMPARE(panel.focusPoint(), (QVPoint{1260, 787}));
        // Only the area the panel announces is repainted after a step: nothing lies outside it.
        QRegion area;
        for (const QVRect &rect : panel.drawingAreaInBounds({0, 0, 1440, 900}))
            area += QRectF(rect.x, 900.0 - rect.maxY(), rect.width, rect.height).toAlignedRect();
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                if (qAlpha(picture.pixel(x, y)) && !area.contains(QPoint(x, y)))
                    QFAIL(qPrintable(QStringLiteral("(%1, %2) drawn outside the area").arg(x).arg(y)));

        // Undoing a step takes the picture and the point back a level.
        panel.removeLastStep();
        const QImage undone = panel.grab().toImage();
        QCOMPARE(undone.pixel(1260, 300), current);
        QVERIFY(undone.pixel(1100, 112) != current);
        QCOMPARE(panel.focusPoint(), (QVPoint{1260, 675}));
    }
};

QTEST_MAIN(TestOverlayDrawing)
#include "tst_overlaydrawing.moc"
