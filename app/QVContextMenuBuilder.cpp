#include "QVContextMenuBuilder.h"

#include "QVCustomControlIcon.h"
#include "QVCustomControlManager.h"
#include "QVHotKey.h"
#include "QVKeyNames.h"
#include "QVMenuExtensions.h"
#include "QVModifierFlagBits.h"
#include "QVUserDefaults.h"

#include <QAction>
#include <QMenu>

namespace
{

const QString suppressSuffixesKey = QStringLiteral("Suppress Menu Item Suffixes");
const QString debugLogKey = QStringLiteral("QVDebugLog");

// Labels of keys that have no character of their own, as Qt names the key.
int qtKeyForSymbol(QChar symbol)
{
    switch (symbol.unicode()) {
    case 0x2190: return Qt::Key_Left;
    case 0x2192: return Qt::Key_Right;
    case 0x2191: return Qt::Key_Up;
    case 0x2193: return Qt::Key_Down;
    case 0x21E5:
    case u'\t': return Qt::Key_Tab;
    case 0x21B5:
    case u'\n': return Qt::Key_Return;
    case 0x2305: return Qt::Key_Enter;
    case 0x232B: return Qt::Key_Backspace;
    case 0x2326: return Qt::Key_Delete;
    case 0x2196: return Qt::Key_Home;
    case 0x2198: return Qt::Key_End;
    case 0x21DE: return Qt::Key_PageUp;
    case 0x21DF: return Qt::Key_PageDown;
    case u' ': return Qt::Key_Space;
    default: return 0;
    }
}

int qtModifiers(quint64 flags)
{
    int modifiers = 0;
    if (flags & QVModifierFlag::Shift)
        modifiers |= Qt::SHIFT;
    if (flags & QVModifierFlag::Control)
        modifiers |= Qt::CTRL;
    if (flags & QVModifierFlag::Option)
        modifiers |= Qt::ALT;
    if (flags & QVModifierFlag::Command)
        modifiers |= Qt::META;
    return modifiers;
}

} // namespace

QVContextMenuBuilder::QVContextMenuBuilder(
    const QVUserDefaults &defaults, const QVCustomControlManager &manager, Targets targets)
    : m_defaults(defaults)
    , m_manager(manager)
    , m_targets(std::move(targets))
{
}

void QVContextMenuBuilder::populateContextMenu(QMenu &menu, bool alternate) const
{
    addLeadingMetaItems(menu);
    addCustomControlItems(menu);
    addTrailingMetaItems(menu, alternate);
}

void QVContextMenuBuilder::addLeadingMetaItems(QMenu &menu) const
{
    addItem(menu, tr("About Corvane"), m_targets.showAbout);
    if (m_targets.checkForUpdates) // a build without update checks has no such item
        addItem(menu, tr("Check for Updates"), m_targets.checkForUpdates);
    addItem(menu, tr("Help"), m_targets.showHelp);
    menu.addSeparator();
}

void QVContextMenuBuilder::addCustomControlItems(QMenu &menu) const
{
    const bool withSuffixes = !m_defaults.boolForKey(suppressSuffixesKey);
    const QString separator = QStringLiteral(" %1 ").arg(QChar(0x2027)); // hyphenation point
    QStringList suffixes;
    for (const QVCustomControlRef &control : m_manager.controls()) {
        switch (control->action()) {
        case QVAction::Heading:
            addNonActionItemWithSmallTitle(
                menu, control->displayTitleWithSuffixes(nullptr).replace(u'&', QStringLiteral("&&")));
            break;
        case QVAction::None: menu.addSeparator(); break;
        default: {
            // A title's "&" is text, not a mnemonic mark.
            const QString title = control->displayTitleWithSuffixes(withSuffixes ? &suffixes : nullptr)
                                      .replace(u'&', QStringLiteral("&&"));
            QAction *item = menu.addAction(iconForControl(*control), title);
            item->setData(control->uniqueIdentifier());
            if (m_targets.performCustomControlActionForMenuItem)
                QObject::connect(item, &QAction::triggered, &menu,
                    [item, perform = m_targets.performCustomControlActionForMenuItem] { perform(item); });
            if (withSuffixes && !suffixes.isEmpty())
                setTitleSuffix(*item, QStringLiteral(" %1 %2").arg(QChar(0x2014), suffixes.join(separator)));
            if (const QVHotKeyRef hotKey = control->hotKey(); hotKey && hotKey->isRegistered()) {
                item->setShortcut(keyEquivalentForHotKey(*hotKey));
                // Shown, not listened for: the hot key itself is system-wide already.
                item->setShortcutContext(Qt::WidgetShortcut);
            }
        }
        }
    }
}

void QVContextMenuBuilder::addTrailingMetaItems(QMenu &menu, bool alternate) const
{
    addSeparatorIfNecessary(menu);
    if (alternate) {
        QAction *item = addItem(menu, tr("Enable Debug Logging"), m_targets.toggleDebugLogging);
        item->setCheckable(true);
        item->setChecked(m_defaults.boolForKey(debugLogKey));
    } else {
        addItem(menu, tr("Settings"), m_targets.showPreferences);
    }
    menu.addSeparator();
    addItem(menu, tr("Quit"), m_targets.terminate);
}

QAction *QVContextMenuBuilder::addItem(QMenu &menu, const QString &title, const std::function<void()> &target) const
{
    QAction *item = menu.addAction(title);
    if (target)
        QObject::connect(item, &QAction::triggered, &menu, [target] { target(); });
    return item;
}

QKeySequence QVContextMenuBuilder::keyEquivalentForHotKey(const QVHotKey &hotKey)
{
    QString label = QVStringForKeyCode(hotKey.keyCode(), true);
    if (label.isNull())
        label = QVStringByTrimmingModifierPrefix(hotKey.visualRepresentation()).toLower();
    if (label.size() != 1)
        return {};
    int key = qtKeyForSymbol(label.front());
    if (!key)
        key = int(QKeySequence::fromString(label.toUpper(), QKeySequence::PortableText)[0].key());
    return key ? QKeySequence(key | qtModifiers(hotKey.modifierFlags())) : QKeySequence();
}
