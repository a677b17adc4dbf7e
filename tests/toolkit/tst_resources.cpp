#include "QVResourcePaths.h"

#include <QGuiApplication>
#include <QIcon>
#include <QPainter>
#include <QSvgRenderer>
#include <QTest>

namespace
{

// The share of pixels that stand out from the background by a clear step of luminance. A glyph
// in one tone alone scores near 0 on a panel of that tone; the icon scores 0.2 to 0.45.
qreal contrastCoverage(const QString &path, int size, const QColor &background)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(background);
    QPainter painter(&image);
    QSvgRenderer(path).render(&painter, QRectF(0, 0, size, size));
    painter.end();
    const int backgroundGray = qGray(background.rgb());
    int standingOut = 0;
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x)
            standingOut += qAbs(qGray(image.pixel(x, y)) - backgroundGray) > 90;
    return qreal(standingOut) / (size * size);
}

} // namespace

class TestResources final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void picturesLoad_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QSize>("size");
        const QSize image(12, 12);
        for (const char *name : { "QVArrow", "QVArrowOblique", "QVClick", "QVClickRight", "QVScreenSection" })
            QTest::newRow(name) << QVImageResourcePath(QLatin1String(name)) << image;
        for (const char *name : { "QVHotKeyDeleteOn", "QVHotKeyDeleteOff" })
            QTest::newRow(name) << QVImageResourcePath(QLatin1String(name)) << QSize(14, 14);
        QTest::newRow("application") << QVIconResourcePath(QStringLiteral("corvane")) << QSize(128, 128);
        QTest::newRow("tray") << QVIconResourcePath(QStringLiteral("corvane-tray")) << QSize(24, 24);
        for (const char *name :
            { "preferences-general", "preferences-actions", "preferences-updates", "preferences-help" })
            QTest::newRow(name) << QVIconResourcePath(QLatin1String(name)) << QSize(32, 32);
    }

    void picturesLoad()
    {
        QFETCH(QString, path);
        QFETCH(QSize, size);
        QSvgRenderer renderer(path);
        QVERIFY2(renderer.isValid(), qPrintable(path));
        QCOMPARE(renderer.defaultSize(), size);
        // Through the icon engine too, as the tray and the toolbar load them.
        const QImage image = QIcon(path).pixmap(size).toImage();
        QCOMPARE(image.size(), size);
        int inked = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                inked += qAlpha(image.pixel(x, y)) > 0;
        QVERIFY(inked > size.width() * size.height() / 10);
    }

    void trayIconReadsOnAnyPanel_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<QColor>("panel");
        for (const int size : { 16, 22, 24 }) {
            QTest::addRow("%d px, dark panel", size) << size << QColor(Qt::black);
            QTest::addRow("%d px, grey panel", size) << size << QColor(0x3c, 0x3f, 0x41);
            QTest::addRow("%d px, light panel", size) << size << QColor(Qt::white);
            QTest::addRow("%d px, pale panel", size) << size << QColor(0xe8, 0xe8, 0xe7);
        }
    }

    void trayIconReadsOnAnyPanel()
    {
        QFETCH(int, size);
        QFETCH(QColor, panel);
        const qreal coverage = contrastCoverage(QVIconResourcePath(QStringLiteral("corvane-tray")), size, panel);
        QVERIFY2(coverage > 0.15, qPrintable(QString::number(coverage)));
    }
};

QTEST_MAIN(TestResources)
#include "tst_resources.moc"
