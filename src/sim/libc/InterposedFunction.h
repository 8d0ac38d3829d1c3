#ifndef VORN_SIM_INTERPOSEDFUNCTION_H
#define VORN_SIM_INTERPOSEDFUNCTION_H

// Files that replace functions include this header before any system header. They define the plain
// functions next to their large-file variants, so neither may be an alias of the other, nor an
// inline wrapper that checks sizes. Unless VORN_SIM_TIME64 is defined, their structures are those
// that 32-bit systems had first.
#undef _FILE_OFFSET_BITS
#undef _TIME_BITS
#undef _FORTIFY_SOURCE
#ifdef VORN_SIM_TIME64
#define _FILE_OFFSET_BITS 64
#define _TIME_BITS 64
#endif

#include <atomic>
#include <cstdlib>
#include <initializer_list>

#include <dlfcn.h>

/// Marks a function that replaces the C library's function of the same name.
#define VORN_SIM_INTERPOSED extern "C" __attribute__((visibility("default")))

namespace Vorn::Sim {

/// The function that a replacement hides: the C library's, or a sanitizer's.
///
/// Other libraries' constructors and the sanitizers' runtimes call replacements before any
/// constructor of the executable has run, so objects of this class are initialised at compile time.
template <typename Function>
class NextFunction
{
public:
    constexpr explicit NextFunction(const char *name)
        : m_name(name)
    { }

    template <typename... Arguments>
    auto operator()(Arguments... arguments)
    {
        return get()(arguments...);
    }

private:
    Function *get()
    {
        Function *function = m_function.load(std::memory_order_acquire);
        if (!function) {
            function = reinterpret_cast<Function *>(dlsym(RTLD_NEXT, m_name));
            if (!function)
                std::abort();
            m_function.store(function, std::memory_order_release);
        }
        return function;
    }

    const char *const m_name;
    std::atomic<Function *> m_function{nullptr};
};

/// A replacement and the name that other libraries look it up by.
struct InterposedFunction
{
    const char *name;
    const void *address;
};

/// The name of the first of @p functions that other libraries do not get from here; null if they
/// get them all.
inline const char *firstMissing(std::initializer_list<InterposedFunction> functions)
{
    for (const InterposedFunction &function : functions) {
        if (dlsym(RTLD_DEFAULT, function.name) != function.address)
            return function.name;
    }
    return nullptr;
}

} // namespace Vorn::Sim

#endif
