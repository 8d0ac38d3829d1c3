#ifndef SILENCE_H
#define SILENCE_H

namespace Vorn::Bench {

struct Options;

/// How often the library wakes its process.
void measureSilence(const Options &options);

/// The process that is measured.
void runSilenceSubject();

} // namespace Vorn::Bench

#endif
