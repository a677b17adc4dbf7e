#pragma once

#include "QVCustomControlDirectionSelectorView.h"

// A direction selector on a box with rounded corners.
class QVRoundedCustomControlDirectionSelectorView final : public QVCustomControlDirectionSelectorView
{
    Q_OBJECT

public:
    using QVCustomControlDirectionSelectorView::QVCustomControlDirectionSelectorView;

    qreal cornerRadius() const override { return 5; }
};
