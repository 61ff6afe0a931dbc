// What of the file loader only a host can reach: search paths, and the completion of the loaded text.
#include "natives/global.h"

#include "natives/standard_library.h"
#include "runtime/context.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class GlobalLoader : public ::testing::Test {
protected:
    GlobalLoader() { ctx.initContext(); }

    void write(const QString& name, const char* text) {
        const QString path = folder.filePath(name);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    bool load(const QString& path) { return ctx.globalClass->loadFile(ctx, path, out); }
    QString at(const char* name) { return folder.filePath(QString::fromLatin1(name)); }

    QTemporaryDir folder;
    ESContext ctx;
    ESCompletion out;
};

TEST_F(GlobalLoader, TriesThePathAndThenTheSearchPathsInOrder) {
    write(QStringLiteral("one/common.js"), "'from one'");
    write(QStringLiteral("two/common.js"), "'from two'");
    write(QStringLiteral("two/only.js"), "'only two'");
    const QString common = QStringLiteral("common.js");

    EXPECT_FALSE(load(common));
    ctx.globalClass->addSearchPath(at("missing"));
    ctx.globalClass->addSearchPath(at("one"));
    ctx.globalClass->addSearchPath(at("two"));
    ASSERT_TRUE(load(common));
    EXPECT_EQ(ctx.toString(out.value), QStringLiteral("from one"));
    ASSERT_TRUE(load(QStringLiteral("only.js")));
    EXPECT_EQ(ctx.toString(out.value), QStringLiteral("only two"));
    ASSERT_TRUE(load(at("two/common.js")));
    EXPECT_EQ(ctx.toString(out.value), QStringLiteral("from two"));
    EXPECT_FALSE(load(QStringLiteral("nowhere.js")));
    EXPECT_EQ(ctx.toString(out.value), QStringLiteral("from two")) << "what no text gave stays";
    EXPECT_FALSE(ctx.globalClass->readAndEvaluate(ctx, QStringLiteral("only.js"), out)) << "one exact path";
}

} // namespace
