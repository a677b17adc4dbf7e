#include "QVImageExtensions.h"

#include <QDir>
#include <QPainter>
#include <QTest>

namespace
{

// A 10 by 10 image, opaque black in its top right quarter only.
QImage topRightMark()
{
    QImage image(10, 10, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter(&image).fillRect(QRect(5, 0, 5, 5), Qt::black);
    return image;
}

enum Quarter { TopRight, TopLeft, BottomLeft, BottomRight };

// The number of inked pixels in each quarter, counter-clockwise from the top right.
QList<int> inkByQuarter(const QImage &image)
{
    QList<int> ink(4, 0);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) > 128)
                ++ink[y < 5 ? (x >= 5 ? TopRight : TopLeft) : (x < 5 ? BottomLeft : BottomRight)];
    return ink;
}

} // namespace

class TestImageExtensions final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tintCoversOnlyTheInk()
    {
        QImage image(4, 1, QImage::Format_ARGB32);
        image.setPixel(0, 0, qRgba(0, 0, 0, 255));
        image.setPixel(1, 0, qRgba(255, 255, 255, 255));
        image.setPixel(2, 0, qRgba(0, 0, 0, 128));
        image.setPixel(3, 0, qRgba(0, 0, 0, 0));
        QImage drawn = transparentImage(image.size(), 1.0);
        QPainter painter(&drawn);
        drawInRect(painter, image, QRectF(image.rect()), QColor(255, 0, 0, 128), 0);
        painter.end();
        drawn = drawn.convertToFormat(QImage::Format_ARGB32);
        // Black and white ink alike take the colour; coverage multiplies its alpha.
        QCOMPARE(drawn.pixel(0, 0), qRgba(255, 0, 0, 128));
        QCOMPARE(drawn.pixel(1, 0), qRgba(255, 0, 0, 128));
        QVERIFY(qAbs(qAlpha(drawn.pixel(2, 0)) - 64) <= 1);
        QCOMPARE(qRed(drawn.pixel(2, 0)), 255);
        QCOMPARE(qAlpha(drawn.pixel(3, 0)), 0);
    }

    void drawTurns_data()
    {
        QTest::addColumn<qreal>("angle");
        QTest::addColumn<int>("inked");
        QTest::newRow("unturned") << 0.0 << int(TopRight);
        QTest::newRow("quarter turn counter-clockwise") << 90.0 << int(TopLeft);
        QTest::newRow("half turn") << 180.0 << int(BottomLeft);
        QTest::newRow("three quarters") << 270.0 << int(BottomRight);
    }

    void drawTurns()
    {
        QFETCH(qreal, angle);
        QFETCH(int, inked);
        QImage image = transparentImage(QSize(10, 10), 1.0);
        QPainter painter(&image);
        drawInRect(painter, topRightMark(), QRectF(0, 0, 10, 10), QColor(), angle);
        painter.end();
        QList<int> expected(4, 0);
        expected[inked] = 25;
        QCOMPARE(inkByQuarter(image), expected);
    }

    void svgRenderedForThePixelRatio_data()
    {
        QTest::addColumn<qreal>("ratio");
        QTest::addColumn<QSize>("pixels");
        QTest::newRow("single density") << 1.0 << QSize(12, 12);
        QTest::newRow("double density") << 2.0 << QSize(24, 24);
    }

    void svgRenderedForThePixelRatio()
    {
        QFETCH(qreal, ratio);
        QFETCH(QSize, pixels);
        const QString path = QDir(QStringLiteral(CORVANE_TEST_DATA)).filePath(QStringLiteral("square.svg"));
        const QImage image = imageFromSvg(path, ratio);
        QCOMPARE(image.size(), pixels);
        QCOMPARE(image.devicePixelRatio(), ratio);
        // The square fills the middle and leaves the edge clear at any density, all of it inside.
        QCOMPARE(qAlpha(image.pixel(pixels.width() / 2, pixels.height() / 2)), 255);
        QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
        QCOMPARE(qAlpha(image.pixel(pixels.width() - 1, pixels.height() - 1)), 0);
    }

    void missingSvgIsNull() { QVERIFY(imageFromSvg(QStringLiteral(":/no/such.svg"), 1.0).isNull()); }
};

QTEST_MAIN(TestImageExtensions)
#include "tst_imageextensions.moc"
