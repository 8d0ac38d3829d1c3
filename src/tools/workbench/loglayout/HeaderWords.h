#ifndef VORN_WORKBENCH_HEADERWORDS_H
#define VORN_WORKBENCH_HEADERWORDS_H

#include <QString>

#include <string_view>
#include <vector>

namespace Vorn::Workbench {

/// A word in what a layout writes in front of a message.
struct HeaderWord
{
    enum class Kind {
        Time,
        Level,
        Logger,
        CutLogger, ///< the end of one of the library's loggers
        Known, ///< anything else that tells by itself what it is
        Other
    };

    Kind kind = Kind::Other;
    std::size_t begin = 0;
    std::size_t size = 0;
    QString format; ///< of a time; the conversion of a known word
    QString dayFirst; ///< of a time: the same if the day comes before the month
};

/// The words, without what separates them.
std::vector<HeaderWord> headerWords(std::string_view header);

} // namespace Vorn::Workbench

#endif
