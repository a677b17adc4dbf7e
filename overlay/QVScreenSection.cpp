#include "QVScreenSection.h"

#include "QVActionCodes.h"

#include <algorithm>
#include <cmath>

namespace QVScreenSection
{

namespace
{
constexpr double ringDiameter = 32.0;
}

QList<QVRect> sectionsForSteps(const QVRect &bounds, const QList<qint64> &steps, bool *valid)
{
    QList<QVRect> sections { bounds };
    QVRect section = bounds;
    if (valid)
        *valid = true;
    for (const qint64 step : steps) {
        switch (step) {
        case QVPosition::Right:
            section.width *= 0.5;
            section.x += section.width;
            break;
        case QVPosition::Top:
            section.height *= 0.5;
            section.y += section.height;
            break;
        case QVPosition::Bottom: section.height *= 0.5; break;
        case QVPosition::Left: section.width *= 0.5; break;
        default:
            if (valid)
                *valid = false;
            return sections;
        }
        sections.append(section);
    }
    return sections;
}

QVPoint focusPoint(const QVRect &section)
{
    return { std::floor(section.x + 0.5 * section.width), std::floor(section.y + 0.5 * section.height) };
}

QVRect verticalBar(const QVRect &section, double emphasis)
{
    const double width = std::max(1.0, section.width);
    const double height = std::max(1.0, section.height);
    return { std::floor(section.x + 0.5 * width) - emphasis, section.y, 1.0 + 2.0 * emphasis, height };
}

QVRect horizontalBar(const QVRect &section, double emphasis)
{
    const double width = std::max(1.0, section.width);
    const double height = std::max(1.0, section.height);
    return { section.x, std::floor(section.y + 0.5 * height) - emphasis, width, 1.0 + 2.0 * emphasis };
}

QVRect ringRect(const QVRect &section)
{
    // Inset towards the centre; a section smaller than the ring makes it grow outwards.
    const double dx = (section.width - ringDiameter) * 0.5;
    const double dy = (section.height - ringDiameter) * 0.5;
    return { section.x + dx, section.y + dy, section.width - 2.0 * dx, section.height - 2.0 * dy };
}

} // namespace QVScreenSection
