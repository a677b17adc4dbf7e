#include "QVFadingWindow.h"

#include "QVUserDefaults.h"

namespace
{
constexpr double defaultVanishInterval = 5.0;
}

double QVFadingWindow::vanishInterval() const
{
    const QVUserDefaults *defaults = QVUserDefaults::standardUserDefaults();
    const qint64 seconds = defaults ? defaults->integerForKey(QStringLiteral("Window Vanish Interval")) : 0;
    return seconds < 1 ? defaultVanishInterval : static_cast<double>(seconds);
}
