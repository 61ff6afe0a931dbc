// Ihex: bytes as an Intel HEX file, which programmers read. Addresses of 32 bits, 16 bytes a line.
//
//   Ihex.text(blocks, entry)     the text of the file, for TBSys.writeStringToFile
//
// `blocks` is an array of { address, bytes }; between blocks nothing is programmed. `entry` is the start
// address, which may be left out. Needs no other file.

var Ihex = {};

Ihex.hexBytes = function () {
    var digits = "0123456789ABCDEF";
    var texts = [];
    for (var i = 0; i < 256; i++) {
        texts[i] = digits.charAt(i >> 4) + digits.charAt(i & 15);
    }
    return texts;
};
Ihex.hex = Ihex.hexBytes();

// The last byte makes the sum of all of a record 0.
Ihex.record = function (type, offset, bytes, from, to) {
    var hex = Ihex.hex;
    var sum = to - from + (offset >> 8) + (offset & 255) + type;
    var text = ":" + hex[to - from] + hex[offset >> 8] + hex[offset & 255] + hex[type];
    for (var i = from; i < to; i++) {
        var value = bytes[i] & 255;
        sum += value;
        text += hex[value];
    }
    return text + hex[-sum & 255] + "\n";
};

Ihex.text = function (blocks, entry) {
    var text = "";
    var upper = 0;
    for (var j = 0; j < blocks.length; j++) {
        var bytes = blocks[j].bytes;
        var from = 0;
        while (from < bytes.length) {
            var address = blocks[j].address + from >>> 0;
            var offset = address & 0xFFFF;
            if (address >>> 16 != upper) {
                upper = address >>> 16;
                text += Ihex.record(4, 0, [upper >> 8, upper], 0, 2);
            }
            // A record's offset does not carry into the upper half of the address.
            var to = Math.min(Math.min(from + 16, bytes.length), from + 0x10000 - offset);
            text += Ihex.record(0, offset, bytes, from, to);
            from = to;
        }
    }
    if (entry != undefined) {
        text += Ihex.record(5, 0, [entry >>> 24, entry >>> 16, entry >>> 8, entry], 0, 4);
    }
    return text + Ihex.record(1, 0, [], 0, 0);
};
