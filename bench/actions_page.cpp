// The Actions page with a long list: how long the page takes to open, and how long
// each frame takes while the list scrolls and while a row is dragged through it.
// Runs in-process on the X server of $DISPLAY; prints p50 and p99 beside the same
// figures for an empty list on the same server (the floor).
//
//   actions_page [CONTROLS=200]

#include "QVActionsPreferencesPage.h"
#include "QVCustomControlCollectionView.h"
#include "QVCustomControlConfigurationView.h"
#include "QVCustomControlEditor.h"
#include "QVCustomControlManager.h"
#include "QVFakeApplication.h"
#include "QVPreferencesWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace
{

constexpr int openings = 15;
constexpr int scrollStep = 24; // pixels per frame, a brisk wheel
constexpr int dragStep = 6;

double percentile(std::vector<double> samples, double p)
{
    if (samples.empty())
        return 0;
    std::sort(samples.begin(), samples.end());
    const size_t index = std::min(samples.size() - 1, size_t(p / 100.0 * double(samples.size())));
    return samples[index];
}

// A varied list, as a user with many controls has it.
QJsonArray storedControls(int count)
{
    QJsonArray controls;
    const qint64 actions[] = { 31, 31, 33, 21, 41, 101, 102, 51, -101, 31 };
    for (int index = 0; index < count; ++index) {
        const qint64 action = actions[index % 10];
        controls.append(QJsonObject { { QStringLiteral("Action"), action },
            { QStringLiteral("Move Direction"), 3 + index % 8 }, { QStringLiteral("Move Delta"), 1 + index % 5 },
            { QStringLiteral("Title"), QStringLiteral("Group %1").arg(index) },
            { QStringLiteral("Collapsed"), index % 7 == 0 } });
    }
    return controls;
}

struct Page {
    explicit Page(int controls)
        : manager(&application.defaults, &application, [] {})
    {
        application.defaults.setObject(storedControls(controls), QStringLiteral("Custom Controls"));
        manager.loadControls();
    }
    // From nothing to the page on screen, painted.
    double open()
    {
        QElapsedTimer timer;
        timer.start();
        auto *actions = new QVActionsPreferencesPage(manager, [] {});
        window = std::make_unique<QVPreferencesWindow>(application.defaults, new QWidget, actions, nullptr);
        actions->setUpdatePreferencesWindowFrame([this] { window->updatePreferencesWindowFrame(); });
        window->showPreferencesTab(QStringLiteral("Actions"));
        if (!QTest::qWaitForWindowExposed(window.get()))
            return -1;
        window->repaint();
        QCoreApplication::processEvents();
        page = actions;
        return timer.nsecsElapsed() / 1e6;
    }
    // One frame: the change, then everything it asked to repaint painted.
    template<typename Change> double frame(Change change)
    {
        QElapsedTimer timer;
        timer.start();
        change();
        QCoreApplication::sendPostedEvents();
        window->repaint();
        return timer.nsecsElapsed() / 1e6;
    }
    std::vector<double> scrollFrames()
    {
        QScrollBar *bar = page->findChild<QScrollArea *>()->verticalScrollBar();
        std::vector<double> frames;
        for (int value = 0; value <= bar->maximum(); value += scrollStep)
            frames.push_back(frame([bar, value] { bar->setValue(value); }));
        return frames;
    }
    std::vector<double> dragFrames()
    {
        QVCustomControlCollectionView *list = page->collectionView();
        std::vector<double> frames;
        const QList<QVCustomControlConfigurationView *> rows = list->configurationViews();
        if (rows.size() < 2)
            return frames;
        list->enclosingScrollArea()->verticalScrollBar()->setValue(0);
        QWindow *handle = window->windowHandle();
        const QPoint start = rows.first()->mapTo(window.get(), QPoint(rows.first()->width() / 2, 8));
        const int visibleHeight = list->visibleRect().height();
        QTest::mousePress(handle, Qt::LeftButton, {}, start);
        // Down through the visible part and on into auto-scrolling near the bottom edge.
        for (int offset = dragStep; offset < visibleHeight + 40; offset += dragStep) {
            // Near the edge the list scrolls by itself: let a tick of it pass, then time the frame.
            if (offset > visibleHeight - 30)
                QTest::qWait(20);
            frames.push_back(
                frame([&] { QTest::mouseMove(handle, start + QPoint(0, qMin(offset, visibleHeight - 30))); }));
        }
        QTest::mouseRelease(handle, Qt::LeftButton, {}, start + QPoint(0, visibleHeight - 30));
        return frames;
    }

    QVFakeApplication application;
    QVCustomControlManager manager;
    std::unique_ptr<QVPreferencesWindow> window;
    QVActionsPreferencesPage *page = nullptr;
};

void printRow(const char *name, const std::vector<double> &samples, const std::vector<double> &floor)
{
    std::printf("  %-34s %8.2f %8.2f %8.2f   floor %7.2f %7.2f   (%zu samples)\n", name, percentile(samples, 50),
        percentile(samples, 99), samples.empty() ? 0 : *std::max_element(samples.begin(), samples.end()),
        percentile(floor, 50), percentile(floor, 99), samples.size());
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const int count = argc > 1 ? std::atoi(argv[1]) : 200;

    std::vector<double> opened, openedEmpty, scrolled, scrolledEmpty, dragged, draggedEmpty;
    for (int round = 0; round < openings; ++round) {
        Page empty(2);
        openedEmpty.push_back(empty.open());
        Page full(count);
        opened.push_back(full.open());
        if (round == 0) {
            for (int repeat = 0; repeat < 50; ++repeat)
                scrolledEmpty.push_back(empty.frame([] {}));
            draggedEmpty = empty.dragFrames();
            scrolled = full.scrollFrames();
            dragged = full.dragFrames();
        }
    }
    std::printf("Actions page with %d controls on %s (milliseconds; floor: the same window with two controls)\n", count,
        qPrintable(QGuiApplication::platformName()));
    std::printf("  %-34s %8s %8s %8s\n", "figure", "p50", "p99", "max");
    printRow("open the page (goal < 200)", opened, openedEmpty);
    printRow("frame while scrolling (goal < 16)", scrolled, scrolledEmpty);
    printRow("frame while dragging (goal < 16)", dragged, draggedEmpty);
    std::printf("RESULT controls=%d open_p50_ms=%.1f open_p99_ms=%.1f scroll_p50_ms=%.2f scroll_p99_ms=%.2f "
                "drag_p50_ms=%.2f drag_p99_ms=%.2f\n",
        count, percentile(opened, 50), percentile(opened, 99), percentile(scrolled, 50), percentile(scrolled, 99),
        percentile(dragged, 50), percentile(dragged, 99));
    return 0;
}
