#include "QVCustomControlManager.h"

#include "QVLog.h"
#include "QVUserDefaults.h"

#include <QJsonObject>

#include <algorithm>

namespace
{

const QString customControlsKey = QStringLiteral("Custom Controls");

// What a save would lose of the stored value: anything but dictionaries in a list.
QString problemOfStoredControls(const QJsonValue &stored)
{
    if (stored.isUndefined() || stored.isNull())
        return {};
    if (!stored.isArray())
        return QStringLiteral("\"Custom Controls\" is not a list; no controls were loaded");
    const QJsonArray elements = stored.toArray();
    const auto skipped = std::count_if(
        elements.begin(), elements.end(), [](const QJsonValue &element) { return !element.isObject(); });
    if (skipped == 0)
        return {};
    if (skipped == 1)
        return QStringLiteral("an entry of \"Custom Controls\" is not a dictionary and was skipped");
    return QStringLiteral("%1 entries of \"Custom Controls\" are not dictionaries and were skipped").arg(skipped);
}

void logInactiveHotKey(const QVCustomControlRepresentation &control, const QString &reason)
{
    QVLog(QStringLiteral("hot key %1 of \"%2\" is kept but inactive: %3")
              .arg(control.hotKey()->visualRepresentation(), control.displayTitleWithSuffixes(nullptr),
                  reason.isEmpty() ? QStringLiteral("refused") : reason));
}

} // namespace

QVCustomControlManager::QVCustomControlManager(
    QVUserDefaults *defaults, QVHotKeyDelegate *applicationDelegate, std::function<void()> beep)
    : m_defaults(defaults)
    , m_applicationDelegate(applicationDelegate)
    , m_beep(std::move(beep))
{
}

void QVCustomControlManager::loadControls()
{
    m_storedControls = m_defaults->objectForKey(customControlsKey);
    const QString problem = problemOfStoredControls(m_storedControls);
    if (!problem.isEmpty()) {
        QVLog(QStringLiteral("settings file %1: %2").arg(m_defaults->filePath(), problem));
        m_defaults->keepFileAsideBeforeNextWrite(problem);
    }
    const QJsonArray elements = m_storedControls.toArray();
    for (const QJsonValue &element : elements) {
        if (!element.isObject())
            continue;
        QString reason;
        const QVCustomControlRef control = QVCustomControlRepresentation::controlWithDictionaryRepresentation(
            element.toObject(), m_applicationDelegate, &reason);
        m_controls.append(control);
        if (control->hasInactiveHotKey())
            logInactiveHotKey(*control, reason);
    }
}

bool QVCustomControlManager::reloadControlsIfChanged()
{
    if (m_defaults->objectForKey(customControlsKey) == m_storedControls)
        return false;
    // Unregistered first, so that the new list can take the same keys again.
    unregisterHotKeys();
    m_controls.clear();
    loadControls();
    return true;
}

void QVCustomControlManager::registerHotKeys()
{
    // All let go first: a control earlier in the list wins keys it shares with a later one.
    unregisterHotKeys();
    for (const QVCustomControlRef &control : m_controls) {
        const QVHotKeyRef hotKey = control->hotKey();
        QString reason;
        if (hotKey && !hotKey->registerForDelegate(control.get(), false, &reason))
            logInactiveHotKey(*control, reason);
    }
}

void QVCustomControlManager::unregisterHotKeys()
{
    for (const QVCustomControlRef &control : m_controls)
        if (const QVHotKeyRef hotKey = control->hotKey())
            hotKey->unregister();
}

void QVCustomControlManager::save()
{
    const QJsonArray dictionaries = controlDictionaryRepresentations();
    if (m_defaults->setObject(dictionaries, customControlsKey))
        m_storedControls = dictionaries;
}

QJsonArray QVCustomControlManager::controlDictionaryRepresentations() const
{
    QJsonArray dictionaries;
    for (const QVCustomControlRef &control : m_controls)
        dictionaries.append(control->dictionaryRepresentation());
    return dictionaries;
}

QVCustomControlRef QVCustomControlManager::controlWithUniqueIdentifier(const QString &identifier) const
{
    for (const QVCustomControlRef &control : m_controls)
        if (control->uniqueIdentifier() == identifier)
            return control;
    return nullptr;
}

QVCustomControlRef QVCustomControlManager::addControlWithDictionaryRepresentation(
    const QJsonObject &dictionary, bool belowCurrentSelection)
{
    const QVCustomControlRef control
        = QVCustomControlRepresentation::controlWithDictionaryRepresentation(dictionary, m_applicationDelegate);
    if (!belowCurrentSelection || m_controls.size() < 2 || !m_selection) {
        m_controls.append(control);
        return control;
    }
    for (qsizetype index = m_controls.size(); index > 0; --index) {
        if (m_selection->isControlSelected(*m_controls[index - 1])) {
            m_controls.insert(index, control);
            return control;
        }
    }
    m_controls.append(control);
    return control;
}

void QVCustomControlManager::deleteSelectedControls()
{
    const QList<QVCustomControlRef> selected
        = m_selection ? m_selection->selectedControls() : QList<QVCustomControlRef>();
    if (selected.isEmpty()) {
        if (m_beep)
            m_beep();
        return;
    }
    for (const QVCustomControlRef &control : selected) {
        // Let go at once: the editor's field may still hold the hot key for a moment.
        if (const QVHotKeyRef hotKey = control->hotKey())
            hotKey->unregister();
        m_controls.removeOne(control);
    }
}

void QVCustomControlManager::sortControls(const std::function<qsizetype(const QVCustomControlRepresentation &)> &rank)
{
    std::stable_sort(m_controls.begin(), m_controls.end(),
        [&rank](const QVCustomControlRef &a, const QVCustomControlRef &b) { return rank(*a) < rank(*b); });
}

QVCustomControlRef QVCustomControlManager::controlForPerformName(const QString &name, QString *reason) const
{
    const auto named = [&name](const QVCustomControlRepresentation &control) {
        return control.displayTitleWithSuffixes(nullptr).compare(name, Qt::CaseInsensitive) == 0
            || (!control.title().isEmpty() && control.title().compare(name, Qt::CaseInsensitive) == 0);
    };
    // Controls that act come first: a heading may share a title with one.
    QVCustomControlRef found = controlWithUniqueIdentifier(name);
    for (const bool acting : { true, false })
        for (const QVCustomControlRef &control : m_controls)
            if (!found && (control->action() > 0) == acting && named(*control))
                found = control;
    if (!found) {
        *reason = QStringLiteral("no control is named \"%1\"").arg(name);
        return nullptr;
    }
    if (found->action() <= 0) {
        *reason = QStringLiteral("\"%1\" is a heading or does nothing: it cannot be performed").arg(name);
        return nullptr;
    }
    return found;
}

bool QVCustomControlManager::hasAccessibleControlWithStatusItem(bool withStatusItem) const
{
    for (const QVCustomControlRef &control : m_controls) {
        if (control->action() <= 0)
            continue;
        if (withStatusItem || (control->hotKey() && control->hotKey()->isRegistered()))
            return true;
    }
    return false;
}
