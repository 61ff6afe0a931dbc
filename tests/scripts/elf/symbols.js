// args: -define folder={root}/examples/firmware/ -load {script}
// expect: main 80000a8
// expect: reset_handler 8000050
// expect: board::Led::set(bool) 800008c
// expect: sensor::scale(unsigned short) 8000138
// expect: sensor::scale(sensor::Reading const&) 8000148
// expect: sensor::History<long, 8>::average() const 800019a
// expect: (anonymous namespace)::tickLimit 20000000
// expect: data_load 80001c0
// expect: stack_top 20002000
// expect: missing none none none none none
// expect: the same in both orders
var names = ['main', 'reset_handler', 'board::Led::set(bool)', 'sensor::scale(unsigned short)',
    'sensor::scale(sensor::Reading const&)', 'sensor::History<long, 8>::average() const',
    '(anonymous namespace)::tickLimit', 'data_load', 'stack_top'];
var none = ['_ZN5board3Led3setEb', '$t', '', 'board::Led::set', 'sensor::scale(int)'];
var values = [];
var same = true;
ElfFile.load(folder + 'firmware.elf');
for (var i = 0; i < names.length; ++i) {
    values[i] = ElfFile.symbolValue(names[i]);
    WScript.Echo(names[i] + ' ' + values[i].toString(16) + '\n');
}
var text = 'missing';
for (i = 0; i < none.length; ++i)
    text += ElfFile.symbolValue(none[i]) == undefined ? ' none' : ' found';
WScript.Echo(text + '\n');
ElfFile.load(folder + 'firmware-be.elf');
for (i = 0; i < names.length; ++i)
    same = same && ElfFile.symbolValue(names[i]) == values[i];
WScript.Echo(same ? 'the same in both orders\n' : 'different\n');
