#ifndef SCENARIOFILES_H
#define SCENARIOFILES_H

#include "ScenarioLoader.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// A temporary folder with the files of a test, and a profile "keys.toml".
class ScenarioFiles : public testing::Test
{
protected:
    ScenarioFiles()
    {
        write("keys.toml", R"([[device]]
[device.handler.keys]
KEY_VOLUMEUP = { command = "VolumeUp", immediate = true }
KEY_INFO = { command = "Info", long-press = 700 }
)");
    }

    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    QString write(const char *name, const QByteArray &content) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            ADD_FAILURE() << "cannot write " << file.fileName().toStdString();
        return file.fileName();
    }

    /// What is wrong with a file, without the folder.
    std::vector<std::string> mistakes(const QString &file,
                                      const Vorn::Workbench::LoadOptions &options = {}) const
    {
        std::vector<std::string> list;
        for (const Vorn::Diagnostic &diagnostic :
             Vorn::Workbench::loadScenario(file, options).diagnostics)
            list.push_back(diagnostic.toString()
                               .replace(m_folder.path() + QLatin1Char('/'), QString())
                               .toStdString());
        return list;
    }

    QTemporaryDir m_folder;
};

#endif
