#include "NodePath.h"

#include <cstddef>
#include <cstring>

namespace Vorn::Sim {

namespace {

constexpr char nodePrefix[] = "/dev/input/event";
constexpr std::size_t prefixLength = sizeof(nodePrefix) - 1;

} // namespace

QByteArray nodePath(int number)
{
    return nodePrefix + QByteArray::number(number);
}

int nodeNumber(const char *path)
{
    if (std::strncmp(path, nodePrefix, prefixLength) != 0)
        return -1;
    const char *digits = path + prefixLength;
    // "event01" is another file than "event1".
    if (digits[0] == '\0' || (digits[0] == '0' && digits[1] != '\0'))
        return -1;
    int number = 0;
    for (; *digits != '\0'; ++digits) {
        if (*digits < '0' || *digits > '9' || number > 99'999)
            return -1;
        number = number * 10 + (*digits - '0');
    }
    return number;
}

bool isBelowInputFolder(const char *path)
{
    const std::size_t length = sizeof(inputFolder) - 1;
    return std::strncmp(path, inputFolder, length) == 0 && path[length] == '/'
        && path[length + 1] != '\0';
}

} // namespace Vorn::Sim
