#pragma once

#include "QVCustomControlRepresentation.h"
#include "QVCustomControlSelection.h"

#include <QJsonArray>
#include <QList>

#include <functional>

class QVUserDefaults;

// The ordered list of every custom control: loaded from "Custom Controls" at
// launch and again when the file is edited from outside, saved back when the
// application quits.
class QVCustomControlManager final
{
public:
    QVCustomControlManager(QVUserDefaults *defaults, QVHotKeyDelegate *applicationDelegate, std::function<void()> beep);

    // Reads "Custom Controls"; every stored hot key is registered again, and one
    // that cannot be is kept inactive. When the value is not a list of
    // dictionaries, the file as it is is kept aside before it is next written.
    void loadControls();
    // Rebuilds the list when "Custom Controls" differs from what was last read or
    // written, the old hot keys let go first; true when it did.
    bool reloadControlsIfChanged();
    // Lets go of every hot key, then registers each again in list order.
    void registerHotKeys();
    void save();

    const QList<QVCustomControlRef> &controls() const { return m_controls; }
    QJsonArray controlDictionaryRepresentations() const;
    QVCustomControlRef controlWithUniqueIdentifier(const QString &identifier) const;
    // The control a name given from outside means: its identifier, else its title as
    // shown, else its own title, ignoring case; the first in the list wins. Null with a
    // reason when nothing that acts matches.
    QVCustomControlRef controlForPerformName(const QString &name, QString *reason) const;

    // Appends, or inserts below the lowest selected control when asked to.
    QVCustomControlRef addControlWithDictionaryRepresentation(
        const QJsonObject &dictionary, bool belowCurrentSelection);
    // Removes the selected controls (their hot keys go with them); beeps when none is.
    void deleteSelectedControls();
    // Puts the list in the order of the ranks given to its controls, equal ranks kept in their order.
    void sortControls(const std::function<qsizetype(const QVCustomControlRepresentation &)> &rank);

    void setSelection(const QVCustomControlSelection *selection) { m_selection = selection; }

    // Whether the user can reach some action: from the status menu, or else by hot key.
    bool hasAccessibleControlWithStatusItem(bool withStatusItem) const;

private:
    void unregisterHotKeys();

    QVUserDefaults *m_defaults;
    QVHotKeyDelegate *m_applicationDelegate;
    std::function<void()> m_beep;
    const QVCustomControlSelection *m_selection = nullptr;
    QList<QVCustomControlRef> m_controls;
    QJsonValue m_storedControls; // "Custom Controls" as last read or written
};
