#include "check/missing_names.h"

#include <algorithm>

namespace {

constexpr char noPatterns[] = "search with indexOf, or with lib/text.js";
constexpr char countIndex[] = "write a loop over the indexes";
constexpr char callDirectly[] = "call the function itself, and pass the object as an argument";
constexpr char ownLoop[] = "build a new array in a loop";
constexpr char noDialogue[] = "print with WScript.Echo";
constexpr char noModules[] = "name each file of the run with -load";
constexpr char objectAsMap[] = "use an object, and hasOwnProperty";
constexpr char inOrder[] = "everything runs at once and in order";
constexpr char plainArray[] = "use an array of numbers";

constexpr MissingName stringMembers[] = {
    {u"match", noPatterns},
    {u"replace", "use Text.replaceFirst or Text.replaceAll of lib/text.js"},
    {u"search", noPatterns},
    {u"split", "use Text.split of lib/text.js"},
};

constexpr MissingName globals[] = {
    {u"parseFloat", "use Number(text), or Numbers.parseDecimal of lib/number.js"},
    {u"parseInt", "use Number(text), or Numbers.parse of lib/number.js"},
};

constexpr MissingName members[] = {
    {u"apply", callDirectly},
    {u"bind", callDirectly},
    {u"call", callDirectly},
    {u"codePointAt", "use charCodeAt"},
    {u"endsWith", "use Text.endsWith of lib/text.js"},
    {u"every", countIndex},
    {u"filter", ownLoop},
    {u"flat", ownLoop},
    {u"forEach", countIndex},
    {u"includes", "for a text use indexOf, for an array a loop"},
    {u"map", ownLoop},
    {u"padEnd", "use Text.padRight of lib/text.js"},
    {u"padStart", "use Text.padLeft of lib/text.js"},
    {u"reduce", countIndex},
    {u"replaceAll", "use Text.replaceAll of lib/text.js"},
    {u"some", countIndex},
    {u"splice", ownLoop},
    {u"startsWith", "use Text.startsWith of lib/text.js"},
    {u"substr", "use substring(start, end)"},
    {u"toExponential", "use Numbers.exact of lib/number.js"},
    {u"toISOString", "put it together from getFullYear() and so on"},
    {u"toPrecision", "use toFixed"},
    {u"trim", "use Text.trim of lib/text.js"},
    {u"trimEnd", "use Text.trim of lib/text.js"},
    {u"trimStart", "use Text.trim of lib/text.js"},
    {u"unshift", "use concat on an array of the new elements"},
};

constexpr MissingName missing[] = {
    {u"ArrayBuffer", plainArray},
    {u"Int32Array", plainArray},
    {u"JSON", "write and read the text yourself"},
    {u"Map", objectAsMap},
    {u"Promise", inOrder},
    {u"RegExp", noPatterns},
    {u"Set", objectAsMap},
    {u"Symbol", "use a text as the name"},
    {u"Uint16Array", plainArray},
    {u"Uint32Array", plainArray},
    {u"Uint8Array", plainArray},
    {u"alert", noDialogue},
    {u"arguments", "a function has its parameters alone; pass an array"},
    {u"console", noDialogue},
    {u"decodeURIComponent", "take the text apart in a loop"},
    {u"encodeURIComponent", "put the text together in a loop"},
    {u"exports", noModules},
    {u"globalThis", "write this, outside functions"},
    {u"module", noModules},
    {u"print", noDialogue},
    {u"process", "variables come from -define, and programs run with TBSys.run"},
    {u"require", noModules},
    {u"setInterval", inOrder},
    {u"setTimeout", inOrder},
};

} // namespace

const std::span<const MissingName> emptyMembers(stringMembers);
const std::span<const MissingName> emptyGlobals(globals);
const std::span<const MissingName> missingMembers(members);
const std::span<const MissingName> missingGlobals(missing);

const MissingName* findName(std::span<const MissingName> names, ESAtom name) {
    const auto row = std::find_if(names.begin(), names.end(), [name](const MissingName& candidate) {
        return name->view() == QStringView(candidate.name);
    });
    return row == names.end() ? nullptr : &*row;
}
