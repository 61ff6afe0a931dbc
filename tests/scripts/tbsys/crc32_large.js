// Longer than any fast path's step, and equal to a computation bit by bit.
// expect: equal
function bitwise(bytes) {
    var crc = -1;
    for (var i = 0; i < bytes.length; ++i) {
        crc ^= bytes[i] << 24;
        for (var bit = 0; bit < 8; ++bit)
            crc = crc < 0 ? (crc << 1) ^ 0x04C11DB7 : crc << 1;
    }
    return ~crc >>> 0;
}
var bytes = [];
var text = 'equal';
for (var length = 1; length < 1200; ++length) {
    bytes.push((length * 2654435761) >>> 13 & 255);
    if ((length < 40 || length % 97 < 2 || length % 128 == 0) && TBSys.crc32(bytes) != bitwise(bytes))
        text = 'different at ' + length;
}
WScript.Echo(text + '\n');
