#include "QVCustomControlEditor.h"

#include "QVCustomControlCollectionView.h"
#include "QVCustomControlConfigurationView.h"
#include "QVCustomControlManager.h"

#include <QAbstractButton>

QVCustomControlEditor::QVCustomControlEditor(QVCustomControlManager &manager,
    QVCustomControlCollectionView &collectionView, std::function<void()> beep, QObject *parent)
    : QObject(parent)
    , m_manager(manager)
    , m_collectionView(collectionView)
    , m_beep(std::move(beep))
{
    m_manager.setSelection(this);
    m_collectionView.setDelegate(this);
}

QVCustomControlEditor::~QVCustomControlEditor()
{
    m_manager.setSelection(nullptr);
    m_collectionView.setDelegate(nullptr);
}

void QVCustomControlEditor::setDeleteButton(QAbstractButton *button)
{
    m_deleteButton = button;
    selectionDidUpdateInCollectionView(m_collectionView);
}

QVCustomControlConfigurationView *QVCustomControlEditor::configurationView(const QVCustomControlRef &control)
{
    QVCustomControlConfigurationView *&row = m_rows[control.get()];
    if (!row) {
        row = new QVCustomControlConfigurationView(control, &m_collectionView);
        row->resize(m_collectionView.width(), row->height());
        row->show();
    }
    return row;
}

QList<QVCustomControlConfigurationView *> QVCustomControlEditor::controlConfigurationViewsInCollectionView(
    QVCustomControlCollectionView &view)
{
    Q_UNUSED(view);
    QList<QVCustomControlConfigurationView *> rows;
    for (const QVCustomControlRef &control : m_manager.controls())
        rows.append(configurationView(control));
    return rows;
}

void QVCustomControlEditor::addControl()
{
    const QVCustomControlRef control = m_manager.addControlWithDictionaryRepresentation({}, true);
    QVCustomControlConfigurationView *row = configurationView(control);
    m_collectionView.tileConfigurationViews(true, true);
    m_collectionView.selectConfigurationView(row, Qt::NoModifier);
    m_collectionView.scrollRectToVisible(row->geometry().adjusted(0, -5, 0, 5));
    m_collectionView.setFocus(Qt::OtherFocusReason);
    Q_EMIT controlsEdited();
}

void QVCustomControlEditor::deleteSelectedControls()
{
    if (selectedControls().isEmpty()) {
        if (m_beep)
            m_beep();
        return;
    }
    m_manager.deleteSelectedControls();
    removeRowsWithoutControl();
    m_collectionView.tileConfigurationViews(true, true);
    Q_EMIT controlsEdited();
}

void QVCustomControlEditor::removeRowsWithoutControl()
{
    QSet<const QVCustomControlRepresentation *> kept;
    for (const QVCustomControlRef &control : m_manager.controls())
        kept.insert(control.get());
    for (auto it = m_rows.begin(); it != m_rows.end();) {
        if (kept.contains(it.key())) {
            ++it;
            continue;
        }
        // Later: the row may be the one whose event led here.
        it.value()->hide();
        it.value()->deleteLater();
        it = m_rows.erase(it);
    }
}

void QVCustomControlEditor::reloadRows()
{
    m_collectionView.endTrackingRow();
    for (QVCustomControlConfigurationView *row : std::as_const(m_rows)) {
        row->hide();
        row->deleteLater();
    }
    m_rows.clear();
    m_collectionView.tileConfigurationViews(true, true);
}

void QVCustomControlEditor::selectionDidUpdateInCollectionView(QVCustomControlCollectionView &view)
{
    Q_UNUSED(view);
    if (m_deleteButton)
        m_deleteButton->setEnabled(!selectedControls().isEmpty());
}

void QVCustomControlEditor::sortControlsByViewYCoordinatesInCollectionView(QVCustomControlCollectionView &view)
{
    sortControlsByViewIndexInArray(view.configurationViewsInScreenOrder());
}

void QVCustomControlEditor::sortControlsByViewIndexInArray(const QList<QVCustomControlConfigurationView *> &rows)
{
    m_manager.sortControls(
        [this, &rows](const QVCustomControlRepresentation &control) { return rows.indexOf(m_rows.value(&control)); });
}

void QVCustomControlEditor::controlDidChange()
{
    Q_EMIT controlsEdited();
}

bool QVCustomControlEditor::isControlSelected(const QVCustomControlRepresentation &control) const
{
    const QVCustomControlConfigurationView *row = m_rows.value(&control);
    return row && row->selected();
}

QList<QVCustomControlRef> QVCustomControlEditor::selectedControls() const
{
    QList<QVCustomControlRef> selected;
    for (const QVCustomControlRef &control : m_manager.controls())
        if (isControlSelected(*control))
            selected.append(control);
    return selected;
}
