// Narrowing a display down: the sections, the point the pointer goes to, the
// bars of the cross hairs, and which key asks for what.
#include "QVActionCodes.h"
#include "QVEvent.h"
#include "QVKeyNames.h"
#include "QVScreenOverlayCommand.h"
#include "QVScreenSection.h"

#include <QTest>

namespace {

constexpr qint64 top = QVPosition::Top;
constexpr qint64 right = QVPosition::Right;
constexpr qint64 bottom = QVPosition::Bottom;
constexpr qint64 left = QVPosition::Left;

QRectF toQRect(const QVRect &rect)
{
    return {rect.x, rect.y, rect.width, rect.height};
}

QVScreenOverlayCommand commandFor(quint16 keyCode, const QString &characters)
{
    QVEvent event;
    event.type = QVEvent::KeyDown;
    event.keyCode = keyCode;
    event.charactersIgnoringModifiers = characters;
    return QVScreenOverlayCommand::forKeyDown(event);
}

} // namespace

Q_DECLARE_METATYPE(QVScreenOverlayCommand::Kind)

class TestScreenSection final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sectionsAndFocusPoint_data()
    {
        QTest::addColumn<QRectF>("bounds");
        QTest::addColumn<QList<qint64>>("steps");
        QTest::addColumn<QRectF>("last");
        QTest::addColumn<QPointF>("focus");

        const QRectF laptop(0, 0, 1440, 900);
        QTest::newRow("no steps: the display's floored centre") << laptop << QList<qint64>{} << laptop << QPointF(720, 450);
        QTest::newRow("right, top, right, top") << laptop << QList<qint64>{right, top, right, top}
                                                << QRectF(1080, 675, 360, 225) << QPointF(1260, 787);
        QTest::newRow("bottom, left: y grows upwards") << laptop << QList<qint64>{bottom, left}
                                                       << QRectF(0, 0, 720, 450) << QPointF(360, 225);
        // Left of and below the primary display the coordinates are negative: floor, not truncate.
        QTest::newRow("negative origin, odd size") << QRectF(-1281, -721, 1281, 721) << QList<qint64>{}
                                                   << QRectF(-1281, -721, 1281, 721) << QPointF(-641, -361);
        QTest::newRow("eleven steps: narrower than a pixel")
            << QRectF(0, 0, 1024, 768) << QList<qint64>(11, left) << QRectF(0, 0, 0.5, 768) << QPointF(0, 384);
    }

    void sectionsAndFocusPoint()
    {
        QFETCH(QRectF, bounds);
        QFETCH(QList<qint64>, steps);
        QFETCH(QRectF, last);
        QFETCH(QPointF, focus);

        bool valid = false;
        const QList<QVRect> sections = QVScreenSection::sectionsForSteps(
            {bounds.x(), bounds.y(), bounds.width(), bounds.height()}, steps, &valid);
        QVERIFY(valid);
        QCOMPARE(sections.size(), steps.size() + 1);
        QCOMPARE(toQRect(sections.first()), bounds);
        QCOMPARE(toQRect(sections.last()), last);
        const QVPoint point = QVScreenSection::focusPoint(sections.last());
        QCOMPARE(QPointF(point.x, point.y), focus);
    }

    void unknownStepEndsTheList()
    {
        bool valid = true;
        const QList<QVRect> sections =
            QVScreenSection::sectionsForSteps({0, 0, 800, 600}, {right, QVPosition::TopRight, top}, &valid);
        QVERIFY(!valid);
        QCOMPARE(sections.size(), 2);
    }

    void barsAndRing()
    {
        // The halo's bars are three pixels thick around the one-pixel line.
        const QVRect section{100, 200, 301, 101};
        QCOMPARE(toQRect(QVScreenSection::verticalBar(section, 0.0)), QRectF(250, 200, 1, 101));
        QCOMPARE(toQRect(QVScreenSection::verticalBar(section, 1.0)), QRectF(249, 200, 3, 101));
        QCOMPARE(toQRect(QVScreenSection::horizontalBar(section, 1.0)), QRectF(100, 249, 301, 3));
        // A section narrower than a pixel still gets a whole pixel.
        const QVRect sliver{10, 0, 0.25, 0.5};
        QCOMPARE(toQRect(QVScreenSection::verticalBar(sliver, 0.0)), QRectF(10, 0, 1, 1));
        QCOMPARE(toQRect(QVScreenSection::horizontalBar(sliver, 0.0)), QRectF(10, 0, 1, 1));
        // The ring is 32 points across on the centre, even around a smaller section.
        QCOMPARE(toQRect(QVScreenSection::ringRect({0, 0, 100, 50})), QRectF(34, 9, 32, 32));
        QCOMPARE(toQRect(QVScreenSection::ringRect({0, 0, 8, 4})), QRectF(-12, -14, 32, 32));
    }

    void commands_data()
    {
        QTest::addColumn<quint16>("keyCode");
        QTest::addColumn<QString>("characters");
        QTest::addColumn<QVScreenOverlayCommand::Kind>("kind");
        QTest::addColumn<qint64>("position");

        using Command = QVScreenOverlayCommand;
        QTest::newRow("left arrow") << QVKeyCode::LeftArrow << QString() << Command::AddStep << left;
        QTest::newRow("right arrow") << QVKeyCode::RightArrow << QString() << Command::AddStep << right;
        QTest::newRow("up arrow") << QVKeyCode::UpArrow << QString() << Command::AddStep << top;
        QTest::newRow("down arrow") << QVKeyCode::DownArrow << QString() << Command::AddStep << bottom;
        QTest::newRow("h") << quint16(43) << QStringLiteral("h") << Command::AddStep << left;
        QTest::newRow("L with Shift") << quint16(46) << QStringLiteral("L") << Command::AddStep << right;
        QTest::newRow("k") << quint16(45) << QStringLiteral("k") << Command::AddStep << top;
        QTest::newRow("j") << quint16(44) << QStringLiteral("j") << Command::AddStep << bottom;
        QTest::newRow("Backspace") << QVKeyCode::Delete << QStringLiteral("\b") << Command::RemoveLastStep << qint64(0);
        QTest::newRow("Delete") << QVKeyCode::ForwardDelete << QStringLiteral("\x7f") << Command::RemoveLastStep << qint64(0);
        QTest::newRow("Return") << QVKeyCode::Return << QStringLiteral("\r") << Command::Perform << qint64(0);
        QTest::newRow("space") << QVKeyCode::Space << QStringLiteral(" ") << Command::Perform << qint64(0);
        QTest::newRow("Tab") << QVKeyCode::Tab << QStringLiteral("\t") << Command::NextDisplay << qint64(0);
        QTest::newRow("comma") << quint16(59) << QStringLiteral(",") << Command::OpenPreferences << qint64(0);
        QTest::newRow("Shift alone types nothing") << quint16(50) << QString() << Command::Ignore << qint64(0);
        QTest::newRow("Escape") << QVKeyCode::Escape << QStringLiteral("\x1b") << Command::Close << qint64(0);
        QTest::newRow("keypad Enter") << QVKeyCode::KeypadEnter << QStringLiteral("\r") << Command::Close << qint64(0);
        QTest::newRow("a letter") << quint16(38) << QStringLiteral("a") << Command::Close << qint64(0);
        QTest::newRow("a digit") << quint16(10) << QStringLiteral("1") << Command::Close << qint64(0);
    }

    void commands()
    {
        QFETCH(quint16, keyCode);
        QFETCH(QString, characters);
        QFETCH(QVScreenOverlayCommand::Kind, kind);
        QFETCH(qint64, position);

        const QVScreenOverlayCommand command = commandFor(keyCode, characters);
        QCOMPARE(command.kind, kind);
        QCOMPARE(command.position, position);
    }
};

QTEST_GUILESS_MAIN(TestScreenSection)
#include "tst_screensection.moc"
