#include "QVHotKeyClearButton.h"

#include "QVImageExtensions.h"
#include "QVResourcePaths.h"

#include <QHash>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

namespace
{

struct ClearButtonImages {
    QImage enabled;
    QImage disabled;
    QImage highlighted;
};

// Made once for each device pixel ratio in use.
const ClearButtonImages &imagesFor(qreal devicePixelRatio)
{
    static QHash<qreal, ClearButtonImages> cache;
    auto found = cache.find(devicePixelRatio);
    if (found == cache.end()) {
        ClearButtonImages images;
        images.enabled = imageFromSvg(QVImageResourcePath(QStringLiteral("QVHotKeyDeleteOn")), devicePixelRatio);
        images.disabled = imageFromSvg(QVImageResourcePath(QStringLiteral("QVHotKeyDeleteOff")), devicePixelRatio);
        images.highlighted = darkenedImageWithColor(images.enabled, QColor::fromRgbF(0.0, 0.0, 0.0, 0.1));
        found = cache.insert(devicePixelRatio, images);
    }
    return *found;
}

} // namespace

QVHotKeyClearButton::QVHotKeyClearButton(QWidget *parent)
    : QAbstractButton(parent)
{
    // Reachable with Tab; a click leaves the focus (and a recording) where it is.
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(tr("Clear hot key"));
    setEnabled(false);
}

QSize QVHotKeyClearButton::sizeHint() const
{
    const QImage &image = imagesFor(devicePixelRatioF()).enabled;
    return (QSizeF(image.size()) / image.devicePixelRatio()).toSize();
}

void QVHotKeyClearButton::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event);
    const ClearButtonImages &images = imagesFor(devicePixelRatioF());
    const QImage &image = isDown() ? images.highlighted : isEnabled() ? images.enabled : images.disabled;
    QPainter painter(this);
    // Anchored at the lower left corner, as the picture's own origin.
    const qreal imageHeight = image.height() / image.devicePixelRatio();
    painter.drawImage(QPointF(0, height() - imageHeight), image);
    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
    }
}
