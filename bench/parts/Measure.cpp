#include "Measure.h"

#include "InputNode.h"

#include <log4cplus/logger.h>

using Vorn::Sim::InputNode;

Logging::Logging(Log log)
{
    if (log == Log::DebugToNull)
        log4cplus::Logger::getRoot().setLogLevel(log4cplus::DEBUG_LOG_LEVEL);
}

Logging::~Logging()
{
    log4cplus::Logger::getRoot().setLogLevel(log4cplus::WARN_LOG_LEVEL);
}

QList<input_event> packet(int type, int code, int value)
{
    return {InputNode::record(type, code, value), InputNode::record(EV_SYN, SYN_REPORT, 0)};
}

QList<QList<input_event>> clickPackets(int code)
{
    return {packet(EV_KEY, code, 1), packet(EV_KEY, code, 0)};
}

QList<QList<input_event>> clickBatches(int code, int count)
{
    const QList<input_event> click = packet(EV_KEY, code, 1) + packet(EV_KEY, code, 0);
    QList<QList<input_event>> batches;
    int position = 0;
    do {
        QList<input_event> batch;
        batch.reserve(count);
        for (int i = 0; i < count; ++i) {
            batch.append(click[position]);
            position = (position + 1) % click.size();
        }
        batches.append(batch);
    } while (position != 0);
    return batches;
}
