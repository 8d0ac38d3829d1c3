#ifndef VORN_TOOLS_LIVEVIEW_H
#define VORN_TOOLS_LIVEVIEW_H

#include "ExitStatus.h"
#include "Hints.h"
#include "MonitorCommand.h"
#include "Product.h"
#include "ProfileReader.h"
#include "Recorder.h"
#include "Session.h"
#include "SessionLog.h"
#include "SessionPrinter.h"

#include <QMap>
#include <QString>

#include <memory>

namespace Vorn::Tools {

/// What `monitor` shows: one session, across every version of the profile.
class LiveView
{
public:
    explicit LiveView(const MonitorOptions &options);

    /// @return the exit status; anything but Success means that there is nothing to run
    int prepare();
    /// Shows the session until the person, a signal or the duration ends it.
    int run();

private:
    bool selectFirst(const QString &identifier);
    void onEntry(const Workbench::SessionEntry &entry);
    void endWithTheRecording();
    static void end();
    void show(const Workbench::SessionEntry &entry);
    void showHint(qint64 time, const Workbench::Hints::Hint &hint, const QString &identifier) const;
    void onKey(char key);
    void onProfileChanged(const ParsedProfile &parsed);
    void onProfilePresence(const QString &problem);
    void useProfile(const Profile &profile);
    void showHelp();
    void complainOfNodes() const;

    const MonitorOptions m_options;
    const bool m_hasProfile;
    Profile m_profile;
    Workbench::SessionPrinter m_text;
    Workbench::Hints m_hints;
    std::unique_ptr<Workbench::Recorder> m_recorder;
    int m_status = Success;
    bool m_isReloading = false;
    Workbench::SessionLog m_log;
    std::unique_ptr<Workbench::Product> m_devices;
    QMap<QString, QString> m_devicesBefore; ///< the reload; paths and names
};

} // namespace Vorn::Tools

#endif
