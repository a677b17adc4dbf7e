#include "QVShadowEffect.h"

#include <QPainter>

#include <vector>

namespace
{

// One pass of a [1 2 1] kernel along the rows or the columns of an alpha plane.
void blurPass(std::vector<int> &alpha, int width, int height, bool alongRows)
{
    const std::vector<int> source = alpha;
    auto at = [&](int x, int y) {
        if (x < 0 || y < 0 || x >= width || y >= height)
            return 0;
        return source[size_t(y) * size_t(width) + size_t(x)];
    };
    const int dx = alongRows ? 1 : 0;
    const int dy = alongRows ? 0 : 1;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            alpha[size_t(y) * size_t(width) + size_t(x)]
                = (at(x - dx, y - dy) + 2 * at(x, y) + at(x + dx, y + dy) + 2) / 4;
}

int blurPasses(const QVShadowedTextField::Shadow &shadow, qreal ratio)
{
    return qRound(shadow.blurRadius * ratio);
}

} // namespace

QVShadowEffect::QVShadowEffect(const QVShadowedTextField::Shadow *shadow, bool drawSourceTwice, QObject *parent)
    : QGraphicsEffect(parent)
    , m_shadow(shadow)
    , m_drawSourceTwice(drawSourceTwice)
{
}

QImage QVShadowEffect::shadowImage(const QImage &picture, const QVShadowedTextField::Shadow &shadow, int margin)
{
    const QImage source = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const int width = source.width() + 2 * margin;
    const int height = source.height() + 2 * margin;
    std::vector<int> alpha(size_t(width) * size_t(height), 0);
    for (int y = 0; y < source.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(source.constScanLine(y));
        for (int x = 0; x < source.width(); ++x)
            alpha[size_t(y + margin) * size_t(width) + size_t(x + margin)] = qAlpha(line[x]);
    }
    for (int pass = blurPasses(shadow, picture.devicePixelRatio()); pass > 0; --pass) {
        blurPass(alpha, width, height, true);
        blurPass(alpha, width, height, false);
    }
    QImage result(width, height, QImage::Format_ARGB32_Premultiplied);
    const QRgb color = shadow.color.rgba();
    for (int y = 0; y < height; ++y) {
        auto *line = reinterpret_cast<QRgb *>(result.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const int coverage = alpha[size_t(y) * size_t(width) + size_t(x)] * qAlpha(color) / 255;
            line[x] = qPremultiply(qRgba(qRed(color), qGreen(color), qBlue(color), coverage));
        }
    }
    result.setDevicePixelRatio(picture.devicePixelRatio());
    return result;
}

void QVShadowEffect::draw(QPainter *painter)
{
    QPoint origin;
    const QPixmap source = sourcePixmap(Qt::LogicalCoordinates, &origin, QGraphicsEffect::NoPad);
    if (source.isNull())
        return;
    if (m_shadow) {
        const qreal ratio = source.devicePixelRatio();
        const int margin = blurPasses(*m_shadow, ratio) + 1;
        const QPointF padding(margin / ratio, margin / ratio);
        painter->drawImage(origin + m_shadow->offset - padding, shadowImage(source.toImage(), *m_shadow, margin));
    }
    painter->drawPixmap(origin, source);
    // The shadow's blur reaches under the glyphs' soft edges; a second drawing covers it there.
    if (m_drawSourceTwice)
        painter->drawPixmap(origin, source);
}
