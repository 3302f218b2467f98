#include "serve_metrics.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using tovserve::DecisionResult;
using tovserve::ServeMetrics;

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST(ServeMetrics, AFreshSetTellsZeroForEveryKindResultAndBucket) {
    const ServeMetrics metrics({"edit", "link"});
    const std::string text = metrics.exposition({0, 0});
    EXPECT_TRUE(contains(text, "# TYPE tov_requests_total counter\n"));
    EXPECT_TRUE(contains(text, "tov_requests_total{kind=\"edit\",result=\"Success\"} 0\n"));
    EXPECT_TRUE(contains(text, "tov_requests_total{kind=\"link\",result=\"MissingData\"} 0\n"));
    EXPECT_TRUE(contains(text, "# TYPE tov_request_duration_seconds histogram\n"));
    EXPECT_TRUE(
        contains(text, "tov_request_duration_seconds_bucket{kind=\"batch\",le=\"+Inf\"} 0\n"));
    EXPECT_TRUE(contains(text, "tov_request_duration_seconds_sum{kind=\"edit\"} 0.000000000\n"));
    EXPECT_TRUE(contains(text, "tov_requests_in_flight 0\n"));
    EXPECT_TRUE(contains(text, "tov_reloads_total{outcome=\"success\"} 0\n"));
    EXPECT_TRUE(contains(text, "tov_reloads_total{outcome=\"failure\"} 0\n"));
    EXPECT_TRUE(contains(text, "tov_rules_loaded 0\n"));
    EXPECT_TRUE(contains(text, "tov_generation 0\n"));
    EXPECT_TRUE(contains(text, "tov_http_responses_total{code=\"other\"} 0\n"));
    EXPECT_EQ(ServeMetrics::bucketBounds().size(), 16U);
    EXPECT_EQ(ServeMetrics::bucketBounds().front(), 1e-5);
    EXPECT_EQ(ServeMetrics::bucketBounds().back(), 5.0);
}

TEST(ServeMetrics, DecisionsCountByKindAndResultAndFillCumulativeBuckets) {
    ServeMetrics metrics({"edit", "link"});
    metrics.countDecision(0, DecisionResult::kSuccess, microseconds(7));
    metrics.countDecision(0, DecisionResult::kMissingData, microseconds(30));
    metrics.countDecision(0, DecisionResult::kMissingData, milliseconds(2));
    metrics.countDecision(1, DecisionResult::kFailure, std::chrono::seconds(9));
    metrics.countBatch(milliseconds(40));
    const std::string text = metrics.exposition({3, 20});
    EXPECT_TRUE(contains(text, "tov_requests_total{kind=\"edit\",result=\"Success\"} 1\n"));
    EXPECT_TRUE(contains(text, "tov_requests_total{kind=\"edit\",result=\"MissingData\"} 2\n"));
    EXPECT_TRUE(contains(text, "tov_requests_total{kind=\"edit\",result=\"Failure\"} 0\n"));
    EXPECT_TRUE(contains(text, "tov_requests_total{kind=\"link\",result=\"Failure\"} 1\n"));
    EXPECT_TRUE(
        contains(text, "tov_request_duration_seconds_bucket{kind=\"edit\",le=\"1e-05\"} 1\n"));
    EXPECT_TRUE(
        contains(text, "tov_request_duration_seconds_bucket{kind=\"edit\",le=\"2.5e-05\"} 1\n"));
    EXPECT_TRUE(
        contains(text, "tov_request_duration_seconds_bucket{kind=\"edit\",le=\"5e-05\"} 2\n"));
    EXPECT_TRUE(
        contains(text, "tov_request_duration_seconds_bucket{kind=\"edit\",le=\"0.0025\"} 3\n"));
    EXPECT_TRUE(
        contains(text, "tov_request_duration_seconds_bucket{kind=\"edit\",le=\"+Inf\"} 3\n"));
    EXPECT_TRUE(contains(text, "tov_request_duration_seconds_sum{kind=\"edit\"} 0.002037000\n"));
    EXPECT_TRUE(contains(text, "tov_request_duration_seconds_count{kind=\"edit\"} 3\n"));
    // Over the last bound: only +Inf holds it.
    EXPECT_TRUE(contains(text, "tov_request_duration_seconds_bucket{kind=\"link\",le=\"5\"} 0\n"));
    EXPECT_TRUE(
        contains(text, "tov_request_duration_seconds_bucket{kind=\"link\",le=\"+Inf\"} 1\n"));
    EXPECT_TRUE(contains(text, "tov_request_duration_seconds_sum{kind=\"link\"} 9.000000000\n"));
    EXPECT_TRUE(
        contains(text, "tov_request_duration_seconds_bucket{kind=\"batch\",le=\"0.05\"} 1\n"));
    EXPECT_TRUE(contains(text, "tov_rules_loaded 20\n"));
    EXPECT_TRUE(contains(text, "tov_generation 3\n"));
}

TEST(ServeMetrics, ReloadsResponsesAndRequestsInFlight) {
    ServeMetrics metrics({"edit"});
    metrics.countReload(true);
    metrics.countReload(false);
    metrics.countReload(false);
    metrics.countResponse(200);
    metrics.countResponse(415);
    metrics.countResponse(418);
    {
        const ServeMetrics::InFlight one(metrics);
        const ServeMetrics::InFlight two(metrics);
        EXPECT_TRUE(contains(metrics.exposition({}), "tov_requests_in_flight 2\n"));
    }
    const std::string text = metrics.exposition({});
    EXPECT_TRUE(contains(text, "tov_requests_in_flight 0\n"));
    EXPECT_TRUE(contains(text, "tov_reloads_total{outcome=\"success\"} 1\n"));
    EXPECT_TRUE(contains(text, "tov_reloads_total{outcome=\"failure\"} 2\n"));
    EXPECT_TRUE(contains(text, "tov_http_responses_total{code=\"200\"} 1\n"));
    EXPECT_TRUE(contains(text, "tov_http_responses_total{code=\"415\"} 1\n"));
    EXPECT_TRUE(contains(text, "tov_http_responses_total{code=\"404\"} 0\n"));
    EXPECT_TRUE(contains(text, "tov_http_responses_total{code=\"other\"} 1\n"));
}

}  // namespace
