#ifndef FIGURES_H
#define FIGURES_H

#include <chrono>
#include <string>
#include <vector>

namespace Vorn::Bench {

/// What a row of results is about.
struct Figure
{
    std::string group;
    std::string subject;
    std::string stream;
    std::string burst;
    std::string parameter;
    std::string figure;
    std::string unit;
};

/// The value that @p percent of all values do not exceed. @p sorted is ascending and not empty.
double percentile(const std::vector<double> &sorted, double percent);

/// The middle value, or the mean of the middle two. @p values is not empty.
double median(std::vector<double> values);

/// Prints a CSV row: the columns of @p figure, then median, minimum, maximum and number of @p runs.
void print(const Figure &figure, const std::vector<double> &runs);

/// The same for a figure whose middle is not the median of its runs.
void print(const Figure &figure, double middle, double low, double high, std::size_t runs);

double microsecondsSince(std::chrono::steady_clock::time_point start);

} // namespace Vorn::Bench

#endif
