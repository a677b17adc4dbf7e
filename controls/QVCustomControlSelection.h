#pragma once

#include "QVCustomControlRepresentation.h"

// Which controls the editor has selected.
class QVCustomControlSelection
{
public:
    virtual ~QVCustomControlSelection() = default;

    virtual bool isControlSelected(const QVCustomControlRepresentation &control) const = 0;
    // The selected controls in the order the editor gives them.
    virtual QList<QVCustomControlRef> selectedControls() const = 0;
};
