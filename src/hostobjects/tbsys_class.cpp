#include "hostobjects/tbsys_class.h"

#include "runtime/context.h"
#include "system/crc32.h"
#include "system/files.h"

#include <QStringDecoder>
#include <QStringEncoder>

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

enum Member : std::int32_t {
    RenameFile,
    CopyFile,
    RemoveFile,
    FileExists,
    FileSize,
    MakeDirectory,
    RemoveDirectory,
    WriteStringToFile,
    ReadStringFromFile,
    WriteByteArrayToFile,
    ReadByteArrayFromFile,
    Crc,
    Run,
    GetRunStdout,
    GetRunStderr,
};

constexpr ESMember members[] = {
    {"renameFile", 2, RenameFile,
     "<b>TBSys.renameFile(oldPath, newPath)</b> renames file <i>oldPath</i> to be <i>newPath</i>."},
    {"copyFile", 2, CopyFile,
     "<b>TBSys.copyFile(srcPath, destPath)</b> copies file <i>srcPath</i> to <i>destPath</i>."},
    {"removeFile", 1, RemoveFile, "<b>TBSys.removeFile(path)</b> deletes file <i>path</i>."},
    {"fileExists", 1, FileExists, "<b>TBSys.fileExists(path)</b> returns true if file <i>path</i> exists."},
    {"fileSize", 1, FileSize, "<b>TBSys.fileSize(path)</b> return the number of bytes in file <i>path</i>."},
    {"makeDirectory", 1, MakeDirectory, "<b>TBSys.makeDirectory(path)</b> create the directory <i>path</i>."},
    {"removeDirectory", 1, RemoveDirectory,
     "<b>TBSys.removeDirectory(path)</b> remove the directory <i>path</i>."},
    {"writeStringToFile", 2, WriteStringToFile,
     "<b>TBSys.writeStringToFile(path, string)</b> creates a file <i>path</i> containing <i>string</i>."},
    {"readStringFromFile", 1, ReadStringFromFile,
     "<b>TBSys.readStringFromFile(path)</b> returns the string contained in the file <i>path</i>."},
    {"writeByteArrayToFile", 2, WriteByteArrayToFile,
     "<b>TBSys.writeByteArrayToFile(path, array)</b> creates a file <i>path</i> containing the byte array "
     "<i>array</i>."},
    {"readByteArrayFromFile", 1, ReadByteArrayFromFile,
     "<b>TBSys.readByteArrayFromFile(path)</b> returns the byte array contained in the file <i>path</i>."},
    {"crc32", 1, Crc, "<b>TBSys.crc32(array)</b> returns the CRC32 value of the byte array <i>array</i>."},
    {"run", 2, Run,
     "<b>TBSys.run(cmd, wait)</b> runs command line <i>cmd</i> optionally waits for it to complete if "
     "<i>wait</i> "
     "is true."},
    {"getRunStdout", 0, GetRunStdout,
     "<b>TBSys.getRunStdout()</b> returns the stdout output from the last <i>TBSys.run()</i> call."},
    {"getRunStderr", 0, GetRunStderr,
     "<b>TBSys.getRunStderr()</b> returns the stderr output from the last <i>TBSys.run()</i> call."},
};

// Members with two paths convert the second argument first.
template <typename Operation>
bool onTwoPaths(ESContext& ctx, const ESValue* argv, Operation operation) {
    const QString second = ctx.toString(argv[1]);
    const QString first = ctx.toString(argv[0]);
    return operation(first, second);
}

bool renameFile(const QString& oldPath, const QString& newPath) {
    return std::rename(oldPath.toLatin1().constData(), newPath.toLatin1().constData()) == 0;
}

// The two writers convert in these steps:
// 1. the path; 2. the file is opened, which drops its old content; 3. only if that worked, the second
// argument. Where that runs no script, it comes before 2, so that a want of memory costs no content.

QByteArray utf8(ESContext& ctx, const ESValue& v) {
    return QStringEncoder(QStringConverter::Utf8)(ctx.toString(v));
}

bool writeStringToFile(ESContext& ctx, const ESValue* argv) {
    const QString path = ctx.toString(argv[0]);
    QByteArray bytes = argv[1].isString() ? utf8(ctx, argv[1]) : QByteArray();
    const UniqueFd file = openForWriting(path);
    if (!file.isOpen()) {
        return false;
    }
    if (!argv[1].isString()) {
        bytes = utf8(ctx, argv[1]);
    }
    writeAll(file.get(), bytes.constData(), static_cast<std::size_t>(bytes.size()));
    return true;
}

bool holdsNumbersAlone(ESContext& ctx, const ESValue& v) {
    if (!v.isObject() || !ctx.isArrayObject(v.object)) {
        return false;
    }
    const ESElements& elements = v.object->elements;
    return ctx.toUint32(ctx.get(v.object, wellKnownAtoms.length)) == elements.count() &&
           std::all_of(elements.data(), elements.data() + elements.count(),
                       [](const ESValue& element) { return element.isNumber(); });
}

