// The Wayland back end against a virtual KWin 5.27, which offers no virtual pointer
// but its fake input, to programs a desktop entry names. The platform runs in this
// process; the probe client reports what reaches its window on every output.
#include "QVTestKWin.h"
#include "QVTestWaylandSession.h"

#include <QFile>
#include <QFileInfo>
#include <QtTest>

#include <memory>

Q_DECLARE_METATYPE(QVPoint)

namespace
{

using FakeInput = QVTestKWin::FakeInput;

// KWin's virtual outputs with --output-count 2: side by side, 1280x800 each.
const QString first = QStringLiteral("Virtual-0");
const QString second = QStringLiteral("Virtual-1");

QString pointerAt(const QString &output, const QPoint &pixel)
{
    return QVTestWaylandSession::pointerAt(output, pixel);
}

} // namespace

class TestKWinPlatform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void displays_data();
    void displays();
    void motionLandsOnItsPixel_data();
    void motionLandsOnItsPixel();
    void buttonsArrive_data();
    void buttonsArrive();
    void withoutTheDesktopEntryOpeningSaysWhatToDo();

private:
    // KWin with two outputs, the probe on both, and the platform opened from the environment.
    bool setUp(FakeInput fakeInput, bool withProbe, double scale = 1);
    bool park(const QVPoint &global, const QString &output, const QPoint &pixel);
    void reset();

    std::unique_ptr<QVTestKWin> m_kwin;
    std::unique_ptr<QVTestWaylandProbe> m_probe;
    std::unique_ptr<QVWaylandPlatform> m_platform;
    double m_scale = 1;
    QString m_error;
};

void TestKWinPlatform::initTestCase()
{
    const QString missing = QVTestKWin::missingProgram();
    if (!missing.isEmpty())
        QSKIP(qPrintable(QStringLiteral("%1 is not installed (scripts/install-deps.sh --tests)").arg(missing)));
}

void TestKWinPlatform::cleanup()
{
    if (QTest::currentTestFailed())
        reset();
}

void TestKWinPlatform::reset()
{
    m_platform.reset();
    m_probe.reset();
    m_kwin.reset();
}

bool TestKWinPlatform::setUp(FakeInput fakeInput, bool withProbe, double scale)
{
    if (m_platform && fakeInput == FakeInput::Granted && withProbe == (m_probe != nullptr) && scale == m_scale)
        return true;
    reset();
    m_scale = scale;
    m_kwin = QVTestKWin::start(2, fakeInput, scale, &m_error);
    if (!m_kwin)
        return false;
    if (withProbe) {
        m_probe = std::make_unique<QVTestWaylandProbe>(m_kwin->clientEnvironment());
        for (int i = 0; i < 2; ++i) {
            if (!m_probe->waitFor(QStringLiteral("configured .*"), 30000).hasMatch()) {
                m_error = QStringLiteral("the probe has no window on every output:\n%1").arg(m_kwin->log());
                return false;
            }
        }
    }
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_kwin->runtimeDirectory()));
    qputenv("WAYLAND_DISPLAY", m_kwin->socketName().toUtf8());
    m_platform = QVWaylandPlatform::open(&m_error);
    return m_platform != nullptr;
}

bool TestKWinPlatform::park(const QVPoint &global, const QString &output, const QPoint &pixel)
{
    // One pixel aside first: a motion to where the pointer already is reports nothing.
    m_probe->skipAll();
    return m_platform->postMouseMoved({ global.x + 1, global.y })
        && m_probe->waitFor(pointerAt(output, pixel + QPoint(1, 0))).hasMatch() && m_platform->postMouseMoved(global)
        && m_probe->waitFor(pointerAt(output, pixel)).hasMatch();
}

void TestKWinPlatform::displays_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<QString>("pixels");
    QTest::addColumn<int>("wlOutputScale");

    // The layout is in logical units whatever the scale; wl_output rounds a fraction up.
    QTest::newRow("unscaled") << 1.0 << QStringLiteral("1280x800") << 1;
    QTest::newRow("scale 2") << 2.0 << QStringLiteral("2560x1600") << 2;
    QTest::newRow("scale 1.5") << 1.5 << QStringLiteral("1920x1200") << 2;
}

void TestKWinPlatform::displays()
{
    QFETCH(double, scale);
    QFETCH(QString, pixels);
    QFETCH(int, wlOutputScale);
    QVERIFY2(setUp(FakeInput::Granted, true, scale), qPrintable(m_error));
    QStringList lines;
    for (const QVDisplay &display : m_platform->displays()) {
        const QVRect &f = display.frame;
        lines.append(QStringLiteral("%1 %2 %3 %4 %5").arg(display.name).arg(f.x).arg(f.y).arg(f.width).arg(f.height));
    }
    QCOMPARE(
        lines, (QStringList { QStringLiteral("Virtual-0 0 0 1280 800"), QStringLiteral("Virtual-1 1280 0 1280 800") }));
    for (const QVWaylandOutput &output : m_platform->outputs()) {
        QCOMPARE(QStringLiteral("%1x%2").arg(output.pixelSize.width()).arg(output.pixelSize.height()), pixels);
        QCOMPARE(output.scale, wlOutputScale);
    }
}

