// The Wayland overlay surface on headless sway 1.7: what it shows (grim screenshots),
// the keys it gets while shown, and what it teaches the pointer model.
#include "QVTestWaylandSession.h"
#include "QVWaylandLayerSurface.h"

#include <QImage>
#include <QPainter>
#include <QtTest>

namespace
{

using Outputs = QVTestSway::Outputs;

const QColor topLeft(255, 0, 0);
const QColor topRight(0, 255, 0);
const QColor bottomLeft(0, 0, 255);
const QColor bottomRight(255, 255, 255);

// Four coloured quarters: a picture turned, flipped or scaled wrongly shows it.
QImage quarters(const QSize &size)
{
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&picture);
    const int w = size.width() / 2;
    const int h = size.height() / 2;
    painter.fillRect(0, 0, w, h, topLeft);
    painter.fillRect(w, 0, size.width() - w, h, topRight);
    painter.fillRect(0, h, w, size.height() - h, bottomLeft);
    painter.fillRect(w, h, size.width() - w, size.height() - h, bottomRight);
    return picture;
}

// The colours at the middle of each quarter of the image.
QList<QColor> quarterColours(const QImage &image)
{
    const int w = image.width();
    const int h = image.height();
    return { image.pixelColor(w / 4, h / 4), image.pixelColor(3 * w / 4, h / 4), image.pixelColor(w / 4, 3 * h / 4),
        image.pixelColor(3 * w / 4, 3 * h / 4) };
}

QVDisplay displayNamed(const QVDisplayList &displays, const QString &name)
{
    for (const QVDisplay &display : displays) {
        if (display.name == name)
            return display;
    }
    return {};
}

} // namespace

Q_DECLARE_METATYPE(QVPoint)

class TestWaylandOverlay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void pictureCoversItsOutput_data();
    void pictureCoversItsOutput();
    void keysGoToTheOverlayWhileShown_data();
    void keysGoToTheOverlayWhileShown();
    void heldKeyRepeatsUntilReleased();
    void pointerModelLearnsFromTheOverlay();
    void overlayHidesForGoodWhenItsOutputGoes();
    void overlayOutlivingThePlatformStaysHidden();

private:
    bool setUp(Outputs outputs, const QStringList &commands)
    {
        return m_session.setUp(outputs, commands, true, &m_error);
    }
    std::unique_ptr<QVOverlaySurface> showOverlay(const QString &output, bool takesKeyboard);
    QImage screenshot(const QString &output);
    // Types the key with the probe's keyboard until the overlay reports it: the
    // keyboard moves to the overlay once the compositor has mapped it.
    bool typeUntilSeen(int key);

    QVTestWaylandSession m_session;
    QString m_error;
    QList<QVEventRef> m_events;
};

void TestWaylandOverlay::initTestCase()
{
    const QString missing = QVTestSway::missingProgram();
    if (!missing.isEmpty())
        QSKIP(qPrintable(QStringLiteral("%1 is not installed (scripts/install-deps.sh --tests)").arg(missing)));
}

void TestWaylandOverlay::cleanup()
{
    m_events.clear();
    if (QTest::currentTestFailed())
        m_session.reset();
}

std::unique_ptr<QVOverlaySurface> TestWaylandOverlay::showOverlay(const QString &output, bool takesKeyboard)
{
    QVWaylandPlatform &platform = m_session.platform();
    platform.setEventHandler([this](const QVEventRef &event) { m_events.append(event); });
    std::unique_ptr<QVOverlaySurface> overlay
        = platform.createOverlaySurface(displayNamed(platform.displays(), output), takesKeyboard);
    if (overlay) {
        overlay->setPicture(quarters(overlay->pixelSize()), QRegion());
        overlay->setVisible(true);
    }
    return overlay;
}

QImage TestWaylandOverlay::screenshot(const QString &output)
{
    return m_session.sway().screenshot(output);
}

bool TestWaylandOverlay::typeUntilSeen(int key)
{
    for (int attempt = 0; attempt < 50 && m_events.isEmpty(); ++attempt) {
        if (!m_session.probe().send(QStringLiteral("press %1").arg(key))
            || !m_session.probe().send(QStringLiteral("release %1").arg(key)))
            return false;
        QTest::qWait(20);
    }
    return !m_events.isEmpty();
}

void TestWaylandOverlay::pictureCoversItsOutput_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QSize>("pixelSize");
    QTest::addColumn<int>("scale");

    QTest::newRow("primary") << QStringLiteral("HEADLESS-1") << QSize(1792, 1080) << 1;
    // Drawn upright at scale 2; the compositor turns it onto the output.
    QTest::newRow("scaled and turned") << QStringLiteral("X11-1") << QSize(1440, 2560) << 2;
}

