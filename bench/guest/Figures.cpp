#include "Figures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Vorn::Bench {

double percentile(const std::vector<double> &sorted, double percent)
{
    const auto rank = std::ceil(percent / 100 * static_cast<double>(sorted.size()));
    return sorted[static_cast<std::size_t>(std::max(rank, 1.0)) - 1];
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    if (values.size() % 2 != 0)
        return values[middle];
    return (values[middle - 1] + values[middle]) / 2;
}

void print(const Figure &figure, const std::vector<double> &runs)
{
    const auto [low, high] = std::minmax_element(runs.begin(), runs.end());
    print(figure, median(runs), *low, *high, runs.size());
}

void print(const Figure &figure, double middle, double low, double high, std::size_t runs)
{
    std::printf("%s,%s,%s,%s,%s,%s,%s,%.2f,%.2f,%.2f,%zu\n", figure.group.c_str(),
                figure.subject.c_str(), figure.stream.c_str(), figure.burst.c_str(),
                figure.parameter.c_str(), figure.figure.c_str(), figure.unit.c_str(), middle, low,
                high, runs);
    std::fflush(stdout);
}

double microsecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start)
        .count();
}

} // namespace Vorn::Bench
