#include "progress_bar.h"

#include <cstdio>
#include <string>

namespace tovcli {

namespace {

constexpr int kBarWidth = 30;
constexpr auto kRedrawInterval = std::chrono::milliseconds(100);

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

ProgressBar::ProgressBar(std::uint64_t totalBytes)
    : totalBytes(totalBytes),
      doneBytes(0),
      doneLines(0),
      start(std::chrono::steady_clock::now()),
      lastDraw(start) {
    draw();
}

void ProgressBar::advance(std::uint64_t bytes) {
    doneBytes += bytes;
    ++doneLines;
    const auto now = std::chrono::steady_clock::now();
    if (now - lastDraw >= kRedrawInterval) {
        lastDraw = now;
        draw();
    }
}

void ProgressBar::draw() {
    // A last line without a line end counts one byte more than the file holds.
    const std::uint64_t done = doneBytes < totalBytes ? doneBytes : totalBytes;
    const double fraction =
        totalBytes == 0 ? 1.0 : static_cast<double>(done) / static_cast<double>(totalBytes);
    const int filled = static_cast<int>(fraction * kBarWidth);
    std::string bar(static_cast<std::size_t>(filled), '#');
    bar.append(static_cast<std::size_t>(kBarWidth - filled), '.');
    std::fprintf(stderr, "\r[%s] %3d%%  %llu lines", bar.c_str(),
                 static_cast<int>(fraction * 100.0), static_cast<unsigned long long>(doneLines));
    std::fflush(stderr);
}

void ProgressBar::finish(unsigned jobs, std::uint64_t malformedLines) {
    // "\033[K" clears what is left of the bar on the line.
    std::fprintf(stderr, "\r\033[Ktov: %llu %s answered (%llu no request) in %.1f s with %u %s\n",
                 static_cast<unsigned long long>(doneLines), doneLines == 1 ? "line" : "lines",
                 static_cast<unsigned long long>(malformedLines), secondsSince(start), jobs,
                 jobs == 1 ? "job" : "jobs");
    std::fflush(stderr);
}

}  // namespace tovcli
