#pragma once

#include <QWidget>

class QCheckBox;
class QLabel;
class QPushButton;

// The content of the "Updates" settings page. QVSparkleWrapper::bindPage gives
// its controls their actions and keeps them current.
class QVUpdatesPage final : public QWidget
{
    Q_OBJECT

public:
    explicit QVUpdatesPage(QWidget *parent = nullptr);

    QCheckBox *autoUpdateCheckingSwitch() const { return m_autoUpdateCheckingSwitch; }
    QLabel *statusTextField() const { return m_statusTextField; }
    QLabel *statusDateTextField() const { return m_statusDateTextField; }
    QPushButton *checkNowButton() const { return m_checkNowButton; }
    QPushButton *productPageButton() const { return m_productPageButton; }

    // An empty line takes no room, so the page gets shorter.
    void setStatusLines(const QString &statusLine, const QString &dateLine);

private:
    QCheckBox *m_autoUpdateCheckingSwitch;
    QLabel *m_statusTextField;
    QLabel *m_statusDateTextField;
    QPushButton *m_checkNowButton;
    QPushButton *m_productPageButton;
};
