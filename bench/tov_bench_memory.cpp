// How much memory the load of a large rules document takes, as a multiple of
// the document's size: once with the document as text, once from its file.
//
// The program writes the document to a temporary file, then measures each
// form in a fresh process of its own (itself, run again with --measure), so
// that neither the generation of the document nor the other form leaves
// freed memory behind in which the load could hide. That process reads the
// peak resident set from VmHWM in /proc/self/status before and after the
// load. VmHWM belongs to the process image and starts afresh at exec, whereas
// getrusage's ru_maxrss keeps the peak of the image before the exec, which
// here is a copy of the generating process. Before the first reading the
// process has done a small load, so that the library's code and the
// allocator's first arena are in place, and it resets the high-water mark
// to the current resident set where the kernel allows it (clear_refs).
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>

#include "session.h"
#include "tov/entry_points.h"
#include "workload.h"

namespace {

constexpr int kDefaultRuleCount = 100000;
constexpr double kBytesPerMiB = 1024.0 * 1024.0;

// A field of /proc/self/status in bytes, or -1 when it cannot be read.
long long statusBytes(const char* field) {
    std::ifstream status("/proc/self/status");
    const std::string prefix = std::string(field) + ":";
    std::string line;
    while (std::getline(status, line)) {
        if (line.compare(0, prefix.size(), prefix) == 0) {
            return std::atoll(line.c_str() + prefix.size()) * 1024;
        }
    }
    return -1;
}

void resetPeak() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

long long fileSize(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 ? static_cast<long long>(info.st_size) : -1;
}

// Into a string of the exact size, so that reading leaves no freed memory.
bool readFile(const std::string& path, std::string& text) {
    const long long size = fileSize(path);
    std::ifstream file(path, std::ios::in | std::ios::binary);
    if (size < 0 || !file.is_open()) {
        return false;
    }
    text.resize(static_cast<std::size_t>(size));
    return static_cast<bool>(file.read(text.data(), static_cast<std::streamsize>(size)));
}

// Loads the document of `ruleCount` rules in `path` in one form, and reports
// the growth of the peak. The answer and the store are checked only after the
// peak is read, since the check itself takes memory.
int measure(const std::string& form, const std::string& path, int ruleCount) {
    const bool fromText = form == "text";
    if (!fromText && form != "file") {
        std::cerr << "unknown form " << form << ": use text or file\n";
        return 2;
    }
    tovbench::Session session;
    std::string error;
    if (!session.loadRules(tovbench::transitionRulesDocument(tovbench::kAttributesPerType),
                           tovbench::kAttributesPerType, error)) {
        std::cerr << "warm-up: " << error << "\n";
        return 1;
    }
    std::string text;
    if (fromText && !readFile(path, text)) {
        std::cerr << "cannot read " << path << "\n";
        return 1;
    }
    resetPeak();
    const long long before = statusBytes("VmHWM");

    const TOVResponse response = fromText ? InitializeTOVRules(text, session.coreData())
                                          : InitializeTOVRulesFromFile(path, session.coreData());
    const long long after = statusBytes("VmHWM");
    error = tovbench::unexpectedAnswer(response, tovbench::kLoadedRules);
    if (error.empty()) {
        error = session.unexpectedRules(ruleCount);
    }
    const long long documentBytes = fileSize(path);
    if (error.empty() && (before < 0 || after < 0 || documentBytes <= 0)) {
        error = "cannot read VmHWM from /proc/self/status or the document's size";
    }
    if (!error.empty()) {
        std::cerr << "from " << form << ": " << error << "\n";
        return 1;
    }
    const long long growth = after - before;
    std::printf(
        "from %s: the load raised the peak by %.1f MiB, %.2f times the document "
        "(process peak %.1f MiB)\n",
        form.c_str(), static_cast<double>(growth) / kBytesPerMiB,
        static_cast<double>(growth) / static_cast<double>(documentBytes),
        static_cast<double>(after) / kBytesPerMiB);
    return 0;
}

// Runs this program again to measure one form; true when it succeeded.
bool measureInFreshProcess(const char* form, const std::string& path, int ruleCount) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        std::array<std::string, 5> words = {"tov_bench_memory", "--measure", form, path,
                                            std::to_string(ruleCount)};
        std::array<char*, 6> arguments = {words[0].data(), words[1].data(), words[2].data(),
                                          words[3].data(), words[4].data(), nullptr};
        execv("/proc/self/exe", arguments.data());
        std::perror("tov_bench_memory: exec");
        _exit(127);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

std::string writeDocument(int ruleCount) {
    const char* folder = std::getenv("TMPDIR");
    std::string path = std::string(folder != nullptr && *folder != '\0' ? folder : "/tmp") +
                       "/tov_bench_memory_XXXXXX";
    const int descriptor = mkstemp(path.data());
    if (descriptor < 0) {
        return {};
    }
    const std::string document = tovbench::transitionRulesDocument(ruleCount);
    const bool written = write(descriptor, document.data(), document.size()) ==
                         static_cast<ssize_t>(document.size());
    close(descriptor);
    if (!written) {
        unlink(path.c_str());
        return {};
    }
    std::printf("document: %zu bytes, %d transition rules\n", document.size(), ruleCount);
    return path;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 5 && std::strcmp(argv[1], "--measure") == 0) {
        return measure(argv[2], argv[3], std::atoi(argv[4]));
    }
    if (argc > 2 || (argc == 2 && std::atoi(argv[1]) <= 0)) {
        std::cerr << "usage: tov_bench_memory [RULES]   (default " << kDefaultRuleCount << ")\n";
        return 2;
    }
    const int ruleCount = argc == 2 ? std::atoi(argv[1]) : kDefaultRuleCount;
    const std::string path = writeDocument(ruleCount);
    if (path.empty()) {
        std::perror("tov_bench_memory: cannot write the document");
        return 1;
    }
    const bool measured = measureInFreshProcess("text", path, ruleCount) &&
                          measureInFreshProcess("file", path, ruleCount);
    unlink(path.c_str());
    return measured ? 0 : 1;
}
