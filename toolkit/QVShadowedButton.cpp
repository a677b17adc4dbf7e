#include "QVShadowedButton.h"

#include "QVShadowEffect.h"

QVShadowedButton::QVShadowedButton(QWidget *parent)
    : QPushButton(parent)
{
}

QVShadowedButton::QVShadowedButton(const QString &text, QWidget *parent)
    : QPushButton(text, parent)
{
}

void QVShadowedButton::setTag(int tag)
{
    if (m_tag == tag)
        return;
    m_tag = tag;
    const QVShadowedTextField::Shadow *shadow = QVShadowedTextField::shadowForTag(tag);
    setGraphicsEffect(shadow ? new QVShadowEffect(shadow, false) : nullptr);
}
