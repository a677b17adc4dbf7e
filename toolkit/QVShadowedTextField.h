#pragma once

#include <QColor>
#include <QLabel>
#include <QPointF>

// A label drawn with an engraved shadow chosen by its tag: 1 white below, 2 black
// below, -2 white above, -1 black above; any other tag draws no shadow.
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
    void paintEvent(QPaintEvent *event) override;
    // The label's text and frame drawn onto painter, without any shadow.
    void drawCell(QPainter &painter);

private:
    int m_tag = 0;
};
