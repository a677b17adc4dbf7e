#include "QVEventParserApplication.h"

#include "QVEventDispatcher.h"

QVEventParserApplication::QVEventParserApplication(int &argc, char **argv) : QApplication(argc, argv) {}

QVEventParserApplication::~QVEventParserApplication() = default;

void QVEventParserApplication::setEventDispatcher(std::unique_ptr<QVEventDispatcher> dispatcher)
{
    m_dispatcher = std::move(dispatcher);
}

void QVEventParserApplication::sendEvent(const QVEventRef &event)
{
    if (m_dispatcher)
        m_dispatcher->sendEvent(event);
}
