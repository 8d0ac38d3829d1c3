#include "LogOrder.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <limits>
#include <vector>

namespace Vorn::Workbench {

namespace {

struct Part
{
    QString path;
    std::optional<qint64> firstTime;
};

QStringList withoutDoubles(const QStringList &files)
{
    QSet<QString> seen;
    QStringList result;
    for (const QString &file : files) {
        const QFileInfo info(file);
        const QString name = info.isFile() ? info.canonicalFilePath() : file;
        if (!seen.contains(name))
            result += file;
        seen.insert(name);
    }
    return result;
}

/// The number that "app.log.2.gz" ends with; 0 for the file that is still written.
int rotation(const QString &path)
{
    static const QRegularExpression number(QStringLiteral("\\.(\\d{1,6})(\\.gz)?$"));
    return number.match(path).captured(1).toInt();
}

QString withoutRotation(const QString &path)
{
    static const QRegularExpression number(QStringLiteral("(\\.\\d{1,6})?(\\.gz)?$"));
    return QString(path).remove(number);
}

bool areOneLog(const std::vector<Part> &parts)
{
    QSet<int> numbers;
    for (const Part &part : parts)
        numbers.insert(rotation(part.path));
    return numbers.size() == static_cast<int>(parts.size())
        && std::all_of(parts.begin(), parts.end(), [&](const Part &part) {
               return withoutRotation(part.path) == withoutRotation(parts.front().path);
           });
}

QStringList pathsOf(const std::vector<Part> &parts)
{
    QStringList paths;
    for (const Part &part : parts)
        paths += part.path;
    return paths;
}

} // namespace

QStringList rotatedFiles(const QString &path)
{
    const QFileInfo given(path);
    // Numbers and dates, as the usual tools and log4cplus's appenders put them behind the name.
    const QRegularExpression older(QLatin1Char('^') + QRegularExpression::escape(given.fileName())
                                   + QStringLiteral("[-._]\\d[-\\d_T]*(\\.gz)?$"));
    QStringList result = {path};
    const QStringList names = given.dir().entryList(QDir::Files, QDir::Name);
    for (const QString &name : names) {
        // As the person wrote it: "app.log.1", not "./app.log.1".
        if (older.match(name).hasMatch())
            result += path.left(path.size() - given.fileName().size()) + name;
    }
    return result;
}

QStringList inLogOrder(const QStringList &files, const FirstTime &firstTime,
                       Diagnostics *diagnostics)
{
    QStringList unique = withoutDoubles(files);
    if (unique.size() < 2)
        return unique;
    std::vector<Part> parts;
    for (const QString &file : qAsConst(unique))
        parts.push_back({file, firstTime(file)});
    const auto hasTime = [](const Part &part) { return part.firstTime.has_value(); };
    if (std::all_of(parts.begin(), parts.end(), hasTime)) {
        std::stable_sort(parts.begin(), parts.end(), [](const Part &one, const Part &other) {
            return one.firstTime < other.firstTime;
        });
    } else if (areOneLog(parts)) {
        std::sort(parts.begin(), parts.end(), [](const Part &one, const Part &other) {
            return rotation(one.path) > rotation(other.path);
        });
    } else {
        const auto undated = std::find_if_not(parts.begin(), parts.end(), hasTime);
        *diagnostics += Diagnostic{Diagnostic::Severity::Warning, undated->path, 0, 0,
                                   QStringLiteral("no line of the library with a date; the files "
                                                  "are read in the order given")};
    }
    return pathsOf(parts);
}

} // namespace Vorn::Workbench
