#include "natives/string.h"

#include "natives/array_elements.h"
#include "runtime/context.h"

#include <QCollator>
#include <QVarLengthArray>
#include <algorithm>
#include <iterator>
#include <limits>
#include <vector>

namespace {

enum Member : std::int32_t {
    Constructor,
    FromCharCode,
    ToString,
    ValueOf,
    CharAt,
    CharCodeAt,
    Concat,
    IndexOf,
    LastIndexOf,
    LocaleCompare,
    Match,
    Replace,
    Search,
    Slice,
    Split,
    Substring,
    ToLowerCase,
    ToLocaleLowerCase,
    ToUpperCase,
    ToLocaleUpperCase,
};

constexpr ESMember constructorMember = {"String", 1, Constructor};

constexpr ESMember constructorMembers[] = {
    {"fromCharCode", 0, FromCharCode},
};

// match, replace, search and split are there and do nothing: the language has no regular expressions.
constexpr ESMember prototypeMembers[] = {
    {"toString", 0, ToString},
    {"valueOf", 0, ValueOf},
    {"charAt", 1, CharAt},
    {"charCodeAt", 1, CharCodeAt},
    {"concat", 0, Concat},
    {"indexOf", 2, IndexOf},
    {"lastIndexOf", 2, LastIndexOf},
    {"localeCompare", 1, LocaleCompare},
    {"match", 1, Match},
    {"replace", 2, Replace},
    {"search", 1, Search},
    {"slice", 2, Slice},
    {"split", 2, Split},
    {"substring", 2, Substring},
    {"toLowerCase", 0, ToLowerCase},
    {"toLocaleLowerCase", 0, ToLocaleLowerCase},
    {"toUpperCase", 0, ToUpperCase},
    {"toLocaleUpperCase", 0, ToLocaleUpperCase},
};

constexpr std::uint32_t nowhere = 0xFFFFFFFF;

// The position that charAt and charCodeAt look at, or nowhere.
std::uint32_t positionIn(ESContext& ctx, const ESValue& text, const ESValue& position) {
    const double length = ESContext::textOf(text).length();
    if (position.isNumber() && position.number >= 0) [[likely]] {
        return position.number < length ? static_cast<std::uint32_t>(position.number) : nowhere;
    }
    const double p = ctx.toInteger(position);
    return p >= 0 && p < length ? static_cast<std::uint32_t>(p) : nowhere;
}

// Where a search starts: `absent` without a position, 0 for one that is negative or beyond 32 bits.
std::int32_t searchStart(ESContext& ctx, const ESValue& position, std::int32_t absent) {
    if (position.isUndefined()) {
        return absent;
    }
    const double start = ctx.toInteger(position);
    return start >= 0 && start <= std::numeric_limits<std::int32_t>::max() ? static_cast<std::int32_t>(start)
                                                                           : 0;
}

// Qt's search takes at most this many steps for a character of the text.
constexpr qsizetype longestShortPattern = 64;

// How far from `text` the first of size characters lies at which the length characters of `sought` stand, or
// -1. Knuth, Morris and Pratt: no character of the text is looked at again, however the two repeat
// themselves.
template <typename Iterator>
qsizetype findLong(Iterator text, qsizetype size, Iterator sought, qsizetype length) {
    // How many characters of the pattern still fit where those up to here did and the next one doesn't.
    std::vector<std::int32_t> rest(static_cast<std::size_t>(length) + 1);
    std::int32_t* const fits = rest.data();
    fits[0] = -1;
    const auto step = [&](std::int32_t matched, QChar c) {
        while (matched >= 0 && sought[matched] != c) {
            matched = fits[matched];
        }
        return matched + 1;
    };
    for (qsizetype i = 1; i < length; ++i) {
        fits[i + 1] = step(fits[i], sought[i]);
    }
    std::int32_t matched = 0;
    for (qsizetype i = 0; i < size; ++i) {
        matched = step(matched, text[i]);
        if (matched == length) {
            return i + 1 - length;
        }
    }
    return -1;
}

double indexOf(QStringView text, QStringView sought, std::int32_t start) {
    if (sought.size() <= longestShortPattern || start >= text.size()) {
        return static_cast<double>(text.indexOf(sought, start));
    }
    const qsizetype found =
        findLong(text.begin() + start, text.size() - start, sought.begin(), sought.size());
    return static_cast<double>(found < 0 ? found : start + found);
}

double lastIndexOf(QStringView text, QStringView sought, std::int32_t start) {
    const qsizetype last = text.size() - sought.size();
    if (last < 0) {
        return -1;
    }
    const qsizetype from = std::min<qsizetype>(start, last);
    if (sought.size() <= longestShortPattern) {
        return static_cast<double>(sought.isEmpty() ? from : text.lastIndexOf(sought, from));
    }
    const qsizetype end = from + sought.size();
    const qsizetype found =
        findLong(std::make_reverse_iterator(text.begin() + end), end, sought.rbegin(), sought.size());
    return static_cast<double>(found < 0 ? found : from - found);
}

// By the rules of the environment's locale. QString::localeAwareCompare does the same with a collator that
// nobody frees in a program without an application object.
int localeCompare(QStringView text, QStringView that) {
    static const QCollator collator;
    return collator.compare(text, that);
}

// A position of slice in a text of n characters: a negative one counts from the end.
std::uint32_t sliceBound(double position, std::uint32_t n) {
    const double length = n;
    return static_cast<std::uint32_t>(position < 0 ? std::max(length + position, 0.0)
                                                   : std::min(position, length));
}

// 1. start is converted. 2. end is converted, if there is one.
ESValue slice(ESContext& ctx, const ESValue& text, const ESValue& start, const ESValue& end) {
    const std::uint32_t n = ESContext::textOf(text).length();
    const std::uint32_t from = sliceBound(ctx.toInteger(start), n);
    const std::uint32_t to = end.isUndefined() ? n : sliceBound(ctx.toInteger(end), n);
    return ctx.substring(text, from, std::max(to, from) - from);
}

// 1. start is converted. 2. end is converted, if there is one.
ESValue substring(ESContext& ctx, const ESValue& text, const ESValue& start, const ESValue& end) {
    const std::uint32_t n = ESContext::textOf(text).length();
    const auto bound = [n](double position) {
        return static_cast<std::uint32_t>(std::clamp(position, 0.0, static_cast<double>(n)));
    };
    const std::uint32_t s = bound(ctx.toInteger(start));
    const std::uint32_t e = end.isUndefined() ? n : bound(ctx.toInteger(end));
    return ctx.substring(text, std::min(s, e), std::max(s, e) - std::min(s, e));
}

// A character stays one character. Where all its mapping would be more, QChar leaves it as it is, though for
// some there is one that stands for it: these.
char16_t lower(char16_t c) {
    if (c < 128) {
        return c >= u'A' && c <= u'Z' ? c | 32 : c;
    }
    return c == 0x130 ? u'i' : QChar(c).toLower().unicode();
}

char16_t upper(char16_t c) {
    if (c < 128) {
        return c >= u'a' && c <= u'z' ? c & ~32 : c;
    }
    if (c >= 0x1F80 && c <= 0x1FAF) { // Greek with an iota below
        return c | 8;
    }
    return c == 0x1FB3 || c == 0x1FC3 || c == 0x1FF3 ? c + 9 : QChar(c).toUpper().unicode();
}

template <typename Convert>
ESValue convertCase(ESContext& ctx, const ESValue& text, Convert convert) {
    const QStringView characters = ESContext::viewOf(text);
    if (characters.size() <= 1) {
        return characters.isEmpty() ? text : ctx.characterString(convert(characters.front().unicode()));
    }
    auto* converted = textArena().allocateArray<char16_t>(static_cast<std::size_t>(characters.size()));
    std::transform(characters.begin(), characters.end(), converted,
                   [&](QChar c) { return convert(c.unicode()); });
    return ESContext::noted(ESText::makeView(textArena(), converted, ESContext::textOf(text).length()));
}

ESValue fromCharCodes(ESContext& ctx, std::int32_t argc, const ESValue* argv) {
    QVarLengthArray<char16_t, 64> characters;
    for (std::int32_t i = 0; i < argc; ++i) {
        characters.append(ctx.toUint16(argv[i]));
    }
    return ctx.newString(QStringView(characters.data(), characters.size()));
}

ESValue concat(ESContext& ctx, const ESValue& text, std::int32_t argc, const ESValue* argv) {
    if (argc == 1 && argv[0].isString()) {
        return ctx.concatenate(text, argv[0]);
    }
    // No script gets what lies between.
    ESTextBuilder rest(ctx);
    for (std::int32_t i = 0; i < argc; ++i) {
        rest.addValue(argv[i]);
    }
    return ESContext::textOf(text).length() == 0 ? rest.finish() : ctx.concatenate(text, rest.finishUnseen());
}

// What a member of String.prototype makes of the text of `this`. The arguments are converted here, in order.
ESValue applyToText(ESContext& ctx, std::int32_t member, const ESValue& text, std::int32_t argc,
                    const ESValue* argv) {
    const ESValue first = ESContext::getArgument(argc, argv, 0);
    const ESValue second = ESContext::getArgument(argc, argv, 1);
    switch (member) {
    case ToString:
    case ValueOf:
        return text;
    case CharAt: {
        const std::uint32_t position = positionIn(ctx, text, first);
        return ctx.substring(text, position == nowhere ? 0 : position, position == nowhere ? 0 : 1);
    }
    case CharCodeAt: {
        const std::uint32_t position = positionIn(ctx, text, first);
        return numberValue(position == nowhere ? esNaN : ESContext::textOf(text).characters()[position]);
    }
    case Concat:
        return concat(ctx, text, argc, argv);
    case IndexOf: {
        const ESValue sought = ctx.toStringValue(first);
        const std::int32_t start = searchStart(ctx, second, 0);
        return numberValue(indexOf(ESContext::viewOf(text), ESContext::viewOf(sought), start));
    }
    case LastIndexOf: {
        const ESValue sought = ctx.toStringValue(first);
        const std::int32_t start = searchStart(ctx, second, std::numeric_limits<std::int32_t>::max());
        return numberValue(lastIndexOf(ESContext::viewOf(text), ESContext::viewOf(sought), start));
    }
    case LocaleCompare: {
        const ESValue that = ctx.toStringValue(first);
        return numberValue(localeCompare(ESContext::viewOf(text), ESContext::viewOf(that)));
    }
    case Slice:
        return slice(ctx, text, first, second);
    case Substring:
        return substring(ctx, text, first, second);
    case ToLowerCase:
    case ToLocaleLowerCase:
        return convertCase(ctx, text, lower);
    case ToUpperCase:
    case ToLocaleUpperCase:
        return convertCase(ctx, text, upper);
    default: // match, replace, search, split
        return undefinedValue();
    }
}

} // namespace

