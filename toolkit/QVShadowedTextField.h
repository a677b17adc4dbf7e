#pragma once

#include <QColor>
#include <QLabel>
#include <QPointF>

// A label drawn with an engraved shadow chosen by its tag: 1 white below, 2 black
// below, -2 white above, -1 black above; any other tag draws no shadow. The shadow is a
// graphics effect (QVShadowEffect) that the tag installs on the label; like every Qt
// graphics effect it works on child widgets, not on windows.
class QVShadowedTextField : public QLabel
{
    Q_OBJECT

public:
    struct Shadow {
        QPointF offset; // y grows downwards: below is positive
        qreal blurRadius = 0;
        QColor color;
    };

    explicit QVShadowedTextField(QWidget *parent = nullptr);
    QVShadowedTextField(const QString &text, QWidget *parent = nullptr);

    int tag() const { return m_tag; }
    void setTag(int tag);

    // Shared, made once for the process.
    static const Shadow &bottomWhiteShadow();
    static const Shadow &bottomBlackShadow();
    static const Shadow &topWhiteShadow();
    static const Shadow &topBlackShadow();
    // Null for a tag without a shadow.
    static const Shadow *shadowForTag(int tag);

protected:
    // Draws the label a second time, without shadow, over the shadowed drawing.
    void setDrawsCellTwice(bool twice);

private:
    void updateEffect();

    int m_tag = 0;
    bool m_drawsCellTwice = false;
};
