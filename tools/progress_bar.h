// A one-line progress bar on standard error for a batch read from a file.
#ifndef TOV_TOOLS_PROGRESS_BAR_H_
#define TOV_TOOLS_PROGRESS_BAR_H_

#include <chrono>
#include <cstdint>

namespace tovcli {

class ProgressBar {
public:
    // `totalBytes` is the size of the input file; the bar fills as the answers
    // to its lines are written.
    explicit ProgressBar(std::uint64_t totalBytes);

    // One more line answered, `bytes` long with its line end. Redraws at most a
    // few times a second. The caller keeps calls from overlapping.
    void advance(std::uint64_t bytes);

    // Clears the bar and leaves a summary line.
    void finish(unsigned jobs, std::uint64_t malformedLines);

private:
    void draw();

    std::uint64_t totalBytes;
    std::uint64_t doneBytes;
    std::uint64_t doneLines;
    std::chrono::steady_clock::time_point start;
    std::chrono::steady_clock::time_point lastDraw;
};

}  // namespace tovcli

#endif  // TOV_TOOLS_PROGRESS_BAR_H_
