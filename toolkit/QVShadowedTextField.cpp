#include "QVShadowedTextField.h"

#include "QVShadowEffect.h"

QVShadowedTextField::QVShadowedTextField(QWidget *parent)
    : QLabel(parent)
{
}

QVShadowedTextField::QVShadowedTextField(const QString &text, QWidget *parent)
    : QLabel(text, parent)
{
}

void QVShadowedTextField::setTag(int tag)
{
    if (m_tag == tag)
        return;
    m_tag = tag;
    updateEffect();
}

void QVShadowedTextField::setDrawsCellTwice(bool twice)
{
    m_drawsCellTwice = twice;
    updateEffect();
}

void QVShadowedTextField::updateEffect()
{
    const Shadow *shadow = shadowForTag(m_tag);
    // Without an effect the label paints exactly as any label.
    setGraphicsEffect(shadow || m_drawsCellTwice ? new QVShadowEffect(shadow, m_drawsCellTwice) : nullptr);
}

const QVShadowedTextField::Shadow &QVShadowedTextField::bottomWhiteShadow()
{
    static const Shadow shadow { QPointF(0, 1), 1.0, QColor::fromRgbF(1, 1, 1, 0.6f) };
    return shadow;
}

const QVShadowedTextField::Shadow &QVShadowedTextField::bottomBlackShadow()
{
    static const Shadow shadow { QPointF(0, 1), 1.0, QColor(Qt::black) };
    return shadow;
}

const QVShadowedTextField::Shadow &QVShadowedTextField::topWhiteShadow()
{
    static const Shadow shadow { QPointF(0, -1), 1.0, QColor::fromRgbF(1, 1, 1, 0.6f) };
    return shadow;
}

const QVShadowedTextField::Shadow &QVShadowedTextField::topBlackShadow()
{
    static const Shadow shadow { QPointF(0, -1), 1.0, QColor(Qt::black) };
    return shadow;
}

const QVShadowedTextField::Shadow *QVShadowedTextField::shadowForTag(int tag)
{
    switch (tag) {
    case 1: return &bottomWhiteShadow();
    case 2: return &bottomBlackShadow();
    case -2: return &topWhiteShadow();
    case -1: return &topBlackShadow();
    default: return nullptr;
    }
}
