#pragma once

class QVCustomControlDirectionSelectorView;

// Told when the user picks another radio of a direction selector.
class QVCustomControlDirectionSelectorViewDelegate
{
public:
    virtual ~QVCustomControlDirectionSelectorViewDelegate() = default;

    virtual void directionSelectorViewDidChangeDirection(QVCustomControlDirectionSelectorView &selector) = 0;
};
