// Runs external programs for TBSys.run: a command line becomes words, the words become a child process, and
// what the child writes becomes lines. Everything blocks; no shell is involved and nothing here throws (but
// for want of memory) or prints.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// Splits at blanks (a tab is no blank). Double quotes hold blanks together and leave no trace, so that a
// quoted nothing gives no word; \" is a double quote everywhere. A quote left open ends with the text.
QStringList splitCommandLine(const QString& command);

// The lines that commands have written, as one text: each but the very first begins with LF.
class OutputLines {
public:
    // Adds what a command wrote. A line ends with LF or with CR and whatever byte follows it. An unfinished
    // last line counts from two bytes on; a single byte is dropped.
    void add(const QByteArray& output);
    // What was added since clear().
    const QByteArray& text() const { return text_; }
    void clear() { text_ = QByteArray(); }

private:
    QByteArray text_;
    bool any_ = false;
};

// Starts the program arguments[0], looked up on PATH, with the words as its arguments, in `workingDirectory`
// unless that is null. With both given, what the child writes to stdout and stderr is added to them;
// otherwise it inherits both. Descriptors 0 to 2 must be open.
//
// With `wait`: the child's exit code as a signed 8-bit value, -1 when it ended by a signal. Without: the same
// when it ends within some 10 ms, else 0, and the child runs on. A program that can't be started counts as
// exit code 255, that is -1; no words at all, or no means to start a child, give -1 too.
//
// Capturing goes on until the child's stdout has been closed by everyone who holds it and the child has
// ended; a grandchild that holds only stderr is not waited for.
int runProcess(const QStringList& arguments, bool wait, const QString& workingDirectory,
               OutputLines* stdoutLines, OutputLines* stderrLines);

// Appends what one read gives, at most 64 KiB. False at the end and on failure (which includes "nothing there
// yet" of a descriptor that doesn't block).
bool readPipeChunk(int fd, QByteArray& output);
