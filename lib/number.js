// Numbers: reading and writing numbers. parseInt and parseFloat do nothing, Number() takes "inf" and has no
// binary, and a number with a fraction prints with six digits: these say what they take and print all that
// there is.
//
//   Numbers.parse(text, radix)       whole number in a radix of 2 to 36 (10 if left out), a sign allowed
//   Numbers.parseHex(text)           the same in radix 16, with or without 0x
//   Numbers.parseDecimal(text)       decimal number with or without sign and fraction: "-12", "3.25"
//   Numbers.parseInteger(text)       decimal whole number, or hexadecimal with 0x, or binary with 0b
//   Numbers.hex(number, digits)      "0x000000FF": with at least `digits` digits; -1 to -2^31 as 32 bits
//   Numbers.hexDigits(number, digits)    the same without 0x
//   Numbers.fixed(number, digits)    toFixed that writes NaN and Infinity by these names, and no -0.00
//   Numbers.exact(number)            the shortest decimal text that reads back as this number (20 places at
//                                    most, so below 0.0001 not all of its digits)
//   Numbers.grouped(number, separator)   whole number with `separator`, or a comma, between its thousands
//
// Blanks around a text to parse are passed over. A text that is no such number, the empty one included,
// gives NaN, which isNaN() tells: NaN counts as true in a condition. Whole numbers are exact up to 2^53.
// Needs no other file.

var Numbers = {};

Numbers.digitValue = function (text, at) {
    var code = text.charCodeAt(at);
    if (code >= 48 && code <= 57) {
        return code - 48;
    }
    if (code >= 65 && code <= 90) {
        return code - 55;
    }
    return code >= 97 && code <= 122 ? code - 87 : 36;
};

// {negative, digits}: the text without the blanks around it and without its sign.
Numbers.withoutSign = function (text) {
    text = String(text);
    var from = 0;
    var to = text.length;
    while (from < to && " \t\r\n".indexOf(text.charAt(from)) >= 0) {
        from++;
    }
    while (to > from && " \t\r\n".indexOf(text.charAt(to - 1)) >= 0) {
        to--;
    }
    var sign = text.charAt(from);
    var signed = from < to && (sign == "-" || sign == "+");
    return { negative: signed && sign == "-", digits: text.substring(signed ? from + 1 : from, to) };
};

Numbers.wholeNumber = function (parts, radix) {
    var digits = parts.digits;
    var value = digits == "" ? NaN : 0;
    for (var i = 0; i < digits.length; i++) {
        var digit = Numbers.digitValue(digits, i);
        if (digit >= radix) {
            return NaN;
        }
        value = value * radix + digit;
    }
    return parts.negative ? 0 - value : value;
};

Numbers.dropPrefix = function (parts, letter) {
    var has = parts.digits.substring(0, 2).toLowerCase() == "0" + letter;
    if (has) {
        parts.digits = parts.digits.substring(2);
    }
    return has;
};

Numbers.parse = function (text, radix) {
    radix = radix == undefined ? 10 : radix;
    return radix >= 2 && radix <= 36 ? Numbers.wholeNumber(Numbers.withoutSign(text), radix) : NaN;
};

Numbers.parseHex = function (text) {
    var parts = Numbers.withoutSign(text);
    Numbers.dropPrefix(parts, "x");
    return Numbers.wholeNumber(parts, 16);
};

Numbers.parseInteger = function (text) {
    var parts = Numbers.withoutSign(text);
    if (Numbers.dropPrefix(parts, "x")) {
        return Numbers.wholeNumber(parts, 16);
    }
    return Numbers.wholeNumber(parts, Numbers.dropPrefix(parts, "b") ? 2 : 10);
};

Numbers.parseDecimal = function (text) {
    var parts = Numbers.withoutSign(text);
    var points = 0;
    for (var i = 0; i < parts.digits.length; i++) {
        if (parts.digits.charAt(i) == "." && i > 0 && i < parts.digits.length - 1) {
            points++;
        } else if (Numbers.digitValue(parts.digits, i) > 9) {
            return NaN;
        }
    }
    if (points > 1) {
        return NaN;
    }
    var value = Number(parts.digits);
    return parts.negative ? 0 - value : value;
};

Numbers.hexDigits = function (number, digits) {
    number = Number(number);
    if (number < 0 && number >= -2147483648) {
        number += 4294967296;
    }
    var text = number.toString(16).toUpperCase();
    while (text.length < digits) {
        text = "0" + text;
    }
    return text;
};

Numbers.hex = function (number, digits) {
    return "0x" + Numbers.hexDigits(number, digits);
};

Numbers.fixed = function (number, digits) {
    number = Number(number);
    if (isNaN(number) || !isFinite(number)) {
        return String(number);
    }
    var text = number.toFixed(digits);
    return text.charAt(0) == "-" && Number(text) == 0 ? text.substring(1) : text;
};

Numbers.exact = function (number) {
    number = Number(number);
    if (isNaN(number) || !isFinite(number) || number == Math.floor(number)) {
        return String(number);
    }
    var text;
    var digits = 0;
    do {
        digits++;
        text = number.toFixed(digits);
    } while (digits < 20 && Number(text) != number)
    return text;
};

Numbers.grouped = function (number, separator) {
    separator = separator == undefined ? "," : separator;
    var text = Numbers.fixed(Math.abs(number), 0);
    var result = "";
    while (text.length > 3) {
        result = separator + text.substring(text.length - 3) + result;
        text = text.substring(0, text.length - 3);
    }
    return (number < 0 ? "-" : "") + text + result;
};
