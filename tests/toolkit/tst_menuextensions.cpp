#include "QVMenuExtensions.h"
#include "QVMenuSuffixStyle.h"

#include <QApplication>
#include <QMenu>
#include <QTest>

namespace
{

int luminance(QRgb pixel)
{
    return qGray(pixel);
}

// Columns of a menu item that hold dark (title) ink and that hold only grey (suffix) ink.
struct InkColumns {
    int lastDark = -1;
    int greyAfterDark = 0;
};

InkColumns inkColumns(const QImage &item)
{
    const int background = luminance(item.pixel(item.width() - 2, item.height() / 2));
    InkColumns columns;
    QList<int> darkest(item.width(), 255);
    for (int x = 0; x < item.width(); ++x)
        for (int y = 0; y < item.height(); ++y)
            darkest[x] = qMin(darkest[x], luminance(item.pixel(x, y)));
    for (int x = 0; x < item.width(); ++x)
        if (darkest[x] < 70)
            columns.lastDark = x;
    for (int x = columns.lastDark + 1; x < item.width(); ++x)
        columns.greyAfterDark += darkest[x] < background - 40;
    return columns;
}

} // namespace

class TestMenuExtensions final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void separatorOnlyWhereNecessary_data()
    {
        QTest::addColumn<QStringList>("items"); // "-" stands for a separator
        QTest::addColumn<bool>("added");
        QTest::newRow("empty menu") << QStringList() << false;
        QTest::newRow("ends in a separator") << QStringList { QStringLiteral("About"), QStringLiteral("-") } << false;
        QTest::newRow("ends in an item") << QStringList { QStringLiteral("-"), QStringLiteral("Help") } << true;
    }

    void separatorOnlyWhereNecessary()
    {
        QFETCH(QStringList, items);
        QFETCH(bool, added);
        QMenu menu;
        for (const QString &item : items)
            item == QStringLiteral("-") ? menu.addSeparator() : menu.addAction(item);
        QAction *separator = addSeparatorIfNecessary(menu);
        QCOMPARE(separator != nullptr, added);
        QCOMPARE(menu.actions().size(), items.size() + (added ? 1 : 0));
        if (added)
            QVERIFY(menu.actions().constLast() == separator && separator->isSeparator());
    }

    void smallTitleIsADisabledSmallerItem()
    {
        QMenu menu;
        QAction *item = addNonActionItemWithSmallTitle(menu, QStringLiteral("Keys"));
        QCOMPARE(item->text(), QStringLiteral("Keys"));
        QVERIFY(!item->isEnabled());
        QVERIFY(QFontInfo(item->font()).pixelSize() < QFontInfo(menu.font()).pixelSize());
    }

    void suffixIsReplacedAndTheTitleKept()
    {
        QAction action;
        setTitle(action, QStringLiteral("Move Right"), QStringLiteral(" — 1 px"));
        QCOMPARE(action.text(), QStringLiteral("Move Right — 1 px"));
        setTitleSuffix(action, QStringLiteral(" — 10 px ‧ Accelerate"));
        QCOMPARE(action.text(), QStringLiteral("Move Right — 10 px ‧ Accelerate"));
        QCOMPARE(titleWithoutSuffix(action), QStringLiteral("Move Right"));
        QCOMPARE(titleSuffix(action), QStringLiteral(" — 10 px ‧ Accelerate"));
        setTitleSuffix(action, QString());
        QCOMPARE(action.text(), QStringLiteral("Move Right"));
    }

    void textSetElsewhereDropsTheSuffix()
    {
        QAction action(QStringLiteral("Center"));
        setTitleSuffix(action, QStringLiteral(" — z"));
        QCOMPARE(titleWithoutSuffix(action), QStringLiteral("Center"));
        setTitle(action, QStringLiteral("Click"), QStringLiteral(" — x"));
        action.setText(QStringLiteral("Right Click"));
        QCOMPARE(titleSuffix(action), QString());
        setTitleSuffix(action, QStringLiteral(" — y"));
        QCOMPARE(action.text(), QStringLiteral("Right Click — y"));
    }

    // The title is drawn in the menu's text colour and the suffix after it in grey.
    void suffixIsDrawnGrey_data()
    {
        QTest::addColumn<bool>("styled");
        QTest::newRow("with the suffix style") << true;
        QTest::newRow("plain menu") << false;
    }

    void suffixIsDrawnGrey()
    {
        QFETCH(bool, styled);
        QMenu menu;
        if (styled)
            QVMenuSuffixStyle::install(menu);
        QAction *action = menu.addAction(QString());
        const QString suffix = QStringLiteral(" — 10 px ‧ Accelerate");
        setTitle(*action, QStringLiteral("MMMM"), suffix);
        menu.popup(QPoint(0, 0));
        QVERIFY(QTest::qWaitForWindowExposed(&menu));
        const QImage item = menu.grab(menu.actionGeometry(action)).toImage();
        menu.hide();

        const InkColumns columns = inkColumns(item);
        QVERIFY(columns.lastDark > 0);
        const int suffixWidth = QFontMetrics(menu.font()).horizontalAdvance(suffix);
        if (styled)
            QVERIFY2(columns.greyAfterDark > suffixWidth / 2, qPrintable(QString::number(columns.greyAfterDark)));
        else
            QVERIFY(columns.greyAfterDark < suffixWidth / 4);
    }
};

QTEST_MAIN(TestMenuExtensions)
#include "tst_menuextensions.moc"