void TestKWinPlatform::motionLandsOnItsPixel_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<QVPoint>("global");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QPoint>("pixel");

    QTest::newRow("on the first") << 1.0 << QVPoint { 100, 200 } << first << QPoint(100, 200);
    QTest::newRow("fractions floored") << 1.0 << QVPoint { 1000.7, 20.2 } << first << QPoint(1000, 20);
    QTest::newRow("first's last pixel") << 1.0 << QVPoint { 1279, 799 } << first << QPoint(1279, 799);
    QTest::newRow("second's first column") << 1.0 << QVPoint { 1280, 0 } << second << QPoint(0, 0);
    QTest::newRow("second's last pixel") << 1.0 << QVPoint { 2559, 799 } << second << QPoint(1279, 799);
    QTest::newRow("far right") << 1.0 << QVPoint { 5000, 300 } << second << QPoint(1279, 300);
    QTest::newRow("above and left of all") << 1.0 << QVPoint { -50, -50 } << first << QPoint(0, 0);
    // Fake input takes logical units: device pixels would land at half the distance.
    QTest::newRow("scale 2, on the first") << 2.0 << QVPoint { 700, 500 } << first << QPoint(700, 500);
    QTest::newRow("scale 2, first's last pixel") << 2.0 << QVPoint { 1279, 799 } << first << QPoint(1279, 799);
    QTest::newRow("scale 2, on the second") << 2.0 << QVPoint { 1900, 10 } << second << QPoint(620, 10);
    QTest::newRow("scale 1.5, on the second") << 1.5 << QVPoint { 2000, 700 } << second << QPoint(720, 700);
    QTest::newRow("scale 1.5, second's first column") << 1.5 << QVPoint { 1280, 0 } << second << QPoint(0, 0);
}

void TestKWinPlatform::motionLandsOnItsPixel()
{
    QFETCH(double, scale);
    QFETCH(QVPoint, global);
    QFETCH(QString, output);
    QFETCH(QPoint, pixel);
    QVERIFY2(setUp(FakeInput::Granted, true, scale), qPrintable(m_error));
    QVERIFY(park({ 7, 9 }, first, QPoint(7, 9)));

    QVERIFY(m_platform->postMouseMoved(global));
    QVERIFY(m_probe->waitFor(pointerAt(output, pixel)).hasMatch());
    // The model holds the same pixel, in window coordinates (y up from the primary's bottom).
    const int outputX = output == second ? 1280 : 0;
    QCOMPARE(m_platform->mouseLocation(), (QVPoint { double(outputX + pixel.x()), double(800 - pixel.y()) }));
}

void TestKWinPlatform::buttonsArrive_data()
{
    QTest::addColumn<QVPoint>("global");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QPoint>("pixel");
    QTest::addColumn<bool>("rightButton");

    QTest::newRow("left on the first") << QVPoint { 300, 200 } << first << QPoint(300, 200) << false;
    QTest::newRow("right on the second") << QVPoint { 1600, 400 } << second << QPoint(320, 400) << true;
}

void TestKWinPlatform::buttonsArrive()
{
    QFETCH(QVPoint, global);
    QFETCH(QString, output);
    QFETCH(QPoint, pixel);
    QFETCH(bool, rightButton);
    QVERIFY2(setUp(FakeInput::Granted, true), qPrintable(m_error));
    QVERIFY(park(global, output, pixel));

    // KWin has no virtual keyboard: the private source cannot clear modifiers, and the click still goes.
    QVERIFY(m_platform->postMouseButton(true, rightButton, true));
    QVERIFY(m_platform->postMouseButton(false, rightButton, true));
    const QString button = rightButton ? QStringLiteral("273") : QStringLiteral("272");
    QVERIFY(m_probe->waitFor(QStringLiteral("button %1 %2 1 \\S+").arg(output, button)).hasMatch());
    QVERIFY(m_probe->waitFor(QStringLiteral("button %1 %2 0 \\S+").arg(output, button)).hasMatch());
}

void TestKWinPlatform::withoutTheDesktopEntryOpeningSaysWhatToDo()
{
    QVERIFY(!setUp(FakeInput::NotGranted, false));
    QVERIFY2(m_kwin, qPrintable(m_error));
    // What to install and which path KWin wants named.
    const QString executable = QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget();
    for (const QString &needed : { QStringLiteral("org.corvane.Corvane.desktop"), QStringLiteral("Exec=") + executable,
             QStringLiteral("X-KDE-Wayland-Interfaces=org_kde_kwin_fake_input") })
        QVERIFY2(m_error.contains(needed), qPrintable(m_error));
    reset();
}

QTEST_GUILESS_MAIN(TestKWinPlatform)
#include "tst_kwin_platform.moc"
