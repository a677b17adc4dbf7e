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

int lowestSubviewBottom(const QWidget &view, const QWidget &reference)
{
    // The top edge of the view is the lowest point while no child lies below it.
    int lowest = view.mapTo(&reference, QPoint(0, 0)).y();
    for (const QObject *object : view.children()) {
        const auto *child = qobject_cast<const QWidget *>(object);
        if (!child || !countsAsSubview(view, *child))
            continue;
        const QRect frame(child->mapTo(&reference, QPoint(0, 0)), child->size());
        lowest = qMax(lowest, frame.bottom() + 1);
    }
    return lowest;
}

int preferredHeight(const QWidget &view)
{
    const int height = view.hasHeightForWidth() ? view.heightForWidth(view.width()) : view.sizeHint().height();
    return qMax(height, view.minimumSizeHint().height());
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

int heightDifferenceNecessaryToFitSubviews(const QWidget &view, int bottomMargin, const QWidget *comparedTo)
{
    const QWidget &reference = comparedTo ? *comparedTo : view;
    QLayout *layout = view.layout();
    if (!layout)
        return lowestSubviewBottom(view, reference) + bottomMargin - reference.height();

    // Children of a hidden or freshly changed page may not be laid out yet, and a
    // layout stretches them to whatever height the view has now: place them where
    // they belong at the preferred height, measure, then give them back the view's rect.
    layout->activate();
    layout->setGeometry(QRect(0, 0, view.width(), preferredHeight(view)));
    const int lowest = lowestSubviewBottom(view, reference);
    layout->setGeometry(view.rect());
    return lowest + bottomMargin - reference.height();
}

QRect frameByAdjustingHeightToFitSubviewsOfView(const QWidget &window, const QWidget &view, int bottomMargin)
{
    // The view's place in the window counts: settle the window's own layout first.
    if (QLayout *layout = window.layout())
        layout->activate();
    QRect frame = window.geometry();
    frame.setHeight(frame.height() + heightDifferenceNecessaryToFitSubviews(view, bottomMargin, &window));
    return frame;
}

QPropertyAnimation *adjustHeightToFitSubviewsOfView(QWidget &window, QWidget &view, int bottomMargin, bool animate)
{
    stopHeightAnimation(window);
    const QRect frame = frameByAdjustingHeightToFitSubviewsOfView(window, view, bottomMargin);
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
