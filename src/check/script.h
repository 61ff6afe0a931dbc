// Script, one text as the checker sees it: the engine in which it was read, its tokens, and the tree that the
// parser has made of it. Nothing of it ever runs. rules.h looks at scripts, hints.h at those that don't
// parse.
#pragma once

#include "compiler/compilation.h"
#include "hostobjects/elf_file_class.h"
#include "hostobjects/tbsys_class.h"
#include "hostobjects/wscript_class.h"
#include "runtime/context.h"

#include <QString>
#include <memory>
#include <vector>

// A context with all that scripts find in the program. The host classes go after the objects that use them.
struct Engine {
    Engine();

    WScriptESClass wscript;
    TBSysESClass tbsys;
    ElfFileESClass elfFile;
    ESContext context;
    std::uint32_t builtins; // global properties up to here were there before any script
};

struct ScriptToken {
    std::int32_t kind;
    std::int32_t line;
    qsizetype end; // offset of the character behind it
    ESAtom atom;   // of a name or a string, else null
};

struct Script {
    explicit Script(const QString& source);

    Engine engine;
    const QString text;
    // All up to the end of input, or to the first character that begins none.
    std::vector<ScriptToken> tokens;
    // The line of the word `function` of each function, in order of their beginnings.
    std::vector<std::int32_t> functionLines;

    ESFunctionScope program;
    ESTree tree;
    ESLexer lexer;
    ESParser parser;
    const ESNode* root = nullptr; // null until parse() has come to its end

    // Throws ESException as ESParser does; the lexer then stands at the fault.
    void parse();
    // Makes the code of the text, with the errors that only come up there. Gives the block of the program;
    // those of the functions are at the end of the table of code blocks. Throws as ESCompilation does.
    std::unique_ptr<ESCodeBlock> compile();
};
