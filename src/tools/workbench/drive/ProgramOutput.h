#ifndef VORN_WORKBENCH_PROGRAMOUTPUT_H
#define VORN_WORKBENCH_PROGRAMOUTPUT_H

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace Vorn::Workbench {

/// What a program prints, whatever bytes these are: shown line by line on stderr, and its end kept.
class ProgramOutput
{
public:
    static constexpr int keptSize = 64 * 1024;
    static constexpr int longestLine = 4096; ///< in bytes; what is longer is shown in pieces

    enum class Shown { No, Yes };

    /// @param name of the program, before each line
    ProgramOutput(const QString &name, Shown shown);

    void add(const QByteArray &bytes);

    /// Shows the last line, which has no end.
    void finish();

    /// The last bytes, keptSize at most.
    QByteArray kept() const;

    /// The same as printable lines, without the part of a line at the beginning.
    QStringList lines() const;

private:
    /// Leaves what is not too long.
    void showPieces(QByteArray *line) const;
    void show(const QByteArray &line) const;

    const QString m_name;
    const Shown m_shown;
    bool m_isCut = false;
    QByteArray m_kept;
    QByteArray m_line;
};

} // namespace Vorn::Workbench

#endif
