#pragma once

#include "QVCustomControlCollectionViewDelegate.h"
#include "QVCustomControlSelection.h"

#include <QHash>
#include <QObject>
#include <QPointer>

#include <functional>

class QAbstractButton;
class QVCustomControlCollectionView;
class QVCustomControlConfigurationView;
class QVCustomControlManager;

// The editor of the list of custom controls: keeps one row per control in the
// list view, adds a control below the selection, deletes the selection, and puts
// the list in the order the rows are dragged into.
class QVCustomControlEditor final : public QObject,
                                    public QVCustomControlCollectionViewDelegate,
                                    public QVCustomControlSelection
{
    Q_OBJECT

public:
    QVCustomControlEditor(QVCustomControlManager &manager, QVCustomControlCollectionView &collectionView,
        std::function<void()> beep, QObject *parent = nullptr);
    ~QVCustomControlEditor() override;

    // Enabled only while a row is selected.
    void setDeleteButton(QAbstractButton *button);

    // A new Move right by 1 pixel below the lowest selected row, selected and shown.
    void addControl();
    // Rows made afresh: the list was read again from the file.
    void reloadRows();
    // The row of a control, made when first asked for.
    QVCustomControlConfigurationView *configurationView(const QVCustomControlRef &control);

    // QVCustomControlCollectionViewDelegate
    QList<QVCustomControlConfigurationView *> controlConfigurationViewsInCollectionView(
        QVCustomControlCollectionView &view) override;
    void selectionDidUpdateInCollectionView(QVCustomControlCollectionView &view) override;
    void deleteSelectedControls() override;
    void sortControlsByViewYCoordinatesInCollectionView(QVCustomControlCollectionView &view) override;
    void sortControlsByViewIndexInArray(const QList<QVCustomControlConfigurationView *> &rows) override;
    void controlDidChange() override;

    // QVCustomControlSelection
    bool isControlSelected(const QVCustomControlRepresentation &control) const override;
    QList<QVCustomControlRef> selectedControls() const override;

Q_SIGNALS:
    // Something in the list changed: a control added, deleted, moved or edited.
    void controlsEdited();

private:
    void removeRowsWithoutControl();

    QVCustomControlManager &m_manager;
    QVCustomControlCollectionView &m_collectionView;
    std::function<void()> m_beep;
    QPointer<QAbstractButton> m_deleteButton;
    QHash<const QVCustomControlRepresentation *, QVCustomControlConfigurationView *> m_rows;
};
