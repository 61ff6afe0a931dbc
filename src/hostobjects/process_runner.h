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

// Starts the program arguments[0], looked up on PATH, with the words as its arguments, in `workingDirectory`
// unless that is null. With both lists given, what the child writes to stdout and stderr is appended to them
// as lines; otherwise it inherits both. Descriptors 0 to 2 must be open.
//
// With `wait`: the child's exit code as a signed 8-bit value, -1 when it ended by a signal. Without: the same
// when it ends within some 10 ms, else 0, and the child runs on. A program that can't be started counts as
// exit code 255, that is -1; no words at all, or no means to start a child, give -1 too.
//
// Capturing goes on until the child's stdout has been closed by everyone who holds it and the child has
// ended; a grandchild that holds only stderr is not waited for.
int runProcess(const QStringList& arguments, bool wait, const QString& workingDirectory,
               QStringList* stdoutLines, QStringList* stderrLines);

// Appends what one read gives, at most 64 KiB. False at the end and on failure (which includes "nothing there
// yet" of a descriptor that doesn't block).
bool readPipeChunk(int fd, QByteArray& output);

// Appends the lines of `output`, each a text without its line end, a null string for an empty line. A line
// ends with LF or with CR and whatever byte follows it. An unfinished last line counts from two bytes on; a
// single byte is dropped.
void appendOutputLines(const QByteArray& output, QStringList* lines);
