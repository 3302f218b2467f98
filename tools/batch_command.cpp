// tov batch: JSON Lines of requests in, one answer line out per input line, in
// input order, evaluated by workers that share one loaded store.
#include <sys/stat.h>
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

// Lines a worker takes at a time, as one chunk: few enough that the workers
// share a short input, enough to spare most meetings at the lock.
constexpr std::size_t kLinesPerChunk = 16;
// Chunks that may be read ahead of the last answer written, per job: enough
// to keep every job busy while bounding memory on a large input.
constexpr std::size_t kChunksInFlightPerJob = 4;

struct BatchOptions : DocumentCommandOptions {
    std::string requestsPath;  // empty or "-": standard input
    unsigned jobs = 1;
};

unsigned defaultJobs() {
    const unsigned threads = std::thread::hardware_concurrency();
    return threads == 0 ? 1 : threads;
}

// Answers on their way to the answer stream, gathered into large writes: a
// write of each answer by itself would cost more than the rest of its framing.
class AnswerWriter {
public:
    explicit AnswerWriter(std::FILE* stream) : stream(stream) { pending.reserve(kBlock); }
    AnswerWriter(const AnswerWriter&) = delete;
    AnswerWriter& operator=(const AnswerWriter&) = delete;
    // Answers given before an exception still reach the stream, as they did
    // when each was written by itself.
    ~AnswerWriter() { writeOut(); }

    void addLine(const std::string& answer) {
        // Room first, so that running out of memory leaves no half answer.
        pending.reserve(pending.size() + answer.size() + 1);
        pending += answer;
        pending += '\n';
        if (pending.size() >= kBlock) {
            writeOut();
        }
    }

