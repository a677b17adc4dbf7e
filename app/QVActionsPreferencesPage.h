#pragma once

#include <QTimer>
#include <QWidget>

#include <functional>

class QAbstractButton;
class QScrollArea;
class QVCustomControlCollectionView;
class QVCustomControlEditor;
class QVCustomControlManager;
class QVShadowedTextField;
class QVTintedButton;

// The "Actions" page of the settings: the list of custom controls, growing with
// its rows up to a limit and then scrolling, with the add and delete buttons and
// a line for what the editor has to say below it. It reaches down to the
// window's bottom edge.
class QVActionsPreferencesPage final : public QWidget
{
    Q_OBJECT

public:
    QVActionsPreferencesPage(QVCustomControlManager &manager, std::function<void()> beep, QWidget *parent = nullptr);
    ~QVActionsPreferencesPage() override;

    QVCustomControlCollectionView *collectionView() const { return m_collectionView; }
    QVCustomControlEditor &editor() const { return *m_editor; }
    // Asked whenever the list's height changed, so the window can follow.
    void setUpdatePreferencesWindowFrame(std::function<void()> update);
    // Shows a message under the list for a while.
    void showMessage(const QString &message);

Q_SIGNALS:
    // The list was changed by the user.
    void controlsEdited();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *newButtonBar();
    void updateAddButtonTint();

    QWidget *m_container;
    QScrollArea *m_scrollArea;
    QVCustomControlCollectionView *m_collectionView;
    QVTintedButton *m_addButton = nullptr;
    QAbstractButton *m_deleteButton = nullptr;
    QVShadowedTextField *m_messageLine = nullptr;
    QVCustomControlEditor *m_editor;
    QTimer m_messageTimer;
};
