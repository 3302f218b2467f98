// tov batch: JSON Lines of requests in, one answer line out per input line, in
// input order, evaluated by workers that each own a core data.
#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "commands.h"
#include "progress_bar.h"
#include "request_kinds.h"

namespace tovcli {

namespace {

// Lines that may be read ahead of the last answer written, per worker: enough
// to keep every worker busy while bounding memory on a large input.
constexpr std::size_t kLinesInFlightPerJob = 64;

struct BatchOptions {
    DocumentPaths documents;
    std::string requestsPath;  // empty or "-": standard input
    unsigned jobs = 1;
    std::string log = "off";
};

unsigned defaultJobs() {
    const unsigned threads = std::thread::hardware_concurrency();
    return threads == 0 ? 1 : threads;
}

std::string errorLine(std::size_t lineNumber, const std::string& message) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.StartObject();
    writer.Key("line");
    writer.Uint64(lineNumber);
    writer.Key("error");
    writer.String(message.c_str(), static_cast<rapidjson::SizeType>(message.size()));
    writer.EndObject();
    return buffer.GetString();
}

bool isBlank(const std::string& line) {
    return std::all_of(line.begin(), line.end(),
                       [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
}

// The answer to one input line: the response's single-string form for a
// request, an error object otherwise. `wasRequest` tells which.
std::string answerLine(const std::string& line, std::size_t lineNumber, PrivateCore& core,
                       bool& wasRequest) {
    wasRequest = false;
    if (isBlank(line)) {
        return errorLine(lineNumber, "empty line");
    }
    rapidjson::Document parsed;
    // Iterative, so that a deeply nested line cannot overflow the stack.
    parsed.Parse<rapidjson::kParseIterativeFlag>(line.c_str(), line.size());
    if (parsed.HasParseError()) {
        return errorLine(lineNumber, std::string("not JSON: ") +
                                         rapidjson::GetParseError_En(parsed.GetParseError()) +
                                         " (column " + std::to_string(parsed.GetErrorOffset() + 1) +
                                         ")");
    }
    if (!parsed.IsObject()) {
        return errorLine(lineNumber, "not a JSON object");
    }
    const auto kind = parsed.FindMember("kind");
    if (kind == parsed.MemberEnd()) {
        return errorLine(lineNumber, "missing \"kind\"");
    }
    if (!kind->value.IsString()) {
        return errorLine(lineNumber, "\"kind\" is not a string");
    }
    const std::string kindName(kind->value.GetString(), kind->value.GetStringLength());
    const RequestKind* requestKind = findRequestKind(kindName);
    if (requestKind == nullptr) {
        return errorLine(
            lineNumber, "unknown kind \"" + kindName + "\"; expected " + requestKindNamesInWords());
    }
    const auto request = parsed.FindMember("request");
    if (request == parsed.MemberEnd()) {
        return errorLine(lineNumber, "missing \"request\"");
    }
    if (!request->value.IsObject()) {
        return errorLine(lineNumber, "\"request\" is not a JSON object");
    }
    rapidjson::StringBuffer requestText;
    rapidjson::Writer<rapidjson::StringBuffer> writer(requestText);
    request->value.Accept(writer);
    wasRequest = true;
    return requestKind->evaluate(requestText.GetString(), core.get())
        .turnResponseIntoASingleString();
}

struct Line {
    std::size_t index;  // from 0, in input order
    std::string text;
    std::size_t bytes;  // as read, line end included
};

// Hands lines to the workers and writes their answers in input order: whoever
// delivers the next answer due writes it, and every answer that waited behind it.
class OrderedPipeline {
public:
    explicit OrderedPipeline(std::size_t window) : window(window) {}

    // Before the first line: the bar to advance as answers are written.
    void showProgressOn(ProgressBar* bar) {
        std::lock_guard<std::mutex> lock(mutex);
        progress = bar;
    }

    // Reader: waits until the line may be read ahead, then queues it.
    void push(Line line) {
        std::unique_lock<std::mutex> lock(mutex);
        roomAvailable.wait(lock, [&] { return line.index < nextToWrite + window; });
        queue.push_back(std::move(line));
        ++pushed;
        workAvailable.notify_one();
    }

    // Reader: no more lines.
    void close() {
        std::lock_guard<std::mutex> lock(mutex);
        closed = true;
        workAvailable.notify_all();
    }

    // Worker: the next line, or nothing once the input is done.
    std::optional<Line> pop() {
        std::unique_lock<std::mutex> lock(mutex);
        workAvailable.wait(lock, [&] { return closed || !queue.empty(); });
        if (queue.empty()) {
            return std::nullopt;
        }
        Line line = std::move(queue.front());
        queue.pop_front();
        return line;
    }

    // Worker: the answer to a line.
    void deliver(const Line& line, std::string answer, bool wasRequest) {
        std::lock_guard<std::mutex> lock(mutex);
        if (!wasRequest) {
            ++malformed;
        }
        ready.emplace(line.index, Answer{std::move(answer), line.bytes});
        bool wrote = false;
        for (auto next = ready.find(nextToWrite); next != ready.end();
             next = ready.find(nextToWrite)) {
            std::fwrite(next->second.text.data(), 1, next->second.text.size(), stdout);
            std::fputc('\n', stdout);
            if (progress != nullptr) {
                progress->advance(next->second.bytes);
            }
            ready.erase(next);
            ++nextToWrite;
            wrote = true;
        }
        if (wrote) {
            // Flushed whenever all that was read is answered, so that answers
            // to lines typed or piped slowly come out at once.
            if (nextToWrite == pushed) {
                std::fflush(stdout);
            }
            roomAvailable.notify_all();
        }
    }

    std::size_t malformedLines() {
        std::lock_guard<std::mutex> lock(mutex);
        return malformed;
    }

private:
    struct Answer {
        std::string text;
        std::size_t bytes;
    };

    const std::size_t window;
    ProgressBar* progress = nullptr;

    std::mutex mutex;
    std::condition_variable workAvailable;
    std::condition_variable roomAvailable;
    std::deque<Line> queue;
    bool closed = false;
    std::size_t pushed = 0;
    std::map<std::size_t, Answer> ready;
    std::size_t nextToWrite = 0;
    std::size_t malformed = 0;
};

// Counts down once per worker that has loaded its documents.
class StartLatch {
public:
    explicit StartLatch(std::size_t count) : remaining(count) {}
    void arrive(bool loaded) {
        std::lock_guard<std::mutex> lock(mutex);
        allLoaded = allLoaded && loaded;
        --remaining;
        arrived.notify_all();
    }
    bool wait() {
        std::unique_lock<std::mutex> lock(mutex);
        arrived.wait(lock, [&] { return remaining == 0; });
        return allLoaded;
    }

private:
    std::mutex mutex;
    std::condition_variable arrived;
    std::size_t remaining;
    bool allLoaded = true;
};

void work(std::unique_ptr<PrivateCore> core, const std::string& logFolder,
          const std::vector<Document>& documents, StartLatch& latch, OrderedPipeline& pipeline) {
    bool loaded = true;
    if (core == nullptr) {
        core = std::make_unique<PrivateCore>(logFolder);
        for (const Document& document : documents) {
            loaded = initializeFromDocument(document, *core).getGeneralResult() && loaded;
        }
    }
    latch.arrive(loaded);
    while (std::optional<Line> line = pipeline.pop()) {
        bool wasRequest = false;
        std::string answer = answerLine(line->text, line->index + 1, *core, wasRequest);
        pipeline.deliver(*line, std::move(answer), wasRequest);
    }
}

// Reads lines of any length, each without its line end ("\n" or "\r\n").
class LineReader {
public:
    explicit LineReader(std::FILE* input) : input(input) {}
    ~LineReader() { std::free(buffer); }
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // False at the end of the input; `bytes` is the length as read.
    bool next(std::string& text, std::size_t& bytes) {
        const ssize_t got = ::getline(&buffer, &capacity, input);
        if (got < 0) {
            return false;
        }
        bytes = static_cast<std::size_t>(got);
        std::size_t length = bytes;
        if (length > 0 && buffer[length - 1] == '\n') {
            --length;
        }
        if (length > 0 && buffer[length - 1] == '\r') {
            --length;
        }
        text.assign(buffer, length);
        return true;
    }

private:
    std::FILE* input;
    char* buffer = nullptr;
    std::size_t capacity = 0;
};

int runBatch(const BatchOptions& options) {
    std::string logFolder;
    std::vector<Document> documents;
    if (!prepareCommand(options.log, options.documents, logFolder, documents)) {
        return kExitUsageOrInput;
    }
    std::string error;
    std::FILE* input = openInput(options.requestsPath, "requests", error);
    if (input == nullptr) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }
    const bool fromFile = input != stdin;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> closeInput(
        fromFile ? input : nullptr, [](std::FILE* file) { return std::fclose(file); });

    // The first core data tells the faults of the documents once; the first
    // worker then keeps it.
    auto firstCore = std::make_unique<PrivateCore>(logFolder);
    if (!loadDocuments(documents, *firstCore, false, std::cerr)) {
        return kExitUsageOrInput;
    }

    const unsigned jobs = options.jobs;
    OrderedPipeline pipeline(kLinesInFlightPerJob * jobs);
    StartLatch latch(jobs);
    std::vector<std::thread> workers;
    bool started = false;
    {
        // The other workers load the same documents; what the library prints
        // about them was told already.
        StdoutCapture quiet(StdoutCapture::kDiscard);
        workers.emplace_back(work, std::move(firstCore), std::cref(logFolder), std::cref(documents),
                             std::ref(latch), std::ref(pipeline));
        for (unsigned i = 1; i < jobs; ++i) {
            workers.emplace_back(work, nullptr, std::cref(logFolder), std::cref(documents),
                                 std::ref(latch), std::ref(pipeline));
        }
        started = latch.wait();
    }

    if (!started) {
        pipeline.close();
        for (std::thread& worker : workers) {
            worker.join();
        }
        std::cerr << "tov: a worker could not load the documents\n";
        return kExitUsageOrInput;
    }
    std::optional<ProgressBar> progress;
    std::error_code sizeError;
    const std::uintmax_t size =
        fromFile ? std::filesystem::file_size(options.requestsPath, sizeError) : 0;
    if (fromFile && !sizeError && ::isatty(STDERR_FILENO) == 1) {
        progress.emplace(size);
        pipeline.showProgressOn(&*progress);
    }

    LineReader reader(input);
    std::string text;
    std::size_t bytes = 0;
    std::size_t index = 0;
    while (reader.next(text, bytes)) {
        if (index == 0 && text.compare(0, 3, "\xEF\xBB\xBF") == 0) {
            text.erase(0, 3);  // a byte order mark that some editors write
        }
        pipeline.push({index++, std::move(text), bytes});
    }
    pipeline.close();
    for (std::thread& worker : workers) {
        worker.join();
    }
    std::fflush(stdout);
    const std::size_t malformed = pipeline.malformedLines();
    if (progress) {
        progress->finish(jobs, malformed);
    }
    return malformed == 0 ? kExitSuccess : kExitFailure;
}

}  // namespace

Command addBatchCommand(CLI::App& program) {
    auto options = std::make_shared<BatchOptions>();
    options->jobs = defaultJobs();
    CLI::App* command = program.add_subcommand(
        "batch", "Evaluate JSON Lines of requests in parallel, answers in input order");
    command
        ->add_option("REQUESTS", options->requestsPath,
                     "JSON Lines of requests; - or nothing reads standard input")
        ->type_name("FILE");
    addDocumentOptions(*command, options->documents, true);
    command
        ->add_option("-j,--jobs", options->jobs,
                     "Worker threads, each with its own core data (default: " +
                         std::to_string(defaultJobs()) + ", the hardware threads)")
        ->type_name("N")
        ->check(CLI::Range(1u, 1024u));
    addLogOption(*command, options->log);
    command->footer(helpText({
        "Input: one JSON object per line, {\"kind\": KIND, \"request\": {...}}, where KIND "
        "is one of " +
            requestKindNamesInWords() +
            " (as for eval) and the request is the request document itself; other members "
            "are ignored.",
        "Output (standard output): one line per input line, in input order. For a request, "
        "the response's single-string form, exactly as eval prints it, such as "
        "{\"Result\":\"Failure\",\"ResultComment\":\"Insufficient input data\"}. For a "
        "line that is no such object (empty, not JSON, not an object, an unknown or missing "
        "\"kind\", a missing \"request\" or one that is no object), an object such as "
        "{\"line\":3,\"error\":\"missing \\\"request\\\"\"} with the line number "
        "counted from 1.",
        "Standard error: the faults of documents that do not load, and, when it is a terminal "
        "and the requests come from a file, a progress bar.",
        "Exit status: 0 when every line was a request, whatever the answers; 1 when a line "
        "was not; 2 for bad arguments, unreadable files or documents that do not load "
        "(nothing is evaluated then).",
        kLogHelp,
        "Example: tov batch --rules rules.json --dm datamodel.json --jobs 4 requests.jsonl",
    }));
    return {command, [options] { return runBatch(*options); }};
}

}  // namespace tovcli
