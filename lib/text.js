// Text: what strings can do beyond the members of their own.
//
//   Text.split(text, separator)            array of the pieces; "" as separator gives the characters
//   Text.lines(text)                       array of the lines, which LF or CR LF ends
//   Text.words(text)                       array of what stands between blanks, tabs and line ends
//   Text.join(array, separator)            ALL elements (join leaves out undefined and null)
//   Text.replaceFirst(text, old, with)     the first `old` replaced, or the text as it is
//   Text.replaceAll(text, old, with)       every `old`, from left to right
//   Text.trim(text)                        without blanks, tabs and line ends around it
//   Text.padLeft(text, width, fill)        filled up on the left to `width`, with blanks or `fill`
//   Text.padRight(text, width, fill)       the same on the right
//   Text.repeat(text, count)               `count` times; 0 or less gives ""
//   Text.startsWith(text, start)           true or false
//   Text.endsWith(text, end), Text.contains(text, part)    the same
//   Text.bytes(text)                       array of the character codes, each cut to 8 bits
//   Text.fromBytes(bytes)                  the opposite of it
//
// Whatever is given for `text` is made a string first. Needs no other file.

var Text = {};

Text.split = function (text, separator) {
    text = String(text);
    separator = String(separator);
    var pieces = [];
    if (separator == "") {
        for (var i = 0; i < text.length; i++) {
            pieces[i] = text.charAt(i);
        }
        return pieces;
    }
    var from = 0;
    var at = text.indexOf(separator);
    while (at >= 0) {
        pieces[pieces.length] = text.substring(from, at);
        from = at + separator.length;
        at = text.indexOf(separator, from);
    }
    pieces[pieces.length] = text.substring(from);
    return pieces;
};

Text.lines = function (text) {
    var lines = Text.split(text, "\n");
    if (lines[lines.length - 1] == "") {
        lines.length = lines.length - 1;
    }
    for (var i = 0; i < lines.length; i++) {
        var line = lines[i];
        if (line.charAt(line.length - 1) == "\r") {
            lines[i] = line.substring(0, line.length - 1);
        }
    }
    return lines;
};

Text.isBlank = function (code) {
    return code == 32 || code >= 9 && code <= 13;
};

Text.words = function (text) {
    text = String(text);
    var words = [];
    var from = -1;
    for (var i = 0; i <= text.length; i++) {
        if (i < text.length && !Text.isBlank(text.charCodeAt(i))) {
            if (from < 0) {
                from = i;
            }
        } else if (from >= 0) {
            words[words.length] = text.substring(from, i);
            from = -1;
        }
    }
    return words;
};

Text.join = function (array, separator) {
    if (separator == undefined) {
        separator = ",";
    }
    var text = "";
    for (var i = 0; i < array.length; i++) {
        if (i > 0) {
            text += separator;
        }
        if (array[i] != undefined && array[i] != null) {
            text += String(array[i]);
        }
    }
    return text;
};

Text.replaceFirst = function (text, old, replacement) {
    text = String(text);
    old = String(old);
    var at = text.indexOf(old);
    return at < 0 ? text : text.substring(0, at) + replacement + text.substring(at + old.length);
};

Text.replaceAll = function (text, old, replacement) {
    return String(old) == "" ? String(text) : Text.join(Text.split(text, old), String(replacement));
};

Text.trim = function (text) {
    text = String(text);
    var from = 0;
    var to = text.length;
    while (from < to && Text.isBlank(text.charCodeAt(from))) {
        from++;
    }
    while (to > from && Text.isBlank(text.charCodeAt(to - 1))) {
        to--;
    }
    return text.substring(from, to);
};

Text.repeat = function (text, count) {
    var result = "";
    for (var i = 1; i <= count; i++) {
        result += text;
    }
    return result;
};

Text.filling = function (text, width, fill) {
    fill = fill == undefined ? " " : String(fill);
    var missing = width - text.length;
    if (missing <= 0 || fill == "") {
        return "";
    }
    return Text.repeat(fill, Math.ceil(missing / fill.length)).substring(0, missing);
};

Text.padLeft = function (text, width, fill) {
    text = String(text);
    return Text.filling(text, width, fill) + text;
};

Text.padRight = function (text, width, fill) {
    text = String(text);
    return text + Text.filling(text, width, fill);
};

Text.startsWith = function (text, start) {
    start = String(start);
    return String(text).substring(0, start.length) == start;
};

Text.endsWith = function (text, end) {
    text = String(text);
    end = String(end);
    return text.length >= end.length && text.substring(text.length - end.length) == end;
};

Text.contains = function (text, part) {
    return String(text).indexOf(String(part)) >= 0;
};

Text.bytes = function (text) {
    text = String(text);
    var bytes = [];
    for (var i = 0; i < text.length; i++) {
        bytes[i] = text.charCodeAt(i) & 255;
    }
    return bytes;
};

Text.fromBytes = function (bytes) {
    var text = "";
    for (var i = 0; i < bytes.length; i++) {
        text += String.fromCharCode(bytes[i]);
    }
    return text;
};
