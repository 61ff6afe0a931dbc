// The language of quorvane scripts, for editors and checkers that speak TypeScript.
//
// Copy this file and jsconfig.json beside the scripts. What is not declared here does not exist, or exists and does
// nothing: parseInt(), split(), replace() and their like return undefined. A checker that reads these
// declarations still accepts some syntax that the dialect does not have (===, let, regular expressions), and
// `try` and `throw`, which are dropped without being run.
//
// The variables of -define are declared in a file of one's own, definitions.d.ts say:
//
//     declare var version: string;

// ---- The image

/** The one image of a run: a 32-bit ELF file of either byte order. Nothing ever moves a byte of it. */
interface QuorvaneElfFile {
    /** Loads an ELF file in place of the one before. A file that cannot be read, or is none, ends the run. */
    load(path: string): void;
    /** Writes the image to a file. A failure ends the run. */
    save(path: string): void;
    /**
     * Returns the 32-bit word at an address, in the byte order of the image; undefined when its four bytes are
     * not inside one segment.
     * @param virtualNotPhysical false for a physical address; a virtual one unless given
     */
    peekUint32(address: number, virtualNotPhysical?: boolean): number | undefined;
    /**
     * Writes a 32-bit word at an address, in the byte order of the image. Changes nothing, and says nothing, when
     * its four bytes are not inside one segment.
     * @param virtualNotPhysical false for a physical address; a virtual one unless given
     */
    pokeUint32(address: number, value: number, virtualNotPhysical?: boolean): void;
    /**
     * Returns `length` bytes from an address on; undefined when `length` is not above 0.
     * @param virtualNotPhysical false for a physical address; a virtual one unless given
     * @param padding the value of bytes that are in no segment, 0 unless given; erased flash reads as 0xFF
     */
    peekBytes(address: number, length: number, virtualNotPhysical?: boolean, padding?: number): number[] | undefined;
    /**
     * Writes bytes from an address on. Returns false, and changes nothing, when they do not all lie inside one
     * segment, or when there are none.
     * @param virtualNotPhysical false for a physical address; a virtual one unless given
     */
    pokeBytes(address: number, byteArray: number[], virtualNotPhysical?: boolean): boolean;
    /**
     * Returns the CRC-32/BZIP2 of the bytes that peekBytes() would return; undefined when `length` is not above 0.
     * This is not the CRC of zlib.
     * @param virtualNotPhysical false for a physical address; a virtual one unless given
     * @param padding the value of bytes that are in no segment, 0 unless given; erased flash reads as 0xFF
     */
    crc32(address: number, length: number, virtualNotPhysical?: boolean, padding?: number): number | undefined;
    /** Returns the value of a symbol, by its C name or demangled C++ name ("app::scale(int)"); undefined if none. */
    symbolValue(symbol: string): number | undefined;
}
/** The one image of a run: a 32-bit ELF file of either byte order. */
declare var ElfFile: QuorvaneElfFile;

// ---- Output, files and programs

interface QuorvaneWScript {
    /** Writes a text to standard output. No line end is added. */
    Echo(text: any): void;
}
/** The way to standard output. */
declare var WScript: QuorvaneWScript;

interface QuorvaneTBSys {
    /** Renames a file; returns whether it went well. */
    renameFile(oldPath: string, newPath: string): boolean;
    /** Copies a file; returns whether it went well. */
    copyFile(srcPath: string, destPath: string): boolean;
    /** Deletes a file; returns whether it went well. */
    removeFile(path: string): boolean;
    /** Returns whether there is a file or a folder of this name. */
    fileExists(path: string): boolean;
    /** Returns the number of bytes in a file; 0 when it cannot be opened. */
    fileSize(path: string): number;
    /** Makes a folder, and those that it lies in; returns whether it went well. */
    makeDirectory(path: string): boolean;
    /** Removes a folder; returns whether it went well. */
    removeDirectory(path: string): boolean;
    /** Makes a file of this content; returns false when it cannot be opened. */
    writeStringToFile(path: string, string: string): boolean;
    /** Returns the content of a file; undefined when it cannot be opened. */
    readStringFromFile(path: string): string | undefined;
    /** Makes a file of these bytes, the low 8 bits of each element; returns false when it cannot be opened. */
    writeByteArrayToFile(path: string, array: number[]): boolean;
    /** Returns the bytes of a file; undefined when it cannot be opened. */
    readByteArrayFromFile(path: string): number[] | undefined;
    /** Returns the CRC-32/BZIP2 of the bytes; undefined for an empty array. This is not the CRC of zlib. */
    crc32(array: number[]): number | undefined;
    /**
     * Runs a program, without a shell, waits for its end and returns its exit status: -128 to 127, and -1 also when
     * it could not be started or a signal ended it.
     * @param wait whether its output is kept for getRunStdout() and getRunStderr() instead of being shown
     */
    run(cmd: string, wait?: boolean): number;
    /** Returns what all runs with `wait` have written to their standard output so far. */
    getRunStdout(): string;
    /** Returns what all runs with `wait` have written to their standard error so far. */
    getRunStderr(): string;
}
/** Files and other programs. */
declare var TBSys: QuorvaneTBSys;

