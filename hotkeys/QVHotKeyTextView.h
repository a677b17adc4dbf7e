#pragma once

#include "QVHotKeyDelegate.h"

#include <QLineEdit>
#include <QPointer>
#include <QTimer>

struct QVEvent;
class QVDelayedPerformer;
class QVHotKeyClearButton;

// The field in which a hot key is recorded. A mouse click starts recording; the
// next key combination is the candidate, whatever it is (Tab, Return, arrows and
// Escape with modifiers included); Escape alone cancels. The delegate decides
// whether a candidate is taken. The text is never edited, copied or dropped into.
// Keyboard users reach the field with Tab and start recording with Space or Return.
class QVHotKeyTextView final : public QLineEdit
{
    Q_OBJECT

public:
    // A field left waiting for a combination gives up after this many seconds.
    static constexpr double recordingTimeOut = 30.0;

    explicit QVHotKeyTextView(QWidget *parent = nullptr);
    ~QVHotKeyTextView() override;

    QVHotKeyRef hotKey() const { return m_hotKey; }
    // Shows the hot key's text, or "No Shortcut"; the clear button follows.
    void setHotKey(const QVHotKeyRef &hotKey);
    QVHotKeyDelegate *hotKeyDelegate() const { return m_hotKeyDelegate; }
    void setHotKeyDelegate(QVHotKeyDelegate *delegate) { m_hotKeyDelegate = delegate; }
    QVHotKeyClearButton *deleteButton() const;
    void setDeleteButton(QVHotKeyClearButton *button);
    // Where the time-out is scheduled (tests pass a fake clock); null: a timer of the field's own.
    void setTimeOutPerformer(QVDelayedPerformer *performer) { m_timeOutPerformer = performer; }

    // Whether the field is waiting for a combination.
    bool isRecording() const { return m_recording; }
    // Whether the recording reads Qt's key events, the keyboard not being Corvane's.
    bool readsApplicationKeyEvents() const { return m_recording && m_readsApplicationKeys; }
    // Starts recording, as a click in the field does.
    void beginRecording();
    // A key press while recording: the recording rule.
    void keyDown(const QVEvent &event);
    // Clears the hot key (the clear button's action); the old one is let go at once.
    void deleteHotKey();
    // Stops recording of the field's own accord.
    void activelyResignFirstResponder();
    // The time-out: stops a recording that is still waiting.
    void timeOutFirstResponder();
    // Hides or shows the clear button along with the field.
    void setVisible(bool visible) override;

Q_SIGNALS:
    // A combination was turned down; the message says who holds it.
    void recordingRefused(const QString &message);
    void recordingChanged(bool recording);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    bool confirmRiskyHotKey(const QString &readableText);
    void refuse(const QVHotKey &candidate);
    void beep();
    void showText(const QString &text, bool placeholder);
    void updateDisplay();
    void updateDeleteButton();
    void scheduleTimeOut();
    void cancelTimeOut();
    QString identifier();

    QVHotKeyDelegate *m_hotKeyDelegate = nullptr;
    QPointer<QVHotKeyClearButton> m_deleteButton;
    QVHotKeyRef m_hotKey;
    bool m_recording = false;
    bool m_readsApplicationKeys = false; // the keyboard could not be taken
    bool m_askingUser = false; // the alert about a risky combination is up
    bool m_placeholderShown = false;
    int m_startKey = 0; // Space or Return pressed to start recording, until released
    QVDelayedPerformer *m_timeOutPerformer = nullptr;
    QTimer m_timeOutTimer;
};
