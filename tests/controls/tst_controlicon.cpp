#include "QVCustomControlIcon.h"
#include "QVCustomControlRepresentation.h"

#include <QPainter>
#include <QTest>

namespace
{

const QRect symbolArea(2, 2, 18, 12);
// Where a 12 by 12 image sits, centred in the symbol area on whole points.
const QRect imageArea(5, 2, 12, 12);

QVCustomControlRef control(qint64 action, qint64 position = QVPosition::Right, const QString &title = QString())
{
    auto made = std::make_shared<QVCustomControlRepresentation>(nullptr);
    made->setAction(action);
    made->setMoveDirection(position);
    made->setMoveToEdgeOrCornerPosition(position);
    made->setMoveToOtherDisplayDirection(position);
    made->setTitle(title);
    return made;
}

QImage rendered(const QVCustomControlRepresentation &control, bool selected = false)
{
    QImage image(22, 16, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawIconInRect(control, painter, QRectF(0, 0, 22, 16), selected);
    return image;
}

// Pixels of the symbol: visibly darker than the fill of the frame, and more opaque.
bool isInk(QRgb pixel)
{
    return qAlpha(pixel) > 150 && qGray(pixel) < 200;
}

QRect inkBounds(const QImage &image, const QRect &area)
{
    QRect bounds;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            if (isInk(image.pixel(x, y)))
                bounds |= QRect(x, y, 1, 1);
    return bounds;
}

// The symbol as a mask, for comparing turns.
QImage inkMask(const QImage &image)
{
    QImage mask(imageArea.size(), QImage::Format_Grayscale8);
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            mask.setPixel(x, y, isInk(image.pixel(imageArea.topLeft() + QPoint(x, y))) ? 0 : 255);
    return mask;
}

QImage turnedCounterClockwise(const QImage &mask, qreal degrees)
{
    return mask.transformed(QTransform().rotate(-degrees));
}

// The direction in which the ink leans away from the middle of the image.
QPointF inkLean(const QImage &mask)
{
    QPointF sum;
    int count = 0;
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            if (qGray(mask.pixel(x, y)) == 0) {
                sum += QPointF(x + 0.5 - mask.width() / 2.0, y + 0.5 - mask.height() / 2.0);
                ++count;
            }
    return count ? sum / count : QPointF();
}

} // namespace

class TestControlIcon final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void headingShowsItsFirstLetters_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("letters");
        QTest::newRow("spaces go before the letters are taken") << QStringLiteral("hot keys") << QStringLiteral("HOT");
        QTest::newRow("spaces only") << QStringLiteral("   ") << QStringLiteral("ABC");
        QTest::newRow("short") << QStringLiteral("ab") << QStringLiteral("AB");
    }

    void headingShowsItsFirstLetters()
    {
        QFETCH(QString, title);
        QFETCH(QString, letters);
        const QImage heading = rendered(*control(QVAction::Heading, 0, title));
        QCOMPARE(heading, rendered(*control(QVAction::Heading, 0, letters)));
        QVERIFY(heading != rendered(*control(QVAction::Heading, 0, letters.chopped(1) + QLatin1Char('W'))));
        // No frame around a heading.
        QCOMPARE(qAlpha(heading.pixel(0, 0)), 0);
    }

    void frameIsFaintAndSelectedFillHalfTransparent()
    {
        const auto center = control(QVAction::MoveToCenter);
        const QImage plain = rendered(*center);
        const QImage selected = rendered(*center, true);
        QCOMPARE(qAlpha(plain.pixel(0, 0)), 51);
        QCOMPARE(qAlpha(plain.pixel(1, 1)), 255);
        QVERIFY(qAbs(qAlpha(selected.pixel(1, 1)) - 128) <= 1);
        QCOMPARE(qAlpha(selected.pixel(0, 0)), 51);
        // The symbol stays when selected: a 6 by 6 square in the middle.
        QCOMPARE(inkBounds(selected, symbolArea), QRect(8, 5, 6, 6));
    }

    void edgeOrCornerMarksItsPlace_data()
    {
        QTest::addColumn<qint64>("position");
        QTest::addColumn<QRect>("mark");
        QTest::newRow("top") << QVPosition::Top << QRect(2, 2, 18, 3);
        QTest::newRow("bottom") << QVPosition::Bottom << QRect(2, 11, 18, 3);
        QTest::newRow("left") << QVPosition::Left << QRect(2, 2, 3, 12);
        QTest::newRow("right") << QVPosition::Right << QRect(17, 2, 3, 12);
        QTest::newRow("top left") << QVPosition::TopLeft << QRect(2, 2, 5, 5);
        QTest::newRow("top right") << QVPosition::TopRight << QRect(15, 2, 5, 5);
        QTest::newRow("bottom left") << QVPosition::BottomLeft << QRect(2, 9, 5, 5);
        QTest::newRow("bottom right") << QVPosition::BottomRight << QRect(15, 9, 5, 5);
        QTest::newRow("centre: frame only") << QVPosition::Center << QRect();
    }

    void edgeOrCornerMarksItsPlace()
    {
        QFETCH(qint64, position);
        QFETCH(QRect, mark);
        const QImage icon = rendered(*control(QVAction::MoveToEdgeOrCorner, position));
        QCOMPARE(inkBounds(icon, icon.rect()), mark);
        // The mark is solid, in the half-transparent symbol colour over white.
        if (!mark.isEmpty())
            QVERIFY(qAbs(qGray(icon.pixel(mark.center())) - 128) <= 2);
    }

    void arrowsAreTurnsOfOneArrow_data()
    {
        QTest::addColumn<qint64>("action");
        QTest::addColumn<qint64>("direction");
        QTest::addColumn<qint64>("unturned");
        QTest::addColumn<qreal>("angle");
        QTest::addColumn<QPointF>("lean");
        const qint64 move = QVAction::Move;
        const qint64 display = QVAction::MoveToOtherDisplay;
        QTest::newRow("move right") << move << QVPosition::Right << QVPosition::Right << 0.0 << QPointF(1, 0);
        QTest::newRow("move up") << move << QVPosition::Top << QVPosition::Right << 90.0 << QPointF(0, -1);
        QTest::newRow("move left") << move << QVPosition::Left << QVPosition::Right << 180.0 << QPointF(-1, 0);
        QTest::newRow("move down") << move << QVPosition::Bottom << QVPosition::Right << 270.0 << QPointF(0, 1);
        QTest::newRow("move up right") << move << QVPosition::TopRight << QVPosition::TopRight << 0.0 << QPointF(1, -1);
        QTest::newRow("move up left") << move << QVPosition::TopLeft << QVPosition::TopRight << 90.0 << QPointF(-1, -1);
        QTest::newRow("move down left") << move << QVPosition::BottomLeft << QVPosition::TopRight << 180.0
                                        << QPointF(-1, 1);
        QTest::newRow("move down right") << move << QVPosition::BottomRight << QVPosition::TopRight << 270.0
                                         << QPointF(1, 1);
        QTest::newRow("display above") << display << QVPosition::Top << QVPosition::Right << 90.0 << QPointF(0, -1);
    }

    void arrowsAreTurnsOfOneArrow()
    {
        QFETCH(qint64, action);
        QFETCH(qint64, direction);
        QFETCH(qint64, unturned);
        QFETCH(qreal, angle);
        QFETCH(QPointF, lean);
        const QImage arrow = inkMask(rendered(*control(action, direction)));
        const QImage reference = inkMask(rendered(*control(QVAction::Move, unturned)));
        QCOMPARE(arrow, turnedCounterClockwise(reference, angle));
        // The arrow's head, the heavier end, points the way it should.
        const QPointF measured = inkLean(arrow);
        QVERIFY(QPointF::dotProduct(measured, lean) > 0.1);
        if (lean.x() == 0)
            QVERIFY(qAbs(measured.x()) < 0.05);
        if (lean.y() == 0)
            QVERIFY(qAbs(measured.y()) < 0.05);
    }

    void directionsWithoutArrowDrawFrameOnly_data()
    {
        QTest::addColumn<qint64>("action");
        QTest::addColumn<qint64>("direction");
        QTest::newRow("move, not a direction") << qint64(QVAction::Move) << qint64(2);
        QTest::newRow("other display, corner") << qint64(QVAction::MoveToOtherDisplay) << QVPosition::TopRight;
        QTest::newRow("unknown action") << qint64(77) << QVPosition::Right;
    }

    void directionsWithoutArrowDrawFrameOnly()
    {
        QFETCH(qint64, action);
        QFETCH(qint64, direction);
        const QImage icon = rendered(*control(action, direction));
        QCOMPARE(inkBounds(icon, icon.rect()), QRect());
        QCOMPARE(qAlpha(icon.pixel(0, 0)), 51);
    }

    void imageSymbolsAreTintedAndInside_data()
    {
        QTest::addColumn<qint64>("action");
        QTest::newRow("screen section") << qint64(QVAction::MoveToScreenSection);
        QTest::newRow("click") << qint64(QVAction::Click);
        QTest::newRow("right click") << qint64(QVAction::RightClick);
    }

    void imageSymbolsAreTintedAndInside()
    {
        QFETCH(qint64, action);
        const QImage icon = rendered(*control(action));
        const QRect ink = inkBounds(icon, icon.rect());
        QVERIFY(!ink.isEmpty());
        QVERIFY(imageArea.contains(ink));
        // Half-transparent black over white at its darkest, never pure black.
        int darkest = 255;
        for (int y = ink.top(); y <= ink.bottom(); ++y)
            for (int x = ink.left(); x <= ink.right(); ++x)
                darkest = qMin(darkest, qGray(icon.pixel(x, y)));
        QVERIFY2(qAbs(darkest - 128) <= 2, qPrintable(QString::number(darkest)));
    }

    void menuIconHasBothDensities()
    {
        const QIcon icon = iconForControl(*control(QVAction::Click));
        const QPixmap single = icon.pixmap(QSize(24, 16), 1.0);
        const QPixmap twice = icon.pixmap(QSize(24, 16), 2.0);
        QCOMPARE(single.size(), QSize(24, 16));
        QCOMPARE(twice.size(), QSize(48, 32));
        // The picture takes 22 of the 24 points; the rest stays clear.
        const QImage image = single.toImage();
        QCOMPARE(qAlpha(image.pixel(21, 0)), 51);
        QCOMPARE(qAlpha(image.pixel(22, 0)), 0);
        QCOMPARE(qAlpha(image.pixel(23, 8)), 0);
        // The double-density picture is drawn afresh, not scaled: the frame's edge is sharp.
        const QImage sharp = twice.toImage();
        QCOMPARE(qAlpha(sharp.pixel(1, 1)), 51);
        QCOMPARE(qAlpha(sharp.pixel(2, 2)), 255);
    }
};

QTEST_MAIN(TestControlIcon)
#include "tst_controlicon.moc"
