#pragma once

#include <QDialog>

class QLabel;

// Corvane's About window: icon, name, version, what it is, copyright and licence.
class QVAboutDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit QVAboutDialog(QWidget *parent = nullptr);

    // Shows the dialog, or brings it to the front when it is already open.
    void showAbout();

private:
    QLabel *newTextLabel(const QString &objectName, const QString &text);
};
