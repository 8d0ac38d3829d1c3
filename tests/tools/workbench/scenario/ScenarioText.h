#ifndef SCENARIOTEXT_H
#define SCENARIOTEXT_H

#include "ScenarioParser.h"

#include <QMap>

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// Short ways to parse a scenario and to say what came of it.
namespace ScenarioText {

using namespace Vorn;
using namespace Vorn::Workbench;

/// Parses "dir/a.scenario"; includes are answered from a map.
inline ParsedScenario parsed(const QByteArray &text, const QMap<QString, QByteArray> &files = {})
{
    return parseScenario(text, QStringLiteral("dir/a.scenario"),
                         [&files](const QString &path, QString *error) {
                             if (files.contains(path))
                                 return std::optional<QByteArray>(files.value(path));
                             *error = QStringLiteral("no such file");
                             return std::optional<QByteArray>();
                         });
}

inline std::vector<std::string> mistakes(const QByteArray &text,
                                         const QMap<QString, QByteArray> &files = {})
{
    std::vector<std::string> list;
    for (const Diagnostic &diagnostic : parsed(text, files).diagnostics)
        list.push_back(diagnostic.toString().toStdString());
    return list;
}

/// The only mistake of a text.
inline std::string mistake(const QByteArray &text)
{
    const std::vector<std::string> list = mistakes(text);
    return list.size() == 1 ? list.front() : std::to_string(list.size()) + " mistakes";
}

/// The only mistake of a step after the declaration of a panel, which is line 1.
inline std::string mistakeOf(const QByteArray &step)
{
    return mistake("device panel\n" + step);
}

template <typename Kind>
Kind step(const Scenario &scenario, int index)
{
    if (index < scenario.steps.size()) {
        if (const auto *found = std::get_if<Kind>(&scenario.steps[index].what))
            return *found;
    }
    ADD_FAILURE() << "step " << index << " is another one";
    return {};
}

} // namespace ScenarioText

#endif