ESNativeString::ESNativeString() : ESClass("String") {
    ordinaryGet = false;
    ordinaryPut = false;
}

void ESNativeString::setUp(ESContext& ctx) {
    ESObject* prototype = ctx.stringPrototype;
    prototype->value = atomValue(wellKnownAtoms.empty);
    ESObject* constructor = defineConstructor(ctx, constructorMember, intern(name), prototype, this);
    defineMembers(ctx, constructor, constructorMembers, this, name, ESMemberNaming::Namespace);
    defineMembers(ctx, prototype, prototypeMembers, this, name, ESMemberNaming::Prototype);

    ESPropertyTable& properties = prototype->properties;
    properties.pin();
    while (properties.at(toStringPosition_).atom != wellKnownAtoms.toString) {
        ++toStringPosition_;
    }
    toString_ = properties.at(toStringPosition_).object;
}

ESValue ESNativeString::get(ESContext& ctx, ESObject* obj, ESAtom atom) {
    if (atom == wellKnownAtoms.length && obj != nullptr) {
        return numberValue(ESContext::textOf(obj->value).length());
    }
    return ESClass::get(ctx, obj, atom);
}

void ESNativeString::put(ESContext& ctx, ESObject* obj, ESAtom atom, const ESValue& value) {
    if (atom != wellKnownAtoms.length) {
        ESClass::put(ctx, obj, atom, value);
    }
}