// ---- Global functions

declare var NaN: number;
declare var Infinity: number;
/** Runs a text as a program at global level and returns its value; undefined when it fails, whatever the reason. */
declare function eval(x: any): any;
/** Returns whether the value converts to NaN. */
declare function isNaN(value: any): boolean;
/** Returns whether the value converts to a number that is neither NaN nor infinite. */
declare function isFinite(value: any): boolean;
/** Runs a script file at global level. */
declare function load(path: string): any;

// ---- Standard objects

interface Object {
    constructor: Function;
    toString(): string;
    toLocaleString(): string;
    valueOf(): any;
    /** Returns whether the object itself has the property. `for in` shows inherited ones too. */
    hasOwnProperty(name: string | number): boolean;
    isPrototypeOf(object: any): boolean;
    propertyIsEnumerable(name: string | number): boolean;
}
interface ObjectConstructor {
    new (value?: any): any;
    (value?: any): any;
    readonly prototype: Object;
}
declare var Object: ObjectConstructor;

/** There is neither call() nor apply(), and no `arguments`. */
interface Function {
    prototype: any;
    readonly length: number;
    /** Returns "<<function>>". */
    toString(): string;
}
interface FunctionConstructor {
    new (...parametersAndBody: string[]): Function;
    (...parametersAndBody: string[]): Function;
    readonly prototype: Function;
}
declare var Function: FunctionConstructor;
// The language service asks for these where a project is strict.
interface CallableFunction extends Function {}
interface NewableFunction extends Function {}

interface Array<T> {
    length: number;
    [index: number]: T;
    toString(): string;
    toLocaleString(): string;
    concat(...items: any[]): any[];
    /** Joins the elements, "," between them unless given; undefined and null are passed over with their separator. */
    join(separator?: string): string;
    pop(): T;
    push(...items: T[]): number;
    reverse(): T[];
    shift(): T;
    slice(start?: number, end?: number): T[];
    sort(compare?: (a: T, b: T) => number): T[];
}
interface ArrayConstructor {
    new (...lengthOrItems: any[]): any[];
    (...lengthOrItems: any[]): any[];
    readonly prototype: any[];
}
declare var Array: ArrayConstructor;

/** Text. A character is reached by charAt(); there is no text[0]. */
interface String {
    readonly length: number;
    toString(): string;
    valueOf(): string;
    /** Returns the character at a position; the empty string outside the text. */
    charAt(position: number): string;
    /** Returns the code of the character at a position; NaN outside the text. */
    charCodeAt(position: number): number;
    concat(...texts: any[]): string;
    /** Returns the position of the first occurrence at or after `position`; -1 if there is none. */
    indexOf(text: string, position?: number): number;
    /** Returns the position of the last occurrence at or before `position`; -1 if there is none. */
    lastIndexOf(text: string, position?: number): number;
    localeCompare(that: string): number;
    slice(start: number, end?: number): string;
    substring(start: number, end?: number): string;
    toLowerCase(): string;
    toLocaleLowerCase(): string;
    toUpperCase(): string;
    toLocaleUpperCase(): string;
}
interface StringConstructor {
    new (value?: any): String;
    /** Converts to text. */
    (value?: any): string;
    readonly prototype: String;
    fromCharCode(...codes: number[]): string;
}
declare var String: StringConstructor;

interface Boolean {
    toString(): string;
    valueOf(): boolean;
}
interface BooleanConstructor {
    new (value?: any): Boolean;
    /** Converts to a boolean. NaN is true. */
    (value?: any): boolean;
    readonly prototype: Boolean;
}
declare var Boolean: BooleanConstructor;

