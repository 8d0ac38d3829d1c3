#include "ReplayFiles.h"

#include "ReplayScript.h"

namespace Vorn::Workbench {

namespace {

constexpr char readme[] = R"(A recorded session of input devices

session.umockdev   the nodes
eventN.ioctl       what the node eventN answers
eventN.evemu       which device it is, and what it sent
session.expect     the published events, as expectations
session.jsonl      everything that happened
replay.sh          replays the session to a program

As a test, without the devices and without waiting:

    vorn-input simulate session.umockdev

On a machine without the devices, in real time, with umockdev-run:

    ./replay.sh PROGRAM

On the device itself or one like it, in real time (as root):

    evemu-play /dev/input/eventN <eventN.evemu
)";

} // namespace

QByteArray replayReadme()
{
    return readme;
}

QByteArray replayScript()
{
    return replayScriptText;
}

QByteArray expectationsHeader()
{
    return "# The published events, in order.\n"
           "#\n"
           "# vorn-input simulate session.umockdev\n"
           "#\n"
           "# plays the recorded devices and fails if anything else is published.\n";
}

QByteArray eventsHeader(const QByteArray &node)
{
    return "#\n# E: seconds type code value; seconds from the start of the session.\n#\n"
           "# ./replay.sh PROGRAM plays it on a machine without the device, and\n"
           "# evemu-play /dev/input/"
        + node + " <" + node
        + ".evemu on the device.\n#\n"
          "# A replay delivers the first line immediately, so that line means nothing.\n";
}

QByteArray answersHeader(const QByteArray &node)
{
    return "# What /dev/input/" + node
        + " answers, for ./replay.sh PROGRAM, which runs\n"
          "# umockdev-run -d session.umockdev -i /dev/input/"
        + node + '=' + node + ".ioctl -- PROGRAM\n";
}

} // namespace Vorn::Workbench
