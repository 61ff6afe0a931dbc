#include "host/run.h"

#include "host/quorvane_arg_parse.h"
#include "hostobjects/elf_file_class.h"
#include "hostobjects/tbsys_class.h"
#include "hostobjects/wscript_class.h"
#include "natives/error.h"
#include "natives/global.h"
#include "runtime/atom.h"
#include "runtime/context.h"
#include "system/files.h"
#include "system/h_exception.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <new>

namespace {

constexpr const char* internalError = "Internal error detected\n";

// The one whose scripts run, while they do.
const ESContext* runningContext = nullptr;

// Says on stderr what the exception in flight means, without asking for memory.
void printFailure() {
    const std::exception_ptr inFlight = std::current_exception();
    try {
        if (inFlight != nullptr) {
            std::rethrow_exception(inFlight);
        }
        std::fputs(internalError, stderr);
    } catch (const HException& failure) {
        std::fprintf(stderr, "error: %s\n", failure.text().c_str());
    } catch (const std::bad_alloc&) {
        if (runningContext != nullptr && runningContext->currentLine() > 0) {
            std::fprintf(stderr, "error: line %d: out of memory\n", runningContext->currentLine());
        } else {
            std::fputs("error: out of memory\n", stderr);
        }
    } catch (...) {
        std::fputs(internalError, stderr);
    }
}

std::string bytesOf(const QString& text) { return text.toLatin1().toStdString(); }

// Makes this process one in which files, pipes and children behave as they should, whatever it inherited.
void prepareProcess() {
    // A file opened later must not become stdout: what Echo prints would land inside it.
    for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) {
        if (fcntl(fd, F_GETFD) == -1 && open("/dev/null", O_RDWR) != fd) {
            _exit(EXIT_FAILURE);
        }
    }
    // Children that nobody may wait for would have no exit status.
    std::signal(SIGCHLD, SIG_DFL);
    // Past a limit on file sizes, write is to fail like on a full disk. A handler does that for this process
    // alone, where ignoring the signal would be passed on to children.
    if (std::signal(SIGXFSZ, [](int) {}) == SIG_IGN) {
        std::signal(SIGXFSZ, SIG_IGN);
    }
    // Where memory runs out inside a function of the library that may not throw.
    std::set_terminate([] {
        printFailure();
        std::fflush(stdout);
        std::_Exit(EXIT_FAILURE);
    });
    // The library's own warnings are no part of what this program prints.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
}

void defineVariable(ESContext& context, const QString& definition, bool verbose) {
    const QStringList parts = definition.split(u'=', Qt::SkipEmptyParts);
    const QString name = parts.value(0);
    const QString value = parts.value(1);
    if (verbose) {
        std::printf("defining: %s=%s\n", bytesOf(name).c_str(), bytesOf(value).c_str());
    }
    if (!name.isEmpty()) {
        context.putProperty(context.globalObject, DontEnum, intern(name), atomValue(intern(value)));
    }
}

void loadFile(ESContext& context, const QString& path, bool verbose) {
    if (verbose) {
        std::printf("loading: %s\n", bytesOf(path).c_str());
    }
    ESCompletion completion;
    context.setCurrentLine(0); // the last script's doesn't count for what reading needs
    if (!context.globalClass->loadFile(context, path, completion)) {
        throw HException("cannot load " + bytesOf(path));
    }
    reportResult(context, completion);
}

// The context ends here, before the host classes that its objects refer to, or after a failure not at all.
void runScripts(std::unique_ptr<ESContext>& context, const QuorvaneArgParse& arguments) {
    context->initContext();
    WScriptESClass wscript;
    TBSysESClass tbsys;
    wscript.init(*context);
    tbsys.init(*context);
    ElfFileESClass elfFile;
    elfFile.init(*context);

    for (const QString& definition : arguments.defines) {
        defineVariable(*context, definition, arguments.verbose);
    }
    for (const QString& path : arguments.loads) {
        loadFile(*context, path, arguments.verbose);
    }
    const QString script = arguments.scriptArguments.join(u'\n');
    if (!script.isEmpty()) {
        if (arguments.verbose) {
            std::printf("executing: %s\n", bytesOf(script).c_str());
        }
        reportResult(*context, context->evaluate(script));
    }
    runningContext = nullptr;
    context.reset();
}

} // namespace

void reportResult(ESContext& context, const ESCompletion& completion) {
    if (completion.status != ESCompletion::exception) {
        return;
    }
    const ESValue& value = completion.value;
    if (value.isObject() && ESContext::inPrototypeChain(context.errorClass->errorPrototype(), value)) {
        const ESValue message = context.get(value.object, intern("message"));
        throw HException(bytesOf(context.toString(message)));
    }
    throw HException("uncaught exception - " + bytesOf(context.toString(value)));
}

int runQuorvane(int argc, char** argv) {
    prepareProcess();
    // Out here, where a failure leaves it as it is: exit doesn't unwind.
    std::unique_ptr<ESContext> context;
    try {
        const char* const programName = argc > 0 ? argv[0] : "";
        recordProgramDirs(programName, 1);
        errorReporter = new ErrorReporter{programName, &std::cerr};
        QuorvaneArgParse arguments(*errorReporter);
        if (argc < 2) {
            printHelp(std::cerr);
            return EXIT_SUCCESS;
        }
        arguments.parseArguments(std::span(argv + 1, static_cast<std::size_t>(argc - 1)),
                                 QuorvaneArgParse::onlyPass);
        if (errorReporter->errorCount != 0) {
            return EXIT_FAILURE;
        }
        context = std::make_unique<ESContext>();
        runningContext = context.get();
        runScripts(context, arguments);
        // Closing tells what some file systems find out late.
        if (std::ferror(stdout) != 0 || std::fclose(stdout) != 0) {
            throw HException(outputLost);
        }
        return EXIT_SUCCESS;
    } catch (...) {
        printFailure();
    }
    std::exit(EXIT_FAILURE);
}
