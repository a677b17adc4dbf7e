#include "QVShapedPicture.h"

#include <QBitmap>
#include <QPainter>

namespace
{
// A smoothed curve's pixels down to a quarter covered: the curve stays whole
// without growing a fringe.
constexpr int minimumAlpha = 64;
} // namespace

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
        QImage mask(rect.size(), QImage::Format_MonoLSB);
        mask.setColorCount(2);
        mask.setColor(0, qRgb(255, 255, 255));
        mask.setColor(1, qRgb(0, 0, 0));
        mask.fill(0);
        for (int y = 0; y < rect.height(); ++y) {
            const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(rect.top() + y)) + rect.left();
            for (int x = 0; x < rect.width(); ++x)
                if (qAlpha(line[x]) >= minimumAlpha)
                    mask.setPixel(x, y, 1);
        }
        drawn += QRegion(QBitmap::fromImage(mask)).translated(rect.topLeft());
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
