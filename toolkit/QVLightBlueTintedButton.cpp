#include "QVLightBlueTintedButton.h"

std::optional<QColor> QVLightBlueTintedButton::tintColor() const
{
    return QColor::fromRgbF(0.85f, 0.92f, 1.0f, 1.0f);
}
