#pragma once

#include <QWidget>

class QLabel;
class QScrollArea;

// The "Actions" page of the settings: the scrolled list of custom controls,
// reaching down to the window's bottom edge. The editor fills its content.
class QVActionsPreferencesPage final : public QWidget
{
    Q_OBJECT

public:
    explicit QVActionsPreferencesPage(QWidget *parent = nullptr);

    QScrollArea *collectionView() const { return m_collectionView; }
    QWidget *contentView() const { return m_contentView; }
    QLabel *placeholderView() const { return m_placeholderView; }

    QSize sizeHint() const override;

private:
    QScrollArea *m_collectionView;
    QWidget *m_contentView;
    QLabel *m_placeholderView;
};
