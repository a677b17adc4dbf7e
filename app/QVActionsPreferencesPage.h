#pragma once

#include <QWidget>

// The "Actions" page of the settings: the scrolled list of custom controls,
// reaching down to the window's bottom edge. The editor fills its content.
class QVActionsPreferencesPage final : public QWidget
{
    Q_OBJECT

public:
    explicit QVActionsPreferencesPage(QWidget *parent = nullptr);

    QSize sizeHint() const override;
};
