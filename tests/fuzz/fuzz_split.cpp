// splitCommandLine: words that are quoted come back as they were, whatever is in them.
#include "fuzz_target.h"
#include "hostobjects/process_runner.h"

namespace {

QString quoted(const QString& word) {
    // A backslash before the closing quote would take it for a character, so the last ones stay outside.
    qsizetype end = word.size();
    while (end > 0 && word[end - 1] == u'\\') {
        --end;
    }
    return u'"' + word.left(end).replace(u'"', QLatin1String("\\\"")) + u'"' + word.mid(end);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = latin1({data, size});
    qsizetype length = 0;
    for (const QString& word : splitCommandLine(text)) {
        expect(!word.isEmpty(), "no word is empty");
        length += word.size();
    }
    expect(length <= text.size(), "words have no more than the text");

    const QStringList words = text.split(u'\n', Qt::SkipEmptyParts);
    QStringList line;
    for (const QString& word : words) {
        line.append(quoted(word));
    }
    expect(splitCommandLine(line.join(u' ')) == words, "quoted words come back");
    return 0;
}
