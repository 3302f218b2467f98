#include "serve_metrics.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <utility>

namespace tovserve {

namespace {

constexpr std::memory_order kRelaxed = std::memory_order_relaxed;

// Decisions take microseconds and batches up to seconds; the bounds cover both.
struct Bucket {
    std::uint64_t nanoseconds;
    const char* label;  // as the exposition writes the bound, in seconds
};
constexpr std::array<Bucket, 16> kBucketTable = {{
    {10'000, "1e-05"},
    {25'000, "2.5e-05"},
    {50'000, "5e-05"},
    {100'000, "0.0001"},
    {250'000, "0.00025"},
    {500'000, "0.0005"},
    {1'000'000, "0.001"},
    {2'500'000, "0.0025"},
    {5'000'000, "0.005"},
    {10'000'000, "0.01"},
    {25'000'000, "0.025"},
    {50'000'000, "0.05"},
    {100'000'000, "0.1"},
    {250'000'000, "0.25"},
    {1'000'000'000, "1"},
    {5'000'000'000, "5"},
}};

constexpr std::array<const char*, 3> kResultNames = {"Success", "Failure", "MissingData"};

std::string seconds(std::uint64_t nanoseconds) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%" PRIu64 ".%09" PRIu64, nanoseconds / 1'000'000'000,
                  nanoseconds % 1'000'000'000);
    return text.data();
}

void header(std::string& out, const char* name, const char* type, const char* help) {
    out += "# HELP ";
    out += name;
    out += " ";
    out += help;
    out += "\n# TYPE ";
    out += name;
    out += " ";
    out += type;
    out += "\n";
}

void sample(std::string& out, const std::string& nameAndLabels, const std::string& value) {
    out += nameAndLabels;
    out += " ";
    out += value;
    out += "\n";
}

}  // namespace

ServeMetrics::ServeMetrics(std::vector<std::string> kindNames)
    : kinds(std::move(kindNames)),
      decisions(kinds.size()),
      durations(kinds.size() + 1),
      responses(countedStatuses().size() + 1) {}

const std::vector<double>& ServeMetrics::bucketBounds() {
    static const std::vector<double> bounds = [] {
        std::vector<double> seconds;
        seconds.reserve(kBucketTable.size());
        for (const Bucket& bucket : kBucketTable) {
            seconds.push_back(static_cast<double>(bucket.nanoseconds) / 1e9);
        }
        return seconds;
    }();
    return bounds;
}

const std::vector<int>& ServeMetrics::countedStatuses() {
    static const std::vector<int> statuses = {200, 400, 401, 403, 404, 405,
                                              413, 415, 431, 500, 503};
    return statuses;
}

void ServeMetrics::observe(Histogram& histogram, std::chrono::nanoseconds took) {
    const auto nanoseconds = static_cast<std::uint64_t>(std::max<std::int64_t>(took.count(), 0));
    for (std::size_t i = 0; i < kBuckets; ++i) {
        if (nanoseconds <= kBucketTable[i].nanoseconds) {
            histogram.buckets[i].fetch_add(1, kRelaxed);
            break;  // the exposition adds the buckets up
        }
    }
    histogram.count.fetch_add(1, kRelaxed);
    histogram.nanoseconds.fetch_add(nanoseconds, kRelaxed);
}

void ServeMetrics::countDecision(std::size_t kind, DecisionResult result,
                                 std::chrono::nanoseconds took) {
    decisions[kind][static_cast<std::size_t>(result)].fetch_add(1, kRelaxed);
    observe(durations[kind], took);
}

void ServeMetrics::countBatch(std::chrono::nanoseconds took) {
    observe(durations[batchIndex()], took);
}

void ServeMetrics::countReload(bool succeeded) {
    (succeeded ? reloadsSucceeded : reloadsFailed).fetch_add(1, kRelaxed);
}

void ServeMetrics::countResponse(int status) {
    const std::vector<int>& statuses = countedStatuses();
    const auto known = std::find(statuses.begin(), statuses.end(), status);
    responses[static_cast<std::size_t>(known - statuses.begin())].fetch_add(1, kRelaxed);
}

ServeMetrics::InFlight::InFlight(ServeMetrics& metrics) : metrics(metrics) {
    metrics.inFlight.fetch_add(1, kRelaxed);
}

ServeMetrics::InFlight::~InFlight() {
    metrics.inFlight.fetch_sub(1, kRelaxed);
}

std::string ServeMetrics::exposition(const GenerationGauges& gauges) const {
    std::string out;
    out.reserve(16384);
    header(out, "tov_requests_total", "counter",
           "Decisions answered, alone or on a batch line, by request kind and result.");
    for (std::size_t kind = 0; kind < kinds.size(); ++kind) {
        for (std::size_t result = 0; result < kResults; ++result) {
            sample(out,
                   "tov_requests_total{kind=\"" + kinds[kind] + "\",result=\"" +
                       kResultNames[result] + "\"}",
                   std::to_string(decisions[kind][result].load(kRelaxed)));
        }
    }
    header(out, "tov_request_duration_seconds", "histogram",
           "Time to answer one decision, by request kind; kind \"batch\" times whole batches.");
    for (std::size_t kind = 0; kind <= kinds.size(); ++kind) {
        const std::string name = kind == kinds.size() ? "batch" : kinds[kind];
        const Histogram& histogram = durations[kind];
        std::uint64_t cumulative = 0;
        for (std::size_t i = 0; i < kBuckets; ++i) {
            cumulative += histogram.buckets[i].load(kRelaxed);
            sample(out,
                   "tov_request_duration_seconds_bucket{kind=\"" + name + "\",le=\"" +
                       kBucketTable[i].label + "\"}",
                   std::to_string(cumulative));
        }
        // Read after the buckets, so that +Inf is never below the last bucket.
        const std::uint64_t count = std::max(histogram.count.load(kRelaxed), cumulative);
        sample(out, "tov_request_duration_seconds_bucket{kind=\"" + name + R"(",le="+Inf"})",
               std::to_string(count));
        sample(out, "tov_request_duration_seconds_sum{kind=\"" + name + "\"}",
               seconds(histogram.nanoseconds.load(kRelaxed)));
        sample(out, "tov_request_duration_seconds_count{kind=\"" + name + "\"}",
               std::to_string(count));
    }
    header(out, "tov_requests_in_flight", "gauge", "Requests being answered now.");
    sample(out, "tov_requests_in_flight", std::to_string(inFlight.load(kRelaxed)));
    header(out, "tov_reloads_total", "counter",
           "Reloads of the documents, by outcome; a failed one leaves the generation before it "
           "serving.");
    sample(out, "tov_reloads_total{outcome=\"success\"}",
           std::to_string(reloadsSucceeded.load(kRelaxed)));
    sample(out, "tov_reloads_total{outcome=\"failure\"}",
           std::to_string(reloadsFailed.load(kRelaxed)));
    header(out, "tov_rules_loaded", "gauge", "Rules in the generation that serves.");
    sample(out, "tov_rules_loaded", std::to_string(gauges.rulesLoaded));
    header(out, "tov_generation", "gauge",
           "Number of the generation that serves: 0 before the first load, one more per load.");
    sample(out, "tov_generation", std::to_string(gauges.generation));
    header(out, "tov_http_responses_total", "counter", "HTTP responses sent, by status code.");
    const std::vector<int>& statuses = countedStatuses();
    for (std::size_t i = 0; i <= statuses.size(); ++i) {
        sample(out,
               "tov_http_responses_total{code=\"" +
                   (i < statuses.size() ? std::to_string(statuses[i]) : std::string("other")) +
                   "\"}",
               std::to_string(responses[i].load(kRelaxed)));
    }
    return out;
}

}  // namespace tovserve
