#ifndef VORN_TOOLS_COMPILECOMMAND_H
#define VORN_TOOLS_COMPILECOMMAND_H

#include <QString>

namespace CLI {
class App;
}

namespace Vorn::Tools {

struct CompileOptions
{
    QString profile;
    QString output;
    QString header; ///< empty: beside the output
    QString name; ///< empty: after the profile's file
    bool strict = false; ///< warnings count as errors
    bool force = false; ///< whatever exists is replaced
};

CLI::App *addCompile(CLI::App *app, CompileOptions *options);

/// Turns a profile into a source of C++ and its header. @return the exit status
int compile(const CompileOptions &options);

} // namespace Vorn::Tools

#endif
