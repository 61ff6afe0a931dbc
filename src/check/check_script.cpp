#include "check/check_script.h"

#include "check/facts.h"
#include "check/hints.h"
#include "check/rules.h"
#include "machine/listing.h"

#include <algorithm>
#include <functional>

namespace {

constexpr char syntaxRule[] = "syntax";
constexpr char ignoreMark[] = "// check: ignore";

// The message of a SyntaxError without the line in front of it.
QString messageOf(ESContext& context, const ESException& exception) {
    const ESValue message = context.get(exception.value.object, wellKnownAtoms.message);
    const QString text = context.toString(message);
    return text.mid(text.indexOf(u": ") + 2);
}

// Runs a step of the compiler. True when it came to its end; else its error is the report.
bool succeeds(Script& script, Reports& reports, const std::function<void()>& step) {
    try {
        step();
        return true;
    } catch (const ESException& exception) {
        reports.push_back({script.engine.context.currentLine(), Severity::Error, syntaxRule,
                           messageOf(script.engine.context, exception)});
    } catch (const ESFatalError& fault) { // more than the instructions can express
        reports.push_back({std::max(fault.line, 1), Severity::Error, syntaxRule, fault.message});
        reports.push_back(
            {reports.back().line, Severity::Note, syntaxRule,
             QStringLiteral("more than the machine can express in one function, or at the top of "
                            "a script: move parts of it into functions of their own")});
    }
    return false;
}

// The errors of code generation name the last line of the text. The tree knows better, for those that show in
// it.
void correctLine(const Script& script, Report& report) {
    std::int32_t line = 0;
    const bool target = report.message.startsWith(u"only left-hand-side");
    const bool jump = report.message.startsWith(u"'break' not in");
    walkTree(script.root, script.program, [&](const Visit& visit) {
        const ESNode* const node = visit.node;
        const ESNode* const written = node->kind == TokenDelete ? node->child[0] : targetOf(node);
        const bool badTarget = written != nullptr && written->kind != TokenIdentifier && !isMember(written);
        const bool badJump =
            node->kind == TokenBreak && node->atom == nullptr && !visit.inLoop && !visit.inSwitch;
        if (line == 0 && ((target && badTarget) || (jump && badJump))) {
            line = badTarget ? written->line : node->line;
        }
    });
    report.line = line == 0 ? report.line : line;
}

void dropIgnored(const QString& text, Reports& reports) {
    std::vector<bool> ignored = {false}; // by line
    for (const QStringView line : QStringView(text).split(u'\n')) {
        ignored.push_back(line.contains(QLatin1String(ignoreMark)));
    }
    const auto drop = [&](const Report& report) {
        return report.severity == Severity::Warning && ignored[static_cast<std::size_t>(report.line)];
    };
    reports.erase(std::remove_if(reports.begin(), reports.end(), drop), reports.end());
}

void list(const Script& script, const ESCodeBlock& program, const char* path, std::ostream& stream) {
    debugStream = &stream;
    const ESObject* const globals = script.engine.context.globalObject;
    stream << path << ": program";
    listBlock(globals, program);
    const std::int32_t count = codeBlockCount();
    const auto functions = static_cast<std::int32_t>(script.parser.functions.size());
    for (std::int32_t index = count - functions; index < count; ++index) {
        const auto i = static_cast<std::size_t>(index - (count - functions));
        const ESAtom name = script.parser.functions[i]->name;
        stream << "\n\n" << path << ':' << script.functionLines[i] << ": function #" << index;
        if (name != nullptr) {
            stream << ' ' << name->toString().toLatin1().constData();
        }
        listBlock(globals, *codeBlockAt(index));
    }
    stream << '\n';
    debugStream = nullptr;
}

} // namespace

Reports checkScript(const QString& text, const char* path, std::ostream* listing) {
    Reports reports;
    Script script(text);
    if (!succeeds(script, reports, [&] { script.parse(); })) {
        if (const QString hint = syntaxHint(script, reports.front().message); !hint.isEmpty()) {
            reports.push_back({reports.front().line, Severity::Note, syntaxRule, hint});
        }
        return reports;
    }
    std::unique_ptr<ESCodeBlock> program;
    if (!succeeds(script, reports, [&] { program = script.compile(); })) {
        correctLine(script, reports.front());
        return reports;
    }
    reports = warningsOf(script);
    dropIgnored(text, reports);
    std::stable_sort(reports.begin(), reports.end(),
                     [](const Report& a, const Report& b) { return a.line < b.line; });
    if (listing != nullptr) {
        list(script, *program, path, *listing);
    }
    return reports;
}