bool writeByteArrayToFile(ESContext& ctx, const ESValue* argv) {
    const QString path = ctx.toString(argv[0]);
    const bool early = holdsNumbersAlone(ctx, argv[1]);
    std::vector<std::uint8_t> bytes = early ? ctx.arrayToBytes(argv[1]) : std::vector<std::uint8_t>();
    const UniqueFd file = openForWriting(path);
    if (!file.isOpen()) {
        return false;
    }
    if (!early) {
        bytes = ctx.arrayToBytes(argv[1]);
    }
    writeAll(file.get(), reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return true;
}

// UTF-8, unless a mark at the beginning says otherwise. Carriage returns are left out. Read in pieces, and no
// further than a text can go: newString refuses what is longer.
ESValue readStringFromFile(ESContext& ctx, const QString& path) {
    constexpr std::size_t piece = 0x10000;
    const UniqueFd file = openForReading(path);
    if (!file.isOpen()) {
        return undefinedValue();
    }
    QByteArray bytes = readUpTo(file.get(), piece);
    QStringDecoder decoder(QStringConverter::encodingForData(bytes).value_or(QStringConverter::Utf8));
    QString text;
    while (!bytes.isEmpty() && text.size() <= static_cast<qsizetype>(ESText::maxLength)) {
        QString part = decoder(bytes);
        text += part.remove(u'\r');
        bytes = readUpTo(file.get(), piece);
    }
    return ctx.newString(text);
}

ESValue readByteArrayFromFile(ESContext& ctx, const QString& path) {
    constexpr std::uint64_t mostBytes = 0x40000000; // arrays end there
    const UniqueFd file = openForReading(path);
    struct stat status {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0) {
        return undefinedValue();
    }
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (size > mostBytes) {
        ctx.raiseRangeError("length too large");
    }
    const QByteArray bytes = readUpTo(file.get(), static_cast<std::size_t>(size));
    return ctx.bytesToArray(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                            static_cast<std::size_t>(bytes.size()));
}

ESValue crc32(ESContext& ctx, const ESValue& array) {
    const std::vector<std::uint8_t> bytes = ctx.arrayToBytes(array);
    return bytes.empty() ? undefinedValue() : numberValue(computeCrc32(bytes.data(), bytes.size()));
}

} // namespace

TBSysESClass::TBSysESClass() : ESClass("TBSys") {}

ESObject* TBSysESClass::init(ESContext& ctx) {
    ESObject* object = ESClass::init(ctx);
    defineMembers(ctx, object, members, this, name, ESMemberNaming::Prototype);
    stdout_.text = stderr_.text = ctx.newString("");
    return object;
}

void TBSysESClass::call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc,
                        ESValue* argv) {
    switch (fn->memberIndex) {
    case RenameFile:
        argv[0] = booleanValue(onTwoPaths(ctx, argv, renameFile));
        return;
    case CopyFile:
        argv[0] = booleanValue(onTwoPaths(ctx, argv, [](const QString& source, const QString& destination) {
            return copyFile(source, destination, false);
        }));
        return;
    case RemoveFile:
        argv[0] = booleanValue(removeFile(ctx.toString(argv[0])));
        return;
    case FileExists:
        argv[0] = booleanValue(fileExists(ctx.toString(argv[0])));
        return;
    case FileSize:
        argv[0] = numberValue(static_cast<std::uint32_t>(fileSize(ctx.toString(argv[0]))));
        return;
    case MakeDirectory:
        argv[0] = booleanValue(makeDirectory(ctx.toString(argv[0])));
        return;
    case RemoveDirectory:
        argv[0] = booleanValue(removeDirectory(ctx.toString(argv[0])));
        return;
    case WriteStringToFile:
        argv[0] = booleanValue(writeStringToFile(ctx, argv));
        return;
    case ReadStringFromFile:
        argv[0] = readStringFromFile(ctx, ctx.toString(argv[0]));
        return;
    case WriteByteArrayToFile:
        argv[0] = booleanValue(writeByteArrayToFile(ctx, argv));
        return;
    case ReadByteArrayFromFile:
        argv[0] = readByteArrayFromFile(ctx, ctx.toString(argv[0]));
        return;
    case Crc:
        argv[0] = crc32(ctx, argv[0]);
        return;
    case Run:
        argv[0] = run(ctx, argv);
        return;
    case GetRunStdout:
        argv[0] = textOf(ctx, stdout_);
        return;
    case GetRunStderr:
        argv[0] = textOf(ctx, stderr_);
        return;
    default:
        ESClass::call(ctx, fn, thisObject, argc, argv);
    }
}

ESValue TBSysESClass::run(ESContext& ctx, const ESValue* argv) {
    // 1. the flag, 2. the command. Either way the call blocks until the child has ended: the flag chooses
    // whether its output is kept here or goes where the script's own goes.
    const bool capture = ctx.toBoolean(argv[1]);
    const QStringList words = splitCommandLine(ctx.toString(argv[0]));
    return numberValue(runProcess(words, true, QString(), capture ? &stdout_.lines : nullptr,
                                  capture ? &stderr_.lines : nullptr));
}

ESValue TBSysESClass::textOf(ESContext& ctx, Output& output) {
    if (!output.lines.text().isEmpty()) {
        output.text = ctx.concatenate(output.text, ctx.newString(output.lines.text()));
        output.lines.clear();
    }
    return output.text;
}
