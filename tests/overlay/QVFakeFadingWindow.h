#pragma once

#include "QVFadingWindow.h"
#include "QVFadingWindowDelegate.h"

#include <QByteArrayList>
#include <QList>

// A window that records what the fade does to it; it is its own delegate.
class QVFakeFadingWindow final : public QVFadingWindow, public QVFadingWindowDelegate
{
public:
    double alphaValue() const override { return alpha; }
    void setAlphaValue(double value) override { alphas.append(alpha = value); }
    bool isWindowVisible() const override { return visible; }
    void orderFront() override { visible = true, log.append("orderFront"); }
    void closeWindow() override { visible = false, log.append("close"); }
    bool ignoresMouseEvents() const override { return ignoresMouse; }
    void setIgnoresMouseEvents(bool ignores) override { ignoresMouse = ignores; }
    QRectF windowFrame() const override { return {100, 100, 200, 100}; }
    QPointF mouseLocation() const override { return mouse; }
    bool isApplicationActive() const override { return applicationActive; }
    void hideMouseUntilMoved() override { log.append("hideMouse"); }
    double alphaValueAnimationQuantum() const override { return quantum; }
    bool hasAlphaValueAnimationReferenceWindow() const override { return hasReference; }
    bool isAlphaValueAnimationReferenceWindowMainOrKey() const override { return referenceIsMainOrKey; }

    void willAppear() override { log.append("willAppear"); }
    void didAppear() override { log.append("didAppear"); }
    void willVanish() override { log.append("willVanish"); }
    void didVanish() override { log.append("didVanish"); }
    QVFadingWindowDelegate *fadingDelegate() const override { return const_cast<QVFakeFadingWindow *>(this); }
    void windowWillAppear(QVFadingWindow *window) override { told("windowWillAppear", window); }
    void windowDidAppear(QVFadingWindow *window) override { told("windowDidAppear", window); }
    void windowWillVanish(QVFadingWindow *window) override { told("windowWillVanish", window); }
    void windowDidVanish(QVFadingWindow *window) override { told("windowDidVanish", window); }

    double alpha = 0.0;
    bool visible = true;
    bool ignoresMouse = false;
    QPointF mouse{0, 0}; // outside the frame
    bool applicationActive = true;
    double quantum = 0.05;
    bool hasReference = false;
    bool referenceIsMainOrKey = false;
    QList<double> alphas; // every value set, in order
    QByteArrayList log;   // hooks, delegate calls and window operations

private:
    void told(const char *call, QVFadingWindow *window) { log.append(window == this ? call : "wrong window"); }
};
