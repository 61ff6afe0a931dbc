// Facts, what a script says about its names anywhere in its text, gathered before the rules look at each
// place by itself (rules.h).
#pragma once

#include "check/script.h"
#include "check/tree_walk.h"

#include <QStringView>
#include <unordered_map>
#include <unordered_set>

class Facts {
public:
    explicit Facts(Script& script);

    Script& script;

    // The name means the object that the program brings, here.
    bool isBuiltin(const Visit& visit, ESAtom name) const;
    // A variable of a function around, of the script, or of the program; or a name that the script treats as
    // one that may be there already: by assigning it outside functions, or by comparing it with `undefined`.
    bool isKnown(const Visit& visit, ESAtom name) const;
    // The value of a property of a built-in object, or undefined.
    ESValue builtin(ESAtom name) const;
    // Some object of the script gets a member of this name.
    bool givesMember(ESAtom name) const { return members_.count(name) != 0; }
    // How often the text has the name, not counting texts.
    int mentions(ESAtom name) const;
    // Some string has it among its words, as a key or for eval.
    bool isInString(ESAtom name) const { return words_.count(name) != 0; }
    // Nothing in the script makes a null.
    bool neverNull() const { return !makesNull_; }
    // The script calls something at its top: it is no library.
    bool doesWork() const { return doesWork_; }
    // A loop over names that looks at where they come from.
    bool isFiltered(const ESNode* forIn) const { return filtered_.count(forIn) != 0; }

private:
    void gather(const Visit& visit);
    void gatherWords(QStringView string);
    bool isDeclared(const Visit& visit, ESAtom name) const;

    std::unordered_set<ESAtom> expected_; // assigned at the top, or compared with undefined
    std::unordered_set<ESAtom> members_;
    std::unordered_map<ESAtom, int> mentions_;
    std::unordered_set<ESAtom> words_;
    std::unordered_set<const ESNode*> filtered_;
    bool makesNull_ = false;
    bool doesWork_ = false;
};

// The places of a tree that several rules ask for.
bool isName(const ESNode* node, QStringView name); // an identifier of this name
bool isEquality(const ESNode* node);               // == or !=, one side of a pair; null is none
bool isMember(const ESNode* node);                 // object.name or object[key]
// What a node assigns to, steps or runs through: the target, or null.
const ESNode* targetOf(const ESNode* node);
