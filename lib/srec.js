// Srec: bytes as a file of Motorola S-records, which programmers read. Addresses of 32 bits (S3, S7), 16
// bytes a line.
//
//   Srec.text(blocks, header, entry)     the text of the file, for TBSys.writeStringToFile
//
// `blocks` is an array of { address, bytes }; between blocks nothing is programmed. `header` is the text of
// the S0 record ("" if left out) of which 60 characters count, `entry` the start address (0 if left out).
// Needs no other file.

var Srec = {};

Srec.hexBytes = function () {
    var digits = "0123456789ABCDEF";
    var texts = [];
    for (var i = 0; i < 256; i++) {
        texts[i] = digits.charAt(i >> 4) + digits.charAt(i & 15);
    }
    return texts;
};
Srec.hex = Srec.hexBytes();

// The count is of the bytes behind it, and the last of them the complement of the sum of all others.
Srec.record = function (type, address, addressBytes, bytes, from, to) {
    var hex = Srec.hex;
    var sum = addressBytes + to - from + 1;
    var text = "S" + type + hex[sum];
    for (var shift = 8 * (addressBytes - 1); shift >= 0; shift -= 8) {
        var part = address >>> shift & 255;
        sum += part;
        text += hex[part];
    }
    for (var i = from; i < to; i++) {
        var value = bytes[i] & 255;
        sum += value;
        text += hex[value];
    }
    return text + hex[~sum & 255] + "\n";
};

Srec.text = function (blocks, header, entry) {
    header = header == undefined ? "" : String(header).substring(0, 60);
    var bytes = [];
    for (var i = 0; i < header.length; i++) {
        bytes[i] = header.charCodeAt(i);
    }
    var text = Srec.record(0, 0, 2, bytes, 0, bytes.length);
    for (var j = 0; j < blocks.length; j++) {
        bytes = blocks[j].bytes;
        for (i = 0; i < bytes.length; i += 16) {
            text += Srec.record(3, blocks[j].address + i, 4, bytes, i, Math.min(i + 16, bytes.length));
        }
    }
    return text + Srec.record(7, entry == undefined ? 0 : entry, 4, [], 0, 0);
};
