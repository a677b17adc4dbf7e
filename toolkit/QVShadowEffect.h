#pragma once

#include "QVShadowedTextField.h"

#include <QGraphicsEffect>

// Draws its widget over a shadow of what the widget draws: the widget's silhouette in the
// shadow's colour, moved by its offset and blurred. Optionally the widget is drawn a second
// time on top. Kept inside the widget's bounds, like any of its painting.
class QVShadowEffect final : public QGraphicsEffect
{
    Q_OBJECT

public:
    // shadow may be null (no shadow); it must outlive the effect.
    QVShadowEffect(const QVShadowedTextField::Shadow *shadow, bool drawSourceTwice, QObject *parent = nullptr);

    // The silhouette of picture in the shadow's colour, blurred, padded by margin device
    // pixels on every side so the blur is not cut off.
    static QImage shadowImage(const QImage &picture, const QVShadowedTextField::Shadow &shadow, int margin);

protected:
    void draw(QPainter *painter) override;

private:
    const QVShadowedTextField::Shadow *m_shadow;
    bool m_drawSourceTwice;
};
