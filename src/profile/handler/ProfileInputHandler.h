#ifndef VORN_PROFILE_PROFILEINPUTHANDLER_H
#define VORN_PROFILE_PROFILEINPUTHANDLER_H

#include "Profile.h"
#include "vorn_profile_export.h"
#include <vorn/input/BasicInputHandler.h>

#include <QString>

#include <memory>

/// @file
/// The device manager that registers a profile.

/// A device manager that registers what a profile says, so that a product needs no code for its
/// keys and its key map can be changed without compiling.
///
/// It makes the calls that a product would make by hand, in the order of the profile, and is on
/// nobody's way afterwards: the path of a record is the library's own. For each device, the first
/// entry of the profile that matches its name and bus is used. Each of its handlers becomes one key
/// handler, if there are keys or chords, and one switch handler, if there are switches, registered
/// under all its identifiers. Without a matching entry a device is mute.
///
/// @code
/// const Vorn::ParsedProfile parsed = Vorn::loadProfile("/etc/player/panel.toml");
/// for (const Vorn::Diagnostic &diagnostic : parsed.diagnostics)
///     std::cerr << qPrintable(diagnostic.toString()) << std::endl;
/// if (Vorn::hasErrors(parsed.diagnostics))
///     return EXIT_FAILURE;
/// ProfileInputHandler devices(parsed.profile); // before the event loop runs
/// @endcode
///
/// **Reload**: setProfile() exchanges the profile while the product runs. Nodes stay open, devices
/// stay known, and no record is lost. Handlers whose part of the profile is the same stay as they
/// are; others are replaced. The replaced ones are kept, about 200 bytes for each key, until their
/// device goes. The selected identifier stays selected if the new profile mentions it; otherwise
/// the new profile's `initial` is selected. Positions of switches are reported again by handlers
/// that are new and have `positionsAtStart`.
///
/// **Keys that are down** at that moment would lose their release, because the library forgets
/// what is down whenever receivers change. By default the new profile therefore waits until all
/// keys of all devices are up: each press that was published is followed by its release, under the
/// old profile. See KeysDown.
///
/// **Ownership, thread**: as BasicInputHandler. The profile is copied. Call everything on the
/// object's thread; setProfile() may be called from slots connected to the event bus, and never
/// takes effect before it has returned. A slot that is told of a position while a profile is
/// registered must not run an event loop, as the library demands of addDevice().
///
/// **Errors**: none of its own, and it throws nothing. A profile that was read has been checked; in
/// one made by hand, `LongPress::timeouts` must not be empty (see
/// BasicKeyInputHandler::enableLongPress()). A node that cannot be opened is logged by the library.
///
/// **Log**: nothing of its own; the library logs each registration's effects as ever.
class VORN_PROFILE_EXPORT ProfileInputHandler : public BasicInputHandler
{
    Q_OBJECT

public:
    /// What setProfile() does about keys that are down.
    enum class KeysDown {
        /// Wait until all are up. A key that never comes up, such as a stuck one, keeps the old
        /// profile: call again with Forget.
        AreWaitedFor,
        /// Do not wait: the releases of keys that are down, on any device, are not published, and
        /// whoever waits for one must be told otherwise.
        AreForgotten,
    };

    /// Selects the profile's `initial` identifier, and follows its rules from now on. Nothing is
    /// opened until the event loop runs.
    /// @param profile copied
    explicit ProfileInputHandler(const Vorn::Profile &profile);
    ~ProfileInputHandler() override;

    /// Registers what the profile has for the device. An override must call it.
    /// @param device path of the node
    /// @param name the kernel's name for the device
    void addDevice(const QString &device, const QString &name) override;
    /// Forgets the device. An override must call it.
    /// @param device path of the node
    void removeDevice(const QString &device) override;

    /// Makes an identifier the current one, as BasicInputHandler::selectHandler() does. Use this
    /// one, so that identifier() stays right.
    /// @param id may be one that the profile does not mention
    virtual void selectHandler(const QString &id);
    /// @return the identifier that was selected last
    QString identifier() const;

    /// @return the profile in use
    const Vorn::Profile &profile() const;

    /// Exchanges the profile, soon: once the event loop is reached and, with AreWaitedFor, all keys
    /// are up. Until then each further call replaces the profile that waits.
    ///
    /// To look which keys are down opens the devices' nodes once, which can take the kernel some
    /// ms each; while keys are down, it looks again every 50 ms.
    /// @param profile copied
    /// @param keysDown what to do about keys that are down
    void setProfile(const Vorn::Profile &profile, KeysDown keysDown = KeysDown::AreWaitedFor);
    /// @return whether a profile waits for its turn
    bool isReloadPending() const;

Q_SIGNALS:
    /// A profile that setProfile() was given is in use from now on.
    void profileChanged();

protected:
    /// Who follows the rules of the profile.
    enum class Rules {
        /// This class.
        AreFollowed,
        /// The derived class, which calls followRules() for each event on the bus.
        AreLeftToDerived,
    };
    /// As the public one, with a choice.
    /// @param profile copied
    /// @param rules who follows its rules
    ProfileInputHandler(const Vorn::Profile &profile, Rules rules);

    /// Selects the identifier of the first rule that an event fulfils.
    /// @param event one that was published
    void followRules(const InputEvent &event);

    /// Makes a handler of the keys of a device, without registrations.
    /// @param device path of the node
    /// @param name the kernel's name for the device
    /// @return owned by the library once it is registered
    virtual BasicKeyInputHandler *createKeyHandler(const QString &device, const QString &name);
    /// The same for its switches.
    /// @param device,name as above
    /// @return owned by the library once it is registered
    virtual BasicSwInputHandler *createSwitchHandler(const QString &device, const QString &name);

private:
    class Private;
    const std::unique_ptr<Private> d;
};

#endif
