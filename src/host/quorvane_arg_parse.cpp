#include "host/quorvane_arg_parse.h"

#include "host/release.h"

#include <cstdlib>
#include <iostream>

namespace {

void printBanner(std::ostream& stream, const char* title) {
    stream << "Tamberlin for ARM " << title << " - Release " << releaseIdentifier << '\n'
           << legalNotice << '\n'
           << std::flush;
}

constexpr char usage[] = "\n"
                         "Usage: quorvane [options] script\n"
                         "\n"
                         "  -define 'variable'='value'  Define a global variable\n"
                         "  -help                       Print options help\n"
                         "  -load 'file'                Load a script file\n"
                         "  -verbose                    Produce verbose output\n"
                         "\n";

} // namespace

void printHelp(std::ostream& stream) {
    printBanner(stream, "Quorvane");
    stream << usage << std::flush;
}

QuorvaneArgParse::QuorvaneArgParse(ErrorReporter& target) : ArgParse(target) {
    const auto appendTo = [](QStringList& list) {
        return [&list](const char*, const char* value) { list.append(QString::fromLatin1(value)); };
    };
    options["-define"] = {.kind = ArgOptionKind::Separate, .handler = appendTo(defines), .pass = onlyPass};
    options["-load"] = {.kind = ArgOptionKind::Separate, .handler = appendTo(loads), .pass = onlyPass};
    options["-help"] = {.handler =
                            [](const char*, const char*) {
                                printHelp(std::cerr);
                                std::exit(EXIT_SUCCESS);
                            },
                        .pass = onlyPass};
    options["-verbose"] = {.flagTarget = &verbose, .pass = onlyPass};
}

void QuorvaneArgParse::nonOption(const char* word) { scriptArguments.append(QString::fromLatin1(word)); }
