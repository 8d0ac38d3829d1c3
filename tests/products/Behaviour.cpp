#include "Behaviour.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTimer>

#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <mutex>
#include <thread>

namespace {

void say(const QByteArray &text)
{
    std::fputs(text.constData(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

[[noreturn]] void hang()
{
    for (;;)
        pause();
}

void hangHere(const QString &)
{
    say("waiting");
    hang();
}

void crash(const QString &)
{
    // A sanitizer would catch it and exit with a status.
    std::signal(SIGSEGV, SIG_DFL);
    std::raise(SIGSEGV);
}

void quitWith(const QString &status)
{
    QCoreApplication::exit(status.toInt());
}

void leaveAtOnce(const QString &status)
{
    _exit(status.toInt());
}

void execute(const QString &)
{
    execlp("sleep", "sleep", "1000", nullptr);
}

/// Starts a child that lives on, and lets the parent continue.
void forkChild(const QString &)
{
    const pid_t child = fork();
    if (child == 0)
        hang();
    say("child " + QByteArray::number(child));
}

/// Prints what a helper program finds in its environment and in its descriptors.
void runHelper(const QString &)
{
    QProcess helper;
    helper.start(QStringLiteral("sh"),
                 {QStringLiteral("-c"),
                  QStringLiteral("env | grep -E '^(LD_PRELOAD|VORN_DRIVE)' || echo nothing; "
                                 "ls -l /proc/self/fd | grep -c socket:")});
    helper.waitForFinished(-1);
    say("helper: " + helper.readAll().simplified());
}

void closeStreams(const QString &)
{
    say("closing");
    std::fclose(stdout);
    std::fclose(stderr);
}

void printBinary(const QString &)
{
    const char bytes[] = "\x1b[31mred\a \xff\xfe \0 zero\r\n\xe2\x80\xae turned\nno end";
    std::fwrite(bytes, 1, sizeof bytes - 1, stdout);
    std::fflush(stdout);
}

void printALot(const QString &)
{
    const QByteArray line(99, 'x');
    for (int i = 0; i < 5000; ++i)
        say(line);
    say("enough");
}

void ignoreRequests(const QString &)
{
    std::signal(SIGTERM, SIG_IGN);
    // Whatever ends the loop, the program stays.
    std::atexit([] { hang(); });
}

/// A thread that waits with a timeout all the time, as a decoder or a network client would.
void startThread(const QString &)
{
    std::thread([] {
        static std::mutex mutex;
        static std::condition_variable never;
        std::unique_lock<std::mutex> lock(mutex);
        for (;;)
            never.wait_for(lock, std::chrono::milliseconds(5));
    }).detach();
}

/// A timer that is always due, as for an animation.
void spin(const QString &)
{
    auto *timer = new QTimer(QCoreApplication::instance());
    timer->start(0);
}

const Behaviour behaviours[] = {
    {"plain", nullptr, nullptr, nullptr},
    {"crashes", nullptr, nullptr, crash},
    {"hangs", nullptr, nullptr, hangHere},
    {"never-starts", hang, nullptr, nullptr},
    {"never-runs", nullptr, hangHere, nullptr},
    {"exits-at-start", nullptr, leaveAtOnce, nullptr},
    {"quits", nullptr, nullptr, quitWith},
    {"leaves", nullptr, nullptr, leaveAtOnce},
    {"executes", nullptr, nullptr, execute},
    {"forks", nullptr, forkChild, nullptr},
    {"helper", nullptr, runHelper, nullptr},
    {"closes", nullptr, closeStreams, nullptr},
    {"prints-binary", nullptr, nullptr, printBinary},
    {"prints-a-lot", nullptr, printALot, nullptr},
    {"stays", nullptr, ignoreRequests, nullptr},
    {"spins", nullptr, spin, nullptr},
    {"threads", nullptr, startThread, nullptr},
};

} // namespace

const Behaviour *behaviour(const QString &name)
{
    for (const Behaviour &its : behaviours) {
        if (name == QLatin1String(its.name))
            return &its;
    }
    return nullptr;
}

QStringList behaviourNames()
{
    QStringList names;
    for (const Behaviour &its : behaviours)
        names += QLatin1String(its.name);
    return names;
}