bool ESNativeString::convertsPlainly(const ESContext& ctx) const {
    const ESProperty& slot = ctx.stringPrototype->properties.at(toStringPosition_);
    return slot.atom == wellKnownAtoms.toString && slot.tag == ESTagObject && slot.object == toString_;
}

ESValue ESNativeString::textOfThis(ESContext& ctx, ESObject* thisObject) const {
    if (thisObject == nullptr) {
        return ctx.toStringValue(undefinedValue());
    }
    if (thisObject->nativeClass == this && thisObject->prototype == ctx.stringPrototype &&
        thisObject->properties.count() == 0 && convertsPlainly(ctx)) [[likely]] {
        return thisObject->value;
    }
    return ctx.toStringValue(objectValue(thisObject));
}

void ESNativeString::call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc,
                          ESValue* argv) {
    const std::int32_t member = fn->memberIndex;
    switch (member) {
    case Constructor:
        argv[0] = ctx.newStringOf(argv[0]);
        return;
    case FromCharCode:
        argv[0] = fromCharCodes(ctx, argc, argv);
        return;
    case ToString:
    case ValueOf:
        if (thisObject == nullptr || !ctx.isStringObject(thisObject)) {
            ctx.raiseTypeError(member == ToString ? "String.prototype.toString called on non-String object"
                                                  : "String.prototype.valueOf called on non-String object");
        }
        argv[0] = thisObject->value;
        return;
    case Match:
    case Replace:
    case Search:
    case Split:
        argv[0] = undefinedValue();
        return;
    case IndexOf:
    case LastIndexOf:
        // These and localeCompare convert their arguments first, and then `this`. Converting what is
        // converted changes nothing, so the arguments are replaced by their results.
        argv[0] = ctx.toStringValue(argv[0]);
        if (!argv[1].isUndefined()) {
            argv[1] = numberValue(ctx.toInteger(argv[1]));
        }
        break;
    case LocaleCompare:
        argv[0] = ctx.toStringValue(argv[0]);
        break;
    default:
        if (member < CharAt || member > ToLocaleUpperCase) {
            badCall(ctx);
        }
    }
    argv[0] = applyToText(ctx, member, textOfThis(ctx, thisObject), argc, argv);
}

bool ESNativeString::callOnText(ESContext& ctx, std::int32_t memberIndex, const ESValue& text,
                                std::int32_t argc, ESValue* argv) {
    if (memberIndex < ToString || memberIndex > ToLocaleUpperCase || !convertsPlainly(ctx) ||
        std::any_of(argv, argv + argc, [](const ESValue& v) { return v.isObject(); })) {
        return false;
    }
    argv[0] = applyToText(ctx, memberIndex, text, argc, argv);
    return true;
}

ESObject* ESNativeString::construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) {
    if (fn->memberIndex != Constructor) {
        badConstruct(ctx);
    }
    return ctx.objectOf(ctx.newStringOf(ESContext::getArgument(argc, argv, 0)));
}
