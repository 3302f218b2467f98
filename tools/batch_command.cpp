// tov batch: JSON Lines of requests in, one answer line out per input line, in
// input order, evaluated by workers that share one loaded store.
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <deque>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "answers.h"
#include "batch_line.h"
#include "commands.h"
#include "progress_bar.h"
#include "request_kinds.h"

namespace tovcli {

namespace {

// Lines that may be read ahead of the last answer written, per worker: enough
// to keep every worker busy while bounding memory on a large input.
constexpr std::size_t kLinesInFlightPerJob = 64;
// Lines a worker takes from the queue at most at a time: few enough that
// the workers share a short input, enough to spare most meetings at the lock.
constexpr std::size_t kLinesPerTake = 8;

struct BatchOptions : DocumentCommandOptions {
    std::string requestsPath;  // empty or "-": standard input
    unsigned jobs = 1;
};

unsigned defaultJobs() {
    const unsigned threads = std::thread::hardware_concurrency();
    return threads == 0 ? 1 : threads;
}

struct Line {
    std::size_t index;  // from 0, in input order
    std::string text;
    std::size_t bytes;  // as read, line end included
};

// Answers on their way to the answer stream, gathered into large writes: a
// write of each answer by itself would cost more than the rest of its framing.
class AnswerWriter {
public:
    explicit AnswerWriter(std::FILE* stream) : stream(stream) { pending.reserve(kBlock); }
    AnswerWriter(const AnswerWriter&) = delete;
    AnswerWriter& operator=(const AnswerWriter&) = delete;
    // The answers given before an exception stand, as the lines they answer
    // were read to the end.
    ~AnswerWriter() { writeOut(); }

    void add(const std::string& answer) {
        // Room first, so that running out of memory leaves no half answer.
        pending.reserve(pending.size() + answer.size() + 1);
        pending += answer;
        pending += '\n';
        if (pending.size() >= kBlock) {
            writeOut();
        }
    }

    // Makes the answers given so far reach their reader now.
    void flush() {
        writeOut();
        std::fflush(stream);
    }

private:
    static constexpr std::size_t kBlock = 65536;

    void writeOut() {
        if (!pending.empty()) {
            std::fwrite(pending.data(), 1, pending.size(), stream);
            pending.clear();
        }
    }

    std::FILE* const stream;
    std::string pending;
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

    // Reader: waits until the line may be read ahead, then queues it. False
    // once the work was given up, so that the reader stops.
    bool push(Line line) {
        std::unique_lock<std::mutex> lock(mutex);
        if (!givenUp && line.index >= nextToWrite + window) {
            // Once the window is full the reader waits until half of it is
            // answered, so that it and the workers wake each other once per
            // half window instead of once per line.
            readerWaiting = true;
            roomAvailable.wait(lock, [&] { return givenUp || hasRoomForHalfAWindow(); });
            readerWaiting = false;
        }
        if (givenUp) {
            return false;
        }
        queue.push_back(std::move(line));
        ++pushed;
        workAvailable.notify_one();
        return true;
    }

    // Any thread: gives the work up after an exception (memory ran out, most
    // likely), waking everyone who waits; the first exception is kept.
    void giveUp(std::exception_ptr error) {
        std::lock_guard<std::mutex> lock(mutex);
        if (!failure) {
            failure = std::move(error);
        }
        givenUp = true;
        closed = true;
        queue.clear();
        workAvailable.notify_all();
        roomAvailable.notify_all();
    }

    // After the workers are joined: throws what made the work stop, if anything.
    void rethrowFailure() {
        std::lock_guard<std::mutex> lock(mutex);
        if (failure) {
            std::rethrow_exception(failure);
        }
    }

    // Reader: no more lines.
    void close() {
        std::lock_guard<std::mutex> lock(mutex);
        closed = true;
        workAvailable.notify_all();
    }

    // Worker: the next lines, as many as are queued up to `most`, or false
    // once the input is done or the work was given up. Taking several at a
    // time lets the workers and the reader meet at the lock less often.
    bool take(std::vector<Line>& lines, std::size_t most) {
        lines.clear();
        std::unique_lock<std::mutex> lock(mutex);
        workAvailable.wait(lock, [&] { return closed || !queue.empty(); });
        if (queue.empty() || givenUp) {
            return false;
        }
        while (!queue.empty() && lines.size() < most) {
            lines.push_back(std::move(queue.front()));
            queue.pop_front();
        }
        return true;
    }