void TestWaylandOverlay::pictureCoversItsOutput()
{
    QFETCH(QString, output);
    QFETCH(QSize, pixelSize);
    QFETCH(int, scale);
    QVERIFY2(setUp(Outputs::HeadlessThenX11, QVTestWaylandSession::scaledAndTurned()), qPrintable(m_error));
    const QList<QColor> probeWindow(4, QColor(0x60, 0x60, 0x60));
    QTRY_COMPARE(quarterColours(screenshot(output)), probeWindow);

    std::unique_ptr<QVOverlaySurface> overlay = showOverlay(output, false);
    QVERIFY(overlay);
    QCOMPARE(overlay->pixelSize(), pixelSize);
    QCOMPARE(overlay->scale(), scale);
    // Above the probe's full-screen window, the right way up.
    const QList<QColor> shown { topLeft, topRight, bottomLeft, bottomRight };
    QTRY_COMPARE(quarterColours(screenshot(output)), shown);
    QVERIFY(overlay->isVisible());

    overlay->setVisible(false);
    QTRY_COMPARE(quarterColours(screenshot(output)), probeWindow);
    // Shown again, it shows the picture it last had.
    overlay->setVisible(true);
    QTRY_COMPARE(quarterColours(screenshot(output)), shown);
}

void TestWaylandOverlay::keysGoToTheOverlayWhileShown_data()
{
    QTest::addColumn<int>("modifier"); // an evdev key code held meanwhile, 0 for none
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("keyCode");
    QTest::addColumn<QString>("characters");
    QTest::addColumn<quint64>("modifierFlags");

    // Evdev codes: 30 a, 42 left Shift, 29 left Control, 1 Escape, 105 Left. Key codes are X's (+8).
    QTest::newRow("a") << 0 << 30 << 38 << QStringLiteral("a") << quint64(0);
    QTest::newRow("Shift a") << 42 << 30 << 38 << QStringLiteral("a") << quint64(0x20000);
    QTest::newRow("Control Escape") << 29 << 1 << 9 << QStringLiteral("\x1b") << quint64(0x40000);
    QTest::newRow("Left") << 0 << 105 << 113 << QString() << quint64(0);
}

void TestWaylandOverlay::keysGoToTheOverlayWhileShown()
{
    QFETCH(int, modifier);
    QFETCH(int, key);
    QFETCH(int, keyCode);
    QFETCH(QString, characters);
    QFETCH(quint64, modifierFlags);
    QVERIFY2(setUp(Outputs::Headless, { QStringLiteral("output HEADLESS-1 resolution 1280x720 scale 1") }),
        qPrintable(m_error));
    std::unique_ptr<QVOverlaySurface> overlay = showOverlay(QStringLiteral("HEADLESS-1"), true);
    QVERIFY(overlay);
    QVERIFY(m_session.platform().takeKeyboard());
    QVERIFY(typeUntilSeen(57)); // space, until the overlay has the keyboard
    m_events.clear();

    QVTestWaylandProbe &probe = m_session.probe();
    if (modifier) {
        QVERIFY(probe.send(QStringLiteral("press %1").arg(modifier)));
        QTRY_COMPARE(m_events.size(), 1);
        QVERIFY(m_events.first()->isModifierKey);
    }
    QVERIFY(probe.send(QStringLiteral("press %1").arg(key)));
    QVERIFY(probe.send(QStringLiteral("release %1").arg(key)));
    QTRY_COMPARE(m_events.size(), modifier ? 2 : 1);
    const QVEvent &event = *m_events.last();
    QCOMPARE(event.type, int(QVEvent::KeyDown));
    QCOMPARE(int(event.keyCode), keyCode);
    QCOMPARE(event.charactersIgnoringModifiers, characters);
    QCOMPARE(event.modifierFlags, modifierFlags);
    QVERIFY(!event.isModifierKey);
    if (modifier)
        QVERIFY(probe.send(QStringLiteral("release %1").arg(modifier)));

    // Hidden, it gives the keyboard back.
    overlay->setVisible(false);
    probe.skipAll();
    QVERIFY(probe.waitFor(QStringLiteral("focus HEADLESS-1")).hasMatch());
    m_events.clear();
    QVERIFY(probe.send(QStringLiteral("press %1").arg(key)));
    QVERIFY(probe.send(QStringLiteral("release %1").arg(key)));
    QTest::qWait(100);
    QVERIFY(m_events.isEmpty());
}

