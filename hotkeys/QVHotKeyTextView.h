#pragma once

#include "QVHotKeyClearButton.h"
#include "QVHotKeyDelegate.h"

#include <QLineEdit>
#include <QPointer>

struct QVEvent;

// The field in which a hot key is recorded. A mouse click starts recording; the
// next key combination is the candidate, whatever it is (Tab, Return, arrows and
// Escape with modifiers included); Escape alone cancels. The delegate decides
// whether a candidate is taken. The text is never edited, copied or dropped into.
class QVHotKeyTextView final : public QLineEdit
{
    Q_OBJECT

public:
    explicit QVHotKeyTextView(QWidget *parent = nullptr);
    ~QVHotKeyTextView() override;

    QVHotKeyRef hotKey() const { return m_hotKey; }
    // Shows the hot key's text, or "No Shortcut"; the clear button follows.
    void setHotKey(const QVHotKeyRef &hotKey);
    QVHotKeyDelegate *hotKeyDelegate() const { return m_hotKeyDelegate; }
    void setHotKeyDelegate(QVHotKeyDelegate *delegate) { m_hotKeyDelegate = delegate; }
    QVHotKeyClearButton *deleteButton() const { return m_deleteButton; }
    void setDeleteButton(QVHotKeyClearButton *button);

    // Whether the field is waiting for a combination.
    bool isRecording() const { return m_recording; }
    // Starts recording, as a click in the field does.
    void beginRecording();
    // A key press while recording: the recording rule.
    void keyDown(const QVEvent &event);
    // Clears the hot key (the clear button's action); the old one is let go at once.
    void deleteHotKey();
    // Stops recording of the field's own accord.
    void activelyResignFirstResponder();

Q_SIGNALS:
    // A combination was turned down; the message says who holds it.
    void recordingRefused(const QString &message);
    void recordingChanged(bool recording);

protected:
    // ... event overrides as needed
    bool event(QEvent *event) override;

private:
    QVHotKeyDelegate *m_hotKeyDelegate = nullptr;
    QPointer<QVHotKeyClearButton> m_deleteButton;
    QVHotKeyRef m_hotKey;
    bool m_recording = false;
};
