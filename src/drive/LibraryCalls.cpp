#include "LibraryCalls.h"

#include "ProgramObserver.h"

#include <cstdint>
#include <utility>

#include <dlfcn.h>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

/*
 *  The library's functions that the agent takes the place of, by their names for the linker: the
 *  program, which comes to them through the dynamic linker, comes here first.
 *
 *  Constructors return the object because that is how they are called on 32-bit ARM; elsewhere
 *  nobody looks.
 */
#define VORN_REPLACES(symbol) asm(symbol) __attribute__((visibility("default")))

#define VORN_MANAGER "_ZN17BasicInputHandler"
#define VORN_KEYS "_ZN20BasicKeyInputHandler"
#define VORN_SWITCHES "_ZN19BasicSwInputHandler"
#define VORN_MANAGER_MADE VORN_MANAGER "C1Ev"
#define VORN_MANAGER_BASE_MADE VORN_MANAGER "C2Ev"
#define VORN_ADD_KEYS VORN_MANAGER "13addKeyHandlerERK7QStringP20BasicKeyInputHandlerS2_"
#define VORN_ADD_SWITCHES VORN_MANAGER "16addSwitchHandlerERK7QStringP19BasicSwInputHandlerS2_"
#define VORN_REMOVE VORN_MANAGER "12removeDeviceERK7QString"
#define VORN_SELECT VORN_MANAGER "13selectHandlerERK7QString"
#define VORN_INVALIDATE VORN_KEYS "10invalidateEv"
#define VORN_KEY_RECORDS VORN_KEYS "12processEventERK5QListI11input_eventE"
#define VORN_SWITCH_RECORDS VORN_SWITCHES "12processEventERK5QListI11input_eventE"

using Records = QList<input_event>;

namespace Vorn::Drive::Replacement {

void *makeManager(BasicInputHandler *manager) VORN_REPLACES(VORN_MANAGER_MADE);
void *makeManagerBase(BasicInputHandler *manager) VORN_REPLACES(VORN_MANAGER_BASE_MADE);
void addKeys(BasicInputHandler *manager, const QString &path, BasicKeyInputHandler *handler,
             const QString &id) VORN_REPLACES(VORN_ADD_KEYS);
void addSwitches(BasicInputHandler *manager, const QString &path, BasicSwInputHandler *handler,
                 const QString &id) VORN_REPLACES(VORN_ADD_SWITCHES);
void removeDevice(BasicInputHandler *manager, const QString &path) VORN_REPLACES(VORN_REMOVE);
void select(BasicInputHandler *manager, const QString &id) VORN_REPLACES(VORN_SELECT);
void invalidate(BasicKeyInputHandler *handler) VORN_REPLACES(VORN_INVALIDATE);
void takeKeys(BasicKeyInputHandler *handler, const Records &records)
    VORN_REPLACES(VORN_KEY_RECORDS);
void takeSwitches(BasicSwInputHandler *handler, const Records &records)
    VORN_REPLACES(VORN_SWITCH_RECORDS);

} // namespace Vorn::Drive::Replacement

namespace {

/// The library's own function or table.
void *ofLibrary(const char *symbol)
{
    return dlsym(RTLD_NEXT, symbol);
}

template <typename Function, typename... Arguments>
auto callLibrary(Function *replacement, const char *symbol, Arguments &&...arguments)
{
    // Only for its type.
    Q_UNUSED(replacement)
    auto *const function = reinterpret_cast<Function *>(ofLibrary(symbol));
    if (!function)
        qFatal("vorn-input drive: the library has no %s", symbol);
    return function(std::forward<Arguments>(arguments)...);
}

} // namespace