void TestWaylandOverlay::heldKeyRepeatsUntilReleased()
{
    QVERIFY2(setUp(Outputs::Headless,
                 { QStringLiteral("output HEADLESS-1 resolution 1280x720 scale 1"),
                     QStringLiteral("input type:keyboard repeat_delay 150"),
                     QStringLiteral("input type:keyboard repeat_rate 40") }),
        qPrintable(m_error));
    std::unique_ptr<QVOverlaySurface> overlay = showOverlay(QStringLiteral("HEADLESS-1"), true);
    QVERIFY(overlay);
    QVERIFY(typeUntilSeen(57));
    m_events.clear();

    QVTestWaylandProbe &probe = m_session.probe();
    QVERIFY(probe.send(QStringLiteral("press 105")));
    QTRY_VERIFY(m_events.size() >= 4);
    QVERIFY(probe.send(QStringLiteral("release 105")));
    QTest::qWait(100); // a repeat already on its way may still come
    const qsizetype afterRelease = m_events.size();
    QTest::qWait(300);
    QCOMPARE(m_events.size(), afterRelease);
    for (const QVEventRef &event : std::as_const(m_events))
        QCOMPARE(int(event->keyCode), 113);
    // Modifier keys do not repeat.
    m_events.clear();
    QVERIFY(probe.send(QStringLiteral("press 42")));
    QTest::qWait(400);
    QVERIFY(probe.send(QStringLiteral("release 42")));
    QCOMPARE(m_events.size(), 1);
}

void TestWaylandOverlay::pointerModelLearnsFromTheOverlay()
{
    QVERIFY2(setUp(Outputs::HeadlessThenX11, QVTestWaylandSession::scaledAndTurned()), qPrintable(m_error));
    QVWaylandPlatform &platform = m_session.platform();
    QVERIFY(m_session.park({ 100, 100 }, QStringLiteral("HEADLESS-1"), QPoint(100, 100)));
    // Another device moves the pointer: Corvane's model cannot know.
    QVERIFY(m_session.probe().send(QStringLiteral("move 1900 300")));
    QVERIFY(m_session.probe()
                .waitFor(QVTestWaylandSession::pointerAt(QStringLiteral("X11-1"), QPoint(108, 300)))
                .hasMatch());
    QCOMPARE(platform.mouseLocation(), (QVPoint { 100, 980 }));

    // The overlay appears under the pointer and learns where it is.
    std::unique_ptr<QVOverlaySurface> overlay = showOverlay(QStringLiteral("X11-1"), false);
    QVERIFY(overlay);
    QTRY_COMPARE(platform.mouseLocation(), (QVPoint { 1900, 780 }));

    // A click on the overlay is a click elsewhere.
    QVERIFY(platform.postMouseButton(true, false, true));
    QVERIFY(platform.postMouseButton(false, false, true));
    QTRY_COMPARE(m_events.size(), 1);
    QCOMPARE(m_events.first()->type, int(QVEvent::LeftMouseDown));
    QCOMPARE(m_events.first()->location, (QVPoint { 1900, 780 }));
}

void TestWaylandOverlay::overlayHidesForGoodWhenItsOutputGoes()
{
    QVERIFY2(setUp(Outputs::HeadlessThenX11, QVTestWaylandSession::scaledAndTurned()), qPrintable(m_error));
    std::unique_ptr<QVOverlaySurface> overlay = showOverlay(QStringLiteral("X11-1"), true);
    QVERIFY(overlay);
    QVERIFY(typeUntilSeen(57));

    QVERIFY2(m_session.sway().removeX11Output(&m_error), qPrintable(m_error));
    QTRY_VERIFY(!overlay->isVisible());
    overlay->setVisible(true);
    QVERIFY(!overlay->isVisible());
    overlay.reset();
    QVERIFY(!m_session.platform().takeKeyboard());
    QVERIFY(m_session.platform().postMouseMoved({ 10, 10 }));
    m_session.discard(); // the next test needs the output back
}

void TestWaylandOverlay::overlayOutlivingThePlatformStaysHidden()
{
    QVERIFY2(setUp(Outputs::Headless, { QStringLiteral("output HEADLESS-1 resolution 1280x720 scale 1") }),
        qPrintable(m_error));
    std::unique_ptr<QVOverlaySurface> overlay = showOverlay(QStringLiteral("HEADLESS-1"), true);
    QVERIFY(overlay);
    m_session.reset();
    QVERIFY(!overlay->isVisible());
    overlay->setVisible(true);
    overlay->setPicture(QImage(overlay->pixelSize(), QImage::Format_ARGB32_Premultiplied), QRegion());
    QVERIFY(!overlay->isVisible());
}

QTEST_GUILESS_MAIN(TestWaylandOverlay)
#include "tst_wayland_overlay.moc"
