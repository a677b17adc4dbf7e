#pragma once

#include "QVCustomControlBorderView.h"

#include <QList>

class QAbstractButton;
class QRadioButton;
class QVCustomControlDirectionSelectorViewDelegate;

// A 3x3 grid of radios on a box, one per place of the grid (position codes of
// QVPosition). A selector carries only the radios it is made with: eight around the
// centre for a move, all nine for edges and corners, the four sides for displays.
// Exactly the radio of the current direction is on; a direction without a radio
// leaves every radio off and is still kept.
class QVCustomControlDirectionSelectorView : public QVCustomControlBorderView
{
    Q_OBJECT

public:
    // What the radios mean, for their accessible names.
    enum class Meaning { MoveDirection, EdgeOrCorner, DisplaySide };

    QVCustomControlDirectionSelectorView(Meaning meaning, const QList<qint64> &positions, QWidget *parent = nullptr);
    // The eight directions, the nine places, or the four sides, as the meaning asks.
    explicit QVCustomControlDirectionSelectorView(Meaning meaning, QWidget *parent = nullptr);

    qint64 direction() const { return m_direction; }
    void setDirection(qint64 direction) { setDirection(direction, nullptr); }
    // With a radio, the direction is that radio's code (-1 for a radio not of this
    // selector); without one, the radio is that of the code.
    void setDirection(qint64 direction, QAbstractButton *radio);
    // The action of every radio: takes the radio's direction and tells the delegate.
    void changeDirection(QAbstractButton *radio);

    QVCustomControlDirectionSelectorViewDelegate *delegate() const { return m_delegate; }
    void setDelegate(QVCustomControlDirectionSelectorViewDelegate *delegate) { m_delegate = delegate; }

    // Null where the selector has no radio.
    QRadioButton *topLeftRadio() const { return radioAt(10); }
    QRadioButton *topRadio() const { return radioAt(3); }
    QRadioButton *topRightRadio() const { return radioAt(4); }
    QRadioButton *leftRadio() const { return radioAt(9); }
    QRadioButton *centerRadio() const { return radioAt(1); }
    QRadioButton *rightRadio() const { return radioAt(5); }
    QRadioButton *bottomLeftRadio() const { return radioAt(8); }
    QRadioButton *bottomRadio() const { return radioAt(7); }
    QRadioButton *bottomRightRadio() const { return radioAt(6); }
    QRadioButton *radioAt(qint64 position) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    // One cell of the grid: the largest radio of the style.
    QSize cellSize() const;
    // Centres the grid on the box.
    void layOutRadios();

    Meaning m_meaning;
    qint64 m_direction = 0;
    QVCustomControlDirectionSelectorViewDelegate *m_delegate = nullptr;
    QList<QRadioButton *> m_radios; // top left ... bottom right, null where absent
    bool m_settingStates = false;
};
