#include "QVAlphaValueAnimationWindow.h"

#include <QPointer>
#include <QTest>

namespace {

// Tunes the fade as overlay windows do.
class QuickWindow final : public QVAlphaValueAnimationWindow
{
public:
    double alphaValueAnimationStepInterval() const override { return 0.005; }
    double alphaValueAnimationQuantum() const override { return 0.25; }
    void didVanish() override { ++vanished; }
    int vanished = 0;
};

} // namespace

class TestAlphaValueAnimationWindow final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fadesInThenClosesWithoutBeingDestroyed()
    {
        QPointer<QuickWindow> window = new QuickWindow;
        QVERIFY(window->orderFrontAndFadeInToAlphaValue(1.0, true));
        QVERIFY(window->isVisible());
        QCOMPARE(window->windowOpacity(), 1.0);

        window->vanishAndClose();
        QVERIFY(window->testAttribute(Qt::WA_TransparentForMouseEvents));
        QTRY_VERIFY(!window->isVisible());
        QVERIFY(window);
        QCOMPARE(window->vanished, 1);
        QCOMPARE(window->windowOpacity(), 0.0);
        QVERIFY(!window->testAttribute(Qt::WA_TransparentForMouseEvents));

        window->orderFrontWithAlpha(1.0); // shown again after closing
        QVERIFY(window->isVisible());
        delete window;
    }
};

QTEST_MAIN(TestAlphaValueAnimationWindow)
#include "tst_alphavalueanimationwindow.moc"
