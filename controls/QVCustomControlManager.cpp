#include "QVCustomControlManager.h"

#include "QVLog.h"
#include "QVUserDefaults.h"

#include <QJsonObject>

namespace {
QVCustomControlManager *sharedManager = nullptr;
const QString customControlsKey = QStringLiteral("Custom Controls");
} // namespace

QVCustomControlManager::QVCustomControlManager(QVUserDefaults *defaults, QVHotKeyDelegate *applicationDelegate,
                                               std::function<void()> beep)
    : m_defaults(defaults), m_applicationDelegate(applicationDelegate), m_beep(std::move(beep))
{
}

QVCustomControlManager *QVCustomControlManager::defaultManager()
{
    return sharedManager;
}

void QVCustomControlManager::setDefaultManager(QVCustomControlManager *manager)
{
    sharedManager = manager;
}

void QVCustomControlManager::loadControls()
{
    const QJsonValue stored = m_defaults->objectForKey(customControlsKey);
    if (!stored.isArray() && !stored.isUndefined() && !stored.isNull())
        QVLog(QStringLiteral("\"Custom Controls\" in %1 is not a list; no controls were loaded")
                  .arg(m_defaults->filePath()));
    const QJsonArray elements = stored.toArray();
    for (const QJsonValue &element : elements) {
        if (!element.isObject()) {
            QVLog(QStringLiteral("an entry of \"Custom Controls\" is not a dictionary and was skipped"));
            continue;
        }
        const QJsonObject dictionary = element.toObject();
        QString reason;
        const QVCustomControlRef control = QVCustomControlRepresentation::controlWithDictionaryRepresentation(
            dictionary, m_applicationDelegate, &reason);
        m_controls.append(control);
        if (!reason.isNull())
            QVLog(QStringLiteral("hot key %1 of \"%2\" cannot be registered and was dropped: %3")
                      .arg(dictionary.value(QStringLiteral("Hot Key"))
                               .toObject()
                               .value(QStringLiteral("Visual Representation"))
                               .toString(),
                           control->displayTitleWithSuffixes(nullptr), reason));
    }
}

void QVCustomControlManager::save()
{
    m_defaults->setObject(controlDictionaryRepresentations(), customControlsKey);
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

QVCustomControlRef QVCustomControlManager::addControlWithDictionaryRepresentation(const QJsonObject &dictionary,
                                                                                bool belowCurrentSelection)
{
    const QVCustomControlRef control =
        QVCustomControlRepresentation::controlWithDictionaryRepresentation(dictionary, m_applicationDelegate);
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
    const QList<QVCustomControlRef> selected = m_selection ? m_selection->selectedControls()
                                                           : QList<QVCustomControlRef>();
    if (selected.isEmpty()) {
        if (m_beep)
            m_beep();
        return;
    }
    for (const QVCustomControlRef &control : selected)
        m_controls.removeOne(control);
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
