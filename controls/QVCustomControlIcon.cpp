#include "QVCustomControlIcon.h"

#include "QVCustomControlRepresentation.h"
#include "QVImageExtensions.h"
#include "QVResourcePaths.h"

#include <QPaintDevice>
#include <QPainter>

#include <optional>

namespace
{

constexpr qreal headingOpacity = 0.3;
constexpr qreal frameOpacity = 0.2;
constexpr qreal symbolOpacity = 0.5;
constexpr int headingPixelSize = 8;

QColor black(qreal opacity)
{
    return QColor::fromRgbF(0, 0, 0, float(opacity));
}

QString headingText(const QString &title)
{
    QString text = QString(title).remove(QLatin1Char(' ')).trimmed();
    if (text.isEmpty())
        return QStringLiteral("ABC");
    return text.left(3).trimmed().toUpper();
}

void drawHeading(const QString &title, QPainter &painter, const QRectF &rect)
{
    QFont font = painter.font();
    font.setPixelSize(headingPixelSize);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(black(headingOpacity));
    const QRectF textRect = rect.translated(0, 1);
    painter.setClipRect(textRect, Qt::IntersectClip);
    painter.drawText(textRect, Qt::AlignCenter | Qt::TextSingleLine, headingText(title));
}

// Counter-clockwise turn of the straight arrow (pointing right) for a side.
std::optional<qreal> sideArrowAngle(qint64 position)
{
    switch (position) {
    case QVPosition::Right: return 0;
    case QVPosition::Top: return 90;
    case QVPosition::Left: return 180;
    case QVPosition::Bottom: return 270;
    default: return std::nullopt;
    }
}

// Counter-clockwise turn of the oblique arrow (pointing up and right) for a diagonal.
std::optional<qreal> obliqueArrowAngle(qint64 position)
{
    switch (position) {
    case QVPosition::TopRight: return 0;
    case QVPosition::TopLeft: return 90;
    case QVPosition::BottomLeft: return 180;
    case QVPosition::BottomRight: return 270;
    default: return std::nullopt;
    }
}

// The mark flush with a side (3 thick) or in a corner (5 by 5); none for other positions.
std::optional<QRectF> edgeOrCornerMark(qint64 position, const QRectF &area)
{
    constexpr qreal bar = 3;
    constexpr qreal corner = 5;
    switch (position) {
    case QVPosition::Top: return QRectF(area.left(), area.top(), area.width(), bar);
    case QVPosition::Bottom: return QRectF(area.left(), area.bottom() - bar, area.width(), bar);
    case QVPosition::Left: return QRectF(area.left(), area.top(), bar, area.height());
    case QVPosition::Right: return QRectF(area.right() - bar, area.top(), bar, area.height());
    case QVPosition::TopLeft: return QRectF(area.left(), area.top(), corner, corner);
    case QVPosition::TopRight: return QRectF(area.right() - corner, area.top(), corner, corner);
    case QVPosition::BottomLeft: return QRectF(area.left(), area.bottom() - corner, corner, corner);
    case QVPosition::BottomRight: return QRectF(area.right() - corner, area.bottom() - corner, corner, corner);
    default: return std::nullopt;
    }
}

// An image at its own size, centred in the area on whole points, tinted and turned.
void drawImageSymbol(QPainter &painter, const QString &imageName, const QRectF &area, qreal angle)
{
    const qreal ratio = painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
    const QImage image = imageFromSvg(QVImageResourcePath(imageName), ratio);
    if (image.isNull())
        return;
    const QSizeF size = image.deviceIndependentSize();
    const QPointF topLeft(std::floor(area.left() + (area.width() - size.width()) / 2),
        std::floor(area.top() + (area.height() - size.height()) / 2));
    drawInRect(painter, image, QRectF(topLeft, size), black(symbolOpacity), angle);
}

void drawSymbol(const QVCustomControlRepresentation &control, QPainter &painter, const QRectF &area)
{
    switch (control.action()) {
    case QVAction::MoveToCenter: {
        QRectF square(0, 0, 6, 6);
        square.moveCenter(area.center());
        painter.fillRect(square, black(symbolOpacity));
        break;
    }
    case QVAction::MoveToEdgeOrCorner:
        if (const auto mark = edgeOrCornerMark(control.moveToEdgeOrCornerPosition(), area))
            painter.fillRect(*mark, black(symbolOpacity));
        break;
    case QVAction::Move:
        if (const auto angle = sideArrowAngle(control.moveDirection()))
            drawImageSymbol(painter, QStringLiteral("QVArrow"), area, *angle);
        else if (const auto oblique = obliqueArrowAngle(control.moveDirection()))
            drawImageSymbol(painter, QStringLiteral("QVArrowOblique"), area, *oblique);
        break;
    case QVAction::MoveToOtherDisplay:
        if (const auto angle = sideArrowAngle(control.moveToOtherDisplayDirection()))
            drawImageSymbol(painter, QStringLiteral("QVArrow"), area, *angle);
        break;
    case QVAction::MoveToScreenSection: drawImageSymbol(painter, QStringLiteral("QVScreenSection"), area, 0); break;
    case QVAction::Click: drawImageSymbol(painter, QStringLiteral("QVClick"), area, 0); break;
    case QVAction::RightClick: drawImageSymbol(painter, QStringLiteral("QVClickRight"), area, 0); break;
    default: break;
    }
}

QImage renderedIcon(const QVCustomControlRepresentation &control, qreal devicePixelRatio)
{
    QImage image = transparentImage(QSize(24, 16), devicePixelRatio);
    QPainter painter(&image);
    drawIconInRect(control, painter, QRectF(0, 0, 22, 16), false);
    return image;
}

} // namespace

void drawIconInRect(const QVCustomControlRepresentation &control, QPainter &painter, const QRectF &rect, bool selected)
{
    painter.save();
    if (control.action() == QVAction::Heading) {
        drawHeading(control.title(), painter, rect);
    } else if (control.action() == QVAction::None) {
        painter.fillRect(QRectF(rect.left(), rect.top() + rect.height() / 2, rect.width(), 1), black(frameOpacity));
    } else {
        painter.setPen(QPen(black(frameOpacity), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(rect.adjusted(0.5, 0.5, -0.5, -0.5));
        painter.fillRect(rect.adjusted(1, 1, -1, -1), QColor::fromRgbF(1, 1, 1, selected ? 0.5f : 1.0f));
        drawSymbol(control, painter, rect.adjusted(2, 2, -2, -2));
    }
    painter.restore();
}

QIcon iconForControl(const QVCustomControlRepresentation &control)
{
    QIcon icon;
    for (const qreal ratio : { 1.0, 2.0 })
        icon.addPixmap(QPixmap::fromImage(renderedIcon(control, ratio)));
    return icon;
}
