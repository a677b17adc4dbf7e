#pragma once

#include "QVEvent.h"

#include <QApplication>

#include <memory>

class QVEventDispatcher;

// The application object. Hot key and key events from the window system come
// through sendEvent before anything else sees them.
class QVEventParserApplication final : public QApplication
{
    Q_OBJECT

public:
    QVEventParserApplication(int &argc, char **argv);
    ~QVEventParserApplication() override;

    void setEventDispatcher(std::unique_ptr<QVEventDispatcher> dispatcher);
    void sendEvent(const QVEventRef &event);

private:
    std::unique_ptr<QVEventDispatcher> m_dispatcher;
};
