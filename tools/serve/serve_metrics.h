// The service's counters, in the Prometheus text exposition. Every counter
// is a relaxed atomic, so that counting costs the hot path no lock.
#ifndef TOV_TOOLS_SERVE_SERVE_METRICS_H_
#define TOV_TOOLS_SERVE_SERVE_METRICS_H_

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tovserve {

// How a decision came out, as tov_requests_total tells it.
enum class DecisionResult { kSuccess, kFailure, kMissingData };

// The gauges that follow the generation serving when the metrics are asked.
struct GenerationGauges {
    std::uint64_t generation = 0;
    std::uint64_t rulesLoaded = 0;
};

class ServeMetrics {
public:
    // `kinds`: the request kinds, in the order of their indexes below; one
    // more index, kinds.size(), stands for whole batches.
    explicit ServeMetrics(std::vector<std::string> kinds);

    std::size_t batchIndex() const { return kinds.size(); }

    // One decision of kind `kind`, alone or on a batch line.
    void countDecision(std::size_t kind, DecisionResult result, std::chrono::nanoseconds took);
    // One whole batch request, answered in `took`.
    void countBatch(std::chrono::nanoseconds took);
    void countReload(bool succeeded);
    // Every status the server sent.
    void countResponse(int status);

    // Counts a request while it is handled.
    class InFlight {
    public:
        explicit InFlight(ServeMetrics& metrics);
        ~InFlight();
        InFlight(const InFlight&) = delete;
        InFlight& operator=(const InFlight&) = delete;

    private:
        ServeMetrics& metrics;
    };

    // The text exposition (version 0.0.4) of every metric.
    std::string exposition(const GenerationGauges& gauges) const;

    // The upper bounds of the duration histogram's buckets, in seconds.
    static const std::vector<double>& bucketBounds();

private:
    static constexpr std::size_t kBuckets = 16;  // bucketBounds().size()
    static constexpr std::size_t kResults = 3;

    struct Histogram {
        std::array<std::atomic<std::uint64_t>, kBuckets> buckets{};
        std::atomic<std::uint64_t> count{0};
        std::atomic<std::uint64_t> nanoseconds{0};
    };

    void observe(Histogram& histogram, std::chrono::nanoseconds took);

    // The statuses counted one by one; any other counts under "other".
    static const std::vector<int>& countedStatuses();

    std::vector<std::string> kinds;
    std::vector<std::array<std::atomic<std::uint64_t>, kResults>> decisions;
    std::vector<Histogram> durations;  // one per kind, then batches
    std::atomic<std::int64_t> inFlight{0};
    std::atomic<std::uint64_t> reloadsSucceeded{0};
    std::atomic<std::uint64_t> reloadsFailed{0};
    std::vector<std::atomic<std::uint64_t>> responses;  // by countedStatuses, then other
};

}  // namespace tovserve

#endif  // TOV_TOOLS_SERVE_SERVE_METRICS_H_
