// usage: quorvane_memory [--runs N] FOLDER ARGUMENT...
//
// Runs the program with ARGUMENT... in copies of FOLDER: once as it is, then again and again with one request
// for memory refused, and with all refused from one on. Each time the first is another one of those that the
// first run made: all of them, or about N spread evenly. However it goes, the run must end in order: with
// status 1 and a message, or as if nothing had been refused. What it printed until then must be right, every
// image that was there must be the old one or the new one, and no temporary file may be left over.
#include "faults/failing_memory.h"
#include "host/run.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

std::map<std::string, std::string> filesOf(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        files[entry.path().lexically_relative(folder)] = entry.is_regular_file() ? contentOf(entry) : "";
    }
    return files;
}

struct Outcome {
    int status = 0;
    std::string out;
    std::string err;
    std::map<std::string, std::string> files;
    long requests = 0;
};

// What the child tells of its requests.
long* const sharedRequests = static_cast<long*>(
    mmap(nullptr, sizeof(long), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));

class Runner {
public:
    Runner(fs::path folder, std::vector<char*> arguments)
        : folder_(std::move(folder)), arguments_(std::move(arguments)),
          scratch_(folder_.string() + ".scratch") {}

    Outcome run(long failing, bool fromThenOn) {
        fs::remove_all(scratch_);
        fs::create_directories(scratch_);
        fs::copy(folder_, scratch_ / "files", fs::copy_options::recursive);
        *sharedRequests = 0;
        std::fflush(nullptr);
        const pid_t child = fork();
        if (child == 0) {
            runHere(failing, fromThenOn);
        }
        Outcome outcome;
        waitpid(child, &outcome.status, 0);
        outcome.out = contentOf(scratch_ / "out");
        outcome.err = contentOf(scratch_ / "err");
        outcome.files = filesOf(scratch_ / "files");
        outcome.requests = *sharedRequests;
        fs::remove_all(scratch_);
        return outcome;
    }

private:
    [[noreturn]] void runHere(long failing, bool fromThenOn) {
        if (std::freopen((scratch_ / "out").c_str(), "w", stdout) == nullptr ||
            std::freopen((scratch_ / "err").c_str(), "w", stderr) == nullptr ||
            chdir((scratch_ / "files").c_str()) != 0) {
            _exit(EXIT_FAILURE);
        }
        std::setvbuf(stderr, nullptr, _IONBF, 0);
        failingMemory = {0, failing, fromThenOn};
        std::atexit([] { *sharedRequests = failingMemory.requests; });
        std::exit(runQuorvane(static_cast<int>(arguments_.size()), arguments_.data()));
    }

    fs::path folder_;
    std::vector<char*> arguments_;
    fs::path scratch_;
};

bool isImage(const std::string& name) { return name.ends_with(".elf"); }

// How an outcome offends; empty if it doesn't.
std::string offence(const Outcome& outcome, const Outcome& untouched,
                    const std::map<std::string, std::string>& before) {
    for (const auto& [name, content] : outcome.files) {
        const auto old = before.find(name);
        const auto made = untouched.files.find(name);
        if (old == before.end() && made == untouched.files.end() && name.front() == '.') {
            return "leaves " + name;
        }
        if (isImage(name) && old != before.end() && made != untouched.files.end() && content != old->second &&
            content != made->second) {
            return "harms " + name;
        }
    }
    if (!WIFEXITED(outcome.status)) {
        return std::string("dies of ") + strsignal(WTERMSIG(outcome.status));
    }
    if (outcome.status == untouched.status && outcome.out == untouched.out && outcome.err == untouched.err) {
        return outcome.files == untouched.files ? "" : "leaves other content in its files";
    }
    if (WEXITSTATUS(outcome.status) != EXIT_FAILURE) {
        return "ends with status " + std::to_string(WEXITSTATUS(outcome.status));
    }
    if (!untouched.out.starts_with(outcome.out)) {
        return "prints something else";
    }
    std::istringstream lines(outcome.err);
    int known = 0;
    for (std::string line; std::getline(lines, line); ++known) {
        // A length that nothing could hold is the script's error; a file of words is named with the reason.
        const bool isScripts = line.starts_with("error: line ") && line.ends_with(": length too large");
        const bool isFiles = line.find(": error: can't open indirect file ") != std::string::npos &&
                             line.ends_with(": Cannot allocate memory");
        if (line != "Internal error detected" && !isScripts && !isFiles) {
            return "ends with another message";
        }
    }
    return known > 0 ? "" : "ends without a message";
}

int check(Runner& runner, const fs::path& folder, long runs) {
    const auto before = filesOf(folder);
    const Outcome untouched = runner.run(0, false);
    const long step = runs == 0 ? 1 : std::max(untouched.requests / runs, 1L);
    long done = 0;
    long ended = 0;
    int offences = 0;
    for (long failing = 1; failing <= untouched.requests; failing += step) {
        // Both ways in turn where not every request is tried.
        for (const bool fromThenOn : {false, true}) {
            if (step > 1 && fromThenOn != (done % 2 == 1)) {
                continue;
            }
            const Outcome outcome = runner.run(failing, fromThenOn);
            ++done;
            ended += outcome.err != untouched.err;
            const std::string what = offence(outcome, untouched, before);
            if (!what.empty() && ++offences <= 10) {
                std::printf("request %ld%s refused: %s\n%s", failing, fromThenOn ? " and all later" : "",
                            what.c_str(), outcome.err.c_str());
            }
        }
        if (step > 1 && done % 2 == 0) {
            failing += 1; // so that it isn't always the same kind of request in a loop
        }
    }
    std::printf("%ld requests, %ld runs, %ld ended early, %d offences\n", untouched.requests, done, ended,
                offences);
    return offences == 0 && ended > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<char*> words(argv, argv + argc);
    long runs = 0;
    if (words.size() > 3 && std::strcmp(words[1], "--runs") == 0) {
        runs = std::atol(words[2]);
        words.erase(words.begin() + 1, words.begin() + 3);
    }
    if (words.size() < 3) {
        std::fputs("usage: quorvane_memory [--runs N] FOLDER ARGUMENT...\n", stderr);
        return EXIT_FAILURE;
    }
    const fs::path folder = words[1];
    words.erase(words.begin() + 1);
    Runner runner(folder, words);
    return check(runner, folder, runs);
}
