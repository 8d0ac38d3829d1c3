#include "dbglog.h"

std::string dbglog_scopedFunction(const std::string &function, const std::string &logger)
{
    const std::string qualified = function.substr(0, function.find('('));
    const std::size_t separator = qualified.find_last_of(": ");
    const std::size_t begin = separator == std::string::npos ? 0 : separator + 1;
    return logger + "::" + qualified.substr(begin);
}

std::ostream &operator<<(std::ostream &stream, const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    return stream.write(utf8.constData(), utf8.size());
}
