#pragma once

#include "QVDisplay.h"
#include "QVWaylandConnection.h"
#include "QVWaylandOutput.h"

#include <QList>
#include <QPoint>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

struct wl_output;
struct zxdg_output_manager_v1;

// The compositor's outputs (wl_output with xdg-output's logical place), kept current
// as outputs come and go, and the display list made of them. The first output the
// compositor offered is the primary; when it goes, the next one is.
class QVWaylandOutputs final
{
public:
    explicit QVWaylandOutputs(QVWaylandConnection &connection);
    ~QVWaylandOutputs();

    // The logical places come from xdg-output; without it they are derived from
    // the mode, the scale and the transform.
    void setManager(zxdg_output_manager_v1 *manager);
    void addOutput(const QVWaylandConnection::Global &global);
    // False when the global was not an output.
    bool removeOutput(quint32 globalName);
    // Called whenever the list of complete outputs may have changed.
    void setChangeListener(std::function<void()> listener) { m_changed = std::move(listener); }

    // The outputs whose description is complete, primary first.
    QList<QVWaylandOutput> outputs() const;
    // The output of that name, or of that global, and how it is described.
    wl_output *outputNamed(const QString &name, QVWaylandOutput *description = nullptr) const;
    wl_output *outputOfGlobal(quint32 globalName) const;
    std::optional<QVWaylandOutput> describe(wl_output *output) const;
    // The same in window coordinates (y up, origin at the primary's lower left).
    QVDisplayList displays() const;
    // The smallest rectangle holding every output.
    QRect layoutBounds() const;

    QVPoint windowPointFromLayout(const QPointF &layout) const;
    QPoint primaryOrigin() const;
    // The layout pixel of a global point (y down from the primary's top left), kept
    // on an output: a point beside every output goes to the nearest pixel of one.
    QPoint layoutPixelFromGlobal(const QVPoint &global) const;
    // The nearest pixel that lies on an output.
    QPoint nearestPixelOnOutputs(const QPoint &layout) const;

    // What the compositor has told of one output so far (the listeners' state).
    struct Record;
    // A record's description is complete or changed as a whole.
    void completed(Record *record);

private:
    void listenToXdgOutput(Record *record);
    QList<const Record *> completeRecords() const;

    QVWaylandConnection &m_connection;
    zxdg_output_manager_v1 *m_manager = nullptr;
    std::vector<std::unique_ptr<Record>> m_records; // in the order offered
    std::function<void()> m_changed;
};
