#include "QVCustomControlAccessibility.h"

#include "QVCustomControlCollectionView.h"
#include "QVCustomControlConfigurationView.h"

#include <QAccessibleWidget>

namespace
{

// A row: an item of the list, selected or not.
class QVAccessibleConfigurationView final : public QAccessibleWidget
{
public:
    explicit QVAccessibleConfigurationView(QVCustomControlConfigurationView *row)
        : QAccessibleWidget(row, QAccessible::ListItem)
    {
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = static_cast<const QVCustomControlConfigurationView *>(widget())->selected();
        return state;
    }
};

QAccessibleInterface *accessibleInterfaceFor(const QString &className, QObject *object)
{
    if (className == QLatin1String("QVCustomControlCollectionView"))
        return new QAccessibleWidget(static_cast<QWidget *>(object), QAccessible::List);
    if (className == QLatin1String("QVCustomControlConfigurationView"))
        return new QVAccessibleConfigurationView(static_cast<QVCustomControlConfigurationView *>(object));
    return nullptr;
}

} // namespace

void QVInstallCustomControlAccessibility()
{
    static const bool installed = [] {
        QAccessible::installFactory(accessibleInterfaceFor);
        return true;
    }();
    Q_UNUSED(installed);
}
