#include "check/check_run.h"

#include "check/check_script.h"
#include "host/release.h"
#include "runtime/text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>

namespace {

enum ExitStatus { Clean = 0, Errors = 1, NotChecked = 2 };

constexpr char usage[] = "Usage: quorvane-check [options] file ...\n"
                         "\n"
                         "  --json     Print the findings as JSON on standard output\n"
                         "  --listing  Print the bytecode of each file on standard output\n"
                         "  --werror   Count warnings as errors\n"
                         "  --help     Print this help\n"
                         "  --version  Print the version\n"
                         "  --         End the options\n"
                         "\n"
                         "A file named - is standard input.\n";

struct Options {
    bool json = false;
    bool listing = false;
    bool werror = false;
    bool help = false;
    bool version = false;
    std::vector<const char*> paths;
};

struct OptionName {
    std::string_view text;
    bool Options::*flag;
};

constexpr OptionName optionNames[] = {
    {"--json", &Options::json}, {"--listing", &Options::listing}, {"--werror", &Options::werror},
    {"--help", &Options::help}, {"--version", &Options::version},
};

bool setOption(Options& options, std::string_view word) {
    for (const OptionName& name : optionNames) {
        if (name.text == word) {
            options.*name.flag = true;
            return true;
        }
    }
    return false;
}

// Nothing, after a message, for a command line that is wrong.
std::optional<Options> readOptions(int argc, char** argv) {
    Options options;
    bool ended = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (ended || word == "-" || !word.starts_with('-')) {
            options.paths.push_back(argv[i]);
        } else if (word == "--") {
            ended = true;
        } else if (!setOption(options, word)) {
            std::cerr << "quorvane-check: unknown option " << word << "; try --help\n";
            return std::nullopt;
        }
    }
    if (options.help || options.version) {
        return options;
    }
    if (options.paths.empty()) {
        std::cerr << "quorvane-check: no file is given; try --help\n";
        return std::nullopt;
    }
    if (options.json && options.listing) {
        std::cerr << "quorvane-check: --json and --listing cannot share standard output\n";
        return std::nullopt;
    }
    return options;
}

struct FileCloser {
    void operator()(FILE* file) const {
        if (file != stdin) {
            std::fclose(file);
        }
    }
};

// The bytes of the file as characters; nothing, with errno set, when it cannot be read.
std::optional<QString> readText(const char* path) {
    const std::unique_ptr<FILE, FileCloser> file(std::strcmp(path, "-") == 0 ? stdin
                                                                             : std::fopen(path, "re"));
    if (file == nullptr) {
        return std::nullopt;
    }
    QByteArray bytes;
    char part[64 * 1024];
    while (const std::size_t got = std::fread(part, 1, sizeof part, file.get())) {
        bytes.append(part, static_cast<qsizetype>(got));
        if (bytes.size() > static_cast<qsizetype>(ESText::maxLength)) { // the host cannot load it either
            errno = EFBIG;
            return std::nullopt;
        }
    }
    if (std::ferror(file.get()) != 0) {
        return std::nullopt;
    }
    return QString::fromLatin1(bytes);
}

const char* severityName(Severity severity) {
    switch (severity) {
    case Severity::Error:
        return "error";
    case Severity::Warning:
        return "warning";
    default:
        return "note";
    }
}

// In one piece, so that the lines of checks that run side by side stay whole.
void printReport(const char* path, const Report& report) {
    std::cerr << std::string(path) + ':' + std::to_string(report.line) + ": " +
                     severityName(report.severity) + ": " + report.message.toLatin1().constData() + " [" +
                     report.rule + "]\n";
}

QJsonObject jsonOf(const char* path, const Report& report) {
    // A name that is no UTF-8 has no form of its own in JSON: its bytes are taken for characters.
    const QString name = QString::fromUtf8(path);
    return {{QStringLiteral("path"), name.toUtf8() == path ? name : QString::fromLatin1(path)},
            {QStringLiteral("line"), report.line},
            {QStringLiteral("severity"), QString::fromLatin1(severityName(report.severity))},
            {QStringLiteral("rule"), QString::fromLatin1(report.rule)},
            {QStringLiteral("message"), report.message}};
}

int checkFiles(const Options& options) {
    int status = Clean;
    QJsonArray json;
    for (const char* path : options.paths) {
        const std::optional<QString> text = readText(path);
        if (!text) {
            std::cerr << "quorvane-check: cannot read " << path << ": " << std::strerror(errno) << '\n';
            status = NotChecked;
            continue;
        }
        const char* const shown = std::strcmp(path, "-") == 0 ? "<stdin>" : path;
        for (Report& report : checkScript(*text, shown, options.listing ? &std::cout : nullptr)) {
            if (options.werror && report.severity == Severity::Warning) {
                report.severity = Severity::Error;
            }
            if (report.severity == Severity::Error && status == Clean) {
                status = Errors;
            }
            if (options.json) {
                json.append(jsonOf(shown, report));
            } else {
                printReport(shown, report);
            }
        }
    }
    if (options.json) {
        std::cout << QJsonDocument(json).toJson(QJsonDocument::Indented).constData();
    }
    return status;
}

int run(int argc, char** argv) {
    const std::optional<Options> options = readOptions(argc, argv);
    if (!options) {
        return NotChecked;
    }
    int status = Clean;
    if (options->help) {
        std::cout << usage;
    } else if (options->version) {
        std::cout << "quorvane-check " << releaseIdentifier << '\n';
    } else {
        status = checkFiles(*options);
    }
    if (!std::cout.flush()) {
        std::cerr << "quorvane-check: cannot write the standard output\n";
        return NotChecked;
    }
    return status;
}

} // namespace

int runCheck(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        std::cerr << "quorvane-check: out of memory\n";
    } catch (...) {
        std::cerr << "Internal error detected\n";
    }
    return NotChecked;
}
