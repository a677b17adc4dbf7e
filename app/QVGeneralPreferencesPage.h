#pragma once

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;

// The "General" page of the settings: how Corvane shows itself, start at login,
// and whether the settings open at launch. The page only reports the user's
// changes; the controller decides what they mean.
class QVGeneralPreferencesPage final : public QWidget
{
    Q_OBJECT

public:
    explicit QVGeneralPreferencesPage(QWidget *parent = nullptr);

    // Items carry the mode numbers 0, 1, 2 as their data.
    QComboBox *applicationModeSelector() const { return m_applicationModeSelector; }
    QCheckBox *loginItemSwitch() const { return m_loginItemSwitch; }
    QCheckBox *stealthModeSwitch() const { return m_stealthModeSwitch; }

    // Selects the item of that mode without reporting a change.
    void setApplicationMode(qint64 tag);
    void setExplanationVisible(bool visible);

Q_SIGNALS:
    // The user changed one of the three controls; the sender says which.
    void changeSetting(QObject *sender);

private:
    void applicationModeActivated(int index);

    QComboBox *m_applicationModeSelector;
    QCheckBox *m_loginItemSwitch;
    QCheckBox *m_stealthModeSwitch;
    QLabel *m_facelessAplicationModeExplanationView;
    int m_reportedModeIndex = -1; // the selection the controller last knew of
};
