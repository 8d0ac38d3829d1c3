#include "Profiler.h"

Profiler *Profiler::instance()
{
    static Profiler profiler;
    return &profiler;
}

void Profiler::createWatcher(const QString &watcher, const QString &event)
{
    Q_UNUSED(watcher)
    Q_UNUSED(event)
}

const QString &Profiler::UIResponseWatcher()
{
    static const QString name = QStringLiteral("UIResponse");
    return name;
}

const QString &Profiler::UIDrawEvent()
{
    static const QString name = QStringLiteral("UIDraw");
    return name;
}