namespace Vorn::Drive::Replacement {

void *makeManager(BasicInputHandler *manager)
{
    callLibrary(makeManager, VORN_MANAGER_MADE, manager);
    if (ProgramObserver *observer = ProgramObserver::instance())
        observer->onManagerMade(manager);
    else
        ProgramObserver::onForeignManagerMade();
    return manager;
}

void *makeManagerBase(BasicInputHandler *manager)
{
    callLibrary(makeManagerBase, VORN_MANAGER_BASE_MADE, manager);
    if (ProgramObserver *observer = ProgramObserver::instance())
        observer->onManagerMade(manager);
    else
        ProgramObserver::onForeignManagerMade();
    return manager;
}

void addKeys(BasicInputHandler *manager, const QString &path, BasicKeyInputHandler *handler,
             const QString &id)
{
    // The library takes a null handler, and only logs it.
    ProgramObserver *observer = ProgramObserver::instance();
    if (observer && handler)
        observer->onKeyHandlerAdded(manager, path, handler);
    callLibrary(addKeys, VORN_ADD_KEYS, manager, path, handler, id);
}

void addSwitches(BasicInputHandler *manager, const QString &path, BasicSwInputHandler *handler,
                 const QString &id)
{
    ProgramObserver *observer = ProgramObserver::instance();
    if (observer && handler)
        observer->onSwitchHandlerAdded(manager, path, handler);
    callLibrary(addSwitches, VORN_ADD_SWITCHES, manager, path, handler, id);
}

void removeDevice(BasicInputHandler *manager, const QString &path)
{
    const auto library = [&] { callLibrary(removeDevice, VORN_REMOVE, manager, path); };
    if (ProgramObserver *observer = ProgramObserver::instance())
        observer->onRemoved(path, library);
    else
        library();
}

void select(BasicInputHandler *manager, const QString &id)
{
    const auto library = [&] { callLibrary(select, VORN_SELECT, manager, id); };
    if (ProgramObserver *observer = ProgramObserver::instance())
        observer->onSelected(id, library);
    else
        library();
}

void invalidate(BasicKeyInputHandler *handler)
{
    const auto library = [handler] { callLibrary(invalidate, VORN_INVALIDATE, handler); };
    if (ProgramObserver *observer = ProgramObserver::instance())
        observer->onInvalidated(handler, library);
    else
        library();
}

void takeKeys(BasicKeyInputHandler *handler, const Records &records)
{
    const auto library = [handler](const Records &passed) {
        callLibrary(takeKeys, VORN_KEY_RECORDS, handler, passed);
    };
    if (ProgramObserver *observer = ProgramObserver::instance())
        observer->onKeyRecords(handler, records, library);
    else
        library(records);
}

void takeSwitches(BasicSwInputHandler *handler, const Records &records)
{
    const auto library = [handler](const Records &passed) {
        callLibrary(takeSwitches, VORN_SWITCH_RECORDS, handler, passed);
    };
    if (ProgramObserver *observer = ProgramObserver::instance())
        observer->onSwitchRecords(handler, records, library);
    else
        library(records);
}

} // namespace Vorn::Drive::Replacement

namespace Vorn::Drive {

namespace {

struct VirtualFunction
{
    const char *name;
    void *replacement;
};

void makeWritable(void *table, std::size_t size, int protection)
{
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto before = reinterpret_cast<std::uintptr_t>(table) & (page - 1);
    ::mprotect(static_cast<char *>(table) - before, before + size, protection);
}

/// @return whether the table calls the replacement now
bool replaceIn(const char *tableName, const VirtualFunction &function)
{
    void *const table = ofLibrary(tableName);
    const void *const original = ofLibrary(function.name);
    Dl_info info = {};
    ElfW(Sym) *symbol = nullptr;
    if (!table || !original
        || dladdr1(table, &info, reinterpret_cast<void **>(&symbol), RTLD_DL_SYMENT) == 0
        || info.dli_saddr != table || !symbol)
        return false;
    auto *const entries = static_cast<void **>(table);
    const std::size_t count = symbol->st_size / sizeof(void *);
    for (std::size_t i = 0; i < count; ++i) {
        if (entries[i] == function.replacement)
            return true;
        if (entries[i] != original)
            continue;
        makeWritable(table, symbol->st_size, PROT_READ | PROT_WRITE);
        entries[i] = function.replacement;
        makeWritable(table, symbol->st_size, PROT_READ);
        return true;
    }
    return false;
}

} // namespace

// The shipped library is built so that its tables of virtual functions hold its own functions,
// whoever else has one of that name.
QString watchLibrary()
{
    const bool isDone =
        replaceIn("_ZTV20BasicKeyInputHandler",
                  {VORN_INVALIDATE, reinterpret_cast<void *>(&Replacement::invalidate)})
        && replaceIn("_ZTV20BasicKeyInputHandler",
                     {VORN_KEY_RECORDS, reinterpret_cast<void *>(&Replacement::takeKeys)})
        && replaceIn("_ZTV19BasicSwInputHandler",
                     {VORN_SWITCH_RECORDS, reinterpret_cast<void *>(&Replacement::takeSwitches)});
    return isDone
        ? QString()
        : QStringLiteral("its " VORN_INPUT_LIBRARY " is not one that this vorn-input knows");
}

} // namespace Vorn::Drive
