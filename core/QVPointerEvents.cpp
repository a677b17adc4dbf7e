#include "QVPointerEvents.h"

#include "QVPointerEventService.h"
#include "QVScreenGeometry.h"

bool QVPostMouseMovedEvent(QVPointerEventService &service, bool usePrivateSource, const QVPoint &point,
                           const QVDisplayList &displays)
{
    // Motion carries no modifier state, so either source gives the same event.
    Q_UNUSED(usePrivateSource);
    return service.postMouseMoved(QVGlobalCGPointFromNSPoint(point, displays));
}

bool QVPostMouseButtonEvent(QVPointerEventService &service, bool down, bool rightButton, bool usePrivateSource)
{
    return service.postMouseButton(down, rightButton, usePrivateSource);
}
