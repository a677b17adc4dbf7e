#include "QVShapedPicture.h"

#include <QBitmap>
#include <QPainter>

QRegion QVShapedPicture::redraw(const QSize &size, const QRegion &area, const Drawing &drawing)
{
    if (m_image.size() != size) {
        m_image = QImage(size, QImage::Format_ARGB32_Premultiplied);
        m_image.fill(Qt::transparent);
    }
    QPainter painter(&m_image);
    painter.setClipRegion(area);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(area.boundingRect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    drawing(painter);
    painter.end();
    const QRegion drawn = drawnPixels(m_image, area);
    makeOpaque(drawn);
    return drawn;
}

QRegion QVShapedPicture::drawnPixels(const QImage &image, const QRegion &area)
{
    QRegion drawn;
    for (const QRect &rect : area) {
        const QImage part = image.copy(rect);
        drawn += QRegion(QBitmap::fromImage(part.createAlphaMask(Qt::ThresholdAlphaDither))).translated(rect.topLeft());
    }
    return drawn;
}

void QVShapedPicture::makeOpaque(const QRegion &region)
{
    for (const QRect &rect : region) {
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            auto *line = reinterpret_cast<QRgb *>(m_image.scanLine(y));
            for (int x = rect.left(); x <= rect.right(); ++x)
                line[x] = qUnpremultiply(line[x]) | 0xff000000u;
        }
    }
}
