#ifndef RECORDINGHANDLER_H
#define RECORDINGHANDLER_H

#include "LinuxInputListener.h"
#include "Records.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

/// A receiver that records each batch as the text from describe().
class RecordingHandler : public InputHandler
{
public:
    void setId(const QString &id) override { ids.push_back(id.toStdString()); }
    void invalidate() override { ++invalidations; }
    void processEvent(const QList<input_event> &events) override
    {
        batches.push_back(describe(events));
        if (onBatch)
            onBatch();
    }

    std::vector<std::string> take() { return std::exchange(batches, {}); }

    std::vector<std::string> ids;
    std::vector<std::string> batches;
    int invalidations = 0;
    std::function<void()> onBatch;
};

#endif
