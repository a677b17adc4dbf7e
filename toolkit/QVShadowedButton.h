#pragma once

#include <QPushButton>

// A push button drawn with the shadow its tag chooses (see QVShadowedTextField).
class QVShadowedButton final : public QPushButton
{
    Q_OBJECT

public:
    explicit QVShadowedButton(QWidget *parent = nullptr);
    QVShadowedButton(const QString &text, QWidget *parent = nullptr);

    int tag() const { return m_tag; }
    void setTag(int tag);

private:
    int m_tag = 0;
};
