#pragma once

#include <QList>

class QVCustomControlCollectionView;
class QVCustomControlConfigurationView;

// What the editor's list asks of the one who keeps the controls.
class QVCustomControlCollectionViewDelegate
{
public:
    virtual ~QVCustomControlCollectionViewDelegate() = default;

    // The rows in list order, each made when first asked for.
    virtual QList<QVCustomControlConfigurationView *> controlConfigurationViewsInCollectionView(
        QVCustomControlCollectionView &view)
        = 0;
    virtual void selectionDidUpdateInCollectionView(QVCustomControlCollectionView &view) = 0;
    virtual void deleteSelectedControls() = 0;
    // Puts the list in the order the rows now stand on screen.
    virtual void sortControlsByViewYCoordinatesInCollectionView(QVCustomControlCollectionView &view) = 0;
    // Puts the list in the order of the rows given.
    virtual void sortControlsByViewIndexInArray(const QList<QVCustomControlConfigurationView *> &rows) = 0;
    // A control was changed in its row: its action, a parameter, its hot key, its title.
    virtual void controlDidChange() = 0;
};
