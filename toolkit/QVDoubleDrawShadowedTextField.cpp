#include "QVDoubleDrawShadowedTextField.h"

QVDoubleDrawShadowedTextField::QVDoubleDrawShadowedTextField(QWidget *parent)
    : QVShadowedTextField(parent)
{
    setDrawsCellTwice(true);
}

QVDoubleDrawShadowedTextField::QVDoubleDrawShadowedTextField(const QString &text, QWidget *parent)
    : QVShadowedTextField(text, parent)
{
    setDrawsCellTwice(true);
}
