#include "QVActionCodes.h"
#include "QVCustomControlDirectionSelectorView.h"
#include "QVCustomControlDirectionSelectorViewDelegate.h"
#include "QVRoundedCustomControlDirectionSelectorView.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QApplication>
#include <QLineEdit>
#include <QRadioButton>
#include <QStyleFactory>
#include <QTest>
#include <QVBoxLayout>

using Selector = QVCustomControlDirectionSelectorView;
using Meaning = Selector::Meaning;
using Positions = QList<qint64>;
using namespace QVPosition;

namespace
{

// Reading order, the order of the radios' names in the tables below.
const Positions everyPlace { TopLeft, Top, TopRight, Left, Center, Right, BottomLeft, Bottom, BottomRight };

class Recorder final : public QVCustomControlDirectionSelectorViewDelegate
{
public:
    void directionSelectorViewDidChangeDirection(Selector &selector) override { told.append(selector.direction()); }

    Positions told;
};

Positions radiosOn(const Selector &selector)
{
    Positions on;
    for (qint64 position : everyPlace)
        if (selector.radioAt(position) && selector.radioAt(position)->isChecked())
            on.append(position);
    return on;
}

bool near(QRgb pixel, QRgb expected)
{
    return qAbs(qRed(pixel) - qRed(expected)) <= 2 && qAbs(qGreen(pixel) - qGreen(expected)) <= 2
        && qAbs(qBlue(pixel) - qBlue(expected)) <= 2 && qAbs(qAlpha(pixel) - qAlpha(expected)) <= 2;
}

} // namespace

