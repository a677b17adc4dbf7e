#include "QVCustomControlRowOrder.h"

#include <QTest>

Q_DECLARE_METATYPE(QVCustomControlRowPlace)

// The order of the editor's rows on screen while rows are dragged: what decides
// which of two rows comes first.
class TestRowOrder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstOfTwo_data();
    void firstOfTwo();
    void sortsWholeList();
};

namespace
{

const QRectF list(0, 0, 400, 300);

QVCustomControlRowPlace place(qreal y, qreal height, qreal dragY = -1, quintptr identity = 1)
{
    QVCustomControlRowPlace row { QRectF(0, y, 400, height), QRectF(), identity };
    if (dragY >= 0)
        row.moveSortFrame = QRectF(0, dragY, 400, height);
    return row;
}

} // namespace

void TestRowOrder::firstOfTwo_data()
{
    QTest::addColumn<QVCustomControlRowPlace>("a");
    QTest::addColumn<QVCustomControlRowPlace>("b");
    QTest::addColumn<bool>("aFirst");
    QTest::newRow("higher centre first") << place(5, 50) << place(55, 50) << true;
    QTest::newRow("lower centre second") << place(55, 50) << place(5, 50) << false;
    // A tall row dragged to the top stands first although its centre is lower.
    QTest::newRow("touching the top beats a higher centre") << place(100, 200, 2) << place(5, 20) << true;
    QTest::newRow("touching the bottom comes last") << place(60, 240, 60) << place(200, 10) << false;
    QTest::newRow("both at the top: centres decide") << place(0, 100) << place(2, 10) << false;
    QTest::newRow("dragged place counts, not the frame") << place(200, 50, 20) << place(100, 50) << true;
    QTest::newRow("level dragged places: actual frames decide")
        << place(150, 50, 100, 1) << place(100, 50, 100, 2) << false;
    QTest::newRow("within a tenth: still level") << place(100.05, 50) << place(100, 50, -1, 2) << true;
    QTest::newRow("all level: identity decides") << place(100, 50, -1, 1) << place(100, 50, -1, 2) << true;
    QTest::newRow("all level, other identity") << place(100, 50, -1, 3) << place(100, 50, -1, 2) << false;
}

void TestRowOrder::firstOfTwo()
{
    QFETCH(QVCustomControlRowPlace, a);
    QFETCH(QVCustomControlRowPlace, b);
    QFETCH(bool, aFirst);
    QCOMPARE(QVSortByConfigurationViewYCoordinate(a, b, list), aFirst);
    // Never both first: the order is one.
    if (aFirst)
        QVERIFY(!QVSortByConfigurationViewYCoordinate(b, a, list));
}

void TestRowOrder::sortsWholeList()
{
    // Two rows dragged together between the third and the fourth.
    const QList<QVCustomControlRowPlace> places { place(5, 50, -1, 10), place(55, 50, 130, 11), place(105, 50, -1, 12),
        place(155, 50, -1, 13), place(205, 50, 130, 14) };
    QCOMPARE(QVSortedRowIndexes(places, list), QList({ 0, 2, 1, 4, 3 }));
}

QTEST_GUILESS_MAIN(TestRowOrder)
#include "tst_roworder.moc"
