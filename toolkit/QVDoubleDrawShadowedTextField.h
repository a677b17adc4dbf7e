#pragma once

#include "QVShadowedTextField.h"

// A shadowed label drawn a second time without shadow on top: the glyphs stay
// crisp and only the halo of the shadow shows around them.
class QVDoubleDrawShadowedTextField final : public QVShadowedTextField
{
    Q_OBJECT

public:
    explicit QVDoubleDrawShadowedTextField(QWidget *parent = nullptr);
    QVDoubleDrawShadowedTextField(const QString &text, QWidget *parent = nullptr);
};
