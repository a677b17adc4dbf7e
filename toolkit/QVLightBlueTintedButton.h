#pragma once

#include "QVTintedButton.h"

// A tinted button that is always light blue, whatever tint it is given.
class QVLightBlueTintedButton final : public QVTintedButton
{
    Q_OBJECT

public:
    using QVTintedButton::QVTintedButton;

    std::optional<QColor> tintColor() const override;
};
