#include "CompiledName.h"

#include "Quoting.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

namespace Vorn::Workbench {

namespace {

// Alternative spellings of operators included.
constexpr char keywords[] =
    "alignas alignof and and_eq asm auto bitand bitor bool break case catch char char16_t char32_t "
    "char8_t class co_await co_return co_yield compl concept const const_cast consteval constexpr "
    "constinit continue decltype default delete do double dynamic_cast else enum explicit export "
    "extern false float for friend goto if inline int long mutable namespace new noexcept not "
    "not_eq nullptr operator or or_eq private protected public register reinterpret_cast requires "
    "return short signed sizeof static static_assert static_cast struct switch template this "
    "thread_local throw true try typedef typeid typename union unsigned using virtual void "
    "volatile wchar_t while xor xor_eq";

// What the generated source names, and what every program has.
constexpr char taken[] =
    "Input InputEvent Vorn VORN_PROFILE_EXPORT VORN_INPUT_EXPORT main std linux unix "
    "errno";

bool isIn(const char *words, const QString &name)
{
    return QString::fromLatin1(words).split(QLatin1Char(' ')).contains(name);
}

} // namespace

QString compiledName(const QString &path)
{
    QString name = QFileInfo(path).completeBaseName();
    return name.replace(QRegularExpression(QStringLiteral("[-. ]")), QStringLiteral("_"));
}

QString problemOfName(const QString &name)
{
    // In ASCII, which every compiler takes.
    static const QRegularExpression identifier(QStringLiteral("\\A[A-Za-z_][A-Za-z0-9_]*\\z"));
    if (!identifier.match(name).hasMatch()) {
        return QStringLiteral("%1 is no name for a constant in C++, which takes letters, digits "
                              "and '_', and no digit first")
            .arg(quoted(name));
    }
    if (isIn(keywords, name))
        return QStringLiteral("%1 is a keyword of C++").arg(quoted(name));
    if (name.startsWith(QLatin1Char('_')) || name.contains(QLatin1String("__"))) {
        return QStringLiteral("%1 is reserved in C++, as are all names with '_' at the start or "
                              "'__' within")
            .arg(quoted(name));
    }
    if (isIn(taken, name))
        return QStringLiteral("%1 already names something else in C++").arg(quoted(name));
    return {};
}

} // namespace Vorn::Workbench