    // Worker: the answers to the lines taken last, in their order.
    void deliver(const std::vector<Line>& lines, std::vector<BatchAnswer>& given) {
        std::lock_guard<std::mutex> lock(mutex);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (!given[i].wasRequest) {
                ++malformed;
            }
            ready.emplace(lines[i].index, Answer{std::move(given[i].text), lines[i].bytes});
        }
        bool wrote = false;
        for (auto next = ready.find(nextToWrite); next != ready.end();
             next = ready.find(nextToWrite)) {
            answers.add(next->second.text);
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
                answers.flush();
            }
            if (readerWaiting && hasRoomForHalfAWindow()) {
                roomAvailable.notify_all();
            }
        }
    }

    std::size_t malformedLines() {
        std::lock_guard<std::mutex> lock(mutex);
        return malformed;
    }

    // After the workers are joined: every answer written to the answer stream.
    void finishWriting() {
        std::lock_guard<std::mutex> lock(mutex);
        answers.flush();
    }

private:
    struct Answer {
        std::string text;
        std::size_t bytes;
    };

    // Under the lock: whether the next half window of lines may be read
    // ahead of the last answer written.
    bool hasRoomForHalfAWindow() const { return pushed + window / 2 < nextToWrite + window; }

    const std::size_t window;
    AnswerWriter answers{answerStream()};
    ProgressBar* progress = nullptr;

    std::mutex mutex;
    std::condition_variable workAvailable;
    std::condition_variable roomAvailable;
    std::deque<Line> queue;
    bool closed = false;
    std::size_t pushed = 0;
    std::map<std::size_t, Answer> ready;
    std::size_t nextToWrite = 0;
    bool readerWaiting = false;
    std::size_t malformed = 0;
    bool givenUp = false;
    std::exception_ptr failure;
};

// A worker borrows the loaded store: evaluations only read the rule store and
// the data model, and the logger writes each line by itself.
// An exception ends this worker's work and everyone else's: it is handed to
// the pipeline, which the main thread asks once all workers are joined.
void work(TOVCoreDataControllers* loaded, OutputFormat format, OrderedPipeline& pipeline) {
    try {
        TOVCoreDataControllers core;
        core.borrowData(loaded);
        const RequestJudge judge = judgeWithCoreData(&core);
        std::vector<Line> lines;
        std::vector<BatchAnswer> answers;
        while (pipeline.take(lines, kLinesPerTake)) {
            answers.clear();
            for (const Line& line : lines) {
                answers.push_back(answerBatchLine(line.text, line.index + 1, judge, format));
            }
            pipeline.deliver(lines, answers);
        }
    } catch (...) {
        pipeline.giveUp(std::current_exception());
    }
}

// Joins every worker however the main thread leaves, after giving the work up
// if it leaves by an exception: a thread still running at exit would end the
// process by a signal instead of with a message.
class Workers {
public:
    explicit Workers(OrderedPipeline& pipeline) : pipeline(pipeline) {}
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;
    ~Workers() {
        if (std::uncaught_exceptions() > 0) {
            pipeline.giveUp(nullptr);
        }
        joinAll();
    }

    void start(TOVCoreDataControllers* loaded, OutputFormat format) {
        try {
            threads.emplace_back(work, loaded, format, std::ref(pipeline));
        } catch (const std::system_error& error) {
            // Under a limit on address space a new thread's stack may not
            // fit: that is running out of memory, and is told as such.
            if (error.code() == std::errc::resource_unavailable_try_again) {
                throw std::bad_alloc();
            }
            throw;
        }
    }
    void joinAll() {
        for (std::thread& thread : threads) {
            if (thread.joinable()) {
                thread.join();
            }
        }
    }

private:
    OrderedPipeline& pipeline;
    std::vector<std::thread> threads;
};

// Reads lines of any length up to a limit, each without its "\n";
// trimBatchLine then takes off the rest of a line end. It reads the file's
// descriptor into a buffer of its own and cuts lines with memchr, which costs
// a small part of taking the input a byte at a time through stdio; a read
// returns what has come, so lines typed or piped slowly are answered at once.
// `beforeRead`, when set, runs before each read, which may wait for input.
class LineReader {
public:
    LineReader(std::FILE* input, std::uint64_t maxLength, std::function<void()> beforeRead = {})
        : descriptor(::fileno(input)),
          maxLength(maxLength),
          buffer(kBufferSize),
          beforeRead(std::move(beforeRead)) {}

