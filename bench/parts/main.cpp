#include <QCoreApplication>

#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>

#include <benchmark/benchmark.h>

#include <vector>

int main(int argc, char **argv)
{
    const log4cplus::Initializer initializer;
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.addAppender(log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
    root.setLogLevel(log4cplus::WARN_LOG_LEVEL);
    QCoreApplication application(argc, argv);

    // Short, because ten repetitions say more than a long one. Inserted first, so that the command
    // line overrides it.
    char minTime[] = "--benchmark_min_time=0.025";
    std::vector<char *> arguments(argv, argv + argc);
    arguments.insert(arguments.begin() + 1, minTime);
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;
    const std::size_t run = benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    // A filter that matches nothing must not look like success.
    return run > 0 ? 0 : 1;
}
