// tov workbench: a page in the browser to write, check, draw, try and test
// rules. The program serves the page and answers its questions on the
// loopback interface; every question loads the edited documents into a
// private core of its own, and no file is written unless --write asks.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "api/log_setting.h"
#include "commands.h"
#include "diagram_renderer.h"
#include "http_server.h"
#include "request_guards.h"
#include "workbench_api.h"
#include "workbench_router.h"
#include "workspace.h"

namespace tovcli {

namespace {

// 256 bits: far beyond guessing, through any number of requests.
constexpr std::size_t kTokenBytes = 32;
// Requests in flight at a stop have this long to finish.
constexpr std::chrono::milliseconds kGrace(2000);

struct WorkbenchOptions {
    std::string rulesPath;
    std::string dataModelPath;
    std::string suitePath;
    std::string listen = "127.0.0.1:0";
    bool open = false;
    bool write = false;
    bool noToken = false;
    std::vector<std::string> allowedHosts;
    std::uint64_t maxBodySize = std::uint64_t{16} << 20;
    std::uint64_t maxInputSize = kDefaultMaxInputSize;
    std::string log = "off";
};

bool isExecutable(const std::filesystem::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
}

// The folder of the shipped examples: installed beside the program
// (share/tov/examples), or else in the source tree the program was built
// from; empty when neither is there.
std::string findExamplesFolder() {
    std::vector<std::filesystem::path> candidates;
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (!error) {
        candidates.push_back(program.parent_path() / TOV_BIN_TO_EXAMPLES);
    }
    candidates.emplace_back(TOV_SOURCE_EXAMPLES);
    for (const std::filesystem::path& candidate : candidates) {
        if (std::filesystem::is_regular_file(candidate / "rules.json", error) &&
            std::filesystem::is_regular_file(candidate / "scenario.json", error)) {
            return candidate.lexically_normal().string();
        }
    }
    return {};
}

// The first executable of that name on PATH, or empty.
std::string findOnPath(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::string folders = path == nullptr ? "" : path;
    std::size_t start = 0;
    while (start <= folders.size()) {
        const std::size_t end = std::min(folders.find(':', start), folders.size());
        const std::string folder = folders.substr(start, end - start);
        const std::filesystem::path candidate =
            std::filesystem::path(folder.empty() ? "." : folder) / name;
        if (isExecutable(candidate)) {
            return candidate.string();
        }
        start = end + 1;
    }
    return {};
}

// Starts `opener` on the address and does not wait for it: it runs in a
// grandchild of its own, which a browser it starts may outlive us in, and
// which holds none of our descriptors (the listening socket above all, which
// would otherwise keep the port after we end). Called before any thread
// starts, so that the fork copies one thread only.
void openInBrowser(const std::string& opener, const std::string& address) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (::fork() == 0) {
            const int nothing = ::open("/dev/null", O_RDWR);
            if (nothing >= 0) {
                ::dup2(nothing, STDIN_FILENO);
            }
            ::signal(SIGPIPE, SIG_DFL);
            ::close_range(3, ~0U, 0);
            std::array<char*, 3> arguments = {const_cast<char*>(opener.c_str()),
                                              const_cast<char*>(address.c_str()), nullptr};
            ::execv(opener.c_str(), arguments.data());
            ::_exit(127);
        }
        ::_exit(0);
    }
    if (child > 0) {
        ::waitpid(child, nullptr, 0);
    }
}

