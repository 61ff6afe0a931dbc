// Broken images through the whole program: each run ends with status 0, or 1 and exactly one line of error.
// args: -define image={root}/examples/firmware/firmware.elf -define program={program} -load {script}
// file: use.js
//| ElfFile.load('broken.elf');
//| ElfFile.symbolValue('board::Led::set(bool)');
//| ElfFile.peekBytes(0x08000000, 0x1000, false, 255);
//| ElfFile.pokeUint32(0x08000000, ElfFile.peekUint32(0x08000000));
//| ElfFile.crc32(0x07FFFFF0, 0x10000, true, 255);
//| ElfFile.save('saved.elf');
// expect: 21 runs
var good = TBSys.readByteArrayFromFile(image);
var runs = 0;
function run(bytes, what) {
    TBSys.writeByteArrayToFile('broken.elf', bytes);
    TBSys.removeFile('saved.elf');
    var status = TBSys.run('sh -c "' + program + ' -load use.js 2> errors"', true);
    var errors = TBSys.readStringFromFile('errors');
    if (!(status == 0 ? errors == '' && TBSys.fileSize('saved.elf') == bytes.length
                      : status == 1 && errors.indexOf('error: ') == 0 && errors.indexOf('\n') == errors.length - 1))
        WScript.Echo(what + ': ' + errors + '\n');
    ++runs;
}
// The places of some words: offsets and counts of the header, of a segment and of the sections for symbols.
var sections = good[32] + 256 * good[33];
var places = [4, 28, 32, 44, 48, 50, 56, 68, sections + 256, sections + 336, sections + 340, sections + 356, sections + 376,
    sections + 416];
for (var i = 0; i < places.length; ++i)
    run(good.slice(0, places[i]).concat([0xF0, 0xFF, 0xFF, i & 1 ? 0x7F : 0xFF], good.slice(places[i] + 4)), places[i]);
var lengths = [0, 3, 4, 16, 51, good.length - 1, good.length];
for (i = 0; i < lengths.length; ++i)
    run(good.slice(0, lengths[i]), 'length ' + lengths[i]);
WScript.Echo(runs + ' runs\n');
