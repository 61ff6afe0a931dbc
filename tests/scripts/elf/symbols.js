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
// expect: undefined undefined undefined undefined undefined undefined
// expect: the same in both orders
var names = ['main', 'reset_handler', 'board::Led::set(bool)', 'sensor::scale(unsigned short)',
    'sensor::scale(sensor::Reading const&)', 'sensor::History<long, 8>::average() const',
    '(anonymous namespace)::tickLimit', 'data_load', 'stack_top'];
function listed(file, names) {
    ElfFile.load(folder + file);
    var text = '';
    for (var i = 0; i < names.length; ++i)
        text += names[i] + ' ' + ElfFile.symbolValue(names[i]).toString(16) + '\n';
    return text;
}
var text = listed('firmware.elf', names);
WScript.Echo(text);
function value(name) { return ElfFile.symbolValue(name) + ' '; }
WScript.Echo(value('missing') + value('_ZN5board3Led3setEb') + value('$t') + value('') + value('board::Led::set') +
             ElfFile.symbolValue('sensor::scale(int)') + '\n');
WScript.Echo(listed('firmware-be.elf', names) == text ? 'the same in both orders\n' : 'different\n');