    enum Outcome { kLine, kEnd, kTooLong, kReadError };

    // `bytes` is the length as read, line end included. On kReadError errno
    // tells why.
    Outcome next(std::string& text, std::size_t& bytes) {
        text.clear();
        bytes = 0;
        while (true) {
            if (begin == end) {
                // The end stays the end, as stdio's does, even on a terminal.
                const ssize_t got = atEnd ? 0 : readSome();
                if (got < 0) {
                    return kReadError;
                }
                if (got == 0) {
                    atEnd = true;
                    return bytes == 0 ? kEnd : kLine;
                }
                begin = 0;
                end = static_cast<std::size_t>(got);
            }
            const char* const start = buffer.data() + begin;
            const std::size_t available = end - begin;
            const auto* const newline =
                static_cast<const char*>(std::memchr(start, '\n', available));
            const std::size_t length =
                newline == nullptr ? available : static_cast<std::size_t>(newline - start);
            if (text.size() + length > maxLength) {
                return kTooLong;
            }
            text.append(start, length);
            bytes += length;
            begin += length;
            if (newline != nullptr) {
                ++begin;
                ++bytes;
                return kLine;
            }
        }
    }

private:
    static constexpr std::size_t kBufferSize = 65536;

    ssize_t readSome() {
        if (beforeRead) {
            beforeRead();
        }
        while (true) {
            const ssize_t got = ::read(descriptor, buffer.data(), buffer.size());
            if (got >= 0 || errno != EINTR) {
                return got;
            }
        }
    }

    int descriptor;  // read by this thread alone
    std::uint64_t maxLength;
    std::vector<char> buffer;
    std::function<void()> beforeRead;
    std::size_t begin = 0;  // of what is read and not yet taken
    std::size_t end = 0;
    bool atEnd = false;
};

// Reads every line and hands it to `take(text, bytes, index)`, which may keep
// the text (by moving it) and returns false to stop the reading. Empty when
// the input was read to its end or `take` stopped it, otherwise the message
// that tells why reading stopped.
template <typename TakeLine>
std::string readLines(std::FILE* input, const BatchOptions& options,
                      std::function<void()> beforeRead, TakeLine take) {
    LineReader reader(input, options.documents.maxInputSize, std::move(beforeRead));
    std::string text;
    std::size_t bytes = 0;
    std::size_t index = 0;
    while (true) {
        const LineReader::Outcome outcome = reader.next(text, bytes);
        if (outcome == LineReader::kEnd) {
            return {};
        }
        if (outcome == LineReader::kReadError) {
            return cannotRead(options.requestsPath, "requests", std::strerror(errno));
        }
        if (outcome == LineReader::kTooLong) {
            return "line " + std::to_string(index + 1) + " of " +
                   tooLarge(options.requestsPath, "requests", options.documents.maxInputSize);
        }
        trimBatchLine(text, index == 0);
        if (!take(text, bytes, index++)) {
            return {};
        }
    }
}

// Feeds every line to the pipeline; the message of readLines.
std::string feedLines(std::FILE* input, const BatchOptions& options, OrderedPipeline& pipeline) {
    return readLines(input, options, {},
                     [&pipeline](std::string& text, std::size_t bytes, std::size_t index) {
                         // False once the work was given up; the failure tells why.
                         return pipeline.push({index, std::move(text), bytes});
                     });
}

// With one job the reading thread answers each line as soon as it is read:
// the same answers in the same order as through the pipeline, without
// handing lines to a worker and waking it. The answers are flushed before
// each read, which may wait, so that lines typed or piped slowly are answered
// at once. The message of readLines.
std::string answerInTurn(std::FILE* input, const BatchOptions& options,
                         TOVCoreDataControllers* loaded, ProgressBar* progress,
                         std::size_t& malformed) {
    TOVCoreDataControllers core;
    core.borrowData(loaded);
    const RequestJudge judge = judgeWithCoreData(&core);
    AnswerWriter answers(answerStream());
    return readLines(
        input, options, [&answers] { answers.flush(); },
        [&](const std::string& text, std::size_t bytes, std::size_t index) {
            const BatchAnswer answer = answerBatchLine(text, index + 1, judge, options.format);
            if (!answer.wasRequest) {
                ++malformed;
            }
            answers.add(answer.text);
            if (progress != nullptr) {
                progress->advance(bytes);
            }
            return true;
        });
}

