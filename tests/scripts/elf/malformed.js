// Broken images through the whole program: each run ends with status 0, or 1 and exactly one line of error.
// args: -define image={root}/examples/firmware/firmware.elf -define program={program} -load {script}
// file: use.js
//| ElfFile.load('broken.elf');
//| ElfFile.symbolValue('board::Led::set(bool)');
//| ElfFile.peekBytes(0x08000000, 0x1000, false, 255);
//| ElfFile.pokeUint32(0x08000000, ElfFile.peekUint32(0x08000000));
//| ElfFile.crc32(0x07FFFFF0, 0x10000, true, 255);
//| ElfFile.save('saved.elf');
// expect: 63 runs, as they should be
var good = TBSys.readByteArrayFromFile(image);
function word(at) { return good[at] + 256 * (good[at + 1] + 256 * (good[at + 2] + 256 * good[at + 3])); }

// The places of some words: offsets and counts of the header, of a segment and of the sections for symbols.
var sections = word(32);
var places = [4, 28, 32, 44, 48, 50, 52 + 4, 52 + 16, sections + 40 * 6 + 16, sections + 40 * 8 + 16,
    sections + 40 * 8 + 20, sections + 40 * 8 + 36, sections + 40 * 9 + 16, sections + 40 * 10 + 16];
var values = [0, 0xFF, 0x7FFFFFFF, 0xFFFFFFF0];
var lengths = [0, 3, 4, 16, 51, good.length - 1, good.length];
var runs = 0;
var faults = '';
var lines = 0;

function run(bytes, what) {
    TBSys.writeByteArrayToFile('broken.elf', bytes);
    TBSys.removeFile('saved.elf');
    var status = TBSys.run(program + ' -load use.js', true);
    var errors = TBSys.getRunStderr();
    var count = 0;
    for (var at = errors.indexOf('error: '); at >= 0; at = errors.indexOf('error: ', at + 1))
        ++count;
    var right = status == 0 ? count == lines && TBSys.fileSize('saved.elf') == bytes.length : status == 1 && count == lines + 1;
    lines = count;
    ++runs;
    if (!right)
        faults += what + ' ';
}

for (var i = 0; i < places.length; ++i)
    for (var j = 0; j < values.length; ++j) {
        var broken = good.slice(0, good.length);
        for (var k = 0; k < 4; ++k)
            broken[places[i] + k] = values[j] >> (8 * k);
        run(broken, places[i] + '=' + values[j]);
    }
for (i = 0; i < lengths.length; ++i)
    run(good.slice(0, lengths[i]), 'length ' + lengths[i]);
WScript.Echo(runs + ' runs, ' + (faults == '' ? 'as they should be' : faults) + '\n');
