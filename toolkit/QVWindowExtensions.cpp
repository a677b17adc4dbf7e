#include "QVWindowExtensions.h"

#include <QLabel>
#include <QLayout>
#include <QPropertyAnimation>
#include <QWidget>

namespace
{

constexpr int heightAnimationMilliseconds = 200;

QString heightAnimationName()
{
    return QStringLiteral("QVWindowHeightAnimation");
}

bool countsAsSubview(const QWidget &view, const QWidget &child)
{
    if (child.isWindow() || !child.isVisibleTo(&view))
        return false;
    // An empty label takes room in no one's eyes.
    const auto *label = qobject_cast<const QLabel *>(&child);
    return !label || !label->text().isEmpty() || !label->pixmap().isNull();
}

// The bottom edge, in the window's coordinates, of the lowest child of the view that counts.
int lowestSubviewBottom(const QWidget &view, const QWidget &window)
{
    // The top edge of the view is the lowest point while no child lies below it.
    int lowest = view.mapTo(&window, QPoint(0, 0)).y();
    for (const QObject *object : view.children()) {
        const auto *child = qobject_cast<const QWidget *>(object);
        if (child && countsAsSubview(view, *child))
            lowest = qMax(lowest, child->mapTo(&window, QPoint(0, child->height())).y());
    }
    return lowest;
}

int preferredHeight(const QWidget &view)
{
    const int height = view.hasHeightForWidth() ? view.heightForWidth(view.width()) : view.sizeHint().height();
    return qMax(height, view.minimumSizeHint().height());
}

// The window's frame with its height fitted to the view, the top edge kept.
QRect fittedFrame(const QWidget &window, QWidget &view, int bottomMargin)
{
    // The view's place in the window counts: settle the window's own layout first.
    if (QLayout *layout = window.layout())
        layout->activate();
    int lowest;
    if (QLayout *layout = view.layout()) {
        // Children of a hidden or freshly changed page may not be laid out yet, and a layout
        // stretches them to whatever height the view has now: place them where they belong at
        // the preferred height, measure, then give them back the view's rect.
        layout->activate();
        layout->setGeometry(QRect(0, 0, view.width(), preferredHeight(view)));
        lowest = lowestSubviewBottom(view, window);
        layout->setGeometry(view.rect());
    } else {
        lowest = lowestSubviewBottom(view, window);
    }
    QRect frame = window.geometry();
    frame.setHeight(lowest + bottomMargin);
    return frame;
}

void stopHeightAnimation(QWidget &window)
{
    auto *running = window.findChild<QPropertyAnimation *>(heightAnimationName(), Qt::FindDirectChildrenOnly);
    if (!running)
        return;
    // Renamed first: a stopped animation is deleted only later.
    running->setObjectName(QString());
    running->stop();
}

} // namespace

QPropertyAnimation *adjustHeightToFitSubviewsOfView(QWidget &window, QWidget &view, int bottomMargin, bool animate)
{
    stopHeightAnimation(window);
    const QRect frame = fittedFrame(window, view, bottomMargin);
    if (frame == window.geometry())
        return nullptr;
    if (!animate || !window.isVisible()) {
        window.setGeometry(frame);
        return nullptr;
    }
    auto *animation = new QPropertyAnimation(&window, QByteArrayLiteral("geometry"), &window);
    animation->setObjectName(heightAnimationName());
    animation->setDuration(heightAnimationMilliseconds);
    animation->setEasingCurve(QEasingCurve::InOutQuad);
    animation->setStartValue(window.geometry());
    animation->setEndValue(frame);
    animation->start(QAbstractAnimation::DeleteWhenStopped);
    return animation;
}