// With more jobs the reading thread feeds the pipeline's workers. The
// message of readLines.
std::string answerByWorkers(std::FILE* input, const BatchOptions& options,
                            TOVCoreDataControllers* loaded, ProgressBar* progress,
                            std::size_t& malformed) {
    OrderedPipeline pipeline(kLinesInFlightPerJob * options.jobs);
    if (progress != nullptr) {
        pipeline.showProgressOn(progress);
    }
    std::string readError;
    {
        Workers workers(pipeline);
        for (unsigned i = 0; i < options.jobs; ++i) {
            workers.start(loaded, options.format);
        }
        readError = feedLines(input, options, pipeline);
        pipeline.close();
        workers.joinAll();
    }
    pipeline.rethrowFailure();
    pipeline.finishWriting();
    malformed = pipeline.malformedLines();
    return readError;
}

int runBatch(const BatchOptions& options) {
    std::string logFolder;
    std::vector<Document> documents;
    if (!prepareCommand(options.log, options.documents, logFolder, documents)) {
        return kExitUsageOrInput;
    }
    std::string error;
    // The limit holds for each line; the requests as a whole may be any size.
    std::FILE* input = openInput(options.requestsPath, "requests",
                                 std::numeric_limits<std::uint64_t>::max(), error);
    if (input == nullptr) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }
    const bool fromFile = input != stdin;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> closeInput(
        fromFile ? input : nullptr, [](std::FILE* file) { return std::fclose(file); });

    // One store for all workers, so that memory does not grow with --jobs.
    PrivateCore core(logFolder);
    if (!loadDocuments(documents, core, options.documents.maxInputSize, false, std::cerr)) {
        return kExitUsageOrInput;
    }

    const unsigned jobs = options.jobs;
    std::optional<ProgressBar> progress;
    std::error_code sizeError;
    const std::uintmax_t size =
        fromFile ? std::filesystem::file_size(options.requestsPath, sizeError) : 0;
    if (fromFile && !sizeError && ::isatty(STDERR_FILENO) == 1) {
        progress.emplace(size);
    }
    ProgressBar* const bar = progress ? &*progress : nullptr;
    std::size_t malformed = 0;
    const std::string readError = jobs == 1
                                      ? answerInTurn(input, options, core.get(), bar, malformed)
                                      : answerByWorkers(input, options, core.get(), bar, malformed);
    std::fflush(answerStream());
    if (progress) {
        progress->finish(jobs, malformed);
    }
    if (!readError.empty()) {
        std::cerr << "tov: " << readError << "\n";
        return kExitUsageOrInput;
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
                     "Worker threads, sharing the loaded documents (default: " +
                         std::to_string(defaultJobs()) + ", the hardware threads)")
        ->type_name("N")
        ->check(CLI::Range(1u, 1024u));
    addLogOption(*command, options->log);
    addFormatOption(*command, options->format);
    command->footer(helpText({
        "Input: one JSON object per line, {\"kind\": KIND, \"request\": {...}}, where KIND "
        "is one of " +
            requestKindNamesInWords() +
            " (as for eval) and the request is the request document itself; other members "
            "are ignored, but for \"id\", which --format json carries back.",
        "Output (standard output): one line per input line, in input order. For a request, "
        "the response's single-string form, exactly as eval prints it, such as "
        "{\"Result\":\"Failure\",\"ResultComment\":\"Insufficient input data\"}. For a "
        "line that is no such object (empty, not JSON, not an object, an unknown or missing "
        "\"kind\", a missing \"request\" or one that is no object), an object such as "
        "{\"line\":3,\"error\":\"missing \\\"request\\\"\"} with the line number "
        "counted from 1. With --format json, each answer is the object that eval --format "
        "json prints, led by the line's \"id\" when it has one (and error objects carry "
        "it too).",
        // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one paragraph over two lines.
        "Standard error: the faults of documents that do not load, and, when it is a terminal "
        "and the requests come from a file, a progress bar.",
        "Exit status: 0 when every line was a request, whatever the answers; 1 when a line "
        "was not; 2 for bad arguments, unreadable files or documents that do not load "
        "(nothing is evaluated then), and for requests that cannot be read to their end "
        "(a read error, a line over the size limit: the lines before it are answered).",
        kLogHelp,
        kMaxInputSizeHelp,
        "Example: tov batch --rules rules.json --dm datamodel.json --jobs 4 requests.jsonl",
    }));
    return {command, [options] { return runBatch(*options); }};
}

}  // namespace tovcli