int runWorkbench(const WorkbenchOptions& options) {
    std::signal(SIGPIPE, SIG_IGN);
    std::string error;
    std::string logFolder;
    if (!tovapi::libraryLogSetting(options.log, logFolder, error)) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }
    if (options.write && (options.rulesPath.empty() || options.dataModelPath.empty())) {
        std::cerr << "tov: --write saves to the documents given: name both with --rules and "
                     "--dm\n";
        return kExitUsageOrInput;
    }
    tovwb::WorkspaceOptions opening;
    opening.rulesPath = options.rulesPath;
    opening.dataModelPath = options.dataModelPath;
    opening.suitePath = options.suitePath;
    opening.examplesFolder = findExamplesFolder();
    opening.write = options.write;
    opening.maxInputSize = options.maxInputSize;
    const std::unique_ptr<tovwb::Workspace> workspace = tovwb::Workspace::open(opening, error);
    if (workspace == nullptr) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }
    tovhttp::ListenAddress address;
    if (!tovhttp::parseListenAddress(options.listen, address, error)) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }
    std::string token;
    if (!options.noToken) {
        token = tovhttp::randomToken(kTokenBytes, error);
        if (token.empty()) {
            std::cerr << "tov: " << error << "\n";
            return kExitUsageOrInput;
        }
    }
    tovhttp::ServerLimits limits;
    limits.maxBodySize = options.maxBodySize;
    const std::unique_ptr<tovhttp::HttpServer> server =
        tovhttp::HttpServer::listen(address, limits, error);
    if (server == nullptr) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }
    // Taken before the address is told, so that a stop asked at once is a stop.
    server->handleSignals({SIGTERM, SIGINT}, [&server](int /*signal*/) { server->stop(kGrace); });
    // The address without the token: this line may well end up in a log.
    std::cerr << "tov workbench: listening on " << server->url() << std::endl;
    std::cerr << "tov workbench: editing " << workspace->files().rules << " and "
              << workspace->files().dataModel
              << (options.write ? ", saved back on request" : ", never saved by the program")
              << std::endl;
    if (options.noToken) {
        std::cerr << "tov workbench: warning: --no-token: any program on this machine, and any "
                     "web page whose requests reach this address, can read and judge the "
                     "documents"
                  << (options.write ? " and save them" : "") << std::endl;
    }
    const std::string page = server->url() + "/" + (token.empty() ? "" : "?token=" + token);
    std::cout << page << std::endl;
    if (options.open) {
        const std::string opener = findOnPath("xdg-open");
        if (opener.empty()) {
            std::cerr << "tov workbench: xdg-open is not installed; open the address on standard "
                         "output in a browser"
                      << std::endl;
        } else {
            openInBrowser(opener, page);
        }
    }

    const std::unique_ptr<tovwb::DiagramRenderer> renderer = tovwb::makeDiagramRenderer();
    const tovwb::WorkbenchApi api(*workspace, *renderer, logFolder);
    tovhttp::GuardPolicy policy;
    policy.checkHost = server->listensOnLoopback();
    policy.allowedHosts = options.allowedHosts;
    policy.token = token;
    tovwb::WorkbenchRouter router(api, tovhttp::RequestGuards(policy));
    // One person's page asks one question at a time.
    server->run(router, 1);
    std::cerr << "tov workbench: stopped" << std::endl;
    return kExitSuccess;
}

}  // namespace

Command addWorkbenchCommand(CLI::App& program) {
    auto options = std::make_shared<WorkbenchOptions>();
    CLI::App* command = program.add_subcommand(
        "workbench", "Write, check, draw, try and test the rules in a page of the browser");
    command->add_option("--rules", options->rulesPath, "The rules document (default: the example)")
        ->type_name("FILE");
    command
        ->add_option("--dm", options->dataModelPath,
                     "The data-model document (default: the example)")
        ->type_name("FILE");
    command
        ->add_option("--suite", options->suitePath,
                     "A suite for the test pane, as tov test reads (default: the example)")
        ->type_name("FILE");
    command
        ->add_option("--listen", options->listen,
                     "Address and port (default 127.0.0.1:0, any free port)")
        ->type_name("HOST:PORT");
    command->add_flag("--open", options->open, "Open the page in the browser (xdg-open)");
    command->add_flag("--write", options->write,
                      "Let the page save the documents back to --rules and --dm");
    command->add_flag("--no-token", options->noToken,
                      "Ask no token of the page's requests (not recommended)");
    command
        ->add_option("--allow-host", options->allowedHosts,
                     "A further host name that requests may be for (repeatable)")
        ->type_name("NAME");
    command
        ->add_option("--max-body-size", options->maxBodySize,
                     "The largest request of the page (default 16MiB)")
        ->type_name("SIZE")
        ->transform(CLI::AsSizeValue(false))
        ->check(CLI::PositiveNumber);
    addMaxInputSizeOption(*command, options->maxInputSize);
    addLogOption(*command, options->log);
    command->footer(helpText({
        "The page: both documents in editors, their faults and --strict findings as you type "
        "(a click on one puts the cursor there), the rules in words in judging order, the "
        "lifecycle of a type's attribute as a diagram, a request pane that evaluates an "
        "example request or one you write and tells the verdict, and a test pane that runs a "
        "suite against the edited documents. Downloads give the edited documents; only with "
        "--write does the program save them, to the paths given, once they load.",
        // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one paragraph over four lines.
        "Without --rules and --dm the example documents are edited: those installed in "
        "share/tov/examples beside the program, or else those of the source tree it was "
        "built from. The example requests and suite (examples/tests.json) come from there "
        "too.",
        "Standard output: the address of the page with its token, "
        "http://127.0.0.1:PORT/?token=...; each start draws a new token, which every request "
        "of the page but the page itself must carry. Standard error: \"tov workbench: "
        "listening on http://HOST:PORT\" (without the token) and the stop.",
        "Guards: requests for other host names than 127.0.0.1, localhost and [::1] (and "
        "--allow-host) are refused (403), against DNS rebinding; so are requests from other "
        "origins and without the token, and posts that are not JSON (415).",
        kLogHelp,
        kMaxInputSizeHelp,
        "Stops on SIGINT (Ctrl-C) or SIGTERM with exit status 0; status 2 for bad arguments, "
        "documents that cannot be read, or an address that cannot be had.",
        "Example: tov workbench --rules rules.json --dm datamodel.json --open",
    }));
    return {command, [options] { return runWorkbench(*options); }};
}

}  // namespace tovcli