class TestDirectionSelector final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion"))); }

    void radiosAndNamesFollowTheMeaning_data()
    {
        QTest::addColumn<Meaning>("meaning");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("radioNames"); // in reading order, empty where there is no radio
        QTest::newRow("move: no centre") << Meaning::MoveDirection << QStringLiteral("Direction")
                                         << QStringLiteral("Direction: Up & Left|Direction: Up|Direction: Up & Right|"
                                                           "Direction: Left||Direction: Right|Direction: Down & Left|"
                                                           "Direction: Down|Direction: Down & Right");
        QTest::newRow("edge or corner: all nine")
            << Meaning::EdgeOrCorner << QStringLiteral("Edge or corner")
            << QStringLiteral("Position: Top Left Corner|Position: Top Edge|Position: Top Right Corner|"
                              "Position: Left Edge|Position: Center|Position: Right Edge|"
                              "Position: Bottom Left Corner|Position: Bottom Edge|Position: Bottom Right Corner");
        QTest::newRow("display: the four sides only")
            << Meaning::DisplaySide << QStringLiteral("Side of the other display")
            << QStringLiteral("|Display: Above||Display: on the Left||Display: on the Right||Display: Below|");
    }

    void radiosAndNamesFollowTheMeaning()
    {
        QFETCH(Meaning, meaning);
        QFETCH(QString, name);
        QFETCH(QString, radioNames);
        Selector selector(meaning);
        QCOMPARE(selector.accessibleName(), name);
        QStringList found;
        for (qint64 position : everyPlace) {
            const QRadioButton *radio = selector.radioAt(position);
            found.append(radio ? radio->accessibleName() : QString());
            // Just the indicator: the name is for assistive tools.
            QVERIFY(!radio || radio->text().isEmpty());
        }
        QCOMPARE(found.join(QLatin1Char('|')), radioNames);
        QCOMPARE(selector.findChildren<QAbstractButton *>().size(), found.size() - found.count(QString()));
    }

    // Setting is not picking: the delegate hears only of the user's choices.
    void settingTheDirection_data()
    {
        QTest::addColumn<Meaning>("meaning");
        QTest::addColumn<qint64>("direction");
        QTest::addColumn<int>("radio"); // given along: 0 none, 1 the selector's own, 2 another selector's
        QTest::addColumn<qint64>("result");
        QTest::addColumn<bool>("radioOn"); // whether the result's radio is on (else none is)
        QTest::newRow("a radio") << Meaning::EdgeOrCorner << BottomLeft << 0 << BottomLeft << true;
        QTest::newRow("not a position code") << Meaning::EdgeOrCorner << qint64(2) << 0 << qint64(2) << false;
        QTest::newRow("a place without radio") << Meaning::MoveDirection << Center << 0 << Center << false;
        // The code passed along is ignored when a radio is given.
        QTest::newRow("its own radio decides") << Meaning::EdgeOrCorner << Top << 1 << BottomRight << true;
        QTest::newRow("another selector's radio") << Meaning::EdgeOrCorner << Top << 2 << qint64(-1) << false;
    }

    void settingTheDirection()
    {
        QFETCH(Meaning, meaning);
        QFETCH(qint64, direction);
        QFETCH(int, radio);
        QFETCH(qint64, result);
        QFETCH(bool, radioOn);
        Selector selector(meaning);
        Selector other(meaning);
        Recorder recorder;
        selector.setDelegate(&recorder);
        selector.setDirection(Top); // must go off again
        selector.setDirection(direction, radio ? (radio == 1 ? selector : other).bottomRightRadio() : nullptr);
        QCOMPARE(selector.direction(), result);
        QCOMPARE(radiosOn(selector), radioOn ? Positions { result } : Positions {});
        QVERIFY(recorder.told.isEmpty());
    }

    void theUserPicksARadio_data()
    {
        QTest::addColumn<Meaning>("meaning");
        QTest::addColumn<qint64>("before");
        QTest::addColumn<qint64>("picked");
        QTest::addColumn<QString>("how");
        QTest::addColumn<bool>("told");
        const QString click = QStringLiteral("click");
        const QString key = QStringLiteral("tab and space");
        const QString toggle = QStringLiteral("accessible toggle");
        QTest::newRow("click another") << Meaning::MoveDirection << Right << TopLeft << click << true;
        QTest::newRow("click the one on") << Meaning::MoveDirection << Right << Right << click << true;
        QTest::newRow("space on another") << Meaning::DisplaySide << Top << Bottom << key << true;
        QTest::newRow("toggle another") << Meaning::EdgeOrCorner << Top << Bottom << toggle << true;
        // Turning the radio that is on off is refused, as for any radio, and picks nothing.
        QTest::newRow("toggle the one on") << Meaning::EdgeOrCorner << Top << Top << toggle << false;
    }

    void theUserPicksARadio()
    {
        QFETCH(Meaning, meaning);
        QFETCH(qint64, before);
        QFETCH(qint64, picked);
        QFETCH(QString, how);
        QFETCH(bool, told);
        // The selector in an active window, after a field from which Tab leads into it.
        QWidget window;
        auto *layout = new QVBoxLayout(&window);
        auto *field = new QLineEdit(&window);
        auto *selector = new Selector(meaning, &window);
        layout->addWidget(field);
        layout->addWidget(selector);
        Recorder recorder;
        selector->setDelegate(&recorder);
        window.show();
        QApplication::setActiveWindow(&window);
        QVERIFY(QTest::qWaitForWindowActive(&window));
        selector->setDirection(before);
        QRadioButton *radio = selector->radioAt(picked);
        if (how == QLatin1String("click")) {
            QTest::mouseClick(radio, Qt::LeftButton);
        } else if (how == QLatin1String("tab and space")) {
            // Tab reaches the choice; then the radio wanted takes the focus.
            field->setFocus();
            QTest::keyClick(field, Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget()->parentWidget(), selector);
            QVERIFY(recorder.told.isEmpty());
            radio->setFocus(Qt::OtherFocusReason);
            QTest::keyClick(radio, Qt::Key_Space);
        } else {
            QAccessible::queryAccessibleInterface(radio)->actionInterface()->doAction(
                QAccessibleActionInterface::toggleAction());
        }
        QCOMPARE(recorder.told, told ? Positions { picked } : Positions {});
        QCOMPARE(selector->direction(), picked);
        QCOMPARE(radiosOn(*selector), Positions { picked });
    }

    void theGridIsCompactAndCentred()
    {
        Selector selector(Meaning::EdgeOrCorner);
        const QSize hint = selector.sizeHint();
        for (const QSize size : { hint, QSize(100, 70) }) {
            selector.resize(size);
            selector.show();
            QRect grid;
            for (qint64 position : everyPlace)
                grid |= selector.radioAt(position)->geometry();
            QVERIFY(qAbs(grid.left() - (size.width() - 1 - grid.right())) <= 1);
            QVERIFY(qAbs(grid.top() - (size.height() - 1 - grid.bottom())) <= 1);
            QVERIFY(grid.left() >= 2 && grid.top() >= 2);
        }
    }

    void theBoxIsDrawnUnderTheGrid_data()
    {
        QTest::addColumn<bool>("rounded");
        QTest::addColumn<QRgb>("corner");
        QTest::addColumn<QRgb>("edge");
        const QRgb outline = qRgba(0, 0, 0, 51); // black at 0.2
        QTest::newRow("square") << false << outline << outline;
        // A rounded box is filled to the middle of its outline, then stroked: the edge pixel is the
        // outline over half the fill. The corner lies outside.
        QTest::newRow("rounded") << true << qRgba(0, 0, 0, 0) << qRgba(153, 153, 153, 133);
    }

    void theBoxIsDrawnUnderTheGrid()
    {
        QFETCH(bool, rounded);
        QFETCH(QRgb, corner);
        QFETCH(QRgb, edge);
        const QRgb fill = qRgba(250, 250, 250, 204); // white 0.98 at 0.8
        QVRoundedCustomControlDirectionSelectorView roundedSelector(Meaning::MoveDirection);
        Selector squareSelector(Meaning::MoveDirection);
        Selector &selector = rounded ? roundedSelector : squareSelector;
        selector.resize(60, 40);
        QImage box(selector.size(), QImage::Format_ARGB32);
        box.fill(Qt::transparent);
        selector.render(&box, QPoint(), QRegion(), QWidget::RenderFlags()); // without the radios
        for (const QPoint point : { QPoint(0, 0), QPoint(59, 0), QPoint(0, 39), QPoint(59, 39) })
            QVERIFY2(near(box.pixel(point), corner), qPrintable(QString::number(box.pixel(point), 16)));
        for (const QPoint point : { QPoint(30, 0), QPoint(59, 20), QPoint(30, 39), QPoint(0, 20) })
            QVERIFY2(near(box.pixel(point), edge), qPrintable(QString::number(box.pixel(point), 16)));
        for (const QPoint point : { QPoint(30, 1), QPoint(1, 20), QPoint(30, 20), QPoint(58, 20), QPoint(30, 38) })
            QVERIFY2(near(box.pixel(point), fill), qPrintable(QString::number(box.pixel(point), 16)));
    }
};

QTEST_MAIN(TestDirectionSelector)
#include "tst_directionselector.moc"