    // Answers each with its line end.
    void addLines(const std::string& answers) {
        if (pending.size() + answers.size() > kBlock) {
            writeOut();
        }
        if (answers.size() >= kBlock) {
            std::fwrite(answers.data(), 1, answers.size(), stream);
        } else {
            pending += answers;
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

// Lines read in a row, handed to a worker as one, with their answers. A chunk
// goes round between the reader, a worker and the writer, and keeps its
// strings' room, so that lines and answers cost no allocation once the
// first chunks are filled, nor a free in another thread than the one that
// allocated.
struct Chunk {
    std::size_t sequence = 0;   // from 0, in input order
    std::size_t firstLine = 0;  // the index of its first line, from 0
    std::size_t count = 0;      // lines held, the first `count` of `lines`
    std::vector<std::string> lines;
    std::vector<std::size_t> bytes;  // of each line as read, line end included
    std::string answers;             // each with its line end
    std::size_t malformed = 0;       // lines that were no request

    // Takes the line's text, leaving the room of an earlier line in its place.
    void add(std::string& text, std::size_t lineBytes) {
        if (count == lines.size()) {
            lines.emplace_back();
            bytes.push_back(0);
        }
        lines[count].swap(text);
        bytes[count] = lineBytes;
        ++count;
    }
};

// Hands chunks of lines to the workers and writes their answers in input
// order: whoever delivers the next chunk due writes it, and every chunk that
// waited behind it.
class OrderedPipeline {
public:
    explicit OrderedPipeline(std::size_t window) : window(window), ready(window, nullptr) {}

    // Before the first line: the bar to advance as answers are written.
    void showProgressOn(ProgressBar* bar) {
        std::lock_guard<std::mutex> lock(mutex);
        progress = bar;
    }

    // Reader: an empty chunk for the lines from `firstLine` on, once one may
    // be read ahead. While none may, the reader answers a queued chunk
    // instead of waiting: it is left in `toAnswer`, and null returned. Null
    // and no chunk to answer once the work was given up, so that the reader
    // stops.
    Chunk* acquire(std::size_t firstLine, Chunk*& toAnswer) {
        toAnswer = nullptr;
        std::unique_lock<std::mutex> lock(mutex);
        if (!givenUp && !hasRoom()) {
            if (!queue.empty()) {
                toAnswer = queue.front();
                queue.pop_front();
                return nullptr;
            }
            // Every chunk is being answered by a worker, or waits for one
            // that is.
            readerWaiting = true;
            roomAvailable.wait(lock, [&] { return givenUp || hasRoom(); });
            readerWaiting = false;
        }
        if (givenUp) {
            return nullptr;
        }
        if (unused.empty()) {
            chunks.push_back(std::make_unique<Chunk>());
            unused.push_back(chunks.back().get());
        }
        Chunk* const chunk = unused.back();
        unused.pop_back();
        chunk->firstLine = firstLine;
        chunk->count = 0;
        return chunk;
    }

    // Reader: queues a chunk of at least one line. False once the work was
    // given up, so that the reader stops.
    bool submit(Chunk* chunk) {
        std::lock_guard<std::mutex> lock(mutex);
        if (givenUp) {
            return false;
        }
        chunk->sequence = submitted++;
        queue.push_back(chunk);
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

    // Worker: the next chunk to answer, or null once the input is done or
    // the work was given up.
    Chunk* take() {
        std::unique_lock<std::mutex> lock(mutex);
        workAvailable.wait(lock, [&] { return closed || !queue.empty(); });
        if (queue.empty() || givenUp) {
            return nullptr;
        }
        Chunk* const chunk = queue.front();
        queue.pop_front();
        return chunk;
    }

    // Worker: a chunk taken last, answered.
    void deliver(Chunk* chunk) {
        std::lock_guard<std::mutex> lock(mutex);
        ready[chunk->sequence % window] = chunk;
        bool wrote = false;
        for (Chunk* next = ready[nextToWrite % window]; next != nullptr;
             next = ready[nextToWrite % window]) {
            answers.addLines(next->answers);
            malformed += next->malformed;
            if (progress != nullptr) {
                for (std::size_t i = 0; i < next->count; ++i) {
                    progress->advance(next->bytes[i]);
                }
            }
            ready[nextToWrite % window] = nullptr;
            unused.push_back(next);
            ++nextToWrite;
            wrote = true;
        }
        if (wrote) {
            // Flushed whenever all that was read is answered, so that answers
            // to lines typed or piped slowly come out at once.
            if (nextToWrite == submitted) {
                answers.flush();
            }
            if (readerWaiting) {
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
    // Under the lock: whether a chunk more may be read ahead.
    bool hasRoom() const { return !unused.empty() || chunks.size() < window; }

    const std::size_t window;  // chunks read ahead of the last written, at most
    AnswerWriter answers{answerStream()};
    ProgressBar* progress = nullptr;

    std::mutex mutex;
    std::condition_variable workAvailable;
    std::condition_variable roomAvailable;
    std::vector<std::unique_ptr<Chunk>> chunks;  // all made so far
    std::vector<Chunk*> unused;
    std::deque<Chunk*> queue;
    bool closed = false;
    std::size_t submitted = 0;
    std::vector<Chunk*> ready;  // answered, by sequence modulo the window
    std::size_t nextToWrite = 0;
    bool readerWaiting = false;
    std::size_t malformed = 0;
    bool givenUp = false;
    std::exception_ptr failure;
};

// Answers every line of a chunk.
void answerChunk(Chunk& chunk, const RequestJudge& judge, OutputFormat format) {
    chunk.answers.clear();
    chunk.malformed = 0;
    for (std::size_t i = 0; i < chunk.count; ++i) {
        const BatchAnswer answer =
            answerBatchLine(chunk.lines[i], chunk.firstLine + i + 1, judge, format);
        if (!answer.wasRequest) {
            ++chunk.malformed;
        }
        chunk.answers += answer.text;
        chunk.answers += '\n';
    }
}

// A worker borrows the loaded store: evaluations only read the rule store and
// the data model, and the logger writes each line by itself.
// An exception ends this worker's work and everyone else's: it is handed to
// the pipeline, which the main thread asks once all workers are joined.
void work(TOVCoreDataControllers* loaded, OutputFormat format, OrderedPipeline& pipeline) {
    try {
        TOVCoreDataControllers core;
        core.borrowData(loaded);
        const RequestJudge judge = judgeWithCoreData(&core);
        for (Chunk* chunk = pipeline.take(); chunk != nullptr; chunk = pipeline.take()) {
            answerChunk(*chunk, judge, format);
            pipeline.deliver(chunk);
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
// the text (by swapping it) and returns false to stop the reading. Empty when
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

// Feeds every line to the pipeline in chunks; the message of readLines. A
// chunk goes to the workers when full, and before each read, which may wait,
// so that lines typed or piped slowly are answered at once. While no more
// may be read ahead, the reading thread answers queued chunks itself, as one
// of the jobs: so the jobs need no thread more than the cores they stand for,
// and the reader is not woken for each few chunks answered.
std::string feedLines(std::FILE* input, const BatchOptions& options, const RequestJudge& judge,
                      OrderedPipeline& pipeline) {
    Chunk* chunk = nullptr;
    bool givenUp = false;
    const auto submit = [&] {
        if (chunk != nullptr && chunk->count > 0) {
            givenUp = !pipeline.submit(chunk) || givenUp;
            chunk = nullptr;
        }
    };
    const auto acquire = [&](std::size_t index) {
        while (chunk == nullptr && !givenUp) {
            Chunk* toAnswer = nullptr;
            chunk = pipeline.acquire(index, toAnswer);
            if (toAnswer != nullptr) {
                answerChunk(*toAnswer, judge, options.format);
                pipeline.deliver(toAnswer);
            } else if (chunk == nullptr) {
                givenUp = true;
            }
        }
    };
    std::string message = readLines(input, options, submit,
                                    [&](std::string& text, std::size_t bytes, std::size_t index) {
                                        acquire(index);
                                        if (givenUp) {
                                            return false;  // the failure tells why
                                        }
                                        chunk->add(text, bytes);
                                        if (chunk->count == kLinesPerChunk) {
                                            submit();
                                        }
                                        return true;
                                    });
    submit();
    return message;
}

// With one job the reading thread answers each line as soon as it is read:
// the same answers in the same order as through the pipeline, without
// handing lines to a worker and waking it. The answers are flushed before
// each read that may wait, so that lines typed or piped slowly are answered
// at once. The message of readLines.
std::string answerInTurn(std::FILE* input, const BatchOptions& options,
                         TOVCoreDataControllers* loaded, ProgressBar* progress,
                         std::size_t& malformed) {
    TOVCoreDataControllers core;
    core.borrowData(loaded);
    const RequestJudge judge = judgeWithCoreData(&core);
    AnswerWriter answers(answerStream());
    // A read of a regular file never waits for its writer: flushing before
    // it would only cut the output into more writes.
    struct stat status {};
    const bool readsMayWait = ::fstat(::fileno(input), &status) != 0 || !S_ISREG(status.st_mode);
    std::function<void()> beforeRead;
    if (readsMayWait) {
        beforeRead = [&answers] { answers.flush(); };
    }
    return readLines(input, options, std::move(beforeRead),
                     [&](const std::string& text, std::size_t bytes, std::size_t index) {
                         const BatchAnswer answer =
                             answerBatchLine(text, index + 1, judge, options.format);
                         if (!answer.wasRequest) {
                             ++malformed;
                         }
                         answers.addLine(answer.text);
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
    OrderedPipeline pipeline(kChunksInFlightPerJob * options.jobs);
    if (progress != nullptr) {
        pipeline.showProgressOn(progress);
    }
    std::string readError;
    {
        Workers workers(pipeline);
        // The reading thread is one of the jobs: it answers while no more
        // lines may be read ahead, and once all are read, alongside the
        // workers.
        for (unsigned i = 1; i < options.jobs; ++i) {
            workers.start(loaded, options.format);
        }
        TOVCoreDataControllers core;
        core.borrowData(loaded);
        const RequestJudge judge = judgeWithCoreData(&core);
        readError = feedLines(input, options, judge, pipeline);
        pipeline.close();
        for (Chunk* chunk = pipeline.take(); chunk != nullptr; chunk = pipeline.take()) {
            answerChunk(*chunk, judge, options.format);
            pipeline.deliver(chunk);
        }
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