interface Number {
    /** Converts to text, in base 10 unless given. A number that is not whole has six significant digits. */
    toString(radix?: number): string;
    /** Converts to text with 0 to 20 digits behind the point. */
    toFixed(digits?: number): string;
    valueOf(): number;
}
interface NumberConstructor {
    new (value?: any): Number;
    /** Converts to a number: "0x10" is 16, and what is no number, the empty text too, is NaN. */
    (value?: any): number;
    readonly prototype: Number;
    readonly MAX_VALUE: number;
    readonly MIN_VALUE: number;
    readonly NaN: number;
    readonly NEGATIVE_INFINITY: number;
    readonly POSITIVE_INFINITY: number;
}
declare var Number: NumberConstructor;

interface Math {
    readonly E: number;
    readonly LN10: number;
    readonly LN2: number;
    readonly LOG2E: number;
    readonly LOG10E: number;
    readonly PI: number;
    readonly SQRT1_2: number;
    readonly SQRT2: number;
    abs(x: number): number;
    acos(x: number): number;
    asin(x: number): number;
    atan(x: number): number;
    ceil(x: number): number;
    cos(x: number): number;
    exp(x: number): number;
    floor(x: number): number;
    log(x: number): number;
    round(x: number): number;
    sin(x: number): number;
    sqrt(x: number): number;
    tan(x: number): number;
    atan2(y: number, x: number): number;
    max(...numbers: number[]): number;
    min(...numbers: number[]): number;
    pow(x: number, y: number): number;
    random(): number;
}
declare var Math: Math;

/** A reading of the local clock. There are no time zones: each UTC member does what its twin does. */
interface Date {
    toString(): string;
    toDateString(): string;
    toTimeString(): string;
    toLocaleString(): string;
    toLocaleDateString(): string;
    toLocaleTimeString(): string;
    toUTCString(): string;
    /** Returns the milliseconds since the midnight that began Julian Day 0, not since 1970. */
    valueOf(): number;
    /** Returns the milliseconds since the midnight that began Julian Day 0, not since 1970. */
    getTime(): number;
    getFullYear(): number;
    getUTCFullYear(): number;
    getMonth(): number;
    getUTCMonth(): number;
    getDate(): number;
    getUTCDate(): number;
    getDay(): number;
    getUTCDay(): number;
    getHours(): number;
    getUTCHours(): number;
    getMinutes(): number;
    getUTCMinutes(): number;
    getSeconds(): number;
    getUTCSeconds(): number;
    getMilliseconds(): number;
    getUTCMilliseconds(): number;
    /** Returns 0. */
    getTimezoneOffset(): number;
    setTime(time: number): number;
    setMilliseconds(ms: number): number;
    setUTCMilliseconds(ms: number): number;
    setSeconds(sec: number, ms?: number): number;
    setUTCSeconds(sec: number, ms?: number): number;
    setMinutes(min: number, sec?: number, ms?: number): number;
    setUTCMinutes(min: number, sec?: number, ms?: number): number;
    setHours(hour: number, min?: number, sec?: number, ms?: number): number;
    setUTCHours(hour: number, min?: number, sec?: number, ms?: number): number;
    setDate(date: number): number;
    setUTCDate(date: number): number;
    setMonth(month: number, date?: number): number;
    setUTCMonth(month: number, date?: number): number;
    setFullYear(year: number, month?: number, date?: number): number;
    setUTCFullYear(year: number, month?: number, date?: number): number;
}
interface DateConstructor {
    /** Reads the clock, with no argument. A build that shall be repeatable does without. */
    new (): Date;
    readonly prototype: Date;
}
declare var Date: DateConstructor;

/** Nothing throws or catches these: an error of a script ends the run. */
interface Error {
    name: string;
    message: string;
}
interface ErrorConstructor {
    new (message?: any): Error;
    (message?: any): Error;
    readonly prototype: Error;
}
declare var Error: ErrorConstructor;
declare var RangeError: ErrorConstructor;
declare var ReferenceError: ErrorConstructor;
declare var SyntaxError: ErrorConstructor;
declare var TypeError: ErrorConstructor;
declare var EvalError: ErrorConstructor;

// The checker itself asks for these names; the dialect has neither.
interface IArguments {}
interface RegExp {}
